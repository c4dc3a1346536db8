#include "engine/package/source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/file_reason.h"
#include "engine/package/output.h"

namespace engine::package {
namespace {

constexpr std::size_t kCopyBlock = 256 * 1024;

// An open file, closed with its owner.
class Handle {
 public:
  explicit Handle(int number) : number_(number) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (number_ >= 0) close(number_);
  }
  int get() const { return number_; }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

[[noreturn]] void cannot_open(const std::string& reason) {
  throw FileError("cannot be opened: " + reason);
}

[[noreturn]] void cannot_write(const std::string& reason) {
  throw FileTargetError("cannot be written: " + reason);
}

// What stands against reading or writing an existing file, empty when nothing does.
std::string not_plain(const struct stat& about) {
  if (S_ISDIR(about.st_mode)) return "it is a folder";
  return S_ISREG(about.st_mode) ? "" : "it is not a plain file";
}

// Does not wait for the other end of a pipe.
int open_plain(const std::string& path, struct stat& about) {
  Handle handle(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (handle.get() < 0 || fstat(handle.get(), &about) != 0) cannot_open(file_reason(errno, path));
  if (const auto reason = not_plain(about); !reason.empty()) cannot_open(reason);
  return handle.release();
}

// Fills as much as the file has.
std::size_t read_some(int handle, char* into, std::size_t size, std::uint64_t offset) {
  std::size_t done = 0;
  while (done < size) {
    const auto got = pread(handle, into + done, size - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw FileError("cannot be read: " + file_reason(errno, "."));
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void write_all(int handle, const char* from, std::size_t size) {
  for (std::size_t done = 0; done < size;) {
    const auto put = ::write(handle, from + done, size - done);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) cannot_write(file_reason(errno, "."));
    done += static_cast<std::size_t>(put);
  }
}

// An existing file is taken only when it is empty: everything else would be lost.
int open_existing_temp(const std::string& path, const struct stat& source) {
  Handle handle(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  struct stat about {};
  if (handle.get() < 0 || fstat(handle.get(), &about) != 0) cannot_write(file_reason(errno, path));
  if (const auto reason = not_plain(about); !reason.empty()) cannot_write(reason);
  if (about.st_dev == source.st_dev && about.st_ino == source.st_ino) {
    cannot_write("it is the workbook itself");
  }
  if (about.st_size != 0) cannot_write("it exists already");
  return handle.release();
}

// The temporary file, already without a name.
int open_temp(const std::string& path, const struct stat& source) {
  Handle handle(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (handle.get() < 0 && errno != EEXIST) cannot_write(file_reason(errno, path));
  const int number = handle.get() < 0 ? open_existing_temp(path, source) : handle.release();
  unlink(path.c_str());
  return number;
}

}  // namespace

Source::~Source() {
  if (handle_ >= 0) close(handle_);
}

std::shared_ptr<const Source> Source::from_bytes(std::vector<char> bytes) {
  std::shared_ptr<Source> source(new Source);
  source->bytes_ = std::move(bytes);
  source->view_ = {source->bytes_.data(), source->bytes_.size()};
  source->size_ = source->bytes_.size();
  return source;
}

std::shared_ptr<const Source> Source::from_file(const std::string& path) {
  struct stat about {};
  const Handle handle(open_plain(path, about));
  const auto size = static_cast<std::size_t>(about.st_size);
  std::shared_ptr<Source> source(new Source);
  source->block_ = std::make_unique_for_overwrite<char[]>(size);
  source->size_ = read_some(handle.get(), source->block_.get(), size, 0);
  source->view_ = {source->block_.get(), static_cast<std::size_t>(source->size_)};
  return source;
}

std::shared_ptr<const Source> Source::from_file_via(const std::string& path,
                                                    const std::string& temp_path) {
  struct stat about {};
  const Handle handle(open_plain(path, about));
  std::shared_ptr<Source> source(new Source);
  source->handle_ = open_temp(temp_path, about);
  const auto block = std::make_unique_for_overwrite<char[]>(kCopyBlock);
  while (const auto got = read_some(handle.get(), block.get(), kCopyBlock, source->size_)) {
    write_all(source->handle_, block.get(), got);
    source->size_ += got;
  }
  return source;
}

std::shared_ptr<const Source> Source::look_into(const std::string& path) {
  struct stat about {};
  std::shared_ptr<Source> source(new Source);
  source->handle_ = open_plain(path, about);
  source->size_ = static_cast<std::uint64_t>(about.st_size);
  return source;
}

void Source::read(std::uint64_t offset, std::span<char> into) const {
  if (offset > size_ || into.size() > size_ - offset) throw_damaged("file", "ends too early");
  if (handle_ < 0) {
    if (!into.empty()) std::memcpy(into.data(), view_.data() + offset, into.size());
  } else if (read_some(handle_, into.data(), into.size(), offset) != into.size()) {
    throw FileError("cannot be read: the file has become shorter");
  }
}

}  // namespace engine::package
