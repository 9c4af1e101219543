/** PNG and JPEG pictures in memory. */
#pragma once

#include "image_decode_p.h"
#include "tbase.h"

#include <cstddef>
#include <memory>

namespace zelxxx {

/** A decoded picture. */
struct Picture
{
    int width = 0;
    int height = 0;
    std::unique_ptr<UInt8[]> rgba; /**< bytes R, G, B, A, rows without padding; null for none */
};

/** Whether data begins like a PNG file. */
bool IsPng(const UInt8* data, std::size_t size);
/** Whether data begins like a JPEG file. */
bool IsJpeg(const UInt8* data, std::size_t size);
/** No picture for data that is damaged, or too large for 16-bit coordinates. */
Picture DecodePng(const UInt8* data, std::size_t size);
/** The same; of a picture that ends early the missing part is grey. */
Picture DecodeJpeg(const UInt8* data, std::size_t size);

} // namespace zelxxx
