// External functions on how a sheet prints.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

constexpr bind::Row kRows[] = {
    row<&Sheet::printGridlines>(1862, "XL_Sheet_PrintGridlines"),
    row<&Sheet::setPrintGridlines, true>(1863, "XL_Sheet_SetPrintGridlines"),
    row<&Sheet::printZoom>(1866, "XL_Sheet_PrintZoom"),
    row<&Sheet::setPrintZoom>(1867, "XL_Sheet_SetPrintZoom"),
    row<&Sheet::landscape>(1868, "XL_Sheet_Landscape"),
    row<&Sheet::setLandscape, true>(1869, "XL_Sheet_SetLandscape"),
    row<&Sheet::getPrintFit>(1870, "XL_Sheet_GetPrintFit"),
    row<&Sheet::setPrintFit, 1, 1>(1871, "XL_Sheet_SetPrintFit"),
    row<&Sheet::paper>(1872, "XL_Sheet_Paper"),
    row<&Sheet::setPaper, libxl::PaperDefault>(1873, "XL_Sheet_SetPaper"),
    row<&Sheet::header>(1874, "XL_Sheet_Header"),
    row<&Sheet::setHeader, 0.5>(1875, "XL_Sheet_SetHeader"),
    row<&Sheet::headerMargin>(1876, "XL_Sheet_HeaderMargin"),
    row<&Sheet::footer>(1877, "XL_Sheet_Footer"),
    row<&Sheet::setFooter, 0.5>(1878, "XL_Sheet_SetFooter"),
    row<&Sheet::footerMargin>(1879, "XL_Sheet_FooterMargin"),
    row<&Sheet::hCenter>(1880, "XL_Sheet_HCenter"),
    row<&Sheet::setHCenter, true>(1881, "XL_Sheet_SetHCenter"),
    row<&Sheet::vCenter>(1882, "XL_Sheet_VCenter"),
    row<&Sheet::setVCenter, true>(1883, "XL_Sheet_SetVCenter"),
    row<&Sheet::marginLeft>(1884, "XL_Sheet_MarginLeft"),
    row<&Sheet::setMarginLeft>(1885, "XL_Sheet_SetMarginLeft"),
    row<&Sheet::marginRight>(1886, "XL_Sheet_MarginRight"),
    row<&Sheet::setMarginRight>(1887, "XL_Sheet_SetMarginRight"),
    row<&Sheet::marginTop>(1888, "XL_Sheet_MarginTop"),
    row<&Sheet::setMarginTop>(1889, "XL_Sheet_SetMarginTop"),
    row<&Sheet::marginBottom>(1890, "XL_Sheet_MarginBottom"),
    row<&Sheet::setMarginBottom>(1891, "XL_Sheet_SetMarginBottom"),
    row<&Sheet::printRowCol>(1892, "XL_Sheet_PrintRowCol"),
    row<&Sheet::setPrintRowCol, true>(1893, "XL_Sheet_SetPrintRowCol"),
};

}  // namespace

std::span<const bind::Row> page_functions() { return kRows; }
