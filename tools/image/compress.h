/**
 * Compression of image files by UCL.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kestrin_tools {

constexpr int least_compression = 1;
constexpr int most_compression = 10;

/** Is told the bytes done. */
using CompressProgress = std::function<void(std::size_t)>;

/**
 * The NRV2B stream of some bytes.
 *
 * @param level  from least_compression, fast, to most_compression, small
 * @throws std::runtime_error without memory
 */
std::string Compress(const std::vector<std::uint8_t>& bytes, int level,
                     const CompressProgress& progress);

} // namespace kestrin_tools
