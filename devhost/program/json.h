// JSON, written as it comes.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace devhost {

// What is open is closed in turn: the writer puts commas and line ends, not the caller.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}

  void open_object() { open('{'); }
  void open_list() { open('['); }
  // Ends the innermost object or list.
  void close();
  // Ends all that stands further in, as after a problem in the middle of it.
  void close_to(std::size_t depth);

  // The name of the object's next member.
  void key(std::string_view name);

  void text(std::u16string_view value);
  // A number that JSON does not have is null.
  void number(double value);
  void boolean(bool value);
  void null();

  void member(std::string_view name, std::u16string_view value);
  void member(std::string_view name, double value);

 private:
  void open(char bracket);
  void begin_value();

  std::ostream& out_;
  // The brackets to come.
  std::string closing_;
  bool first_ = true;
  bool after_key_ = false;
};

}  // namespace devhost
