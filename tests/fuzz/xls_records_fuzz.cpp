// Records of a stream: taken one by one, joined, and field by field, they are the same bytes,
// however the stream lies in its file.
#include <cstdlib>
#include <string>

#include "engine/package/compound_file.h"
#include "engine/xls/record_reader.h"
#include "tests/fuzz/package_entry.h"
#include "tests/fuzz/xls_file.h"

namespace {

using namespace engine;  // NOLINT(google-build-using-namespace): a target of one file
using xls::ContinuedData;
using xls::RecordReader;

// Each way of reading tells the bytes of records with those that continue them.
std::string one_by_one(RecordReader& reader) {
  std::string text(reader.data());
  while (reader.next_part()) text += reader.data();
  return text;
}

std::string joined(RecordReader& reader) { return std::string(reader.whole_data()); }

std::string by_fields(RecordReader& reader) {
  std::string text;
  for (ContinuedData data(reader); !data.at_end();) text += static_cast<char>(data.take8());
  return text;
}

std::string all(const package::CompoundStream& stream, std::string (*read)(RecordReader&)) {
  std::string text;
  RecordReader reader(stream, 0);
  try {
    while (reader.next()) {
      text += std::to_string(reader.id());
      text += read(reader);
    }
  } catch (const package::FileError& error) {
    text += error.what();
  }
  return text;
}

// What a record's first bytes ask for.
void take_texts(const package::CompoundStream& stream) {
  RecordReader reader(stream, 0);
  std::string text;
  while (reader.next()) {
    for (ContinuedData data(reader); !data.at_end();) {
      const std::size_t count = data.take8();
      switch (count % 4) {
        case 0:
          data.skip(count);
          break;
        case 1:
          text = data.take_plain(count);
          break;
        default:
          data.take_characters(count, count % 4 == 2, text);
      }
    }
  }
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  const std::string file = xls_file(bytes);
  const package::CompoundFile compound(package::Source::from_bytes({file.begin(), file.end()}));
  const package::CompoundEntry* entry = compound.find_stream("Workbook");
  if (!entry) return;
  const package::CompoundStream stream = compound.open(*entry);
  const std::string text = all(stream, one_by_one);
  if (all(stream, joined) != text || all(stream, by_fields) != text) std::abort();
  take_texts(stream);
}
