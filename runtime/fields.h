// The values of a multi-value result: one text, values joined by the host's list separator.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

// Fields are plain: integers in decimal, flags as 1 and 0, doubles with six significant digits,
// pointers as hexadecimal addresses. Never grouped, always a point.
class Fields {
 public:
  void add(const wchar_t* text);
  void add(double value);
  void add(const void* address);
  void add(std::int64_t value);
  void add_empty();

  template <class T>
  requires(std::integral<T> || std::is_enum_v<T>) void add(T value) {
    add(static_cast<std::int64_t>(value));
  }

  const std::wstring& text() const { return text_; }

 private:
  void separate();

  std::wstring text_;
  bool first_ = true;
};
