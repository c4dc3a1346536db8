// How long the biggest part of an archive takes to unpack and nothing else: the least a reader of
// it can take on one core. The archive is read beforehand; the time is printed in milliseconds.
#include <cstdio>
#include <filesystem>
#include <memory>

#include "bench/stopwatch.h"
#include "engine/package/archive.h"
#include "engine/package/source.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: inflate_floor FILE.xlsx\n", stderr);
    return 2;
  }
  const engine::package::Archive archive(engine::package::Source::from_file(argv[1]));
  const engine::package::ArchiveEntry* biggest = nullptr;
  for (const auto& entry : archive.entries())
    if (!biggest || entry.size > biggest->size) biggest = &entry;
  if (!biggest) return 1;
  bench::Stopwatch stopwatch;
  const auto blocks = archive.open(*biggest);
  std::size_t size = 0;
  for (auto block = blocks->next(); !block.empty(); block = blocks->next()) size += block.size();
  std::printf("inflating %.1f ms, %zu bytes of %s\n", stopwatch.lap(), size, biggest->name.c_str());
  return 0;
}
