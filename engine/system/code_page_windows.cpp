#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>

#include "engine/system/code_page.h"
#include "engine/text/utf16.h"

namespace engine::system {

CodePage::CodePage(unsigned number) : handle_(IsValidCodePage(number) != 0 ? number : 0) {}

CodePage::~CodePage() = default;

void CodePage::append(std::string& utf8, std::string_view bytes) const {
  if (!is_known() || bytes.empty()) return;
  const auto count =
      static_cast<int>(std::min<std::size_t>(bytes.size(), std::numeric_limits<int>::max() / 2));
  std::wstring units(static_cast<std::size_t>(count) * 2, L'\0');
  const int made = MultiByteToWideChar(static_cast<UINT>(handle_), 0, bytes.data(), count,
                                       units.data(), static_cast<int>(units.size()));
  append_utf16(utf8, {reinterpret_cast<const char*>(units.data()),
                      static_cast<std::size_t>(made) * sizeof(wchar_t)});
}

}  // namespace engine::system
