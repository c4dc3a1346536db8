#include "engine/xlsx/styles_part.h"

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/styles_read.h"
#include "engine/xlsx/theme.h"

namespace engine::xlsx {

namespace {

// The part of a book that has none. The first two fills are what spreadsheet programs expect there.
constexpr std::string_view kNewPart =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
    R"(<fonts count="1"><font><sz val="11"/><name val="Calibri"/><family val="2"/></font></fonts>)"
    R"(<fills count="2"><fill><patternFill patternType="none"/></fill>)"
    R"(<fill><patternFill patternType="gray125"/></fill></fills>)"
    R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/></cellXfs>)"
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
    R"(<dxfs count="0"/><tableStyles count="0" defaultTableStyle="TableStyleMedium9" )"
    R"(defaultPivotStyle="PivotStyleLight16"/></styleSheet>)";

}  // namespace

void StylesPart::read(std::string_view bytes, std::string_view part, std::string_view theme,
                      Styles& styles) {
  auto document = package::XmlTree::parse(bytes.empty() ? kNewPart : bytes, part);
  const auto sheet = document.root();
  if (!package::is(sheet, package::Family::Main, "styleSheet"))
    package::throw_damaged(part, "not a style sheet");
  read_style_sheet(sheet, part, styles);
  styles.colors.theme = read_theme(theme);
  document.settle();
  document_ = std::move(document);
}

}  // namespace engine::xlsx
