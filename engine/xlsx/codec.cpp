#include "engine/xlsx/codec.h"

#include "engine/package/compound_file.h"
#include "engine/package/file_kind.h"
#include "engine/xlsx/document.h"

namespace engine::xlsx {

namespace {

constexpr FileEnding kEndings[] = {
    {".xlsx", false, false}, {".xlsm", false, true}, {".xltx", true, false}, {".xltm", true, true}};

std::unique_ptr<engine::Document> begin(Workbook& book) { return Document::make_new(book); }

// A package, or one that a password protects: that is a stream of a compound file.
bool recognise(const std::shared_ptr<const package::Source>& source) {
  constexpr std::string_view kEncrypted[] = {"EncryptedPackage"};
  const package::FileKind kind = package::file_kind(*source);
  return kind == package::FileKind::Zip ||
         (kind == package::FileKind::CompoundFile && package::has_stream(source, kEncrypted));
}

std::unique_ptr<engine::Document> load(std::shared_ptr<const package::Source> source,
                                       Workbook& book, LoadScope scope) {
  return Document::load(std::move(source), book, scope);
}

}  // namespace

const Codec kCodec = {".xlsx", kEndings, 0, Limits(), begin, recognise, load};

}  // namespace engine::xlsx
