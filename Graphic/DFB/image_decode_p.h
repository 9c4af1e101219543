/** The decompressor of image files. */
#pragma once

#include "ttypes.h"

#include <cstddef>

namespace zelxxx {

/** More bytes than an image may have when unpacked, whatever a file's header says. */
constexpr std::size_t kMostImageBytes = std::size_t{1} << 28;

/** Why a decompressor stopped. */
enum class StreamEnd
{
    Marker,        /**< all is decoded */
    DataEnds,      /**< the data ends before the end marker */
    OutputFull,    /**< a literal finds no room */
    CopyTooLong,   /**< a copy finds no room */
    CopyTooFar,    /**< a copy from before the first byte */
    OffsetTooLarge /**< bits that are no offset */
};

/** How far a decompressor came. */
struct StreamResult
{
    StreamEnd end;
    std::size_t read;    /**< bytes fetched, at most one behind the data */
    std::size_t written; /**< bytes decoded; one more than there is room for is possible */
};

/**
 * Decodes an NRV2B stream.
 *
 * @param out   room for `room` bytes, of which those behind the result may be written; null stores
 *              nothing, so that nothing need be allocated for a header before it is known what the
 *              stream behind it holds
 */
StreamResult DecodeStream(const UInt8* stream, std::size_t size, UInt8* out, std::size_t room);

} // namespace zelxxx
