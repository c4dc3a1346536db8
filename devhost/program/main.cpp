// xlcalc: evaluates calculations with a plug-in's functions, as the database application does.
//
// Exit status: 0 done, 1 a calculation could not be evaluated or failed under --strict, 2 bad usage
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
#include <utility>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"
#include "devhost/program/plugin_module.h"
#include "devhost/program/system.h"

namespace devhost {

void complain(const std::string& problem) { std::cerr << "xlcalc: " << problem << '\n'; }

}  // namespace devhost

namespace {

using devhost::complain;
using devhost::Evaluator;
using devhost::Failure;
using devhost::kBadUsage;
using devhost::kDone;
using devhost::kFailed;
using devhost::utf16_from_utf8;
using devhost::utf8_from_utf16;

// Ends the run under --strict; what failed has been told already.
struct StrictEnd : std::exception {};

struct Options {
  std::string plugin;
  std::int16_t extension_version = fmx::kExtensionVersionWithDescriptions;
  bool strict = false;
  std::string text;
  std::vector<std::string> settings;
};

std::filesystem::path default_plugin() {
  return devhost::program_file().parent_path() / ".." / PLUGIN_PLACE;
}

void report(const Failure& failure, bool strict) {
  std::cout.flush();
  std::string text = utf8_from_utf16(failure.function) + " failed";
  if (failure.code != 0) text += " with code " + std::to_string(failure.code);
  if (!failure.message.empty()) text += ": " + utf8_from_utf16(failure.message);
  complain(text);
  if (strict) throw StrictEnd();
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

int with_plugin(const CLI::App& app, const Options& options) {
  const devhost::PluginModule plugin(
      options.plugin.empty() ? default_plugin() : devhost::path_from_utf8(options.plugin),
      options.extension_version);
  Evaluator evaluator([&](const Failure& failure) { report(failure, options.strict); });
  set_variables(evaluator, options.settings);
  if (app.got_subcommand("eval")) return devhost::evaluate(evaluator, options.text);
  if (app.got_subcommand("run")) return devhost::run_script(evaluator, options.text);
  if (app.got_subcommand("functions")) return devhost::list_functions(options.text);
  return devhost::converse(evaluator, plugin);
}

void describe_usage(CLI::App& app, Options& options) {
  app.fallthrough();
  app.require_subcommand(0, 1);
  app.add_option("--plugin", options.plugin, "The plug-in's file (../" PLUGIN_PLACE ")");
  app.add_option("--extn-version", options.extension_version,
                 "The host's plug-in interface version");
  app.add_flag("--strict", options.strict, "End with status 1 at the first function that fails");

  auto* eval = app.add_subcommand("eval", "Print the result of a calculation");
  eval->add_option("CALCULATION", options.text)->required();
  auto* script = app.add_subcommand("run", "Run a file of statements");
  script->add_option("SCRIPT", options.text)->required();
  for (auto* command : {eval, script}) {
    command->add_option("NAME=VALUE", options.settings, "Sets $NAME")->check(check_setting);
  }
  auto* functions = app.add_subcommand("functions", "List functions: prototype and description");
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

int run_program(std::vector<std::string> arguments) {
  CLI::App app("Evaluates calculations; without a command, at a prompt.", "xlcalc");
  Options options;
  describe_usage(app, options);
  try {
    app.parse(words_of(std::move(arguments)));
    return with_plugin(app, options);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUsage;
  } catch (const devhost::PluginError& error) {
    complain(error.what());
    return kBadUsage;
  } catch (const StrictEnd&) {
    return kFailed;
  } catch (const std::exception& error) {
    complain(error.what());
    return kFailed;
  }
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
