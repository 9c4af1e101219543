/**
 * NRV2B streams written by hand.
 *
 *     Nrv2bStream stream;
 *     stream.Literal('a').Copy(1, 5).End();
 *     Decode(stream.Bytes()...); // "aaaaaa"
 *
 * and image files around any stream.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrin_test {

class Nrv2bStream
{
public:
    Nrv2bStream& Bit(unsigned bit)
    {
        // The byte that takes the next eight bits stands where the first of them is asked for.
        if (_free == 0) {
            _slot = _bytes.size();
            _bytes.push_back('\0');
            _free = 8;
        }
        --_free;
        _bytes[_slot] = static_cast<char>(static_cast<std::uint8_t>(_bytes[_slot]) | bit << _free);
        return *this;
    }
    Nrv2bStream& Byte(unsigned byte)
    {
        _bytes.push_back(static_cast<char>(byte));
        return *this;
    }
    /** A number from 2 on: the bits below its highest one, a stop bit after each. */
    Nrv2bStream& Number(std::uint64_t number)
    {
        int bit = 63;
        while ((number >> bit & 1) == 0)
            --bit;
        while (bit-- > 0)
            Bit(number >> bit & 1).Bit(bit == 0);
        return *this;
    }
    Nrv2bStream& Literal(unsigned byte) { return Bit(1).Byte(byte); }
    Nrv2bStream& Literals(const std::string& bytes)
    {
        for (const char byte : bytes)
            Literal(static_cast<std::uint8_t>(byte));
        return *this;
    }
    /** A copy of `length` bytes, at least 2, and 3 from offsets above 0xd00. */
    Nrv2bStream& Copy(std::size_t offset, std::size_t length)
    {
        Bit(0).Number((offset - 1) / 256 + 3).Byte((offset - 1) % 256);
        return Length(length - 1 - (offset > 0xd00));
    }
    /** The same from the offset of the copy before. */
    Nrv2bStream& CopyAgain(std::size_t length, bool far = false)
    {
        return Bit(0).Number(2).Length(length - 1 - far);
    }
    Nrv2bStream& End() { return Bit(0).Number(0x1000002).Byte(0xff); }

    const std::string& Bytes() const { return _bytes; }

private:
    Nrv2bStream& Length(std::size_t length)
    {
        if (length < 4)
            return Bit(length >> 1 & 1).Bit(length & 1);
        return Bit(0).Bit(0).Number(length - 2);
    }

    std::string _bytes;
    std::size_t _slot = 0;
    unsigned _free = 0;
};

/** An image file: header and stream. */
inline std::string ImageFile(unsigned width, unsigned height, unsigned depth, unsigned frames,
                             const std::string& stream)
{
    std::string file;
    for (const unsigned number : {width, height, depth, frames}) {
        file.push_back(static_cast<char>(number));
        file.push_back(static_cast<char>(number >> 8));
    }
    return file + stream;
}

/** The same with pixels as they are. */
inline std::string PlainImageFile(unsigned width, unsigned height, unsigned frames,
                                  const std::string& pixels)
{
    return ImageFile(width, height, 8, frames, Nrv2bStream().Literals(pixels).End().Bytes());
}

} // namespace kestrin_test
