// Operations of a sheet on how it prints.
#include <cmath>

#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"

namespace engine::api {

namespace {

constexpr auto kPage = &SheetContents::page;
constexpr double kMaxMargin = 49;  // inches
constexpr std::size_t kMaxHeader = 255;

}  // namespace

bool SheetObject::printGridlines() const {
  return run(false, [&] { return contents().page.gridlines; });
}
void SheetObject::setPrintGridlines(bool print) {
  run([&] { set(kPage, &PageSetup::gridlines, print); });
}

bool SheetObject::printRowCol() const {
  return run(false, [&] { return contents().page.headings; });
}
void SheetObject::setPrintRowCol(bool print) {
  run([&] { set(kPage, &PageSetup::headings, print); });
}

bool SheetObject::hCenter() const {
  return run(false, [&] { return contents().page.centered_across; });
}
void SheetObject::setHCenter(bool hCenter) {
  run([&] { set(kPage, &PageSetup::centered_across, hCenter); });
}

bool SheetObject::vCenter() const {
  return run(false, [&] { return contents().page.centered_down; });
}
void SheetObject::setVCenter(bool vCenter) {
  run([&] { set(kPage, &PageSetup::centered_down, vCenter); });
}

// Scale. The sheet is either scaled by a number or fitted to pages.

int SheetObject::printZoom() const {
  return run(0, [&] { return contents().page.zoom; });
}
void SheetObject::setPrintZoom(int zoom) {
  run([&] {
    if (!check_value("print zoom", zoom, 10, 400)) return;
    set(kPage, &PageSetup::zoom, zoom);
    set(kPage, &PageSetup::fitted, false);
  });
}

bool SheetObject::getPrintFit(int* wPages, int* hPages) const {
  return run(false, [&] {
    const PageSetup& page = contents().page;
    if (!page.fitted) return false;
    if (wPages) *wPages = page.pages_wide;
    if (hPages) *hPages = page.pages_tall;
    return true;
  });
}
void SheetObject::setPrintFit(int wPages, int hPages) {
  run([&] {
    constexpr int kMaxPages = 32767;
    if (!check_value("pages wide", wPages, 0, kMaxPages)) return;
    if (!check_value("pages tall", hPages, 0, kMaxPages)) return;
    set(kPage, &PageSetup::pages_wide, wPages);
    set(kPage, &PageSetup::pages_tall, hPages);
    set(kPage, &PageSetup::fitted, true);
  });
}

// Paper.

bool SheetObject::landscape() const {
  return run(false, [&] { return contents().page.landscape; });
}
void SheetObject::setLandscape(bool landscape) {
  run([&] { set(kPage, &PageSetup::landscape, landscape); });
}

libxl::Paper SheetObject::paper() const {
  return run(libxl::PaperDefault, [&] { return static_cast<libxl::Paper>(contents().page.paper); });
}
void SheetObject::setPaper(libxl::Paper paper) {
  run([&] {
    // Between them two numbers stand for no paper.
    const bool is_known = (paper >= libxl::PaperDefault && paper <= libxl::PaperEnvelopeInvite) ||
                          (paper >= libxl::PaperLetterExtra && paper <= libxl::PaperPrcEnvelope10R);
    if (!is_known) return book_.refuse(messages::unknown("paper", paper));
    set(kPage, &PageSetup::paper, paper);
  });
}

// Header and footer, each with the margin between it and the edge of the paper.

bool SheetObject::set_header(std::string_view thing, std::string PageSetup::*text,
                             double PageSetup::*margin_of, const wchar_t* value, double margin) {
  if (!take_text(value, thing, kMaxHeader)) return false;
  if (!check_margin(std::string(thing).append(" margin"), margin)) return false;
  set(kPage, text, std::string(text_));
  set(kPage, margin_of, margin);
  return true;
}

const wchar_t* SheetObject::header() const {
  return run(nullptr, [&] { return book_.give(contents().page.header); });
}
bool SheetObject::setHeader(const wchar_t* header, double margin) {
  return run(false, [&] {
    return set_header("header", &PageSetup::header, &PageSetup::header_margin, header, margin);
  });
}
double SheetObject::headerMargin() const {
  return run(0.0, [&] { return contents().page.header_margin; });
}

const wchar_t* SheetObject::footer() const {
  return run(nullptr, [&] { return book_.give(contents().page.footer); });
}
bool SheetObject::setFooter(const wchar_t* footer, double margin) {
  return run(false, [&] {
    return set_header("footer", &PageSetup::footer, &PageSetup::footer_margin, footer, margin);
  });
}
double SheetObject::footerMargin() const {
  return run(0.0, [&] { return contents().page.footer_margin; });
}

// Margins.

bool SheetObject::check_margin(std::string_view property, double margin) const {
  if (!std::isfinite(margin)) return book_.refuse(false, messages::not_finite(property));
  if (margin >= 0 && margin <= kMaxMargin) return true;
  return book_.refuse(false, messages::out_of_range(property, margin, 0.0, kMaxMargin));
}

void SheetObject::set_margin(std::string_view property, double PageSetup::*margin_of,
                             double margin) {
  run([&] {
    if (check_margin(property, margin)) set(kPage, margin_of, margin);
  });
}

double SheetObject::marginLeft() const {
  return run(0.0, [&] { return contents().page.left_margin; });
}
void SheetObject::setMarginLeft(double margin) {
  set_margin("left margin", &PageSetup::left_margin, margin);
}

double SheetObject::marginRight() const {
  return run(0.0, [&] { return contents().page.right_margin; });
}
void SheetObject::setMarginRight(double margin) {
  set_margin("right margin", &PageSetup::right_margin, margin);
}

double SheetObject::marginTop() const {
  return run(0.0, [&] { return contents().page.top_margin; });
}
void SheetObject::setMarginTop(double margin) {
  set_margin("top margin", &PageSetup::top_margin, margin);
}

double SheetObject::marginBottom() const {
  return run(0.0, [&] { return contents().page.bottom_margin; });
}
void SheetObject::setMarginBottom(double margin) {
  set_margin("bottom margin", &PageSetup::bottom_margin, margin);
}

}  // namespace engine::api
