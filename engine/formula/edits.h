// Exchanges of pieces of a text, gathered in any order.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace engine::formula {

class Edits {
 public:
  // The bytes begin..end become `with`. Of several edits at one place the first one added stands
  // first.
  void replace(std::size_t begin, std::size_t end, std::string with) {
    edits_.push_back({begin, end, std::move(with)});
  }
  void insert(std::size_t at, std::string with) {
    if (!with.empty()) replace(at, at, std::move(with));
  }

  // Nothing when there is no edit.
  std::optional<std::string> apply(std::string_view text) {
    if (edits_.empty()) return std::nullopt;
    std::stable_sort(edits_.begin(), edits_.end(),
                     [](const Edit& a, const Edit& b) { return a.begin < b.begin; });
    std::string out;
    std::size_t copied = 0;
    for (const auto& [begin, end, with] : edits_) {
      out.append(text.substr(copied, begin - copied)).append(with);
      copied = end;
    }
    out.append(text.substr(copied));
    return out;
  }

 private:
  struct Edit {
    std::size_t begin;
    std::size_t end;
    std::string with;
  };

  std::vector<Edit> edits_;
};

}  // namespace engine::formula
