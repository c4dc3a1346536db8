#include "engine/xls/codec.h"

#include "engine/package/compound_file.h"
#include "engine/package/file_error.h"
#include "engine/package/file_kind.h"
#include "engine/workbook/workbook.h"

namespace engine::xls {

namespace {

constexpr FileEnding kEndings[] = {{".xls", false, {}}, {".xlt", true, {}}};

constexpr Limits kLimits = {
    .grid = {65536, 256},
    .author = 54,
    .arguments = 30,
    .password = 15,
    .password_form = PasswordForm::kShortHash,
    .styles = {.number_formats = 210, .last_number_format = 382, .indent = 15},
};

// Books of this kind live in memory only: there is no file to read, to carry from or to write.
class Document final : public engine::Document {
 public:
  void save(const Workbook& /*book*/, const SaveOptions& /*options*/,
            package::Output& /*output*/) override {
    throw package::FileError("cannot be written: .xls workbooks live in memory only");
  }
};

std::unique_ptr<engine::Document> begin(Workbook& book) {
  FontRecord font;
  font.name = "Arial";
  font.size = 10;
  book.styles = Styles(std::move(font));
  book.styles.limits = book.limits.styles;
  book.new_row_height = 12.75;
  PageSetup& page = book.new_page;
  page.left_margin = page.right_margin = 0.75;
  page.top_margin = page.bottom_margin = 1;
  page.header_margin = page.footer_margin = 0.5;
  return std::make_unique<Document>();
}

bool recognise(const std::shared_ptr<const package::Source>& source) {
  return package::file_kind(*source) == package::FileKind::CompoundFile &&
         package::has_stream(source, "Workbook");
}

}  // namespace

const Codec kCodec = {".xls", kEndings, 0x0600, kLimits, begin, recognise, nullptr};

}  // namespace engine::xls
