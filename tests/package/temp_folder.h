// A folder for one test, removed with all that is in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace engine::package::testing {

class TempFolder {
 public:
  TempFolder() {
    const auto name = "package_test_" + std::to_string(std::random_device()());
    path_ = (std::filesystem::temp_directory_path() / name).string();
    if (!std::filesystem::create_directory(path_)) throw std::runtime_error("no temporary folder");
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + '/' + name; }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(file(name), std::ios::binary) << text;
  }
  std::string read(const std::string& name) const {
    std::ifstream in(file(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      found.push_back(entry.path().filename().string());
    }
    return found;
  }

 private:
  std::string path_;
};

}  // namespace engine::package::testing
