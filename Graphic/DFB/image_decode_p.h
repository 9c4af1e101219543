/** What the decompressor of image files tells beside Image::Decode. */
#pragma once

#include "ttypes.h"

#include <cstddef>

namespace zelxxx {

/**
 * Goes through a stream without storing anything, so that nothing is allocated for a header before
 * it is known what the stream behind it holds.
 *
 * @param limit  the length that Image::Decode would be given
 * @param count  receives the bytes the stream decodes to; one more than the limit is possible
 * @return whether Image::Decode would reach the end marker
 */
bool CountDecoded(const UInt8* stream, std::size_t size, std::size_t limit, std::size_t* count);

} // namespace zelxxx
