// A text as records hold it: the low bytes of its UTF-16 units where these tell all of it, else the
// units, the lower byte first.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace engine::xls {

class Characters {
 public:
  Characters() = default;
  explicit Characters(std::string_view utf8) { take(utf8); }
  Characters(const Characters&) = delete;
  Characters& operator=(const Characters&) = delete;
  ~Characters() = default;

  // The text must stay as long as this is used.
  void take(std::string_view utf8);

  bool wide() const { return wide_; }
  std::size_t size_of_one() const { return wide_ ? 2 : 1; }
  // Room in which any character has place, a pair of surrogates too.
  std::size_t room_for_one() const { return wide_ ? 4 : 1; }
  std::size_t count() const { return bytes_.size() / size_of_one(); }
  std::string_view bytes() const { return bytes_; }

 private:
  std::string made_;
  std::string_view bytes_;
  bool wide_ = false;
};

}  // namespace engine::xls
