// A plug-in's folder with a table of localized strings.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/fmwrapper/fmwrapper.h"

namespace calls {

// The folder goes with the object. The call block is the current one while the object lives.
class StringTable {
 public:
  // Entries as `"1" = "text";`.
  explicit StringTable(const std::string& entries) {
    const auto folder = root_ / "Resources" / "en.lproj";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "Vornelix.strings") << entries;
    block_.instance = plugin_.data();
    gFMX_ExternCallPtr = &block_;
  }
  StringTable(const StringTable&) = delete;
  StringTable& operator=(const StringTable&) = delete;
  ~StringTable() {
    gFMX_ExternCallPtr = nullptr;
    std::filesystem::remove_all(root_);
  }

  fmx::CallBlock& block() { return block_; }

 private:
  static std::filesystem::path fresh_folder() {
    static int count = 0;
    return std::filesystem::temp_directory_path() /
           ("strings-" + std::to_string(getpid()) + "-" + std::to_string(++count));
  }

  std::filesystem::path root_ = fresh_folder();
  std::string plugin_ = (root_ / "Vornelix.fmx").string();
  fmx::CallBlock block_ = {};
};

}  // namespace calls
