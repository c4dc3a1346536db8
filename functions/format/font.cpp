// External functions that read and change a font.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Font;

constexpr bind::Row kRows[] = {
    row<&Font::size>(2200, "XL_Font_Size"),
    row<&Font::setSize>(2201, "XL_Font_SetSize"),
    row<&Font::italic>(2202, "XL_Font_Italic"),
    row<&Font::setItalic, true>(2203, "XL_Font_SetItalic"),
    row<&Font::strikeOut>(2204, "XL_Font_StrikeOut"),
    row<&Font::setStrikeOut, true>(2205, "XL_Font_SetStrikeOut"),
    row<&Font::color>(2206, "XL_Font_Color"),
    row<&Font::setColor>(2207, "XL_Font_SetColor"),
    row<&Font::bold>(2208, "XL_Font_Bold"),
    row<&Font::setBold, true>(2209, "XL_Font_SetBold"),
    row<&Font::script>(2210, "XL_Font_Script"),
    row<&Font::setScript>(2211, "XL_Font_SetScript"),
    row<&Font::underline>(2212, "XL_Font_Underline"),
    row<&Font::setUnderline>(2213, "XL_Font_SetUnderline"),
    row<&Font::name>(2214, "XL_Font_Name"),
    row<&Font::setName>(2215, "XL_Font_SetName"),
};

}  // namespace

std::span<const bind::Row> font_functions() { return kRows; }
