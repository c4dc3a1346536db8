// Containers: host values made of typed streams.
//
// A file is a stream "FILE", an image a stream of its format as "PNGf". Attribute streams tell the
// file name ("FNAM"), the size in pixels ("SIZE") and the resolution ("DPI_"). The payload of a
// stream "MAIN" is the type of the stream that holds the content.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fmwrapper/fmwrapper.h"

// A four-character code of the host.
class KelQuadChar {
 public:
  // Throws std::out_of_range unless the type has exactly four bytes.
  explicit KelQuadChar(const std::string& type);
  // The type of a stream.
  KelQuadChar(const fmx::BinaryData& container, std::uint32_t index);

  fmx::QuadCharUniquePtr get_type() const;
  // UTF-8; the four bytes are Latin-1.
  std::string as_string() const;

  // Compares the first four bytes.
  bool is_type(const std::string& type) const;
  bool is_file() const;
  bool is_zlib() const;
  bool is_jpeg() const;
  bool is_fork() const;
  bool is_image() const;
  bool is_image_attribute() const;

 private:
  fmx::QuadCharUniquePtr code_;
};

// An encoded image on its way to a container.
class KelImage {
 public:
  // A size of -1 is unknown.
  KelImage(const std::vector<unsigned char>& image, int image_width, int image_height)
      : bytes(image), width(image_width), height(image_height) {}
  KelImage(const KelImage&) = default;
  KelImage& operator=(const KelImage&) = default;
  virtual ~KelImage() = default;

  virtual std::string get_type() const { return type; }

  std::vector<unsigned char> bytes;
  // The stream type, set by the owner before the image is stored.
  std::string type;
  int width;
  int height;
};

// Positions of streams, or fmx::BinaryData::kNoStream.
std::uint32_t StreamIndex(const fmx::BinaryData& container, const std::string& type);
// Follows "MAIN" once to the stream that it names.
std::uint32_t IndexForStream(const fmx::BinaryData& container, const std::string& type);
// The stream that holds the content: the target of "MAIN", "FILE", "ZLIB", "snd ", else the first
// one that is neither an attribute nor JPEG, else the last JPEG.
std::uint32_t PreferredContainerType(const fmx::BinaryData& container);

bool StreamIsCompressed(const fmx::BinaryData& container);

std::vector<char> DataAsVectorChar(const fmx::BinaryData& container, std::uint32_t index);

// Stores a container: the name, for an image of known size that size, and the bytes, of which the
// host's copy is the only one made. Without a name the bytes are stored as text. Throws
// std::out_of_range for a type that has not four bytes.
void SetResult(const std::string& fileName, std::string_view bytes, const std::string& type,
               short width, short height, fmx::Data& result);
void SetResult(const std::string& fileName, const std::vector<char>& bytes, const std::string& type,
               short width, short height, fmx::Data& result);
void SetResult(const std::string& fileName, KelImage& image, fmx::Data& result);
// As a stream "FILE".
void SetResult(const std::string& fileName, const std::vector<unsigned char>& bytes,
               fmx::Data& result);
