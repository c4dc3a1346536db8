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
