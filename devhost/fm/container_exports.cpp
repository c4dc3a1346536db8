// The FM_BinaryData_* functions.
#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "devhost/fm/guard.h"
#include "devhost/fm/values.h"
#include "platform/fmwrapper/binary_data.h"

using devhost::Bytes;
using devhost::ContainerObject;
using devhost::guarded;
using devhost::object_of;
using devhost::QuadCharObject;
using devhost::Stream;
using devhost::TextObject;

namespace {

const Stream& stream_at(const fmx::BinaryData* data, std::uint32_t index) {
  return object_of<ContainerObject>(data).streams.at(index);
}

}  // namespace

fmx::BinaryData* FM_BinaryData_Constructor1(fmx::ErrorRecord* error) {
  return guarded(error, [] { return new ContainerObject; });
}

fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData* other, fmx::ErrorRecord* error) {
  return guarded(error, [&] { return new ContainerObject(object_of<ContainerObject>(other)); });
}

void FM_BinaryData_Delete(fmx::BinaryData* data, fmx::ErrorRecord* error) {
  guarded(error, [&] { delete static_cast<ContainerObject*>(data); });
}

std::int32_t FM_BinaryData_GetCount(const fmx::BinaryData* data, fmx::ErrorRecord* error) {
  error->code = fmx::ErrorRecord::kNone;
  return static_cast<std::int32_t>(object_of<ContainerObject>(data).streams.size());
}

std::uint32_t FM_BinaryData_GetIndex(const fmx::BinaryData* data, const fmx::QuadChar* type,
                                     fmx::ErrorRecord* error) {
  return guarded(error, [&] {
    const auto& container = object_of<ContainerObject>(data);
    const Stream* stream = container.find(object_of<QuadCharObject>(type).bytes);
    if (stream == nullptr) return fmx::BinaryData::kNoStream;
    return static_cast<std::uint32_t>(stream - container.streams.data());
  });
}

void FM_BinaryData_GetType(const fmx::BinaryData* data, std::uint32_t index, fmx::QuadChar* type,
                           fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<QuadCharObject>(type).bytes = stream_at(data, index).type; });
}

std::uint32_t FM_BinaryData_GetSize(const fmx::BinaryData* data, std::uint32_t index,
                                    fmx::ErrorRecord* error) {
  return guarded(error,
                 [&] { return static_cast<std::uint32_t>(stream_at(data, index).bytes->size()); });
}

void FM_BinaryData_GetData(const fmx::BinaryData* data, std::uint32_t index, std::uint32_t offset,
                           std::uint32_t amount, void* buffer, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    const Bytes& bytes = *stream_at(data, index).bytes;
    if (offset > bytes.size() || amount > bytes.size() - offset) {
      throw std::out_of_range("past the end of the stream");
    }
    std::copy_n(bytes.begin() + offset, amount, static_cast<unsigned char*>(buffer));
  });
}

void FM_BinaryData_Add(fmx::BinaryData* data, const fmx::QuadChar* type, std::uint32_t amount,
                       const void* bytes, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    const auto* const first = static_cast<const unsigned char*>(bytes);
    object_of<ContainerObject>(data).add(object_of<QuadCharObject>(type).bytes,
                                         Bytes(first, first + amount));
  });
}

void FM_BinaryData_AddFNAMData(fmx::BinaryData* data, const fmx::Text* file_name,
                               fmx::ErrorRecord* error) {
  guarded(error, [&] {
    object_of<ContainerObject>(data).add_file_name(object_of<TextObject>(file_name).units);
  });
}

void FM_BinaryData_AddSIZEData(fmx::BinaryData* data, std::int16_t width, std::int16_t height,
                               fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<ContainerObject>(data).add_size(width, height); });
}
