// The host's objects behind the opaque classes of namespace fmx.
//
// A plug-in sees base classes without content; the host's objects derive from them, and every FM_*
// function starts by looking at the object behind the reference. All are values: a copy shares
// nothing but the bytes of streams, which never change.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fmwrapper/fmwrapper.h"

namespace devhost {

struct TextObject : fmx::Text {
  TextObject() = default;
  explicit TextObject(std::u16string text) : units(std::move(text)) {}

  std::u16string units;
};

struct NumberObject : fmx::FixPt {
  NumberObject() = default;
  explicit NumberObject(double number, int digits = 16) : value(number), precision(digits) {}

  double value = 0;
  int precision = 16;
};

using FourBytes = std::array<char, 4>;

struct QuadCharObject : fmx::QuadChar {
  QuadCharObject() = default;
  explicit QuadCharObject(FourBytes code) : bytes(code) {}

  FourBytes bytes = {};
};

struct LocaleObject : fmx::Locale {
  explicit LocaleObject(std::int32_t wanted) : kind(wanted) {}

  std::int32_t kind;
};

struct EnvironmentObject : fmx::ExprEnv {};

using Bytes = std::vector<unsigned char>;

struct Stream {
  FourBytes type;
  std::shared_ptr<const Bytes> bytes;
};

struct ContainerObject : fmx::BinaryData {
  void add(FourBytes type, Bytes bytes);
  // A file name is kept as UTF-8; a size as two 16-bit numbers, the high byte first.
  void add_file_name(std::u16string_view name);
  void add_size(std::int16_t width, std::int16_t height);
  // Null when there is none of the type.
  const Stream* find(FourBytes type) const;
  // The text of the "FNAM" stream, empty without one.
  std::u16string file_name() const;
  // What the container is about: the "FILE" stream, else the first that is no attribute of another.
  const Stream* main_stream() const;

  std::vector<Stream> streams;
};

// One value of a calculation: text, number or container. It can be asked for in any form; what a
// conversion gives is kept, as the same parameter is often asked for twice.
class Value : public fmx::Data {
 public:
  // An empty text.
  Value() = default;
  explicit Value(std::u16string text);
  // The number is rounded to what the host can hold.
  explicit Value(double number);
  explicit Value(ContainerObject container);

  static Value truth(bool value) { return Value(value ? 1.0 : 0.0); }

  bool is_number() const { return kind_ == Kind::kNumber; }
  bool is_container() const { return kind_ == Kind::kContainer; }
  bool is_empty() const;

  // A container is known by its file name.
  const TextObject& text() const;
  const NumberObject& number() const;
  // True for every number but 0.
  bool boolean() const { return number().value != 0; }
  // Without streams when the value is no container.
  const ContainerObject& container() const;

  const std::u16string& units() const { return text().units; }

 private:
  enum class Kind { kText, kNumber, kContainer };

  Kind kind_ = Kind::kText;
  mutable bool has_text_ = true;
  mutable bool has_number_ = false;
  mutable TextObject text_;
  mutable NumberObject number_;
  std::shared_ptr<const ContainerObject> container_;
};

struct ValueList : fmx::DataVect {
  std::vector<Value> values;
};

}  // namespace devhost
