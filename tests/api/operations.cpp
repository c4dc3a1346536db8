#include "tests/api/operations.h"

#include <array>
#include <type_traits>

namespace {

using libxl::AutoFilter;
using libxl::Book;
using libxl::Color;
using libxl::FilterColumn;
using libxl::Font;
using libxl::Format;
using libxl::Sheet;

// An argument by its type. Outputs are there when texts are.
template <class T>
T argument(const Call& call) {
  if constexpr (std::is_same_v<T, Sheet*>) {
    return call.given.sheet;
  } else if constexpr (std::is_same_v<T, Format*>) {
    return call.given.format;
  } else if constexpr (std::is_same_v<T, Font*>) {
    return call.given.font;
  } else if constexpr (std::is_same_v<T, const wchar_t*>) {
    return call.round.text;
  } else if constexpr (std::is_same_v<T, const char*>) {
    return call.round.text ? "de" : nullptr;
  } else if constexpr (std::is_pointer_v<T>) {
    static std::remove_pointer_t<T> output;
    return call.round.text ? &output : nullptr;
  } else if constexpr (std::is_same_v<T, double>) {
    return call.round.real;
  } else {
    return static_cast<T>(call.round.number);
  }
}

// A result as a number: a pointer is there or not.
template <class T>
double number_of(T result) {
  if constexpr (std::is_pointer_v<T>) return result ? 1 : 0;
  else return static_cast<double>(result);
}

Book& object_of(const Objects& objects, const Book*) { return *objects.book; }
Sheet& object_of(const Objects& objects, const Sheet*) { return *objects.sheet; }
Format& object_of(const Objects& objects, const Format*) { return *objects.format; }
Font& object_of(const Objects& objects, const Font*) { return *objects.font; }
AutoFilter& object_of(const Objects& objects, const AutoFilter*) { return *objects.filter; }
FilterColumn& object_of(const Objects& objects, const FilterColumn*) { return *objects.column; }

template <class Method>
struct Signature;
template <class Object, class Result, class... Parameters>
struct Signature<Result (Object::*)(Parameters...)> {
  using Of = Object;

