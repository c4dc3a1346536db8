// The sections of a number format's code, and which of them shows a value.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace engine {

inline constexpr std::size_t kMaxSections = 4;

// The instructions of a code: plain characters and whole brackets, without what stands for itself.
class Instructions {
 public:
  explicit Instructions(std::string_view code) : rest_(code) {}

  // False at the end and at a quote or bracket that is not closed.
  bool next() {
    while (!rest_.empty()) {
      switch (rest_.front()) {
        case '\\':
        case '_':
        case '*':
          rest_.remove_prefix(rest_.size() == 1 ? 1 : 2);
          break;
        case '"':
          if (!take_through('"')) return false;
          break;
        case '[':
          return take_through(']');
        default:
          take(1);
          return true;
      }
    }
    return false;
  }

  // A bracket with its content, or one character.
  std::string_view token() const { return token_; }
  bool is_bracket() const { return token_.size() > 1; }
  bool failed() const { return failed_; }
  std::string_view rest() const { return rest_; }

 private:
  void take(std::size_t size) {
    token_ = rest_.substr(0, size);
    rest_.remove_prefix(size);
  }
  bool take_through(char end) {
    const std::size_t found = rest_.find(end, 1);
    failed_ = found == std::string_view::npos;
    if (!failed_) take(found + 1);
    return !failed_;
  }

  std::string_view rest_;
  std::string_view token_;
  bool failed_ = false;
};

// A condition for the value, as [>=100].
struct Condition {
  bool less = false;
  bool equal = false;
  bool greater = false;
  double limit = 0;

  bool holds(double value) const { return value < limit ? less : value > limit ? greater : equal; }
};

struct Section {
  std::string_view code;
  bool is_date = false;
  bool is_text = false;  // shows texts: holds @
  std::optional<Condition> condition;
};

struct Sections {
  std::array<Section, kMaxSections> list;
  std::size_t count = 1;

  // How many of them show numbers.
  std::size_t numeric() const {
    const std::size_t most = count == kMaxSections ? kMaxSections - 1 : count;
    return most > 1 && list[most - 1].is_text ? most - 1 : most;
  }
  const Section& for_value(double value) const;
  // The one that shows texts; null where they are shown as they are.
  const Section* for_text() const {
    return list[count - 1].is_text || count == kMaxSections ? &list[count - 1] : nullptr;
  }
};

// The sections refer to the code.
Sections sections_of(std::string_view code);

// [h], [mm], [sss]: elapsed time.
bool is_elapsed(std::string_view bracket);

}  // namespace engine
