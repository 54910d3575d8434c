// Unpacking of zlib streams (RFC 1950, RFC 1951), in which compilers store debug information.
#pragma once

#include <cstdint>
#include <span>

/// Unpacks the zlib stream `packed` into `out`. True if the stream is whole, its check value is
/// right, and what it holds is exactly as large as `out`.
bool inflate_zlib(std::span<const uint8_t> packed, std::span<uint8_t> out);
