#include <windows.h>

#include <algorithm>
#include <string_view>

#include "engine/system/file.h"
#include "engine/system/file_reason.h"
#include "engine/system/random.h"
#include "engine/text/wide.h"

namespace engine::system {
namespace {

// The most that one call of the system takes.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

HANDLE handle_of(const File& file) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number in the shape of a pointer.
  return reinterpret_cast<HANDLE>(file.handle());
}

[[noreturn]] void refuse() { throw FileRefusal(file_reason(static_cast<int>(GetLastError()), "")); }

// The whole path, as the system takes it whatever its length: without the prefix it stops at 260
// characters, and the name of a file beside it may take 22 more.
std::wstring native(const std::string& path) {
  const std::wstring given = to_wide(path);
  if (given.empty()) throw FileRefusal("no such file");
  std::wstring whole(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(
      GetFullPathNameW(given.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  if (whole.empty()) refuse();
  if (whole.starts_with(LR"(\\.\)")) throw FileRefusal("it is not a plain file");
  if (whole.size() < 230 || whole.starts_with(LR"(\\?\)")) return whole;
  return whole.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + whole.substr(1) : LR"(\\?\)" + whole;
}

File open_file(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation) {
  return File(reinterpret_cast<File::Handle>(CreateFileW(
      path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr)));
}

// Reads and writes nothing but plain files. An open folder cannot be had by these means, and the
// refusal would not tell that it is one.
File open_existing(const std::wstring& path, DWORD access) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    throw FileRefusal("it is a folder");
  File file = open_file(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                        OPEN_EXISTING);
  if (!file) refuse();
  if (GetFileType(handle_of(file)) != FILE_TYPE_DISK) throw FileRefusal("it is not a plain file");
  return file;
}

BY_HANDLE_FILE_INFORMATION about_file(const File& file) {
  BY_HANDLE_FILE_INFORMATION about{};
  if (GetFileInformationByHandle(handle_of(file), &about) == 0) refuse();
  return about;
}

bool is_same(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b) {
  return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

// Where a call reads or writes.
OVERLAPPED place_at(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

DWORD at_most(std::size_t size) { return static_cast<DWORD>(std::min(size, kMostAtOnce)); }

// The file a path leads to. Only what can be opened tells it: a link that leads nowhere is refused.
std::wstring follow_links(std::wstring path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    return path;
  const File file = open_existing(path, 0);
  std::wstring target(GetFinalPathNameByHandleW(handle_of(file), nullptr, 0, 0), L'\0');
  target.resize(GetFinalPathNameByHandleW(handle_of(file), target.data(),
                                          static_cast<DWORD>(target.size()), 0));
  return target.empty() ? path : target;
}

// Replacing would succeed over files that must not be written, so they are looked at first. Opening
// also tells that another program has the file. False when there is none.
bool check_target(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    if (GetLastError() == ERROR_FILE_NOT_FOUND) return false;
    refuse();
  }
  static_cast<void>(open_existing(path, GENERIC_WRITE));
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) throw FileRefusal("permission denied");
  return true;
}

// Virus scanners open fresh files, for a moment during which they have no other name.
bool is_scanned(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
         error == ERROR_UNABLE_TO_REMOVE_REPLACED || error == ERROR_UNABLE_TO_MOVE_REPLACEMENT;
}

bool move_file(const std::wstring& from, const std::wstring& to) {
  return MoveFileExW(from.c_str(), to.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

// What replaces another file keeps that one's permissions and attributes, where the disk can do it;
// not every one of a network can. A move lasts when the call returns, a replacement does when the
// file is flushed once more.
bool take_place(const std::wstring& side_path, const std::wstring& target) {
  if (!check_target(target)) return move_file(side_path, target);
  if (ReplaceFileW(target.c_str(), side_path.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                   nullptr, nullptr) == 0)
    return !is_scanned(GetLastError()) && move_file(side_path, target);
  const File file =
      open_file(target, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
  if (file) FlushFileBuffers(handle_of(file));
  return true;
}

}  // namespace

std::string file_reason(int error_number, const std::string& /*path*/) {
  switch (error_number) {
    case ERROR_FILE_NOT_FOUND:
      return "no such file";
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return "no such folder";
    case ERROR_ACCESS_DENIED:
      return "permission denied";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_UNABLE_TO_REMOVE_REPLACED:
      return "another program uses it";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return "no space left";
    case ERROR_WRITE_PROTECT:
      return "the disk is read-only";
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
      return "no file can have this name";
    case ERROR_FILENAME_EXCED_RANGE:
      return "file name too long";
    default:
      return "the system's error " + std::to_string(error_number);
  }
}

File File::open(const std::string& path) { return open_existing(native(path), GENERIC_READ); }

// Its name goes with the handle, as of now nobody else can open it.
File File::open_temporary(const std::string& path, const File& source) {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE | DELETE;
  const std::wstring whole = native(path);
  File file = open_file(whole, kAccess, 0, CREATE_NEW);
  if (!file) {
    if (GetLastError() != ERROR_FILE_EXISTS) refuse();
    const auto about = about_file(open_existing(whole, 0));
    if (is_same(about, about_file(source))) throw FileRefusal("it is the workbook itself");
    if (about.nFileSizeLow != 0 || about.nFileSizeHigh != 0) throw FileRefusal("it exists already");
    file = open_existing(whole, kAccess);
    if (file.size() != 0) throw FileRefusal("it exists already");
  }
  FILE_DISPOSITION_INFO goes{TRUE};
  if (SetFileInformationByHandle(handle_of(file), FileDispositionInfo, &goes, sizeof goes) == 0)
    refuse();
  return file;
}

std::uint64_t File::size() const {
  LARGE_INTEGER size{};
  if (GetFileSizeEx(handle_of(*this), &size) == 0) refuse();
  return static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t File::read(std::uint64_t offset, std::span<char> into) const {
  std::size_t done = 0;
  while (done < into.size()) {
    OVERLAPPED place = place_at(offset + done);
    DWORD got = 0;
    if (ReadFile(handle_of(*this), into.data() + done, at_most(into.size() - done), &got, &place) ==
            0 &&
        GetLastError() != ERROR_HANDLE_EOF)
      refuse();
    if (got == 0) break;
    done += got;
  }
  return done;
}

void File::write(std::uint64_t offset, std::span<const char> bytes) {
  while (!bytes.empty()) {
    OVERLAPPED place = place_at(offset);
    DWORD put = 0;
    if (WriteFile(handle_of(*this), bytes.data(), at_most(bytes.size()), &put, &place) == 0)
      refuse();
    bytes = bytes.subspan(put);
    offset += put;
  }
}

bool File::close() noexcept {
  if (handle_ == kNone) return true;
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return CloseHandle(reinterpret_cast<HANDLE>(std::exchange(handle_, kNone))) != 0;
}

// Nobody else can open the file until it has its name.
Replacement::Replacement(const std::string& path) : target_(follow_links(native(path))) {
  check_target(target_.native());
  const auto& target = target_.native();
  const auto folder = target.substr(0, target.find_last_of(LR"(\/)") + 1);
  while (!file_) {
    // Nothing may fail any more once the file is there, or it would stay.
    std::filesystem::path side_path = folder + to_wide(".save-" + random_letters(16));
    file_ = open_file(side_path.native(), GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW);
    if (file_) side_path_ = std::move(side_path);
    else if (GetLastError() != ERROR_FILE_EXISTS) refuse();
  }
}

Replacement::~Replacement() {
  file_.close();
  if (!side_path_.empty()) DeleteFileW(side_path_.c_str());
}

// The system writes behind by itself, and has no call that asks for it.
void Replacement::begin_writeback(std::uint64_t, std::uint64_t) noexcept {}

void Replacement::commit() {
  constexpr int kTries = 20;
  constexpr DWORD kPause = 50;  // milliseconds
  if (FlushFileBuffers(handle_of(file_)) == 0 || !file_.close()) refuse();
  const bool replaces = check_target(target_.native());
  try {
    for (int left = kTries; !take_place(side_path_.native(), target_.native()); --left) {
      if (left == 0 || !is_scanned(GetLastError())) refuse();
      Sleep(kPause);
    }
  } catch (const FileRefusal&) {
    // A replacement that stops halfway has taken the old file away: the new one is all there is.
    if (replaces && GetFileAttributesW(target_.c_str()) == INVALID_FILE_ATTRIBUTES)
      side_path_.clear();
    throw;
  }
  side_path_.clear();
}

}  // namespace engine::system
