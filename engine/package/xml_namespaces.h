// The namespaces of the formats' XML.
//
// Markup exists in two families of namespaces, transitional and strict, with the same elements. A
// family here stands for both, so nobody else has to know which of the two a file uses.
#pragma once

#include <string_view>

namespace engine::package {

enum class Family {
  Unknown,
  None,           // no namespace at all
  Main,           // spreadsheets
  BetaMain,       // the same before the format was settled, in two versions
  Relationships,  // r:id and its like in markup
  Drawing,
  SpreadsheetDrawing,
  Chart,
  Diagram,
  ExtendedProperties,
  CustomProperties,
  VariantTypes,
  PackageRelationships,  // parts ending in .rels
  ContentTypes,
  CoreProperties,
  DublinCore,
  DublinCoreTerms,
  MarkupCompatibility,
  SchemaInstance,
  Xml,  // the prefix xml, which nobody declares
};

Family family_of(std::string_view uri);

// The URI of the usual, transitional family.
std::string_view uri_of(Family family);
// The one of the set, transitional or strict, that another URI is of.
std::string_view uri_of(Family family, std::string_view beside);

// The part of a qualified name behind the colon.
constexpr std::string_view local_name(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// The part of a qualified name before the colon, empty without one.
constexpr std::string_view prefix_of(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

}  // namespace engine::package
