// What one external call costs beside the engine's own work: a number is written and read through
// the functions that the plug-in registered, and through the engine's interface directly.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "devhost/fm/function_registry.h"
#include "devhost/fm/values.h"
#include "platform/libxl/libxl.h"

namespace {

using devhost::Value;
using devhost::ValueList;

constexpr int kRows = 1000;

const devhost::RegisteredFunction& function_of(std::u16string_view name) {
  return *devhost::FunctionRegistry::instance().find(name);
}

// The plug-in, started as the host starts it.
class PlugIn {
 public:
  PlugIn() {
    path_ = (std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() /
             "lib/vornelix/Vornelix.fmx")
                .string();
    void* library = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* entry = library ? dlsym(library, "FMExternCallProc") : nullptr;
    if (!entry) {
      std::fprintf(stderr, "calls: %s\n", dlerror());
      std::exit(1);
    }
    block_.extension_version = fmx::kExtensionVersionWithDescriptions;
    block_.message = fmx::kInit;
    block_.instance = path_.data();
    reinterpret_cast<fmx::EntryPoint>(entry)(&block_);
  }

  double call(std::u16string_view name, const ValueList& parameters) {
    const devhost::RegisteredFunction& function = function_of(name);
    Value result;
    function.function(function.id, environment_, parameters, result);
    return result.number().value;
  }

  const fmx::ExprEnv& environment() const { return environment_; }

 private:
  std::string path_;
  fmx::CallBlock block_ = {};
  devhost::EnvironmentObject environment_;
};

PlugIn& plug_in() {
  static PlugIn started;
  return started;
}

double new_sheet() {
  const double book = plug_in().call(u"XL_XlCreateXMLBook", ValueList());
  ValueList parameters;
  parameters.values = {Value(book), Value(std::u16string(u"Sheet"))};
  return plug_in().call(u"XL_Book_AddSheet", parameters);
}

void write_through_plug_in(benchmark::State& state) {
  ValueList parameters;
  parameters.values = {Value(new_sheet()), Value(0.0), Value(0.0), Value(3.5)};
  const auto& function = function_of(u"XL_Sheet_WriteNum");
  int row = 0;
  while (state.KeepRunning()) {
    parameters.values[1] = Value(static_cast<double>(row = (row + 1) % kRows));
    Value result;
    function.function(function.id, plug_in().environment(), parameters, result);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(write_through_plug_in);

void read_through_plug_in(benchmark::State& state) {
  ValueList parameters;
  parameters.values = {Value(new_sheet()), Value(0.0), Value(0.0), Value(3.5)};
  plug_in().call(u"XL_Sheet_WriteNum", parameters);
  parameters.values.pop_back();
  const auto& function = function_of(u"XL_Sheet_ReadNum");
  while (state.KeepRunning()) {
    Value result;
    function.function(function.id, plug_in().environment(), parameters, result);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(read_through_plug_in);

void write_in_engine(benchmark::State& state) {
  libxl::Book* book = xlCreateXMLBookW();
  libxl::Sheet* sheet = book->addSheet(L"Sheet");
  int row = 0;
  while (state.KeepRunning())
    benchmark::DoNotOptimize(sheet->writeNum(row = (row + 1) % kRows, 0, 3.5));
  book->release();
}
BENCHMARK(write_in_engine);

void read_in_engine(benchmark::State& state) {
  libxl::Book* book = xlCreateXMLBookW();
  libxl::Sheet* sheet = book->addSheet(L"Sheet");
  sheet->writeNum(0, 0, 3.5);
  while (state.KeepRunning()) benchmark::DoNotOptimize(sheet->readNum(0, 0));
  book->release();
}
BENCHMARK(read_in_engine);

}  // namespace

BENCHMARK_MAIN();
