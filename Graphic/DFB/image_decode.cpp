/** The decompressor of image files: NRV2B with a bit buffer of one byte. */
#include "image_decode_p.h"

#include "image.h"

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

/** Reads an offset's high part; false when it is none. */
bool ReadOffsetHigh(BitReader& in, UInt32* high)
{
    UInt32 value = 1;
    do {
        value = value * 2 + in.Bit();
        if (value > kMostOffsetHigh || in.AtEnd())
            return false;
    } while (!in.Bit());
    *high = value;
    return true;
}

/** Reads the length of a copy, less one; false when it passes the room or the data. */
bool ReadLength(BitReader& in, std::size_t room, std::size_t* length)
{
    std::size_t value = in.Bit();
    value = value * 2 + in.Bit();
    if (value == 0) {
        value = 1;
        do {
            value = value * 2 + in.Bit();
            if (in.AtEnd() || value >= room)
                return false;
        } while (!in.Bit());
        value += 2;
    }
    *length = value;
    return true;
}

/** Decodes to the end marker; false for a stream that does not get there. */
template <class Output>
bool Run(BitReader in, Output& out)
{
    UInt32 last_offset = 1;
    for (;;) {
        for (;;) {
            // A copy may have counted one byte more than there is room.
            while (in.AtEightLiterals() && out.Written() + kGroup <= out.Room())
                out.EightLiterals(in.EightLiterals());
            if (!in.Bit())
                break;
            if (in.AtEnd() || out.Written() >= out.Room())
                return false;
            out.Literal(in.Byte());
        }
        UInt32 offset = 0;
        if (!ReadOffsetHigh(in, &offset))
            return false;
        if (offset == 2) {
            offset = last_offset;
        } else {
            if (in.AtEnd())
                return false;
            offset = (offset - 3) * 256 + in.Byte();
            if (offset == kEndOffset)
                return true;
            last_offset = ++offset;
        }
        std::size_t length = 0;
        if (!ReadLength(in, out.Room(), &length))
            return false;
        if (offset > kFarOffset)
            ++length;
        // Without the byte that the copy takes on top: files depend on it.
        if (out.Written() + length > out.Room() || offset > out.Written())
            return false;
        out.Repeat(offset, length + 1);
    }
}

} // namespace

int Image::Decode(const UInt8* buf_in, std::size_t len_in, UInt8* buf_out, std::size_t len_out)
{
    BufferOutput out(buf_out, len_out);
    return Run(BitReader(buf_in, len_in), out) ? 1 : 0;
}

bool CountDecoded(const UInt8* stream, std::size_t size, std::size_t limit, std::size_t* count)
{
    CountingOutput out(limit);
    const bool decodes = Run(BitReader(stream, size), out);
    *count = out.Written();
    return decodes;
}

std::size_t zelDecodeImageData(PtrConstAny stream, std::size_t stream_size, void* pixels,
                               std::size_t room)
{
    const auto* bytes = static_cast<const UInt8*>(stream);
    std::size_t count = 0;
    if (!CountDecoded(bytes, stream_size, room, &count))
        return 0;
    if (pixels)
        Image::Decode(bytes, stream_size, static_cast<UInt8*>(pixels), room);
    // A copy's last byte may lie beyond the room; it is not stored.
    return std::min(count, room);
}

} // namespace zelxxx
