// Formulas of the version before as those of the present one.
//
// Tokens are the same but for their sizes: a column has one byte, and what is relative stands
// beside the row, which has 14 bits; other sheets and names are told at length, texts are bytes of
// a code page. Where tokens say how far it is to another one, the distances change with the sizes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/xls/fields.h"
#include "engine/xls/older_links.h"
#include "engine/xls/older_texts.h"

namespace engine::xls {

class OlderTokens {
 public:
  OlderTokens(const OlderTexts& texts, OlderLinks& links) : texts_(texts), links_(links) {}

  // The expression behind its size, with the constants behind it. False, and none, for one that is
  // not understood.
  bool take(std::string_view tokens, std::string_view behind, const OlderList& list);
  const std::string& expression() const { return expression_; }
  // Its size without constants and the two bytes that tell it.
  std::size_t size() const { return expression_.size() - constants_.size() - 2; }

 private:
  // A distance from one place to another one of the older tokens.
  struct Distance {
    std::size_t at;    // where it stands now
    std::size_t from;  // now
    std::size_t to;
    std::size_t less = 0;
  };

  bool take_token(Fields& in, Fields& constants, const OlderList& list);
  void take_attribute(Fields& in);
  void put_cells(std::size_t count, bool is_relative, Fields& in);
  void take_array(Fields& constants);
  void take_areas(Fields& constants);
  void take_distance(std::size_t to, std::size_t from, std::size_t less = 0);
  bool settle();
  std::size_t place(const Fields& in) const { return size_ - in.rest().size(); }
  void put8(unsigned value) { tokens_ += static_cast<char>(value); }
  void put16(std::uint64_t value) { package::put16(tokens_, value); }

  const OlderTexts& texts_;
  OlderLinks& links_;
  std::size_t size_ = 0;  // of the older tokens
  std::string tokens_;
  std::string constants_;
  std::vector<std::pair<std::size_t, std::size_t>> places_;  // of tokens, then and now
  std::vector<Distance> distances_;
  std::string expression_;
};

}  // namespace engine::xls
