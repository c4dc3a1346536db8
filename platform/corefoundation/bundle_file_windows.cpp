#include <windows.h>

#include <string>
#include <string_view>

#include "platform/corefoundation/bundle_file.h"

namespace corefoundation {
namespace {

// Empty when `module` is none: the system compares it with those that are loaded.
std::filesystem::path module_file(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) return path.substr(0, size);
    path.resize(2 * path.size());
  }
}

HMODULE own_module() {
  static const char anchor = 0;
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&anchor), &module);
  return module;
}

}  // namespace

// A host gives its plug-in the plug-in's module or, as where there are no modules, its path.
std::filesystem::path bundle_file(CFBundleRef bundle) {
  if (bundle == nullptr) return module_file(own_module());
  std::filesystem::path file = module_file(reinterpret_cast<HMODULE>(bundle));
  if (!file.empty()) return file;
  const std::string_view path = static_cast<const char*>(static_cast<const void*>(bundle));
  return std::u8string(path.begin(), path.end());
}

}  // namespace corefoundation
