// Writing compound files, of 512-byte sectors, in one pass.
//
// Streams follow the header one behind the other, each in sectors of its own that lie side by side.
// Behind them stand the mini sectors of the short ones, the directory and the tables. The same
// calls give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "engine/package/compound_file.h"
#include "engine/package/output.h"

namespace engine::package {

class CompoundWriter {
 public:
  // The output is at its beginning and outlives this; the root takes the place of a folder 0.
  explicit CompoundWriter(Output& output, CompoundItem root = {});

  // Names have at most 31 UTF-16 units; those of a folder differ in more than case. Gives the
  // number by which further items are put into the folder.
  std::size_t add_folder(std::size_t folder, CompoundItem item);

  // Begins a stream, which the bytes up to the next item belong to.
  void begin_stream(std::size_t folder, CompoundItem item);
  void write(std::span<const char> bytes);

  // Writes the directory and the tables, once.
  void finish();

 private:
  struct Item {
    CompoundItem item;
    unsigned kind;
    std::size_t folder;
    std::uint32_t first_sector;
    std::uint64_t size = 0;
    std::uint32_t left;
    std::uint32_t right;
    std::uint32_t child;
    bool red = false;
  };

  // Sectors that are one chain, side by side, or that are all marked alike.
  struct Run {
    std::uint32_t count;
    std::uint32_t mark;  // kEndOfChain for a chain
  };

  std::size_t add(std::size_t folder, CompoundItem item, unsigned kind);
  void end_stream();
  std::uint32_t append_run(std::uint64_t size, std::uint32_t mark);
  // Writes bytes as a chain and gives its first sector.
  std::uint32_t write_chain(std::span<const char> bytes);
  void write_padded(std::span<const char> bytes, char padding);
  void link_folders();
  std::uint32_t link(std::span<const std::uint32_t> sorted, unsigned level, unsigned red_level);
  std::string directory() const;
  void write_tables(std::uint32_t directory, std::uint32_t mini_table, std::uint32_t mini_sectors);

  Output& output_;
  std::vector<Item> items_;
  std::vector<Run> runs_;
  std::uint32_t sectors_ = 0;  // written or being written
  bool in_stream_ = false;
  std::vector<char> beginning_;  // of a stream that may turn out to be short
  std::vector<char> mini_stream_;
  std::string mini_table_;
};

}  // namespace engine::package
