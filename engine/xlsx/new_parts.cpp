#include "engine/xlsx/new_parts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace engine::xlsx {

namespace {

constexpr auto kWorkbookTypes = std::to_array<std::string_view>({
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml",
    "application/vnd.openxmlformats-officedocument.spreadsheetml.template.main+xml",
    "application/vnd.ms-excel.sheet.macroEnabled.main+xml",
    "application/vnd.ms-excel.template.macroEnabled.main+xml",
});

constexpr std::string_view kApplication =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/"
    "extended-properties\"><Application>Vornelix</Application></Properties>";

std::string core_properties() {
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  const auto today = std::chrono::floor<std::chrono::days>(now);
  const std::chrono::year_month_day date(today);
  const std::chrono::hh_mm_ss clock(now - today);
  std::array<char, 32> time{};
  std::snprintf(time.data(), time.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  const auto dated = [&](std::string_view name) {
    return std::string("<dcterms:")
        .append(name)
        .append(" xsi:type=\"dcterms:W3CDTF\">")
        .append(time.data())
        .append("</dcterms:")
        .append(name)
        .append(">");
  };
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
         "<cp:coreProperties xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/"
         "core-properties\" xmlns:dcterms=\"http://purl.org/dc/terms/\" "
         "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">" +
         dated("created") + dated("modified") + "</cp:coreProperties>";
}

}  // namespace

std::string_view workbook_type(bool has_macros, bool is_template) {
  return kWorkbookTypes[(has_macros ? 2 : 0) + (is_template ? 1 : 0)];
}

bool is_workbook_type(std::string_view type) {
  return std::ranges::find(kWorkbookTypes, type) != kWorkbookTypes.end();
}

bool is_template_type(std::string_view type) {
  return type == workbook_type(false, true) || type == workbook_type(true, true);
}

bool is_macro_enabled_type(std::string_view type) {
  return type == workbook_type(true, false) || type == workbook_type(true, true);
}

bool is_binary_workbook_type(std::string_view type) {
  return type == "application/vnd.ms-excel.sheet.binary.macroEnabled.main";
}

Parts new_parts() {
  Parts parts;
  parts.put(kMainPart, workbook_type(false, false), "");
  parts.relate("", {}, "officeDocument", kMainPart);
  parts.put("docProps/core.xml", "application/vnd.openxmlformats-package.core-properties+xml",
            core_properties());
  parts.add_relationship(
      "", {"rId2",
           "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
           "docProps/core.xml", false});
  parts.put("docProps/app.xml",
            "application/vnd.openxmlformats-officedocument.extended-properties+xml",
            std::string(kApplication));
  parts.relate("", {}, "extended-properties", "docProps/app.xml");
  return parts;
}

}  // namespace engine::xlsx
