// Texts in the code pages of systems before Unicode, by the numbers that files call them by.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace engine::system {

class CodePage {
 public:
  // One that the system does not know converts nothing.
  explicit CodePage(unsigned number);
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;
  ~CodePage();

  bool is_known() const { return handle_ != 0; }

  // Bytes that are no character become one that stands for them, which one depends on the system.
  void append(std::string& utf8, std::string_view bytes) const;

 private:
  std::uintptr_t handle_ = 0;  // the system's
};

}  // namespace engine::system
