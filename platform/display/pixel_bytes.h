/** Pixels of one to four bytes as numbers, on machines of either byte order. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrin_display {

/** Where the bytes of a small number lie in a word: at its end where the highest byte is first. */
inline std::size_t FirstUsedByte(std::size_t bytes)
{
    return __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? sizeof(std::uint32_t) - bytes : 0;
}

/** The number that a pixel of `bytes` (1 to 4) bytes is; it need not be aligned. */
inline std::uint32_t LoadPixel(const void* from, std::size_t bytes)
{
    std::uint32_t value = 0;
    std::memcpy(reinterpret_cast<unsigned char*>(&value) + FirstUsedByte(bytes), from, bytes);
    return value;
}

/** Stores the lower `bytes` (1 to 4) bytes of a number. */
inline void StorePixel(void* to, std::uint32_t value, std::size_t bytes)
{
    std::memcpy(to, reinterpret_cast<unsigned char*>(&value) + FirstUsedByte(bytes), bytes);
}

} // namespace kestrin_display
