// Where the contents of a book come from: nothing, a file, or bytes.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "engine/api/book_context.h"

namespace engine::api {

// What a load shall read, from a file or, without a path, from bytes.
struct LoadRequest {
  std::string path;
  std::string temp_path;  // keeps a file's bytes instead of memory; empty: memory does
  std::span<const char> bytes;
  bool info_only = false;
  std::optional<int> sheet;       // the only sheet to read
  std::optional<CellRange> rows;  // its only rows
};

BookContents new_contents(const Codec& codec);

// How messages call the file of a request.
std::string source_name(const LoadRequest& request);

// The contents of a file of the codec's kind, no sheet read yet. Throws FileError.
BookContents load_contents(const Codec& codec, const LoadRequest& request);

}  // namespace engine::api
