// Compressed container streams ("ZLIB").
//
// Neither function throws on bad data: the status of zlib is left as the thread's error, 0 on
// success, and the result is empty on failure.
#pragma once

#include <vector>

// Packs with a gzip wrapper at the highest level. The room is zlib's bound for its own wrapper,
// which is 12 bytes shorter: bytes that do not shrink at all may not fit, and fail.
std::vector<char> CompressContainerStream(std::vector<char> bytes);

// Unpacks bytes with a zlib or a gzip wrapper. Input that merely ends too early gives what was
// unpacked.
std::vector<char> UncompressContainerStream(std::vector<char> bytes);
