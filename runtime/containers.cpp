#include "runtime/containers.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "runtime/parameters.h"
#include "runtime/results.h"

namespace {

using fmx::BinaryData;

constexpr std::size_t kTypeLength = 4;

// Of the first four bytes; a shorter type is filled with zeros.
fmx::QuadCharUniquePtr make_code(std::string type) {
  type.resize(kTypeLength);
  return fmx::QuadCharUniquePtr(type[0], type[1], type[2], type[3]);
}

fmx::QuadCharUniquePtr make_exact_code(const std::string& type) {
  if (type.size() != kTypeLength) throw std::out_of_range("Type must be exactly 4 characters long");
  return make_code(type);
}

std::string_view chars_of(const std::vector<unsigned char>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

KelQuadChar::KelQuadChar(const std::string& type) : code_(make_exact_code(type)) {}

KelQuadChar::KelQuadChar(const BinaryData& container, std::uint32_t index) {
  container.GetType(index, *code_);
}

fmx::QuadCharUniquePtr KelQuadChar::get_type() const {
  fmx::QuadCharUniquePtr copy;
  *copy = *code_;
  return copy;
}

std::string KelQuadChar::as_string() const {
  std::array<std::uint16_t, kTypeLength + 1> units{};
  for (std::uint32_t i = 0; i < kTypeLength; ++i) units[i] = (*code_)[i];
  const fmx::TextUniquePtr text;
  text->AssignUnicode(units.data());
  return TextAsUTF8String(*text);
}

bool KelQuadChar::is_type(const std::string& type) const { return *code_ == *make_code(type); }

bool KelQuadChar::is_file() const { return is_type("FILE"); }
bool KelQuadChar::is_zlib() const { return is_type("ZLIB"); }
bool KelQuadChar::is_jpeg() const { return is_type("JPEG"); }
bool KelQuadChar::is_fork() const { return is_type("FORK"); }

bool KelQuadChar::is_image() const {
  constexpr const char* kTypes[] = {"JPEG", "GIFf", "EPS ", "META", "PNGf", "BMPf", "PDF "};
  return std::any_of(std::begin(kTypes), std::end(kTypes),
                     [this](const char* type) { return is_type(type); });
}

bool KelQuadChar::is_image_attribute() const {
  constexpr const char* kTypes[] = {"DPI_", "FNAM", "SIZE"};
  return std::any_of(std::begin(kTypes), std::end(kTypes),
                     [this](const char* type) { return is_type(type); });
}

std::uint32_t StreamIndex(const BinaryData& container, const std::string& type) {
  return container.GetIndex(*make_code(type));
}

std::uint32_t IndexForStream(const BinaryData& container, const std::string& type) {
  const std::uint32_t index = StreamIndex(container, type);
  if (index == BinaryData::kNoStream || type != "MAIN") return index;
  std::array<char, kTypeLength + 1> target{};
  container.GetData(index, 0, kTypeLength, target.data());
  return StreamIndex(container, target.data());
}

std::uint32_t PreferredContainerType(const BinaryData& container) {
  for (const char* type : {"MAIN", "FILE", "ZLIB", "snd "}) {
    const std::uint32_t index = IndexForStream(container, type);
    if (index != BinaryData::kNoStream) return index;
  }
  std::uint32_t preferred = BinaryData::kNoStream;
  const auto count = static_cast<std::uint32_t>(std::max(container.GetCount(), 0));
  for (std::uint32_t index = 0; index < count; ++index) {
    const KelQuadChar type(container, index);
    if (type.is_image_attribute()) continue;
    preferred = index;
    if (!type.is_jpeg()) break;
  }
  return preferred;
}

bool StreamIsCompressed(const BinaryData& container) {
  return IndexForStream(container, "ZLIB") != BinaryData::kNoStream;
}

std::vector<char> DataAsVectorChar(const BinaryData& container, std::uint32_t index) {
  std::vector<char> bytes(container.GetSize(index));
  container.GetData(index, 0, static_cast<std::uint32_t>(bytes.size()), bytes.data());
  return bytes;
}

void SetResult(const std::string& fileName, std::string_view bytes, const std::string& type,
               short width, short height, fmx::Data& result) {
  constexpr short kUnknown = -1;
  const KelQuadChar code(type);
  if (fileName.empty()) return SetResult(std::string(bytes), result);
  const fmx::BinaryDataUniquePtr container;
  const fmx::TextUniquePtr name;
  name->Assign(fileName.c_str(), fmx::Text::kEncoding_UTF8);
  container->AddFNAMData(*name);
  if (code.is_image() && width != kUnknown && height != kUnknown)
    container->AddSIZEData(width, height);
  container->Add(*code.get_type(), static_cast<std::uint32_t>(bytes.size()), bytes.data());
  result.SetBinaryData(*container, true);
}

void SetResult(const std::string& fileName, const std::vector<char>& bytes, const std::string& type,
               short width, short height, fmx::Data& result) {
  SetResult(fileName, std::string_view(bytes.data(), bytes.size()), type, width, height, result);
}

void SetResult(const std::string& fileName, KelImage& image, fmx::Data& result) {
  SetResult(fileName, chars_of(image.bytes), image.get_type(), static_cast<short>(image.width),
            static_cast<short>(image.height), result);
}

void SetResult(const std::string& fileName, const std::vector<unsigned char>& bytes,
               fmx::Data& result) {
  SetResult(fileName, chars_of(bytes), "FILE", 0, 0, result);
}