  template <auto kMethod>
  static double call(const Call& call) {
    Object& object = object_of(call.on, static_cast<Object*>(nullptr));
    if constexpr (std::is_void_v<Result>) {
      (object.*kMethod)(argument<Parameters>(call)...);
      return 0;
    } else {
      return number_of((object.*kMethod)(argument<Parameters>(call)...));
    }
  }
};
template <class Object, class Result, class... Parameters>
struct Signature<Result (Object::*)(Parameters...) const>
    : Signature<Result (Object::*)(Parameters...)> {};

template <auto kMethod>
double call_of(const Call& call) {
  return Signature<decltype(kMethod)>::template call<kMethod>(call);
}

// Files, names that a sheet may have, and the usual size of a comment.
template <>
double call_of<&Book::load>(const Call& call) {
  return call.on.book->load(call.files->source.c_str()) ? 1 : 0;
}
template <>
double call_of<&Book::loadSheet>(const Call& call) {
  return call.on.book->loadSheet(call.files->source.c_str(), call.round.number) ? 1 : 0;
}
template <>
double call_of<&Book::loadPartially>(const Call& call) {
  const int row = call.round.number;
  return call.on.book->loadPartially(call.files->source.c_str(), 0, row, row) ? 1 : 0;
}
template <>
double call_of<&Book::loadInfo>(const Call& call) {
  return call.on.book->loadInfo(call.files->source.c_str()) ? 1 : 0;
}
template <>
double call_of<&Book::loadRaw>(const Call& call) {
  const std::string& bytes = call.files->bytes;
  const auto size = static_cast<unsigned>(bytes.size());
  return call.on.book->loadRaw(bytes.data(), size, call.round.number, 0, 1) ? 1 : 0;
}
template <>
double call_of<&Book::addPicture>(const Call& call) {
  return call.on.book->addPicture(call.round.text ? call.files->picture.c_str() : nullptr);
}
template <>
double call_of<&Book::addPictureAsLink>(const Call& call) {
  return call.on.book->addPictureAsLink(call.files->picture.c_str(), call.round.number != 0);
}
template <>
double call_of<&Book::addPicture2>(const Call& call) {
  const std::string& bytes = call.files->picture_bytes;
  const auto size = static_cast<unsigned>(bytes.size());
  return call.on.book->addPicture2(call.round.text ? bytes.data() : nullptr,
                                   call.round.number < 0 ? size / 2 : size);
}
template <>
double call_of<&Book::save>(const Call& call) {
  return call.on.book->save(call.files->target.c_str()) ? 1 : 0;
}
template <>
double call_of<&Book::addSheet>(const Call& call) {
  return number_of(call.on.book->addSheet(call.round.name, call.given.sheet));
}
template <>
double call_of<&Book::insertSheet>(const Call& call) {
  return number_of(call.on.book->insertSheet(call.round.number, call.round.name, call.given.sheet));
}
template <>
double call_of<&Sheet::writeComment>(const Call& call) {
  call.on.sheet->writeComment(call.round.number, call.round.number, call.round.text,
                              call.round.name);
  return 0;
}
template <>
double call_of<&Sheet::setName>(const Call& call) {
  call.on.sheet->setName(call.round.name);
  return 0;
}

// "Book::load" of what the compiler calls &libxl::Book::load in the name of this function.
template <auto kMethod>
constexpr std::string_view name_of() {
  constexpr std::string_view kBegin = "&libxl::";
  std::string_view text = __PRETTY_FUNCTION__;
  text.remove_prefix(text.find(kBegin) + kBegin.size());
  return text.substr(0, text.find_first_of(";]"));
}

template <auto... kMethods>
constexpr std::array<Operation, sizeof...(kMethods)> list() {
  return {{{name_of<kMethods>(), call_of<kMethods>}...}};
}

constexpr auto kTabColor = static_cast<void (Sheet::*)(Color)>(&Sheet::setTabColor);
constexpr auto kTabColorParts = static_cast<void (Sheet::*)(int, int, int)>(&Sheet::setTabColor);

constexpr auto kOperations = list<
    &Font::size, &Font::setSize, &Font::italic, &Font::setItalic, &Font::strikeOut,
    &Font::setStrikeOut, &Font::color, &Font::setColor, &Font::bold, &Font::setBold, &Font::script,
    &Font::setScript, &Font::underline, &Font::setUnderline, &Font::name, &Font::setName,
    &Format::font, &Format::setFont, &Format::numFormat, &Format::setNumFormat, &Format::alignH,
    &Format::setAlignH, &Format::alignV, &Format::setAlignV, &Format::wrap, &Format::setWrap,
    &Format::rotation, &Format::setRotation, &Format::indent, &Format::setIndent,
    &Format::shrinkToFit, &Format::setShrinkToFit, &Format::setBorder, &Format::setBorderColor,
    &Format::borderLeft, &Format::setBorderLeft, &Format::borderRight, &Format::setBorderRight,
    &Format::borderTop, &Format::setBorderTop, &Format::borderBottom, &Format::setBorderBottom,
    &Format::borderLeftColor, &Format::setBorderLeftColor, &Format::borderRightColor,
    &Format::setBorderRightColor, &Format::borderTopColor, &Format::setBorderTopColor,
    &Format::borderBottomColor, &Format::setBorderBottomColor, &Format::borderDiagonal,
    &Format::setBorderDiagonal, &Format::borderDiagonalStyle, &Format::setBorderDiagonalStyle,
    &Format::borderDiagonalColor, &Format::setBorderDiagonalColor, &Format::fillPattern,
    &Format::setFillPattern, &Format::patternForegroundColor, &Format::setPatternForegroundColor,
    &Format::patternBackgroundColor, &Format::setPatternBackgroundColor, &Format::locked,
    &Format::setLocked, &Format::hidden, &Format::setHidden, &Sheet::cellType, &Sheet::isFormula,
    &Sheet::cellFormat, &Sheet::setCellFormat, &Sheet::readStr, &Sheet::writeStr, &Sheet::readNum,
    &Sheet::writeNum, &Sheet::readBool, &Sheet::writeBool, &Sheet::readBlank, &Sheet::writeBlank,
    &Sheet::readFormula, &Sheet::writeFormula, &Sheet::writeFormulaNum, &Sheet::writeFormulaStr,
    &Sheet::writeFormulaBool, &Sheet::readComment, &Sheet::writeComment, &Sheet::removeComment,
    &Sheet::isDate, &Sheet::readError, &Sheet::writeError, &Sheet::firstRow, &Sheet::lastRow,
    &Sheet::firstCol, &Sheet::lastCol, &Sheet::colWidth, &Sheet::rowHeight, &Sheet::setCol,
    &Sheet::setRow, &Sheet::rowHidden, &Sheet::setRowHidden, &Sheet::colHidden,
    &Sheet::setColHidden, &Sheet::getMerge, &Sheet::setMerge, &Sheet::delMerge, &Sheet::mergeSize,
    &Sheet::merge, &Sheet::delMergeByIndex, &Sheet::groupRows, &Sheet::groupCols,
    &Sheet::groupSummaryBelow, &Sheet::setGroupSummaryBelow, &Sheet::groupSummaryRight,
    &Sheet::setGroupSummaryRight, &Sheet::clear, &Sheet::insertRow, &Sheet::insertCol,
    &Sheet::removeRow, &Sheet::removeCol, &Sheet::copyCell, &Sheet::setAutoFitArea,
    &Sheet::pictureSize, &Sheet::getPicture, &Sheet::setPicture, &Sheet::setPicture2,
    &Sheet::getHorPageBreak, &Sheet::getHorPageBreakSize, &Sheet::getVerPageBreak,
    &Sheet::getVerPageBreakSize, &Sheet::setHorPageBreak, &Sheet::setVerPageBreak, &Sheet::split,
    &Sheet::splitInfo, &Sheet::displayGridlines, &Sheet::setDisplayGridlines, &Sheet::zoom,
    &Sheet::setZoom, &Sheet::name, &Sheet::setName, &Sheet::protect, &Sheet::setProtect,
    &Sheet::rightToLeft, &Sheet::setRightToLeft, &Sheet::hidden, &Sheet::setHidden,
    &Sheet::getTopLeftView, &Sheet::setTopLeftView, kTabColor, kTabColorParts,
    &Sheet::printGridlines, &Sheet::setPrintGridlines, &Sheet::printZoom, &Sheet::setPrintZoom,
    &Sheet::getPrintFit, &Sheet::setPrintFit, &Sheet::landscape, &Sheet::setLandscape,
    &Sheet::paper, &Sheet::setPaper, &Sheet::header, &Sheet::setHeader, &Sheet::headerMargin,
    &Sheet::footer, &Sheet::setFooter, &Sheet::footerMargin, &Sheet::hCenter, &Sheet::setHCenter,
    &Sheet::vCenter, &Sheet::setVCenter, &Sheet::marginLeft, &Sheet::setMarginLeft,
    &Sheet::marginRight, &Sheet::setMarginRight, &Sheet::marginTop, &Sheet::setMarginTop,
    &Sheet::marginBottom, &Sheet::setMarginBottom, &Sheet::printRowCol, &Sheet::setPrintRowCol,
    &Sheet::printRepeatRows, &Sheet::setPrintRepeatRows, &Sheet::printRepeatCols,
    &Sheet::setPrintRepeatCols, &Sheet::printArea, &Sheet::setPrintArea, &Sheet::clearPrintRepeats,
    &Sheet::clearPrintArea, &Sheet::getNamedRange, &Sheet::setNamedRange, &Sheet::delNamedRange,
    &Sheet::namedRangeSize, &Sheet::namedRange, &Sheet::hyperlinkSize, &Sheet::hyperlink,
    &Sheet::delHyperlink, &Sheet::addHyperlink, &Sheet::addrToRowCol, &Sheet::rowColToAddr,
    &Sheet::tableSize, &Sheet::table, &Sheet::autoFilter, &Sheet::applyFilter, &Sheet::removeFilter,
    &Sheet::addIgnoredError, &Sheet::addDataValidation, &Sheet::addDataValidationDouble,
    &Sheet::removeDataValidations, &AutoFilter::getRef, &AutoFilter::setRef, &AutoFilter::column,
    &AutoFilter::columnSize, &AutoFilter::columnByIndex, &AutoFilter::getSortRange,
    &AutoFilter::getSort, &AutoFilter::setSort, &FilterColumn::index, &FilterColumn::filterType,
    &FilterColumn::filterSize, &FilterColumn::filter, &FilterColumn::addFilter,
    &FilterColumn::getTop10, &FilterColumn::setTop10, &FilterColumn::getCustomFilter,
    &FilterColumn::setCustomFilter, &FilterColumn::clear, &Book::load, &Book::loadRaw,
    &Book::loadSheet, &Book::loadPartially, &Book::loadInfo, &Book::save, &Book::saveRaw,
    &Book::addSheet, &Book::insertSheet, &Book::getSheet, &Book::getSheetName, &Book::sheetType,
    &Book::moveSheet, &Book::delSheet, &Book::sheetCount, &Book::activeSheet, &Book::setActiveSheet,
    &Book::addFormat, &Book::addFont, &Book::addCustomNumFormat, &Book::customNumFormat,
    &Book::format, &Book::formatSize, &Book::font, &Book::fontSize, &Book::defaultFont,
    &Book::setDefaultFont, &Book::pictureSize, &Book::getPicture, &Book::addPicture,
    &Book::addPicture2, &Book::addPictureAsLink, &Book::datePack, &Book::dateUnpack,
    &Book::colorPack, &Book::colorUnpack, &Book::rgbMode, &Book::setRgbMode, &Book::refR1C1,
    &Book::setRefR1C1, &Book::biffVersion, &Book::isDate1904, &Book::setDate1904, &Book::isTemplate,
    &Book::setTemplate, &Book::setLocale>();

}  // namespace

std::span<const Operation> every_operation() { return kOperations; }
