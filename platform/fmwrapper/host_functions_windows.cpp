// Finds the host's functions when a plug-in is loaded, of which this is a part.
//
// A file of code names, for everything that it takes from others, the file that has it. Which of a
// host's files has the FM_* functions is the host's affair: it may be the program itself, whatever
// its name. So they are imported from a file that does not exist, in the way that is resolved while
// the program runs, and resolved here, all at once, from whatever the process has loaded.
#include <windows.h>
// After the header above, which it needs.
#include <delayimp.h>
#include <psapi.h>

#include <cstdio>
#include <string>
#include <vector>

// The table of the functions: the import library's tool gives it this name.
extern "C" const ImgDelayDescr __DELAY_IMPORT_DESCRIPTOR_libhost_functions_a;

namespace {

std::vector<HMODULE> loaded_modules() {
  std::vector<HMODULE> modules(256);
  for (;;) {
    const auto room = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    DWORD needed = 0;
    if (EnumProcessModules(GetCurrentProcess(), modules.data(), room, &needed) == 0) return {};
    modules.resize(needed / sizeof(HMODULE));
    if (needed <= room) return modules;
  }
}

FARPROC find(const std::vector<HMODULE>& modules, const char* name) {
  for (HMODULE module : modules)
    if (const FARPROC function = GetProcAddress(module, name)) return function;
  return nullptr;
}

void tell(const std::string& problem) {
  OutputDebugStringA(problem.c_str());
  std::fputs(problem.c_str(), stderr);
}

// Gives every function its address, and tells of those that the process has not.
bool resolve_all(HMODULE own) {
  const auto& table = __DELAY_IMPORT_DESCRIPTOR_libhost_functions_a;
  auto* const base = reinterpret_cast<char*>(own);
  const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + table.rvaINT);
  auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + table.rvaIAT);
  const std::vector<HMODULE> modules = loaded_modules();
  bool complete = true;
  for (; name->u1.AddressOfData != 0; ++name, ++address) {
    const auto* const import =
        reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
    const auto* const text = reinterpret_cast<const char*>(import->Name);
    const FARPROC function = find(modules, text);
    if (function == nullptr) {
      tell(std::string("plug-in: the host has no function ") + text + "\n");
      complete = false;
    }
    address->u1.Function = reinterpret_cast<ULONG_PTR>(function);
  }
  return complete;
}

}  // namespace

// A plug-in that lacks a function is not loaded, as on other systems.
BOOL WINAPI DllMain(HINSTANCE own, DWORD reason, LPVOID /*reserved*/) {
  return reason != DLL_PROCESS_ATTACH || resolve_all(own) ? TRUE : FALSE;
}
