#include "engine/xls/record_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "engine/package/file_error.h"
#include "engine/package/little_endian.h"
#include "engine/text/utf16.h"

namespace engine::xls {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;

std::string hexadecimal(unsigned number) {
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
  std::string text(digits.begin(), end);
  for (char& c : text) c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

}  // namespace

RecordReader::RecordReader(const package::CompoundStream& stream, std::uint64_t offset,
                           const std::optional<Cipher>& cipher, std::string_view sheet)
    : stream_(stream),
      sheet_(sheet),
      offset_(offset),
      next_(offset),
      end_(stream.size()),
      cipher_(cipher) {}

// As the bytes lie in memory where they do in one piece, else a copy.
bool RecordReader::move_window(std::uint64_t offset, std::size_t count) {
  if (offset >= end_ || end_ - offset < count) return false;
  window_ = stream_.view_at(offset);
  window_ = window_.substr(0, std::min<std::uint64_t>(window_.size(), end_ - offset));
  window_begin_ = offset;
  if (window_.size() >= count) return true;
  buffer_.resize(
      static_cast<std::size_t>(std::min<std::uint64_t>(std::max(count, kBlock), end_ - offset)));
  stream_.read(offset, buffer_);
  window_ = {buffer_.data(), buffer_.size()};
  return true;
}

bool RecordReader::next() {
  if (!reach(next_, kRecordHead)) return false;
  offset_ = next_;
  std::size_t at = static_cast<std::size_t>(offset_ - window_begin_);
  id_ = package::get16(window_, at);
  const std::size_t size = package::get16(window_, at + 2);
  if (!reach(offset_, kRecordHead + size)) fail("ends too early");
  at = static_cast<std::size_t>(offset_ - window_begin_);
  data_ = window_.substr(at + kRecordHead, size);
  next_ = offset_ + kRecordHead + size;
  if (cipher_) decrypt();
  return true;
}

std::string_view RecordReader::ahead() {
  if (cipher_ || !reach(next_, kRecordHead)) return {};
  return window_.substr(static_cast<std::size_t>(next_ - window_begin_));
}

void RecordReader::pass(std::uint64_t last, std::uint64_t end) {
  offset_ = last;
  next_ = end;
  id_ = package::get16(window_, static_cast<std::size_t>(last - window_begin_));
  data_ = {};
}

// A few records are needed to get so far, and one of them says where sheets begin.
void RecordReader::decrypt() {
  constexpr std::uint16_t kPlain[] = {kBof,  kFilePass, kInterfaceHeader, 0x138, 0x194,
                                      0x195, 0x196};
  if (std::ranges::find(kPlain, id_) != std::end(kPlain)) return;
  const std::size_t plain = id_ == kBoundSheet ? std::min<std::size_t>(4, data_.size()) : 0;
  decrypted_ = data_;
  cipher_->apply(offset_ + kRecordHead + plain, data_.size(), std::span(decrypted_).subspan(plain));
  data_ = decrypted_;
}

std::uint16_t RecordReader::next_id() {
  if (next_ + kRecordHead > end_) return 0;
  if (in_window(next_, kRecordHead))
    return package::get16(window_, static_cast<std::size_t>(next_ - window_begin_));
  std::array<char, 2> bytes{};
  stream_.read(next_, bytes);
  return package::get16({bytes.data(), bytes.size()}, 0);
}

std::string_view RecordReader::whole_data() {
  if (next_id() != kContinue) return data_;
  whole_ = data_;
  const std::uint64_t offset = offset_;
  const std::uint16_t id = id_;
  while (next_part()) whole_ += data_;
  offset_ = offset;
  id_ = id;
  return data_ = whole_;
}

void RecordReader::fail(std::string_view what) const {
  std::string place = "Workbook";
  if (!sheet_.empty()) place.append(", sheet \"").append(sheet_).append("\"");
  place.append(", record ").append(hexadecimal(id_)).append(" at ").append(std::to_string(offset_));
  package::throw_damaged(place, what);
}

bool ContinuedData::at_end() {
  while (rest_.empty()) {
    if (!reader_.next_part()) return true;
    rest_ = reader_.data();
  }
  return false;
}

std::uint8_t ContinuedData::take8() {
  if (at_end()) reader_.fail("ends too early");
  const auto byte = static_cast<std::uint8_t>(rest_.front());
  rest_.remove_prefix(1);
  return byte;
}

std::uint16_t ContinuedData::take16() {
  if (rest_.size() < 2) {
    const unsigned low = take8();
    return static_cast<std::uint16_t>(low | take8() << 8);
  }
  const std::uint16_t number = package::get16(rest_, 0);
  rest_.remove_prefix(2);
  return number;
}

std::uint32_t ContinuedData::take32() {
  const std::uint32_t low = take16();
  return low | static_cast<std::uint32_t>(take16()) << 16;
}

void ContinuedData::skip(std::uint64_t count) {
  while (count > 0) {
    if (at_end()) reader_.fail("ends too early");
    const std::size_t part = std::min<std::uint64_t>(count, rest_.size());
    rest_.remove_prefix(part);
    count -= part;
  }
}

void ContinuedData::take_characters(std::size_t count, bool wide, std::string& utf8) {
  std::string joined;  // wide characters, as a pair of surrogates may be cut
  const auto append_joined = [&] {
    append_utf16(utf8, joined);
    joined.clear();
  };
  while (count > 0) {
    if (rest_.empty()) {
      if (at_end()) reader_.fail("ends too early");
      wide = (take8() & 1) != 0;
      continue;
    }
    const std::size_t part = std::min(count, wide ? rest_.size() / 2 : rest_.size());
    if (part == 0) reader_.fail("a character is cut");
    const std::string_view bytes = rest_.substr(0, wide ? 2 * part : part);
    if (wide) {
      joined += bytes;
    } else {
      append_joined();
      append_latin1(utf8, bytes);
    }
    rest_.remove_prefix(bytes.size());
    count -= part;
  }
  append_joined();
}

std::string_view ContinuedData::take_plain(std::size_t count) {
  const std::string_view bytes = rest_.substr(0, count);
  if (bytes.size() < count || !is_ascii(bytes)) return {};
  rest_.remove_prefix(count);
  return bytes;
}

bool is_ascii(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8)
    if ((package::get64(bytes, at) & kHighBits) != 0) return false;
  for (; at < bytes.size(); ++at)
    if (static_cast<unsigned char>(bytes[at]) >= 0x80) return false;
  return true;
}

}  // namespace engine::xls
