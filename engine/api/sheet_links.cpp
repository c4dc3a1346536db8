// Operations of a sheet on its hyperlinks.
#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"

namespace engine::api {

namespace {

constexpr std::size_t kMaxLink = 2079;

// The length of a link as files hold it, in which a path has escapes.
std::size_t link_length(std::string_view settled) {
  const LinkTarget parts = link_target(settled);
  if (parts.kind != LinkKind::kPath) return utf16_length(settled);
  return utf16_length(escape_path(parts.target)) + utf16_length(parts.location);
}

}  // namespace

bool SheetObject::check_links() const {
  if (sheet_->links_damage.empty()) return true;
  return book_.refuse(false, book_.contents().source + sheet_->links_damage);
}

int SheetObject::hyperlinkSize() const {
  return run(0, [&] { return static_cast<int>(contents().links.size()); });
}

const wchar_t* SheetObject::hyperlink(int index, int* rowFirst, int* rowLast, int* colFirst,
                                      int* colLast) const {
  return run(nullptr, [&]() -> const wchar_t* {
    const Links& links = contents().links;
    if (!book_.check_index("hyperlink", index, links.size())) return nullptr;
    const Link& link = links[static_cast<std::size_t>(index)];
    const wchar_t* text = book_.give(link.text);
    give_range(link.cells, rowFirst, rowLast, colFirst, colLast);
    return text;
  });
}

bool SheetObject::delHyperlink(int index) {
  return run(false, [&] {
    if (!book_.check_index("hyperlink", index, contents().links.size())) return false;
    sheet_->change(
        [&](SheetContents& contents) { contents.links.remove(static_cast<std::size_t>(index)); });
    return true;
  });
}

void SheetObject::addHyperlink(const wchar_t* hyperlink, int rowFirst, int rowLast, int colFirst,
                               int colLast) {
  run([&] {
    to_utf8(hyperlink, text_);
    if (text_.empty()) return book_.refuse(messages::empty("link"));
    std::string settled = settled_link(text_);
    for (const std::size_t length : {utf16_length(text_), link_length(settled)})
      if (length > kMaxLink) return book_.refuse(messages::too_long("link", length, kMaxLink));
    const CellRange cells{rowFirst, rowLast, colFirst, colLast};
    if (!check_range(cells)) return;
    const Links& links = contents().links;
    if (links.size() >= limits().links && !links.holds(cells))
      return book_.refuse(messages::too_many("hyperlinks", limits().links));
    if (!check_links()) return;
    sheet_->change([&](SheetContents& contents) {
      contents.links.put({cells, std::move(settled)});
    });
  });
}

}  // namespace engine::api
