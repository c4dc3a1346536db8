// The operations of a sheet that the engine does not do yet: each refuses and says so.
//
// An operation leaves this list when the sheet object gets its own.
#pragma once

#include <string_view>

#include "engine/api/book_context.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class UnsupportedSheet : public libxl::Sheet, public BookPart {
 public:
  bool insertRow(int, int, bool) override { return unsupported(false, "insertRow"); }
  bool insertCol(int, int, bool) override { return unsupported(false, "insertCol"); }
  bool removeRow(int, int, bool) override { return unsupported(false, "removeRow"); }
  bool removeCol(int, int, bool) override { return unsupported(false, "removeCol"); }
  int pictureSize() const override { return unsupported(0, "pictureSize"); }
  int getPicture(int, int*, int*, int*, int*, int*, int*, int*, int*,
                 const wchar_t**) const override {
    return unsupported(-1, "getPicture");
  }
  void setPicture(int, int, int, double, int, int, libxl::Position) override {
    unsupported("setPicture");
  }
  void setPicture2(int, int, int, int, int, int, int, libxl::Position) override {
    unsupported("setPicture2");
  }
  int getHorPageBreak(int) const override { return unsupported(-1, "getHorPageBreak"); }
  int getHorPageBreakSize() const override { return unsupported(0, "getHorPageBreakSize"); }
  int getVerPageBreak(int) const override { return unsupported(-1, "getVerPageBreak"); }
  int getVerPageBreakSize() const override { return unsupported(0, "getVerPageBreakSize"); }
  bool setHorPageBreak(int, bool) override { return unsupported(false, "setHorPageBreak"); }
  bool setVerPageBreak(int, bool) override { return unsupported(false, "setVerPageBreak"); }
  void split(int, int) override { unsupported("split"); }
  bool splitInfo(int*, int*) const override { return unsupported(false, "splitInfo"); }
  bool displayGridlines() const override { return unsupported(false, "displayGridlines"); }
  void setDisplayGridlines(bool) override { unsupported("setDisplayGridlines"); }
  int zoom() const override { return unsupported(0, "zoom"); }
  void setZoom(int) override { unsupported("setZoom"); }
  bool protect() const override { return unsupported(false, "protect"); }
  void setProtect(bool, const wchar_t*, libxl::EnhancedProtection) override {
    unsupported("setProtect");
  }
  bool rightToLeft() const override { return unsupported(false, "rightToLeft"); }
  void setRightToLeft(bool) override { unsupported("setRightToLeft"); }
  libxl::SheetState hidden() const override { return unsupported(libxl::StateVisible, "hidden"); }
  bool setHidden(libxl::SheetState) override { return unsupported(false, "setHidden"); }
  void getTopLeftView(int*, int*) const override { unsupported("getTopLeftView"); }
  void setTopLeftView(int, int) override { unsupported("setTopLeftView"); }
  void setTabColor(libxl::Color) override { unsupported("setTabColor"); }
  void setTabColor(int, int, int) override { unsupported("setTabColor"); }
  bool printGridlines() const override { return unsupported(false, "printGridlines"); }
  void setPrintGridlines(bool) override { unsupported("setPrintGridlines"); }
  int printZoom() const override { return unsupported(0, "printZoom"); }
  void setPrintZoom(int) override { unsupported("setPrintZoom"); }
  bool getPrintFit(int*, int*) const override { return unsupported(false, "getPrintFit"); }
  void setPrintFit(int, int) override { unsupported("setPrintFit"); }
  bool landscape() const override { return unsupported(false, "landscape"); }
  void setLandscape(bool) override { unsupported("setLandscape"); }
  libxl::Paper paper() const override { return unsupported(libxl::PaperDefault, "paper"); }
  void setPaper(libxl::Paper) override { unsupported("setPaper"); }
  const wchar_t* header() const override { return unsupported<const wchar_t*>(nullptr, "header"); }
  bool setHeader(const wchar_t*, double) override { return unsupported(false, "setHeader"); }
  double headerMargin() const override { return unsupported(0.0, "headerMargin"); }
  const wchar_t* footer() const override { return unsupported<const wchar_t*>(nullptr, "footer"); }
  bool setFooter(const wchar_t*, double) override { return unsupported(false, "setFooter"); }
  double footerMargin() const override { return unsupported(0.0, "footerMargin"); }
  bool hCenter() const override { return unsupported(false, "hCenter"); }
  void setHCenter(bool) override { unsupported("setHCenter"); }
  bool vCenter() const override { return unsupported(false, "vCenter"); }
  void setVCenter(bool) override { unsupported("setVCenter"); }
  double marginLeft() const override { return unsupported(0.0, "marginLeft"); }
  void setMarginLeft(double) override { unsupported("setMarginLeft"); }
  double marginRight() const override { return unsupported(0.0, "marginRight"); }
  void setMarginRight(double) override { unsupported("setMarginRight"); }
  double marginTop() const override { return unsupported(0.0, "marginTop"); }
  void setMarginTop(double) override { unsupported("setMarginTop"); }
  double marginBottom() const override { return unsupported(0.0, "marginBottom"); }
  void setMarginBottom(double) override { unsupported("setMarginBottom"); }
  bool printRowCol() const override { return unsupported(false, "printRowCol"); }
  void setPrintRowCol(bool) override { unsupported("setPrintRowCol"); }
  int tableSize() const override { return unsupported(0, "tableSize"); }
  const wchar_t* table(int, int*, int*, int*, int*, int*, int*) const override {
    return unsupported<const wchar_t*>(nullptr, "table");
  }
  libxl::AutoFilter* autoFilter() override {
    return unsupported<libxl::AutoFilter*>(nullptr, "autoFilter");
  }
  void applyFilter() override { unsupported("applyFilter"); }
  void removeFilter() override { unsupported("removeFilter"); }
  bool addIgnoredError(int, int, int, int, libxl::IgnoredError) override {
    return unsupported(false, "addIgnoredError");
  }
  void addDataValidation(libxl::DataValidationType, libxl::DataValidationOperator, int, int, int,
                         int, const wchar_t*, const wchar_t*, bool, bool, bool, bool,
                         const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*,
                         libxl::DataValidationErrorStyle) override {
    unsupported("addDataValidation");
  }
  void addDataValidationDouble(libxl::DataValidationType, libxl::DataValidationOperator, int, int,
                               int, int, double, double, bool, bool, bool, bool, const wchar_t*,
                               const wchar_t*, const wchar_t*, const wchar_t*,
                               libxl::DataValidationErrorStyle) override {
    unsupported("addDataValidationDouble");
  }
  void removeDataValidations() override { unsupported("removeDataValidations"); }

 protected:
  explicit UnsupportedSheet(BookContext& book) : BookPart(book, "sheet") {}
  ~UnsupportedSheet() = default;

 private:
  void unsupported(std::string_view operation) const { refuse_unsupported(operation); }
  template <class T>
  T unsupported(T failure, std::string_view operation) const {
    refuse_unsupported(operation);
    return failure;
  }
};

}  // namespace engine::api
