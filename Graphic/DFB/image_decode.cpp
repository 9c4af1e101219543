/** The decompressor of image files: NRV2B with a bit buffer of one byte. */
#include "image_decode_p.h"

#include "vrel_kestrin_graphic.h"

#include <algorithm>
#include <cstdint>
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
/** Literals that one byte of bits announces. */
constexpr std::size_t kGroup = 8;
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

    /**
     * Whether the next eight bits are ones, all in the next byte, with as many bytes behind it:
     * pictures that do not compress consist of such groups.
     */
    bool AtEightLiterals() const
    {
        return (_buffer & 0x7f) == 0 && _read < _size && _data[_read] == 0xff &&
               _size - _read > kGroup;
    }
    /** These bytes, of which there are kGroup. */
    const UInt8* EightLiterals()
    {
        _read += 1 + kGroup;
        return _data + (_read - kGroup);
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
    void EightLiterals(const UInt8* bytes)
    {
        std::memcpy(_data + _written, bytes, kGroup);
        _written += kGroup;
    }

    /**
     * Repeats bytes from `offset` back, which may overlap what is written. The last one may lie a
     * byte beyond the room: it counts and is not stored.
     */
    void Repeat(std::size_t offset, std::size_t length)
    {
        UInt8* to = _data + _written;
        const std::size_t stored = std::min(length, _room - _written);
        if (stored > offset)
            RepeatPattern(to, offset, stored);
        else if (stored > 2 * sizeof(std::uint64_t))
            std::memcpy(to, to - offset, stored);
        else
            CopyFew(to, to - offset, stored);
        _written += length;
    }

private:
    /** Copies two words that meet or overlap: from one word's size to twice that. */
    template <class Word>
    static void CopyTwo(UInt8* to, const UInt8* from, std::size_t count)
    {
        Word first;
        Word last;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + count - sizeof last, sizeof last);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + count - sizeof last, &last, sizeof last);
    }

    /** Most copies are short: a call would cost more than they do. At most 16, without overlap. */
    static void CopyFew(UInt8* to, const UInt8* from, std::size_t count)
    {
        if (count >= sizeof(std::uint64_t)) {
            CopyTwo<std::uint64_t>(to, from, count);
        } else if (count >= sizeof(std::uint32_t)) {
            CopyTwo<std::uint32_t>(to, from, count);
        } else {
            // Two or three, and one where the room ends.
            to[0] = from[0];
            to[count / 2] = from[count / 2];
            to[count - 1] = from[count - 1];
        }
    }

    /** Continues the last `offset` bytes; each pass doubles what the next can take. */
    static void RepeatPattern(UInt8* to, std::size_t offset, std::size_t count)
    {
        if (offset == 1) {
            std::memset(to, to[-1], count);
            return;
        }
        const UInt8* from = to - offset;
        for (std::size_t done = 0; done < count;) {
            const std::size_t part = std::min(offset + done, count - done);
            std::memcpy(to + done, from, part);
            done += part;
        }
    }

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
    void EightLiterals(const UInt8*) { _written += kGroup; }
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
        for (;;) {
            // A copy may have counted one byte more than there is room.
            while (in.AtEightLiterals() && out.Written() + kGroup <= out.Room())
                out.EightLiterals(in.EightLiterals());
            if (!in.Bit())
                break;
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

std::size_t zelDecodeImageData(PtrConstAny stream, std::size_t stream_size, void* pixels,
                               std::size_t room)
{
    const auto* bytes = static_cast<const UInt8*>(stream);
    const StreamResult result = DecodeStream(bytes, stream_size, nullptr, room);
    if (result.end != StreamEnd::Marker)
        return 0;
    if (pixels)
        DecodeStream(bytes, stream_size, static_cast<UInt8*>(pixels), room);
    // A copy's last byte may lie beyond the room; it is not stored.
    return std::min(result.written, room);
}

} // namespace zelxxx
