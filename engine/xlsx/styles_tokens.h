// Words of the styles part, in the order of the values they stand for.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace engine::xlsx {

inline constexpr std::array<std::string_view, 8> kHorizontalTokens = {
    "general", "left", "center", "right", "fill", "justify", "centerContinuous", "distributed"};

inline constexpr std::array<std::string_view, 5> kVerticalTokens = {"top", "center", "bottom",
                                                                    "justify", "distributed"};

inline constexpr std::array<std::string_view, 14> kBorderTokens = {"none",
                                                                   "thin",
                                                                   "medium",
                                                                   "dashed",
                                                                   "dotted",
                                                                   "thick",
                                                                   "double",
                                                                   "hair",
                                                                   "mediumDashed",
                                                                   "dashDot",
                                                                   "mediumDashDot",
                                                                   "dashDotDot",
                                                                   "mediumDashDotDot",
                                                                   "slantDashDot"};

inline constexpr std::array<std::string_view, 19> kPatternTokens = {
    "none",           "solid",           "mediumGray",    "darkGray",  "lightGray",
    "darkHorizontal", "darkVertical",    "darkDown",      "darkUp",    "darkGrid",
    "darkTrellis",    "lightHorizontal", "lightVertical", "lightDown", "lightUp",
    "lightGrid",      "lightTrellis",    "gray125",       "gray0625"};

inline constexpr std::array<std::string_view, 3> kScriptTokens = {"baseline", "superscript",
                                                                  "subscript"};

struct UnderlineToken {
  std::uint8_t value;
  std::string_view token;
};
inline constexpr std::array<UnderlineToken, 5> kUnderlineTokens = {{{0, "none"},
                                                                    {1, "single"},
                                                                    {2, "double"},
                                                                    {33, "singleAccounting"},
                                                                    {34, "doubleAccounting"}}};

// The value of a word; `unknown` for a word that is none, an empty one for instance.
template <std::size_t Size>
std::uint8_t value_of(const std::array<std::string_view, Size>& tokens, std::string_view token,
                      std::uint8_t unknown) {
  for (std::size_t value = 0; value < Size; ++value)
    if (tokens[value] == token) return static_cast<std::uint8_t>(value);
  return unknown;
}

}  // namespace engine::xlsx
