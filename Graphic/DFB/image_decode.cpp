/** The decompressor of image files: NRV2B with a bit buffer of one byte. */
#include "image_decode_p.h"

#include <algorithm>
#include <cstring>

namespace zelxxx {

namespace {

// A stream is a mix of whole bytes and of bits, the highest first, eight of them fetched at a time:
//
//     1 byte                  a literal
//     0 offset length         a copy of what was written `offset` bytes ago
//
// An offset begins with its high part in pairs of bits, value and stop. High part 2 takes the
// offset of the copy before; all others are followed by a byte with the low part. The offset with
// all bits set ends the stream. A length has two bits or, where these are 0, pairs as well.

constexpr UInt32 kMostOffsetHigh = 0x1000002;
constexpr UInt32 kEndOffset = 0xffffffff;
/** Copies from further back are worth their code only when they are a byte longer. */
constexpr UInt32 kFarOffset = 0xd00;

class BitReader
{
public:
    BitReader(const UInt8* data, std::size_t size) : _data(data), _size(size) {}

    /** Whether there is no whole byte left. */
    bool AtEnd() const { return _read >= _size; }
    UInt8 Byte() { return _data[_read++]; }
    /** Bytes fetched. */
    std::size_t Read() const { return _read; }

    /**
     * The next bit. The buffer keeps the fetched bits above a marker that tells when they are used
     * up. Behind the end of the data come zeros: a decoder that took one of those finds AtEnd
     * before the stream could end well, whatever the bits are.
     */
    unsigned Bit()
    {
        if (_buffer & 0x7f) {
            _buffer *= 2;
        } else {
            _buffer = (AtEnd() ? 0U : _data[_read]) * 2U + 1U;
            ++_read;
        }
        const unsigned bit = _buffer >> 8 & 1;
        _buffer &= 0xff;
        return bit;
    }

private:
    const UInt8* _data;
    std::size_t _size;
    std::size_t _read = 0;
    unsigned _buffer = 0;
};

/** Where decoded bytes go. */
class BufferOutput
{
public:
    BufferOutput(UInt8* data, std::size_t room) : _data(data), _room(room) {}

    std::size_t Room() const { return _room; }
    std::size_t Written() const { return _written; }
    void Literal(UInt8 byte) { _data[_written++] = byte; }

    /**
     * Repeats bytes from `offset` back, which may overlap what is written. The last one may lie a
     * byte beyond the room: it counts and is not stored.
     */
    void Repeat(std::size_t offset, std::size_t length)
    {
        UInt8* to = _data + _written;
        const UInt8* from = to - offset;
        const std::size_t stored = std::min(length, _room - _written);
        if (offset == 1) {
            std::memset(to, *from, stored);
        } else {
            for (std::size_t i = 0; i < stored; ++i)
                to[i] = from[i];
        }
        _written += length;
    }

private:
    UInt8* _data;
    std::size_t _room;
    std::size_t _written = 0;
};

/** Counts decoded bytes: what a stream does never depends on what it copies. */
class CountingOutput
{
public:
    explicit CountingOutput(std::size_t room) : _room(room) {}

    std::size_t Room() const { return _room; }
    std::size_t Written() const { return _written; }
    void Literal(UInt8) { ++_written; }
    void Repeat(std::size_t, std::size_t length) { _written += length; }

private:
    std::size_t _room;
    std::size_t _written = 0;
};

// Marker stands for success where a part of the stream is read.

/** Reads an offset's high part. */
StreamEnd ReadOffsetHigh(BitReader& in, UInt32* high)
{
    UInt32 value = 1;
    do {
        value = value * 2 + in.Bit();
        if (value > kMostOffsetHigh)
            return StreamEnd::OffsetTooLarge;
        if (in.AtEnd())
            return StreamEnd::DataEnds;
    } while (!in.Bit());
    *high = value;
    return StreamEnd::Marker;
}

/** Reads the length of a copy, less one, which may not pass the room. */
StreamEnd ReadLength(BitReader& in, std::size_t room, std::size_t* length)
{
    std::size_t value = in.Bit();
    value = value * 2 + in.Bit();
    if (value == 0) {
        value = 1;
        do {
            value = value * 2 + in.Bit();
            if (in.AtEnd())
                return StreamEnd::DataEnds;
            if (value >= room)
                return StreamEnd::CopyTooLong;
        } while (!in.Bit());
        value += 2;
    }
    *length = value;
    return StreamEnd::Marker;
}

/** Decodes to the end marker, if the stream gets there. */
template <class Output>
StreamEnd Run(BitReader& in, Output& out)
{
    UInt32 last_offset = 1;
    for (;;) {
        while (in.Bit()) {
            if (in.AtEnd())
                return StreamEnd::DataEnds;
            if (out.Written() >= out.Room())
                return StreamEnd::OutputFull;
            out.Literal(in.Byte());
        }
        UInt32 offset = 0;
        StreamEnd part = ReadOffsetHigh(in, &offset);
        if (part != StreamEnd::Marker)
            return part;
        if (offset == 2) {
            offset = last_offset;
        } else {
            if (in.AtEnd())
                return StreamEnd::DataEnds;
            offset = (offset - 3) * 256 + in.Byte();
            if (offset == kEndOffset)
                return StreamEnd::Marker;
            last_offset = ++offset;
        }
        std::size_t length = 0;
        part = ReadLength(in, out.Room(), &length);
        if (part != StreamEnd::Marker)
            return part;
        if (offset > kFarOffset)
            ++length;
        // Without the byte that the copy takes on top: files depend on it.
        if (out.Written() + length > out.Room())
            return StreamEnd::CopyTooLong;
        if (offset > out.Written())
            return StreamEnd::CopyTooFar;
        out.Repeat(offset, length + 1);
    }
}

template <class Output>
StreamResult Decode(const UInt8* stream, std::size_t size, Output out)
{
    BitReader in(stream, size);
    const StreamEnd end = Run(in, out);
    return {end, in.Read(), out.Written()};
}

} // namespace

StreamResult DecodeStream(const UInt8* stream, std::size_t size, UInt8* out, std::size_t room)
{
    return out ? Decode(stream, size, BufferOutput(out, room))
               : Decode(stream, size, CountingOutput(room));
}

} // namespace zelxxx
