#include "engine/workbook/number_format.h"

#include "engine/workbook/number_sections.h"

namespace engine {

namespace {

struct BuiltIn {
  std::uint32_t id;
  std::string_view code;
};
constexpr BuiltIn kBuiltIn[] = {
    {0, "General"},
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {5, R"("$"#,##0_);\("$"#,##0\))"},
    {6, R"("$"#,##0_);[Red]\("$"#,##0\))"},
    {7, R"("$"#,##0.00_);\("$"#,##0.00\))"},
    {8, R"("$"#,##0.00_);[Red]\("$"#,##0.00\))"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, R"(# ??/??)"},
    {14, "mm-dd-yy"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "m/d/yy h:mm"},
    {37, R"(#,##0_);\(#,##0\))"},
    {38, R"(#,##0_);[Red]\(#,##0\))"},
    {39, R"(#,##0.00_);\(#,##0.00\))"},
    {40, R"(#,##0.00_);[Red]\(#,##0.00\))"},
    {41, R"(_(* #,##0_);_(* \(#,##0\);_(* "-"_);_(@_))"},
    {42, R"(_("$"* #,##0_);_("$"* \(#,##0\);_("$"* "-"_);_(@_))"},
    {43, R"(_(* #,##0.00_);_(* \(#,##0.00\);_(* "-"??_);_(@_))"},
    {44, R"(_("$"* #,##0.00_);_("$"* \(#,##0.00\);_("$"* "-"??_);_(@_))"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mm:ss.0"},
    {48, "##0.0E+0"},
    {49, "@"},
};

}  // namespace

std::string_view built_in_number_format(std::uint32_t id) {
  for (const auto& [known, code] : kBuiltIn)
    if (known == id) return code;
  return {};
}

bool is_built_in_date(std::uint32_t id) {
  return (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47) ||
         (id >= 50 && id <= 58);
}

bool is_valid_number_format(std::string_view code) {
  std::size_t sections = 1;
  Instructions instructions(code);
  while (instructions.next()) {
    if (instructions.token() == "]") return false;
    sections += instructions.token() == ";" ? 1 : 0;
  }
  return !instructions.failed() && sections <= kMaxSections;
}

bool is_date_format(std::string_view code, std::optional<double> value) {
  const Sections sections = sections_of(code);
  return (value ? sections.for_value(*value) : sections.list[0]).is_date;
}

bool is_date_by_value(std::string_view code) {
  const Sections sections = sections_of(code);
  for (std::size_t at = 1; at < sections.numeric(); ++at)
    if (sections.list[at].is_date != sections.list[0].is_date) return true;
  return false;
}

}  // namespace engine
