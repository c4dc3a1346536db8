// Texts of the version before, which are bytes of a code page, as the present version has them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/system/code_page.h"

namespace engine::xls {

class OlderTexts {
 public:
  // The page as a file numbers it. Throws FileError when the system does not know it.
  void use_code_page(unsigned number);

  std::string utf8(std::string_view bytes) const;

  // Characters behind their option byte; the same behind their number in one byte or two.
  std::string characters(std::string_view bytes) const;
  std::string short_text(std::string_view bytes) const;
  std::string long_text(std::string_view bytes) const;

 private:
  // Null for UTF-16, in which some programs write all but ASCII.
  std::unique_ptr<system::CodePage> page_;
};

}  // namespace engine::xls
