#include "devhost/fm/values.h"

#include <algorithm>
#include <utility>

#include "devhost/fm/number_text.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

constexpr FourBytes kFileName = {'F', 'N', 'A', 'M'};
constexpr FourBytes kSize = {'S', 'I', 'Z', 'E'};
constexpr FourBytes kResolution = {'D', 'P', 'I', '_'};
constexpr FourBytes kFile = {'F', 'I', 'L', 'E'};

bool is_attribute(FourBytes type) {
  return type == kFileName || type == kSize || type == kResolution;
}

void append_big_endian(Bytes& bytes, std::int16_t number) {
  bytes.push_back(static_cast<unsigned char>((number >> 8) & 0xFF));
  bytes.push_back(static_cast<unsigned char>(number & 0xFF));
}

}  // namespace

void ContainerObject::add(FourBytes type, Bytes bytes) {
  streams.push_back({type, std::make_shared<const Bytes>(std::move(bytes))});
}

void ContainerObject::add_file_name(std::u16string_view name) {
  const std::string bytes = utf8_from_utf16(name);
  add(kFileName, Bytes(bytes.begin(), bytes.end()));
}

void ContainerObject::add_size(std::int16_t width, std::int16_t height) {
  Bytes bytes;
  append_big_endian(bytes, width);
  append_big_endian(bytes, height);
  add(kSize, std::move(bytes));
}

const Stream* ContainerObject::find(FourBytes type) const {
  const auto found = std::find_if(streams.begin(), streams.end(),
                                  [&](const Stream& stream) { return stream.type == type; });
  return found != streams.end() ? &*found : nullptr;
}

std::u16string ContainerObject::file_name() const {
  const Stream* name = find(kFileName);
  if (name == nullptr) return {};
  return utf16_from_utf8(std::string(name->bytes->begin(), name->bytes->end()));
}

const Stream* ContainerObject::main_stream() const {
  if (const Stream* file = find(kFile)) return file;
  const auto found = std::find_if(streams.begin(), streams.end(),
                                  [](const Stream& stream) { return !is_attribute(stream.type); });
  return found != streams.end() ? &*found : nullptr;
}

Value::Value(std::u16string text) : text_(std::move(text)) {}

Value::Value(double number)
    : kind_(Kind::kNumber),
      has_text_(false),
      has_number_(true),
      number_(round_significant(number)) {}

Value::Value(ContainerObject container)
    : kind_(Kind::kContainer),
      has_text_(false),
      container_(std::make_shared<const ContainerObject>(std::move(container))) {}

bool Value::is_empty() const {
  if (kind_ == Kind::kNumber) return false;
  return kind_ == Kind::kText ? text_.units.empty() : container_->streams.empty();
}

const TextObject& Value::text() const {
  if (!has_text_) {
    text_.units =
        kind_ == Kind::kNumber ? text_from_number(number_.value) : container_->file_name();
    has_text_ = true;
  }
  return text_;
}

const NumberObject& Value::number() const {
  if (!has_number_) {
    number_.value = number_from_text(text().units);
    has_number_ = true;
  }
  return number_;
}

const ContainerObject& Value::container() const {
  static const ContainerObject none;
  return container_ ? *container_ : none;
}

}  // namespace devhost
