#include "engine/api/book_files.h"

#include <vector>

#include "engine/api/messages.h"
#include "engine/package/file_error.h"
#include "engine/package/file_kind.h"
#include "engine/package/source.h"
#include "engine/xls/codec.h"
#include "engine/xlsx/codec.h"

namespace engine::api {

namespace {

// Every kind of file that books come from.
constexpr const Codec* kCodecs[] = {&xlsx::kCodec, &xls::kCodec};

// Books of kinds that nobody here reads.
struct OtherKind {
  package::FileKind kind;
  const char* text;
};
constexpr OtherKind kOtherKinds[] = {
    {package::FileKind::Excel2, "is an Excel 2 worksheet"},
    {package::FileKind::Excel3, "is an Excel 3.0 worksheet"},
    {package::FileKind::Excel4, "is an Excel 4.0 worksheet or workbook"},
    {package::FileKind::BareStream, "is the stream of a workbook without the file around it"},
};

// Refuses a file that is no book of the kind, as the predicate of a sentence about it.
[[noreturn]] void refuse_kind(const std::shared_ptr<const package::Source>& source,
                              const Codec& wanted) {
  for (const Codec* other : kCodecs)
    if (other->recognise(source))
      throw package::FileError(
          std::string("is an ").append(other->name).append(" workbook, not ").append(wanted.name));
  const package::FileKind found = package::file_kind(*source);
  for (const auto& [kind, text] : kOtherKinds)
    if (kind == found) throw package::FileError(text);
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
