#include "engine/package/file_reason.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace engine::package {
namespace {

std::string missing(const std::string& path) {
  struct stat about {};
  return stat(folder_of(path).c_str(), &about) == 0 ? "no such file" : "no such folder";
}

std::string system_text(int error_number) {
  std::string text = std::generic_category().message(error_number);
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace

std::string folder_of(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string file_reason(int error_number, const std::string& path) {
  switch (error_number) {
    case ENOENT:
      return missing(path);
    case ENOTDIR:
      return "no such folder";
    case EACCES:
    case EPERM:
      return "permission denied";
    case EISDIR:
      return "it is a folder";
    case ENXIO:
    case ENODEV:
      return "it is not a plain file";
    case ENOSPC:
    case EDQUOT:
      return "no space left";
    case EROFS:
      return "the disk is read-only";
    default:
      return system_text(error_number);
  }
}

}  // namespace engine::package
