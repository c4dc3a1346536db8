// Unique owners of host objects.
//
// Objects live in the host: it makes them and it deletes them. A holder makes its object when it is
// declared and gives it back when it goes out of scope: fmx::TextUniquePtr text; text->Assign(...).
#pragma once

#include <memory>
#include <utility>

#include "platform/fmwrapper/error.h"

namespace fmx {

template <typename Object>
struct Deleter {
  // A failure to delete cannot be acted upon.
  void operator()(Object* object) const noexcept {
    ErrorRecord ignored;
    Object::destroy(object, &ignored);
  }
};

// Object has `create`, overloaded as its constructors are, and `destroy`.
template <typename Object>
class UniquePtr : public std::unique_ptr<Object, Deleter<Object>> {
 public:
  template <typename... Arguments>
  explicit UniquePtr(Arguments... arguments)
      : std::unique_ptr<Object, Deleter<Object>>(Object::create(arguments...)) {}
  UniquePtr(UniquePtr&&) noexcept = default;
  UniquePtr& operator=(UniquePtr&&) noexcept = default;
};

}  // namespace fmx
