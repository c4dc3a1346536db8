#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "engine/system/file.h"
#include "engine/system/file_reason.h"
#include "engine/system/random.h"

namespace engine::system {
namespace {

constexpr int kMaxLinks = 40;
constexpr mode_t kPermissions = 0777;

int number_of(const File& file) { return static_cast<int>(file.handle()); }

// The folder that holds a path's last name, "." when the path names none.
std::string folder_of(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

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

[[noreturn]] void refuse(const std::string& path) { throw FileRefusal(file_reason(errno, path)); }

// Reads and writes nothing but plain files.
void check_plain(const struct stat& about) {
  if (S_ISDIR(about.st_mode)) throw FileRefusal("it is a folder");
  if (!S_ISREG(about.st_mode)) throw FileRefusal("it is not a plain file");
}

struct stat about_file(const File& file, const std::string& path) {
  struct stat about {};
  if (!file || fstat(number_of(file), &about) != 0) refuse(path);
  return about;
}

// Does not wait for the other end of a pipe.
File open_existing(const std::string& path, int access, struct stat& about) {
  File file(::open(path.c_str(), access | O_NONBLOCK | O_CLOEXEC));
  about = about_file(file, path);
  check_plain(about);
  return file;
}

File open_new(const std::string& path, mode_t mode) {
  return File(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
}

// The file a path leads to. The last link of a chain may lead nowhere yet.
std::string follow_links(std::string path) {
  std::array<char, 4096> link{};
  for (int followed = 0; followed <= kMaxLinks; ++followed) {
    const auto size = readlink(path.c_str(), link.data(), link.size());
    if (size < 0) return path;
    const std::string target(link.data(), static_cast<std::size_t>(size));
    path = target.starts_with('/') ? target : folder_of(path).append("/").append(target);
  }
  errno = ELOOP;
  refuse(path);
}

// Renaming would succeed over files that must not be written, so they are looked at first. False
// when there is none.
bool check_target(const std::string& path, struct stat& about) {
  if (stat(path.c_str(), &about) != 0) {
    if (errno == ENOENT) return false;
    refuse(path);
  }
  check_plain(about);
  if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) refuse(path);
  return true;
}

bool flush(int handle) {
#ifdef F_FULLFSYNC
  // What this system calls flushing leaves the bytes with the disk, which may still lose them.
  if (fcntl(handle, F_FULLFSYNC) == 0) return true;
#endif
  return fsync(handle) == 0;
}

// Makes a rename last. The file is complete by then, so a folder that cannot be flushed is no
// failure.
void flush_folder(const std::string& folder) {
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  flush(handle);
  ::close(handle);
}

}  // namespace

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

File File::open(const std::string& path) {
  struct stat about {};
  return open_existing(path, O_RDONLY, about);
}

// Its name goes at once.
File File::open_temporary(const std::string& path, const File& source) {
  File file = open_new(path, S_IRUSR | S_IWUSR);
  if (!file && errno != EEXIST) refuse(path);
  if (!file) {
    struct stat about {};
    const struct stat original = about_file(source, path);
    file = open_existing(path, O_RDWR, about);
    if (about.st_dev == original.st_dev && about.st_ino == original.st_ino)
      throw FileRefusal("it is the workbook itself");
    if (about.st_size != 0) throw FileRefusal("it exists already");
  }
  unlink(path.c_str());
  return file;
}

std::uint64_t File::size() const {
  return static_cast<std::uint64_t>(about_file(*this, ".").st_size);
}

std::size_t File::read(std::uint64_t offset, std::span<char> into) const {
  std::size_t done = 0;
  while (done < into.size()) {
    const auto got = pread(number_of(*this), into.data() + done, into.size() - done,
                           static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) refuse(".");
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void File::write(std::uint64_t offset, std::span<const char> bytes) {
  while (!bytes.empty()) {
    const auto put =
        pwrite(number_of(*this), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) refuse(".");
    bytes = bytes.subspan(static_cast<std::size_t>(put));
    offset += static_cast<std::uint64_t>(put);
  }
}

bool File::close() noexcept {
  return handle_ == kNone || ::close(static_cast<int>(std::exchange(handle_, kNone))) == 0;
}

// A file that replaces another is nobody else's to read until it has that one's permissions.
Replacement::Replacement(const std::string& path) : target_(follow_links(path)) {
  struct stat about {};
  const bool replaces = check_target(target_, about);
  const mode_t mode = replaces ? S_IRUSR | S_IWUSR : mode_t{0666};
  while (!file_) {
    // Nothing may fail any more once the file is there, or it would stay.
    std::filesystem::path side_path = folder_of(target_) + "/.save-" + random_letters(16);
    file_ = open_new(side_path.native(), mode);
    if (file_) side_path_ = std::move(side_path);
    else if (errno != EEXIST) refuse(target_);
  }
}

Replacement::~Replacement() {
  if (!side_path_.empty()) unlink(side_path_.c_str());
}

void Replacement::begin_writeback([[maybe_unused]] std::uint64_t offset,
                                  [[maybe_unused]] std::uint64_t size) noexcept {
#ifdef SYNC_FILE_RANGE_WRITE
  // What fails here fails again when the file is flushed.
  static_cast<void>(sync_file_range(number_of(file_), static_cast<off_t>(offset),
                                    static_cast<off_t>(size), SYNC_FILE_RANGE_WRITE));
#endif
}

void Replacement::commit() {
  struct stat about {};
  if (check_target(target_, about)) {
    // Only a privileged process may give a file away; the others keep it.
    static_cast<void>(fchown(number_of(file_), about.st_uid, about.st_gid) == 0);
    if (fchmod(number_of(file_), about.st_mode & kPermissions) != 0) refuse(target_);
  }
  // Once the file has its name nothing may fail any more, for want of memory for instance.
  const auto folder = folder_of(target_);
  if (!flush(number_of(file_)) || !file_.close()) refuse(target_);
  if (rename(side_path_.c_str(), target_.c_str()) != 0) refuse(target_);
  side_path_.clear();
  flush_folder(folder);
}

}  // namespace engine::system
