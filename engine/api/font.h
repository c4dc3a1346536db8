// Fonts as the interface gives them out: live views of the book's list.
#pragma once

#include <cstdint>

#include "engine/api/book_context.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class FontObject final : public libxl::Font, public BookPart {
 public:
  FontObject(BookContext& book, std::uint32_t index) : BookPart(book, "font"), index_(index) {}

  std::uint32_t index() const { return index_; }

  int size() const override;
  void setSize(int size) override;
  bool italic() const override;
  void setItalic(bool italic) override;
  bool strikeOut() const override;
  void setStrikeOut(bool strikeOut) override;
  libxl::Color color() const override;
  void setColor(libxl::Color color) override;
  bool bold() const override;
  void setBold(bool bold) override;
  libxl::Script script() const override;
  void setScript(libxl::Script script) override;
  libxl::Underline underline() const override;
  void setUnderline(libxl::Underline underline) override;
  const wchar_t* name() const override;
  bool setName(const wchar_t* name) override;

 private:
  const FontRecord& record() const { return book_.workbook().styles.font(index_); }
  FontRecord& change(unsigned aspects) {
    return book_.workbook().styles.change_font(index_, aspects);
  }

  const std::uint32_t index_;
};

}  // namespace engine::api
