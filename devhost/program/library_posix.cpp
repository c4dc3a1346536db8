#include <dlfcn.h>

#include "devhost/program/library.h"

namespace devhost {

Library::Library(const std::filesystem::path& file)
    : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw LibraryError(dlerror());
}

Library::~Library() { dlclose(handle_); }

// The path is only read.
void* Library::instance(const std::string& path) const { return const_cast<char*>(path.c_str()); }

void* Library::find_symbol(const char* name) const { return dlsym(handle_, name); }

}  // namespace devhost
