#include "engine/api/book_files.h"

#include <vector>

#include "engine/api/messages.h"
#include "engine/package/compound_file.h"
#include "engine/package/file_error.h"
#include "engine/package/file_kind.h"
#include "engine/package/source.h"
#include "engine/xls/codec.h"
#include "engine/xlsx/codec.h"

namespace engine::api {

namespace {

// Every kind of file that books come from.
constexpr const Codec* kCodecs[] = {&xlsx::kCodec, &xls::kCodec};

// Refuses a file that is no book of the kind, as the predicate of a sentence about it.
[[noreturn]] void refuse_kind(const std::shared_ptr<const package::Source>& source,
                              const Codec& wanted) {
  for (const Codec* other : kCodecs)
    if (other->recognise(source))
      throw package::FileError(
          std::string("is an ").append(other->name).append(" workbook, not ").append(wanted.name));
  const package::FileKind kind = package::file_kind(*source);
  const bool is_old =
      kind == package::FileKind::OldBiff ||
      (kind == package::FileKind::CompoundFile && package::has_stream(source, "Book"));
  if (is_old) throw package::FileError("is an Excel 5.0/95 or older workbook");
  throw package::FileError(std::string("is not an ").append(wanted.name).append(" workbook"));
}

std::shared_ptr<const package::Source> open_source(const LoadRequest& request) {
  if (request.path.empty())
    return package::Source::from_bytes({request.bytes.begin(), request.bytes.end()});
  if (request.info_only) return package::Source::look_into(request.path);
  if (request.temp_path.empty()) return package::Source::from_file(request.path);
  return package::Source::from_file_via(request.path, request.temp_path);
}

}  // namespace

BookContents new_contents(const Codec& codec) {
  BookContents contents;
  contents.workbook = std::make_unique<Workbook>(codec.limits);
  contents.document = codec.begin(*contents.workbook);
  return contents;
}

std::string source_name(const LoadRequest& request) {
  return request.path.empty() ? "the workbook data " : messages::file(request.path);
}

BookContents load_contents(const Codec& codec, const LoadRequest& request) {
  BookContents contents;
  contents.source = source_name(request);
  contents.workbook = std::make_unique<Workbook>(codec.limits);
  auto source = open_source(request);
  if (!codec.recognise(source)) refuse_kind(source, codec);
  const auto scope = request.info_only ? LoadScope::kInfo : LoadScope::kEverything;
  contents.document = codec.load(std::move(source), *contents.workbook, scope);
  contents.info_only = request.info_only;
  contents.formulas_possible = true;
  contents.template_from_file = contents.workbook->is_template;
  return contents;
}

}  // namespace engine::api
