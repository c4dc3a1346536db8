#include <dlfcn.h>

#include "platform/corefoundation/bundle_file.h"

namespace corefoundation {

std::filesystem::path bundle_file(CFBundleRef bundle) {
  if (bundle != nullptr) return static_cast<const char*>(static_cast<const void*>(bundle));
  // Any object of this code lies in the file that the code was loaded from.
  static const char anchor = 0;
  Dl_info info = {};
  if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) return {};
  return info.dli_fname;
}

}  // namespace corefoundation
