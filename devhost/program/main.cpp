// xlcalc: evaluates calculations with a plug-in's functions, as the database application does, and
// shows workbooks and functions.
//
// Exit status: 0 done, 1 what is asked for could not be done or failed under --strict, 2 bad usage
// or a plug-in that does not load.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/syntax_error.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"
#include "devhost/program/plugin_module.h"
#include "devhost/program/report.h"
#include "devhost/program/system.h"

namespace {

using devhost::Evaluator;
using devhost::Failure;
using devhost::kBadUsage;
using devhost::kDone;
using devhost::kFailed;
using devhost::Report;
using devhost::utf16_from_utf8;

struct Options {
  std::string plugin;
  std::int16_t extension_version = fmx::kExtensionVersionWithDescriptions;
  bool strict = false;
  bool json = false;
  // The calculation, script or word.
  std::string text;
  std::vector<std::string> settings;
  devhost::Shown shown;
};

std::filesystem::path default_plugin() {
  return devhost::program_file().parent_path() / ".." / PLUGIN_PLACE;
}

// NAME=VALUE makes $NAME.
void set_variables(Evaluator& evaluator, const std::vector<std::string>& settings) {
  for (const std::string& setting : settings) {
    const std::size_t equals = setting.find('=');
    evaluator.set_variable(utf16_from_utf8("$" + setting.substr(0, equals)),
                           devhost::Value(utf16_from_utf8(setting.substr(equals + 1))));
  }
}

std::string check_setting(const std::string& setting) {
  const std::size_t equals = setting.find('=');
  if (equals != std::string::npos && equals > 0) return {};
  return "\"" + setting + "\" is not of the form NAME=VALUE";
}

int with_plugin(const CLI::App& app, const Options& options, Report& report) {
  const devhost::PluginModule plugin(
      options.plugin.empty() ? default_plugin() : devhost::path_from_utf8(options.plugin),
      options.extension_version);
  Evaluator evaluator([&](const Failure& failure) { report.failure(failure); },
                      devhost::was_interrupted);
  set_variables(evaluator, options.settings);
  if (app.got_subcommand("eval")) return devhost::evaluate(evaluator, report, options.text);
  if (app.got_subcommand("run")) return devhost::run_script(evaluator, report, options.text);
  if (app.got_subcommand("show")) return devhost::show_workbook(report, options.shown);
  if (app.got_subcommand("functions")) return devhost::list_functions(report, options.text);
  return devhost::converse(evaluator, report, plugin.string(devhost::PluginModule::kNameString));
}

// What ends the run is told here, whatever it is.
int carry_out(const CLI::App& app, const Options& options, Report& report) {
  try {
    return with_plugin(app, options, report);
  } catch (const devhost::PluginError& error) {
    report.error(error.what());
    return kBadUsage;
  } catch (const devhost::SyntaxError& error) {
    report.error(error);
  } catch (const devhost::StrictEnd&) {
    return kFailed;
  } catch (const std::exception& error) {
    report.error(error.what());
  }
  return kFailed;
}

void describe_usage(CLI::App& app, Options& options) {
  app.fallthrough();
  // A word that begins with a slash is a path, on every system.
  app.allow_windows_style_options(false);
  app.require_subcommand(0, 1);
  app.footer("These options hold for every command; xlcalc COMMAND --help tells its own.");
  app.add_option("--plugin", options.plugin, "The plug-in's file (../" PLUGIN_PLACE ")");
  app.add_option("--extn-version", options.extension_version,
                 "The host's plug-in interface version");
  app.add_flag("--strict", options.strict, "End with status 1 at the first function that fails");
  app.add_flag("--json", options.json,
               "Print one object: results, failures of functions and the error, null without one");

  auto* eval = app.add_subcommand("eval", "Print the result of a calculation");
  eval->add_option("CALCULATION", options.text)->required();
  auto* script = app.add_subcommand("run", "Run a file of statements");
  script->add_option("SCRIPT", options.text)->required();
  for (auto* command : {eval, script}) {
    command->add_option("NAME=VALUE", options.settings, "Sets $NAME")->check(check_setting);
  }
  auto* show = app.add_subcommand("show", "Print the sheets of a workbook and the cells of one");
  show->add_option("FILE", options.shown.file, "A workbook, .xlsx or .xls")->required();
  show->add_option("SHEET", options.shown.sheet,
                   "Name of the sheet or its number, from 1 on; without it the active one");
  show->add_option("RANGE", options.shown.range, "Cells to print, as B2:D20, B:D or 2:20");
  show->add_flag("--formulas", options.shown.formulas, "Formulas in place of their values");
  show->add_flag("--all", options.shown.all, "All rows and columns, however many there are");
  auto* functions =
      app.add_subcommand("functions", "List functions: prototype, description, an example");
  functions->add_option("WORD", options.text, "Only those that mention it");
}

// A calculation may begin with a minus sign. A blank before it, which means nothing in a
// calculation, keeps it from being read as an option; options are words behind two hyphens.
std::string guard_minus(const std::string& argument) {
  const bool is_option = argument == "-h" || argument == "--" ||
                         (argument.starts_with("--") && argument.size() > 2 &&
                          std::isalpha(static_cast<unsigned char>(argument[2])) != 0);
  return argument.starts_with('-') && !is_option ? " " + argument : argument;
}

// Last first, as the parser takes them.
std::vector<std::string> words_of(std::vector<std::string> words) {
  const auto command = std::find(words.begin(), words.end(), "eval");
  std::transform(command, words.end(), command, guard_minus);
  std::reverse(words.begin(), words.end());
  return words;
}

// The first word that no command and no option takes.
std::string unexpected(const CLI::App& app, const std::vector<std::string>& words) {
  const std::vector<std::string> rest = app.remaining(true);
  const auto first = std::find_first_of(words.begin(), words.end(), rest.begin(), rest.end());
  const std::string word = first != words.end() ? *first : rest.front();
  const bool is_command = app.get_subcommands().empty() && !word.starts_with("-");
  return "\"" + word + "\" is " + (is_command ? "no command" : "not expected here");
}

int run_program(const std::vector<std::string>& words) {
  CLI::App app("Evaluates calculations and shows workbooks; without a command, at a prompt.",
               "xlcalc");
  Options options;
  describe_usage(app, options);
  try {
    app.parse(words_of(words));
  } catch (const CLI::ExtrasError&) {
    std::cerr << "xlcalc: " << unexpected(app, words) << "; --help tells what is\n";
    return kBadUsage;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUsage;
  }
  Report report(options.json ? devhost::Style::kJson : devhost::Style::kText, options.strict);
  const int status = carry_out(app, options, report);
  report.finish();
  if (std::cout.flush()) return status;
  std::cerr << "xlcalc: the output cannot be written\n";
  return kFailed;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run_program(devhost::start_program({arguments, static_cast<std::size_t>(count)}));
  } catch (...) {
    // Not even the complaint could be written.
    return kFailed;
  }
}
