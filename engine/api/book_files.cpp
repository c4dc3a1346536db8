#include "engine/api/book_files.h"

#include <vector>

#include "engine/api/messages.h"
#include "engine/package/source.h"
#include "engine/xlsx/document.h"

namespace engine::api {

namespace {

// Stands behind a book that no file is behind: it has nothing to read and nothing to carry.
class NoDocument final : public Document {
 public:
  void read_sheet(Workbook&, Sheet&) override {}
  std::vector<Table> tables(const Sheet&) const override { return {}; }
  std::vector<formula::TableChange> copy_sheet(Workbook&, const Sheet&, Sheet&) override {
    return {};
  }
  void remove_sheet(Workbook&, Sheet&, const FormulaEdit&) override {}
  void edit_formulas(Workbook&, const FormulaEdit&) override {}
  void save(const Workbook&, const SaveOptions&, package::Output&) override {}
};

BookContents new_xls_contents() {
  BookContents contents;
  contents.workbook = std::make_unique<Workbook>(Grid{65536, 256});
  FontRecord font;
  font.name = "Arial";
  font.size = 10;
  contents.workbook->styles = Styles(std::move(font));
  contents.workbook->styles.limits = {382, 210, 15};
  contents.document = std::make_unique<NoDocument>();
  return contents;
}

std::shared_ptr<const package::Source> open_source(const LoadRequest& request) {
  if (request.path.empty())
    return package::Source::from_bytes({request.bytes.begin(), request.bytes.end()});
  if (request.temp_path.empty()) return package::Source::from_file(request.path);
  return package::Source::from_file_via(request.path, request.temp_path);
}

}  // namespace

BookContents new_contents(BookKind kind) {
  if (kind == BookKind::kXls) return new_xls_contents();
  BookContents contents;
  contents.workbook = std::make_unique<Workbook>(Grid());
  contents.document = xlsx::Document::make_new(*contents.workbook);
  return contents;
}

std::string source_name(const LoadRequest& request) {
  return request.path.empty() ? "the workbook data " : messages::file(request.path);
}

BookContents load_contents(const LoadRequest& request) {
  BookContents contents;
  contents.source = source_name(request);
  contents.workbook = std::make_unique<Workbook>(Grid());
  const auto scope = request.info_only ? xlsx::LoadScope::kInfo : xlsx::LoadScope::kEverything;
  contents.document = xlsx::Document::load(open_source(request), *contents.workbook, scope);
  contents.info_only = request.info_only;
  contents.formulas_possible = true;
  contents.template_from_file = contents.workbook->is_template;
  return contents;
}

}  // namespace engine::api
