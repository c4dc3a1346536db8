// Containers of the host: lists of typed streams of bytes.
//
// A stream is named by a four-character code: "FILE" holds a file, "PNGf" or "JPEG" an image,
// "FNAM" the file's name, "SIZE" an image's width and height. Streams are found by position or by
// type.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/owner.h"
#include "platform/fmwrapper/quad_char.h"
#include "platform/fmwrapper/text.h"

namespace fmx {
class BinaryData;
}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::BinaryData* FM_BinaryData_Constructor1(fmx::ErrorRecord* error);
fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData* other, fmx::ErrorRecord* error);
void FM_BinaryData_Delete(fmx::BinaryData* data, fmx::ErrorRecord* error);
std::int32_t FM_BinaryData_GetCount(const fmx::BinaryData* data, fmx::ErrorRecord* error);
std::uint32_t FM_BinaryData_GetIndex(const fmx::BinaryData* data, const fmx::QuadChar* type,
                                     fmx::ErrorRecord* error);
void FM_BinaryData_GetType(const fmx::BinaryData* data, std::uint32_t index, fmx::QuadChar* type,
                           fmx::ErrorRecord* error);
std::uint32_t FM_BinaryData_GetSize(const fmx::BinaryData* data, std::uint32_t index,
                                    fmx::ErrorRecord* error);
void FM_BinaryData_GetData(const fmx::BinaryData* data, std::uint32_t index, std::uint32_t offset,
                           std::uint32_t amount, void* buffer, fmx::ErrorRecord* error);
void FM_BinaryData_Add(fmx::BinaryData* data, const fmx::QuadChar* type, std::uint32_t amount,
                       const void* bytes, fmx::ErrorRecord* error);
void FM_BinaryData_AddFNAMData(fmx::BinaryData* data, const fmx::Text* file_name,
                               fmx::ErrorRecord* error);
void FM_BinaryData_AddSIZEData(fmx::BinaryData* data, std::int16_t width, std::int16_t height,
                               fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

class BinaryData {
 public:
  static constexpr std::uint32_t kNoStream = 0xFFFFFFFF;

  static BinaryData* create() { return call(FM_BinaryData_Constructor1); }
  // A copy; the holder takes the original's address: BinaryDataUniquePtr copy(&original).
  static BinaryData* create(const BinaryData* other) {
    return call(FM_BinaryData_Constructor2, other);
  }
  static void destroy(BinaryData* data, ErrorRecord* error) { FM_BinaryData_Delete(data, error); }

  std::int32_t GetCount() const { return call(FM_BinaryData_GetCount, this); }
  // The first stream of the type, or kNoStream.
  std::uint32_t GetIndex(const QuadChar& type) const {
    return call(FM_BinaryData_GetIndex, this, &type);
  }
  void GetType(std::uint32_t index, QuadChar& type) const {
    call(FM_BinaryData_GetType, this, index, &type);
  }
  std::uint32_t GetSize(std::uint32_t index) const {
    return call(FM_BinaryData_GetSize, this, index);
  }
  // Fails when the range reaches past the stream's end.
  void GetData(std::uint32_t index, std::uint32_t offset, std::uint32_t amount,
               void* buffer) const {
    call(FM_BinaryData_GetData, this, index, offset, amount, buffer);
  }

  // New streams are put at the end.
  void Add(const QuadChar& type, std::uint32_t amount, const void* bytes) {
    call(FM_BinaryData_Add, this, &type, amount, bytes);
  }
  void AddFNAMData(const Text& file_name) { call(FM_BinaryData_AddFNAMData, this, &file_name); }
  void AddSIZEData(std::int16_t width, std::int16_t height) {
    call(FM_BinaryData_AddSIZEData, this, width, height);
  }

 protected:
  BinaryData() = default;
  BinaryData(const BinaryData&) = default;
  BinaryData& operator=(const BinaryData&) = default;
  ~BinaryData() = default;
};

using BinaryDataUniquePtr = UniquePtr<BinaryData>;

}  // namespace fmx
