// Functions of this host that move containers between calculations and files.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

#include "devhost/calc/builtins.h"
#include "devhost/calc/image_size.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

using Arguments = std::span<const Value>;

// The host's codes for files.
constexpr int kFileMissing = 100;
constexpr int kCannotCreateFile = 800;
constexpr int kContainerEmpty = 1412;

// Stream sizes are told in 32 bits.
constexpr std::uintmax_t kMaxFile = std::numeric_limits<std::uint32_t>::max();

std::filesystem::path path_of(const Value& value) {
  return path_from_utf8(utf8_from_utf16(value.units()));
}

[[noreturn]] void fail(int code, const std::filesystem::path& path, const std::string& problem) {
  throw FunctionFailure(code, "file \"" + utf8_from_path(path) + "\" " + problem);
}

Bytes read_file(const std::filesystem::path& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) fail(kFileMissing, path, "cannot be read: " + error.message());
  if (size > kMaxFile) fail(kFileMissing, path, "is too large for a container");
  std::ifstream file(path, std::ios::binary);
  Bytes bytes(static_cast<std::size_t>(size));
  void* const target = bytes.data();
  if (!file.read(static_cast<char*>(target), static_cast<std::streamsize>(size))) {
    fail(kFileMissing, path, "cannot be read");
  }
  return bytes;
}

// The new content takes the file's name when it is complete.
void write_file(const std::filesystem::path& path, const Bytes& bytes) {
  std::filesystem::path beside = path;
  beside += ".new";
  std::ofstream file(beside, std::ios::binary);
  const void* const source = bytes.data();
  file.write(static_cast<const char*>(source), static_cast<std::streamsize>(bytes.size()));
  file.close();
  std::error_code error;
  if (file) std::filesystem::rename(beside, path, error);
  if (file && !error) return;
  std::error_code ignored;
  std::filesystem::remove(beside, ignored);
  fail(kCannotCreateFile, path,
       "cannot be written: " + (error ? error.message() : std::generic_category().message(errno)));
}

bool fits_size_stream(const ImageKind& image) {
  constexpr long kMax = std::numeric_limits<std::int16_t>::max();
  return image.width >= 0 && image.width <= kMax && image.height >= 0 && image.height <= kMax;
}

// As when a file is inserted into a container field.
Value read_into_container(Arguments arguments) {
  const std::filesystem::path path = path_of(arguments[0]);
  Bytes bytes = read_file(path);
  ContainerObject container;
  container.add_file_name(utf16_from_utf8(utf8_from_path(path.filename())));
  FourBytes stream = {'F', 'I', 'L', 'E'};
  if (const auto image = image_kind(bytes)) {
    if (fits_size_stream(*image)) {
      container.add_size(static_cast<std::int16_t>(image->width),
                         static_cast<std::int16_t>(image->height));
    }
    stream = image->stream;
  }
  container.add(stream, std::move(bytes));
  return Value(std::move(container));
}

Value write_container(Arguments arguments) {
  const Stream* stream = arguments[0].container().main_stream();
  if (stream == nullptr) throw FunctionFailure(kContainerEmpty, "there is no container to write");
  write_file(path_of(arguments[1]), *stream->bytes);
  return Value(static_cast<double>(stream->bytes->size()));
}

// One value a stream: its type and its size in bytes.
Value list_streams(Arguments arguments) {
  std::u16string text;
  for (const Stream& stream : arguments[0].container().streams) {
    if (!text.empty()) text += u'\r';
    for (const char letter : stream.type) text += static_cast<unsigned char>(letter);
    text += u' ' + utf16_from_utf8(std::to_string(stream.bytes->size()));
  }
  return Value(std::move(text));
}

constexpr Builtin kFunctions[] = {
    {u"Host_ReadFile", 1, 1, read_into_container},
    {u"Host_Streams", 1, 1, list_streams},
    {u"Host_WriteFile", 2, 2, write_container},
};

}  // namespace

std::span<const Builtin> container_functions() { return kFunctions; }

}  // namespace devhost
