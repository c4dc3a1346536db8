// External functions that read and change a cell format.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Format;

constexpr bind::Row kRows[] = {
    row<&Format::font>(2000, "XL_Format_Font"),
    row<&Format::setFont>(2001, "XL_Format_SetFont"),
    row<&Format::numFormat>(2002, "XL_Format_NumFormat"),
    row<&Format::setNumFormat>(2003, "XL_Format_SetNumFormat"),
    row<&Format::alignH>(2004, "XL_Format_AlignH"),
    row<&Format::setAlignH>(2005, "XL_Format_SetAlignH"),
    row<&Format::alignV>(2006, "XL_Format_AlignV"),
    row<&Format::setAlignV>(2007, "XL_Format_SetAlignV"),
    row<&Format::wrap>(2008, "XL_Format_Wrap"),
    row<&Format::setWrap, true>(2009, "XL_Format_SetWrap"),
    row<&Format::rotation>(2010, "XL_Format_Rotation"),
    row<&Format::setRotation>(2011, "XL_Format_SetRotation"),
    row<&Format::indent>(2012, "XL_Format_Indent"),
    row<&Format::setIndent>(2013, "XL_Format_SetIndent"),
    row<&Format::shrinkToFit>(2014, "XL_Format_ShrinkToFit"),
    row<&Format::setShrinkToFit, true>(2015, "XL_Format_SetShrinkToFit"),
    row<&Format::setBorder, libxl::BorderThin>(2016, "XL_Format_SetBorder"),
    row<&Format::setBorderColor>(2017, "XL_Format_SetBorderColor"),
    row<&Format::borderLeft>(2018, "XL_Format_BorderLeft"),
    row<&Format::setBorderLeft, libxl::BorderThin>(2019, "XL_Format_SetBorderLeft"),
    row<&Format::borderRight>(2020, "XL_Format_BorderRight"),
    row<&Format::setBorderRight, libxl::BorderThin>(2021, "XL_Format_SetBorderRight"),
    row<&Format::borderTop>(2022, "XL_Format_BorderTop"),
    row<&Format::setBorderTop, libxl::BorderThin>(2023, "XL_Format_SetBorderTop"),
    row<&Format::borderBottom>(2024, "XL_Format_BorderBottom"),
    row<&Format::setBorderBottom, libxl::BorderThin>(2025, "XL_Format_SetBorderBottom"),
    row<&Format::borderLeftColor>(2026, "XL_Format_BorderLeftColor"),
    row<&Format::setBorderLeftColor>(2027, "XL_Format_SetBorderLeftColor"),
    row<&Format::borderRightColor>(2028, "XL_Format_BorderRightColor"),
    row<&Format::setBorderRightColor>(2029, "XL_Format_SetBorderRightColor"),
    row<&Format::borderTopColor>(2030, "XL_Format_BorderTopColor"),
    row<&Format::setBorderTopColor>(2031, "XL_Format_SetBorderTopColor"),
    row<&Format::borderBottomColor>(2032, "XL_Format_BorderBottomColor"),
    row<&Format::setBorderBottomColor>(2033, "XL_Format_SetBorderBottomColor"),
    row<&Format::borderDiagonal>(2034, "XL_Format_BorderDiagonal"),
    row<&Format::setBorderDiagonal>(2035, "XL_Format_SetBorderDiagonal"),
    row<&Format::borderDiagonalStyle>(2036, "XL_Format_BorderDiagonalStyle"),
    row<&Format::setBorderDiagonalStyle>(2037, "XL_Format_SetBorderDiagonalStyle"),
    row<&Format::borderDiagonalColor>(2038, "XL_Format_BorderDiagonalColor"),
    row<&Format::setBorderDiagonalColor>(2039, "XL_Format_SetBorderDiagonalColor"),
    row<&Format::fillPattern>(2040, "XL_Format_FillPattern"),
    row<&Format::setFillPattern>(2041, "XL_Format_SetFillPattern"),
    row<&Format::patternForegroundColor>(2042, "XL_Format_PatternForegroundColor"),
    row<&Format::setPatternForegroundColor>(2043, "XL_Format_SetPatternForegroundColor"),
    row<&Format::patternBackgroundColor>(2044, "XL_Format_PatternBackgroundColor"),
    row<&Format::setPatternBackgroundColor>(2045, "XL_Format_SetPatternBackgroundColor"),
    row<&Format::locked>(2046, "XL_Format_Locked"),
    row<&Format::setLocked, true>(2047, "XL_Format_SetLocked"),
    row<&Format::hidden>(2048, "XL_Format_Hidden"),
    row<&Format::setHidden, true>(2049, "XL_Format_SetHidden"),
};

}  // namespace

std::span<const bind::Row> format_functions() { return kRows; }
