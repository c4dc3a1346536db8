#include "engine/xls/codec.h"

#include "engine/package/compound_file.h"
#include "engine/package/file_kind.h"
#include "engine/xls/document.h"

namespace engine::xls {

namespace {

constexpr FileEnding kEndings[] = {{".xls", false, {}}, {".xlt", true, {}}};

constexpr Limits kLimits = {
    .grid = {65536, 256},
    .author = 54,
    .arguments = 30,
    .later_formulas = false,
    .password = 15,
    .password_form = PasswordForm::kShortHash,
    .styles = {.number_formats = 210, .last_number_format = 382, .indent = 15},
    .gif_pictures = false,
};

bool recognise(const std::shared_ptr<const package::Source>& source) {
  return package::file_kind(*source) == package::FileKind::CompoundFile &&
         package::has_stream(source, kStreams);
}

std::unique_ptr<engine::Document> begin(Workbook& book) { return Document::make_new(book); }

std::unique_ptr<engine::Document> load(std::shared_ptr<const package::Source> source,
                                       Workbook& book, LoadScope scope) {
  return Document::load(std::move(source), book, scope);
}

}  // namespace

const Codec kCodec = {".xls", kEndings, 0x0600, kLimits, begin, recognise, load};

}  // namespace engine::xls
