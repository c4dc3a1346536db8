// External functions on how a sheet is shown: page breaks, panes, view, protection, tab.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

// Two operations have the name. With one value it is a number for the colour, with more they are
// red, green and blue: how many the host passed tells which is meant.
short set_tab_color(const fmx::DataVect& params, fmx::Data&) {
  constexpr std::uint32_t kWithOneValue = 2;
  const bind::Target<Sheet> sheet(params);
  const auto color = bind::read<libxl::Color>(params, 1, 0);
  const int green = bind::read<int>(params, 2, 0);
  const int blue = bind::read<int>(params, 3, 0);
  if (params.Size() == kWithOneValue) sheet.get().setTabColor(color);
  else sheet.get().setTabColor(static_cast<int>(color), green, blue);
  return set_last_error_message(sheet.handle());
}

constexpr bind::Row kRows[] = {
    row<&Sheet::getHorPageBreak>(1836, "XL_Sheet_GetHorPageBreak"),
    row<&Sheet::getHorPageBreakSize>(1837, "XL_Sheet_GetHorPageBreakSize"),
    row<&Sheet::getVerPageBreak>(1838, "XL_Sheet_GetVerPageBreak"),
    row<&Sheet::getVerPageBreakSize>(1839, "XL_Sheet_GetVerPageBreakSize"),
    row<&Sheet::setHorPageBreak, true>(1840, "XL_Sheet_SetHorPageBreak"),
    row<&Sheet::setVerPageBreak, true>(1841, "XL_Sheet_SetVerPageBreak"),
    row<&Sheet::split>(1842, "XL_Sheet_Split"),
    row<&Sheet::splitInfo>(1843, "XL_Sheet_SplitInfo"),
    row<&Sheet::displayGridlines>(1860, "XL_Sheet_DisplayGridlines"),
    row<&Sheet::setDisplayGridlines, true>(1861, "XL_Sheet_SetDisplayGridlines"),
    row<&Sheet::zoom>(1864, "XL_Sheet_Zoom"),
    row<&Sheet::setZoom>(1865, "XL_Sheet_SetZoom"),
    row<&Sheet::protect>(1910, "XL_Sheet_Protect"),
    row<&Sheet::setProtect, true, nullptr, libxl::ProtectDefault>(1911, "XL_Sheet_SetProtect"),
    row<&Sheet::rightToLeft>(1912, "XL_Sheet_RightToLeft"),
    row<&Sheet::setRightToLeft, true>(1913, "XL_Sheet_SetRightToLeft"),
    row<&Sheet::hidden>(1914, "XL_Sheet_Hidden"),
    row<&Sheet::setHidden, libxl::StateHidden>(1915, "XL_Sheet_SetHidden"),
    row<&Sheet::getTopLeftView>(1916, "XL_Sheet_GetTopLeftView"),
    row<&Sheet::setTopLeftView>(1917, "XL_Sheet_SetTopLeftView"),
    row<set_tab_color>(2237, "XL_Sheet_SetTabColor", 2, 4),
};

}  // namespace

std::span<const bind::Row> view_functions() { return kRows; }
