// The bytes of a file, taken over.
//
// A source is complete once it exists: what others do to the file afterwards, changing, cutting or
// deleting it, does not reach us. That is why nothing is mapped into memory. The bytes lie in
// memory, or in a temporary file that is read through its open handle and goes with it.
// Only a source for a short look reads the file itself.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/system/file.h"
#include "engine/system/large_pages.h"

namespace engine::package {

class Source {
 public:
  // Paths are UTF-8. Throws FileError "cannot be opened: …", or "cannot be read: …" once it is
  // open.
  static std::shared_ptr<const Source> from_bytes(std::vector<char> bytes);
  static std::shared_ptr<const Source> from_file(const std::string& path);

  // Copies the file to `temp_path`, which must not exist or be empty. Failures there throw
  // FileTargetError, as they concern the temporary file.
  static std::shared_ptr<const Source> from_file_via(const std::string& path,
                                                     const std::string& temp_path);

  // Reads no more of the file than is asked for, when it is asked for; one that others cut
  // meanwhile cannot be read. For a caller that is done with it at once.
  static std::shared_ptr<const Source> look_into(const std::string& path);

  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() = default;

  std::uint64_t size() const { return size_; }

  // Fills `into` from `offset`; reaching beyond the end is damage. Safe from several threads.
  void read(std::uint64_t offset, std::span<char> into) const;

  // All bytes, or empty when they lie in a file.
  std::string_view view() const { return view_; }

 private:
  Source() = default;

  std::vector<char> bytes_;
  system::Items<char> block_;
  system::File file_;
  std::string_view view_;
  std::uint64_t size_ = 0;
};

}  // namespace engine::package
