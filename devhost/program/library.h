// A file of code that is loaded while the program runs.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace devhost {

// Its text is what the system says.
class LibraryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Unloaded with its owner.
class Library {
 public:
  explicit Library(const std::filesystem::path& file);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Null when the library shows nothing of the name.
  template <typename Function>
  Function find(const char* name) const {
    // A function's address comes as a pointer to an object; the systems promise that this is right.
    return reinterpret_cast<Function>(find_symbol(name));
  }

  // What a host tells a plug-in that it is: the system's module, or the path where there is none.
  void* instance(const std::string& path) const;

 private:
  void* find_symbol(const char* name) const;

  void* handle_;
};

}  // namespace devhost
