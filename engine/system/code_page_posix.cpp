#include <iconv.h>

#include <array>
#include <cerrno>
#include <new>

#include "engine/system/code_page.h"

namespace engine::system {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Those of the Macintosh have names of their own.
struct Named {
  unsigned number;
  const char* name;
};
constexpr Named kNamed[] = {
    {10000, "MACINTOSH"},    {10001, "SHIFT_JIS"}, {10002, "BIG5"},   {10003, "EUC-KR"},
    {10007, "MAC-CYRILLIC"}, {10008, "EUC-CN"},    {10017, "MAC-UK"}, {10029, "MAC-CENTRALEUROPE"},
    {10079, "MAC-IS"},       {20127, "US-ASCII"},  {20866, "KOI8-R"}, {28591, "ISO-8859-1"},
};

std::string name_of(unsigned number) {
  for (const Named& one : kNamed)
    if (one.number == number) return one.name;
  return "CP" + std::to_string(number);
}

// The system's handle as it gives it.
iconv_t converter(std::uintptr_t handle) {
  return reinterpret_cast<iconv_t>(handle);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

CodePage::CodePage(unsigned number) {
  auto* const opened = iconv_open("UTF-8", name_of(number).c_str());
  if (opened != converter(UINTPTR_MAX)) handle_ = reinterpret_cast<std::uintptr_t>(opened);
  else if (errno == ENOMEM) throw std::bad_alloc();
}

CodePage::~CodePage() {
  if (handle_ != 0) iconv_close(converter(handle_));
}

void CodePage::append(std::string& utf8, std::string_view bytes) const {
  if (!is_known()) return;
  std::array<char, 1024> buffer{};
  char* in = const_cast<char*>(bytes.data());  // only read, whatever its type says
  std::size_t left = bytes.size();
  while (left > 0) {
    char* out = buffer.data();
    std::size_t room = buffer.size();
    const bool is_done =
        iconv(converter(handle_), &in, &left, &out, &room) != static_cast<std::size_t>(-1);
    utf8.append(buffer.data(), out);
    if (is_done || errno == E2BIG) continue;
    utf8 += kReplacement;
    ++in;
    --left;
  }
  // Some keep the last character back, for the one behind it may combine with it.
  char* out = buffer.data();
  std::size_t room = buffer.size();
  iconv(converter(handle_), nullptr, nullptr, &out, &room);
  utf8.append(buffer.data(), out);
}

}  // namespace engine::system
