// What the drawings of a loaded book share: its pictures, and which numbers their shapes have.
//
//   group
//     drawing list    the highest shape number, counts of shapes and drawings, clusters
//     store           one entry a picture: kind, digest, uses, and the bytes of the picture
//     ...             colours and properties
//
// Shapes have numbers, given out in clusters of 1,024 that belong to one drawing each. The pictures
// stay where they lie in the stream, cut by records as they are, until somebody asks for one.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/compound_file.h"
#include "engine/workbook/pictures.h"
#include "engine/xls/cipher.h"
#include "engine/xls/record_reader.h"

namespace engine::xls {

inline constexpr std::uint32_t kShapesInCluster = 1024;

// Bytes that lie in several records.
class ScatteredBytes {
 public:
  void append(std::uint64_t place, std::size_t size);

  std::uint64_t size() const { return size_; }
  // The bytes must be there.
  void read(const package::CompoundStream& stream, const std::optional<Cipher>& cipher,
            std::uint64_t at, std::span<char> into) const;

 private:
  struct Run {
    std::uint64_t at;
    std::uint64_t place;  // in the stream
  };

  std::vector<Run> runs_;
  std::uint64_t size_ = 0;
};

struct ShapeCluster {
  std::uint32_t drawing = 0;
  std::uint32_t shapes = 0;  // numbers that are given out
};

// An entry of the store.
struct StoredPicture {
  std::uint64_t at = 0;  // of its head; that of the picture if it stands there without an entry
  std::uint64_t blip = 0;
  std::uint64_t blip_size = 0;  // 0: the entry is empty
  std::uint32_t uses = 0;
};

// What sheets that leave the book take along: drawings, those of charts included, the shapes in
// them, and the stored pictures that these show, from 1, once for each.
struct GoneDrawings {
  std::uint32_t drawings = 0;
  std::uint32_t shapes = 0;
  std::vector<std::uint32_t> pictures;
};

class DrawingGroup {
 public:
  // Takes a record with those that continue it.
  void take(RecordReader& reader);
  // Finds what is in what was taken. `stream` outlives this.
  void look_into(const package::CompoundStream& stream, const std::optional<Cipher>& cipher);

  // Whether there is one that is understood; else nothing can be added to it.
  bool exists() const { return end_ != 0; }
  bool is_damaged() const { return bytes_.size() != 0 && end_ == 0; }

  std::uint32_t highest_shape() const { return highest_shape_; }
  std::uint32_t shapes() const { return shapes_; }
  std::uint32_t drawings() const { return drawings_; }
  const std::vector<ShapeCluster>& clusters() const { return clusters_; }
  const std::vector<StoredPicture>& pictures() const { return pictures_; }

  // The bytes of a picture as a file would have them. Throws FileError.
  std::string picture(std::size_t index) const;

  // Places in its bytes.
  std::pair<std::uint64_t, std::uint64_t> list() const { return {list_at_, list_end_}; }
  std::pair<std::uint64_t, std::uint64_t> store() const { return {store_at_, store_end_}; }
  std::uint64_t end() const { return end_; }
  std::string bytes(std::uint64_t at, std::uint64_t size) const;

  void drop(const GoneDrawings& gone);
  const GoneDrawings& gone() const { return gone_; }

 private:
  void look_at_list(std::uint64_t at, std::uint64_t end);
  void look_at_store(std::uint64_t at, std::uint64_t end);

  ScatteredBytes bytes_;
  const package::CompoundStream* stream_ = nullptr;
  std::optional<Cipher> cipher_;
  std::uint64_t list_at_ = 0, list_end_ = 0;
  std::uint64_t store_at_ = 0, store_end_ = 0;  // 0: there is none
  std::uint64_t end_ = 0;
  std::uint32_t highest_shape_ = 0;
  std::uint32_t shapes_ = 0;
  std::uint32_t drawings_ = 0;
  std::vector<ShapeCluster> clusters_;
  std::vector<StoredPicture> pictures_;
  GoneDrawings gone_;
};

// The pictures of a loaded book: those of the store in its order, and links to files, which stand
// in the shapes that show them.
class LoadedPictures {
 public:
  // Makes them the first of the book's, once.
  void enter(const DrawingGroup& group, std::vector<Picture>& pictures);

  // The place in the book's list of what a shape shows: a picture of the store, from 1, or 0 for
  // none, and the file that it is linked to, or none. Pictures that differ in their links alone
  // have places of their own, made when they are met.
  std::uint32_t place_of(std::uint32_t stored, const std::string& link,
                         std::vector<Picture>& pictures);

  // The stored picture behind a place in the book's list, from 1; 0 without one.
  std::uint32_t stored_at(std::size_t place) const;

 private:
  // Places by what is shown there.
  std::map<std::pair<std::uint32_t, std::string>, std::uint32_t> places_;
  std::map<std::size_t, std::uint32_t>
      others_;  // behind those of the store: what is stored of them
  std::size_t stored_ = 0;
  bool entered_ = false;
};

}  // namespace engine::xls
