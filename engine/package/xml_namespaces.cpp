#include "engine/package/xml_namespaces.h"

#include <algorithm>

namespace engine::package {
namespace {

struct Row {
  Family family;
  std::string_view transitional;
  std::string_view strict;  // empty where both families use the same; of BetaMain the older one
};

constexpr Row kRows[] = {
    {Family::Main, "http://schemas.openxmlformats.org/spreadsheetml/2006/main",
     "http://purl.oclc.org/ooxml/spreadsheetml/main"},
    {Family::BetaMain, "http://schemas.openxmlformats.org/spreadsheetml/2006/5/main",
     "http://schemas.microsoft.com/office/excel/2006/2"},
    {Family::Relationships, "http://schemas.openxmlformats.org/officeDocument/2006/relationships",
     "http://purl.oclc.org/ooxml/officeDocument/relationships"},
    {Family::Drawing, "http://schemas.openxmlformats.org/drawingml/2006/main",
     "http://purl.oclc.org/ooxml/drawingml/main"},
    {Family::SpreadsheetDrawing,
     "http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing",
     "http://purl.oclc.org/ooxml/drawingml/spreadsheetDrawing"},
    {Family::Chart, "http://schemas.openxmlformats.org/drawingml/2006/chart",
     "http://purl.oclc.org/ooxml/drawingml/chart"},
    {Family::Diagram, "http://schemas.openxmlformats.org/drawingml/2006/diagram",
     "http://purl.oclc.org/ooxml/drawingml/diagram"},
    {Family::ExtendedProperties,
     "http://schemas.openxmlformats.org/officeDocument/2006/extended-properties",
     "http://purl.oclc.org/ooxml/officeDocument/extendedProperties"},
    {Family::CustomProperties,
     "http://schemas.openxmlformats.org/officeDocument/2006/custom-properties",
     "http://purl.oclc.org/ooxml/officeDocument/customProperties"},
    {Family::VariantTypes, "http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes",
     "http://purl.oclc.org/ooxml/officeDocument/docPropsVTypes"},
    {Family::PackageRelationships, "http://schemas.openxmlformats.org/package/2006/relationships",
     ""},
    {Family::ContentTypes, "http://schemas.openxmlformats.org/package/2006/content-types", ""},
    {Family::CoreProperties,
     "http://schemas.openxmlformats.org/package/2006/metadata/core-properties", ""},
    {Family::DublinCore, "http://purl.org/dc/elements/1.1/", ""},
    {Family::DublinCoreTerms, "http://purl.org/dc/terms/", ""},
    {Family::MarkupCompatibility, "http://schemas.openxmlformats.org/markup-compatibility/2006",
     ""},
    {Family::SchemaInstance, "http://www.w3.org/2001/XMLSchema-instance", ""},
    {Family::Xml, "http://www.w3.org/XML/1998/namespace", ""},
};

constexpr std::string_view kStrict = "http://purl.oclc.org/ooxml/";

}  // namespace

Family family_of(std::string_view uri) {
  if (uri.empty()) return Family::None;
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows), [uri](const Row& r) {
    return r.transitional == uri || r.strict == uri;
  });
  return row == std::end(kRows) ? Family::Unknown : row->family;
}

std::string_view uri_of(Family family) { return uri_of(family, {}); }

std::string_view uri_of(Family family, std::string_view beside) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [family](const Row& r) { return r.family == family; });
  if (row == std::end(kRows)) return {};
  return beside.starts_with(kStrict) && !row->strict.empty() ? row->strict : row->transitional;
}

}  // namespace engine::package
