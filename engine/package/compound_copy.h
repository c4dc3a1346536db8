// Writing streams of a compound file again, one by one or all with one of them replaced.
#pragma once

#include <functional>
#include <string_view>

#include "engine/package/compound_file.h"
#include "engine/package/compound_writer.h"

namespace engine::package {

// Appends the bytes of a stream to the one that was begun.
void copy_stream(const CompoundStream& stream, CompoundWriter& writer);

// Folders and streams keep their names, bytes, class identifiers and dates. Those that `leaves_out`
// names are not copied, nor is what lies in such a folder, nor the second of two equal names.
// `write` is called where the bytes of the replaced stream belong.
void copy_compound(const CompoundFile& file, const CompoundEntry& replaced, Output& output,
                   const std::function<bool(const CompoundEntry&)>& leaves_out,
                   const std::function<void(CompoundWriter&)>& write);

}  // namespace engine::package
