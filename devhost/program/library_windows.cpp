#include <windows.h>

#include <string>
#include <system_error>

#include "devhost/program/library.h"

namespace devhost {
namespace {

HMODULE module_of(void* handle) { return static_cast<HMODULE>(handle); }

}  // namespace

// Windows asks the user about a file that does not load, unless it is told not to.
Library::Library(const std::filesystem::path& file) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  const auto whole = std::filesystem::absolute(file).make_preferred();
  handle_ = LoadLibraryExW(whole.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (handle_ == nullptr) {
    const auto error = static_cast<int>(GetLastError());
    throw LibraryError(std::system_category().message(error) + " (" + std::to_string(error) + ")");
  }
}

Library::~Library() { FreeLibrary(module_of(handle_)); }

void* Library::instance(const std::string& /*path*/) const { return handle_; }

void* Library::find_symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(module_of(handle_), name));
}

}  // namespace devhost
