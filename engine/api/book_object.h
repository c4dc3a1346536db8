// A workbook as the interface shows it: what the two factories make.
#pragma once

#include <memory>
#include <string>

#include "engine/api/book_context.h"
#include "engine/api/book_files.h"
#include "engine/api/messages.h"
#include "engine/package/output.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class BookObject final : public libxl::Book {
 public:
  explicit BookObject(const Codec& codec) : book_(codec, new_contents(codec)) {}

  bool load(const wchar_t* path, const wchar_t* tempFile) override;
  bool loadRaw(const char* data, unsigned size, int sheetIndex, int firstRow, int lastRow) override;
  bool loadSheet(const wchar_t* path, int sheetIndex, const wchar_t* tempFile) override;
  bool loadPartially(const wchar_t* path, int sheetIndex, int firstRow, int lastRow,
                     const wchar_t* tempFile) override;
  bool loadInfo(const wchar_t* path) override;
  bool save(const wchar_t* path, bool useTempFile) override;
  bool saveRaw(const char** data, unsigned* size) override;
  const char* errorMessage() const override { return book_.message(); }
  void release() override { delete this; }

  libxl::Sheet* addSheet(const wchar_t* name, libxl::Sheet* initSheet) override;
  libxl::Sheet* insertSheet(int index, const wchar_t* name, libxl::Sheet* initSheet) override;
  libxl::Sheet* getSheet(int index) const override;
  const wchar_t* getSheetName(int index) const override;
  libxl::SheetType sheetType(int index) const override;
  bool moveSheet(int srcIndex, int dstIndex) override;
  bool delSheet(int index) override;
  int sheetCount() const override;
  int activeSheet() const override;
  void setActiveSheet(int index) override;

  libxl::Format* addFormat(libxl::Format* init) override;
  libxl::Font* addFont(libxl::Font* init) override;
  int addCustomNumFormat(const wchar_t* numFormat) override;
  const wchar_t* customNumFormat(int fmt) override;
  libxl::Format* format(int index) override;
  int formatSize() override;
  libxl::Font* font(int index) override;
  int fontSize() override;
  const wchar_t* defaultFont(int* fontSize) override;
  void setDefaultFont(const wchar_t* fontName, int fontSize) override;

  int pictureSize() const override;
  libxl::PictureType getPicture(int index, const char** data, unsigned* size) const override;
  int addPicture(const wchar_t* path) override;
  int addPicture2(const char* data, unsigned size) override;
  int addPictureAsLink(const wchar_t* path, bool insert) override;

  double datePack(int year, int month, int day, int hour, int min, int sec,
                  int msec) const override;
  bool dateUnpack(double value, int* year, int* month, int* day, int* hour, int* min, int* sec,
                  int* msec) const override;
  libxl::Color colorPack(int red, int green, int blue) override;
  void colorUnpack(libxl::Color color, int* red, int* green, int* blue) override;

  bool rgbMode() const override;
  void setRgbMode(bool rgbMode) override;
  bool refR1C1() const override;
  void setRefR1C1(bool refR1C1) override;
  int biffVersion() const override;
  bool isDate1904() const override;
  void setDate1904(bool date1904) override;
  bool isTemplate() const override;
  void setTemplate(bool tmpl) override;
  bool setLocale(const char* locale) override;

 private:
  ~BookObject() = default;

  // Every operation is a run(failure, body) or, without a result, a run(body); book_.run_always
  // those that work on a book of which only the information was loaded, too.
  template <class... Operation>
  decltype(auto) run(Operation&&... operation) const {
    return book_.run(nullptr, std::forward<Operation>(operation)...);
  }
  bool check_sheet_index(int index) const;
  bool check_original(const libxl::Sheet* original, const Sheet** sheet) const;
  bool check_savable() const;
  // The file of a load, and the one that keeps its bytes if one shall.
  bool take_paths(const wchar_t* path, const wchar_t* temp_path, LoadRequest* request) const;
  // The rows of a partial load, cut to the grid.
  bool take_rows(int first, int last, std::optional<CellRange>* rows) const;

  // Reads a picture of a file. False, with the message set, when it is none that the book takes.
  bool take_picture(const wchar_t* path, std::string* file, Picture* picture) const;
  bool check_kind(PictureKind kind) const;
  int add(Picture picture);

  bool load_with(const LoadRequest& request);
  // Reads the one sheet that a partial load asks for and closes the others.
  bool choose_sheet(const LoadRequest& request, BookContents& contents);
  bool values_may_be_old() const;
  libxl::Sheet* insert(std::size_t position, const wchar_t* name, const libxl::Sheet* original);

  // Operations that only ask are const in the interface but set the message and may read a sheet.
  mutable BookContext book_;
  std::unique_ptr<package::MemoryOutput> saved_;
};

}  // namespace engine::api
