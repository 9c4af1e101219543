/**
 * The decompressor against streams written by hand, against what UCL compresses, and against a
 * second decoder that follows the format's rules step by step.
 */
#include "DFB/image.h"
#include "DFB/image_decode_p.h"

#include "guarded_buffer.h"
#include "nrv2b_samples.h"
#include "nrv2b_stream.h"
#include "seeded_random.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::Compressed;
using kestrin_test::GuardedBuffer;
using kestrin_test::kSampleKinds;
using kestrin_test::MakeLogo;
using kestrin_test::MakeText;
using kestrin_test::Nrv2bStream;
using kestrin_test::SampleKind;
using kestrin_test::SeededRandom;
using zelxxx::CountDecoded;
using zelxxx::Image;
using zelxxx::UInt32;
using zelxxx::UInt8;

namespace {

/** Decodes between guard pages; nothing for a stream that is none. */
std::optional<std::string> Decoded(const std::string& stream, std::size_t room,
                                   GuardedBuffer::Side tight = GuardedBuffer::AtEnd)
{
    const GuardedBuffer in(stream.size(), tight);
    const GuardedBuffer out(room, tight);
    std::copy(stream.begin(), stream.end(), in.Data());
    if (Image::Decode(in.Data(), in.Size(), out.Data(), out.Size()) != 1)
        return std::nullopt;
    return std::string(out.Data(), out.Data() + room);
}

/** What the rules make of a stream: step by step, with numbers and without shortcuts. */
class PlainDecoder
{
public:
    /** `beyond` is read behind the end of the stream. */
    PlainDecoder(const std::string& in, std::size_t room, UInt8 beyond)
        : _in(in.begin(), in.end()), _len_in(in.size()), _room(room)
    {
        _in.push_back(beyond); // there is one byte to be read and one to be written
    }

    bool Run()
    {
        UInt32 last_m_off = 1;
        for (;;) {
            while (GetBit()) {
                if (_ilen >= _len_in || _out.size() >= _room)
                    return false;
                _out.push_back(_in.at(_ilen++));
            }
            UInt32 m_off = 1;
            do {
                m_off = m_off * 2 + GetBit();
                if (m_off > 0x1000002 || _ilen >= _len_in)
                    return false;
            } while (!GetBit());
            if (m_off == 2) {
                m_off = last_m_off;
            } else {
                if (_ilen >= _len_in)
                    return false;
                m_off = (m_off - 3) * 256 + _in.at(_ilen++);
                if (m_off == 0xffffffff)
                    return true;
                last_m_off = ++m_off;
            }
            std::size_t m_len = GetBit();
            m_len = m_len * 2 + GetBit();
            if (m_len == 0) {
                m_len = 1;
                do {
                    m_len = m_len * 2 + GetBit();
                    if (_ilen >= _len_in || m_len >= _room)
                        return false;
                } while (!GetBit());
                m_len += 2;
            }
            if (m_off > 0xd00)
                ++m_len;
            if (_out.size() + m_len > _room || m_off > _out.size())
                return false;
            for (std::size_t i = 0; i <= m_len; ++i)
                _out.push_back(_out.at(_out.size() - m_off));
        }
    }

    /** What was decoded, without the byte beyond the room. */
    std::string Output() const { return std::string(_out.begin(), _out.end()).substr(0, _room); }
    std::size_t Count() const { return _out.size(); }

private:
    unsigned GetBit()
    {
        _bb = (_bb & 0x7f) == 0 ? _in.at(_ilen++) * 2U + 1 : _bb * 2;
        const unsigned bit = _bb >> 8 & 1;
        _bb &= 0xff;
        return bit;
    }

    std::vector<UInt8> _in, _out;
    std::size_t _len_in, _room;
    std::size_t _ilen = 0;
    unsigned _bb = 0;
};

/** Expects the decoder to answer what the rules say, and to touch nothing outside its buffers. */
void ExpectAsByTheRules(const std::string& stream, std::size_t room, GuardedBuffer::Side tight)
{
    PlainDecoder zero(stream, room, 0);
    PlainDecoder ones(stream, room, 0xff);
    const bool decodes = zero.Run();
    ASSERT_EQ(ones.Run(), decodes) << "what lies behind the stream decides";
    const GuardedBuffer in(stream.size(), tight);
    const GuardedBuffer out(room, tight);
    std::copy(stream.begin(), stream.end(), in.Data());
    ASSERT_EQ(Image::Decode(in.Data(), in.Size(), out.Data(), room), decodes ? 1 : 0);
    std::size_t count = 0;
    ASSERT_EQ(CountDecoded(in.Data(), in.Size(), room, &count), decodes);
    if (decodes) {
        ASSERT_EQ(count, zero.Count());
        ASSERT_TRUE(std::string(out.Data(), out.Data() + std::min(room, count)) == zero.Output());
    }
}

// ---- By hand

TEST(ImageDecode, LiteralsThenEndMarkerDecodeToTheLiterals)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("Kestrin").End().Bytes(), 7), "Kestrin");
    EXPECT_EQ(Decoded(Nrv2bStream().End().Bytes(), 0), "");
}

TEST(ImageDecode, CopyFromFurtherBackThanWhatIsWrittenFails)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("ab").Copy(2, 2).End().Bytes(), 4), "abab");
    EXPECT_FALSE(Decoded(Nrv2bStream().Literals("ab").Copy(3, 2).End().Bytes(), 4));
    EXPECT_FALSE(Decoded(Nrv2bStream().Copy(1, 2).End().Bytes(), 4));
    EXPECT_FALSE(Decoded(Nrv2bStream().Literals("ab").Copy(0xfffffe, 3).End().Bytes(), 9));
}

TEST(ImageDecode, OverlappingCopyRepeatsThePattern)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literal('a').Copy(1, 6).End().Bytes(), 7), "aaaaaaa");
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("abc").Copy(3, 8).End().Bytes(), 11), "abcabcabcab");
}

TEST(ImageDecode, LengthsOfEveryForm)
{
    for (std::size_t length : {2, 3, 4, 5, 6, 7, 8, 9, 10, 17, 1000, 70000}) {
        const std::string stream = Nrv2bStream().Literal('x').Copy(1, length).End().Bytes();
        EXPECT_EQ(Decoded(stream, length + 1), std::string(length + 1, 'x')) << length;
    }
}

TEST(ImageDecode, RepeatedOffsetIsThatOfTheCopyBefore)
{
    const std::string stream =
        Nrv2bStream().Literals("abc").Copy(3, 3).Literal('-').CopyAgain(4).End().Bytes();
    EXPECT_EQ(Decoded(stream, 11), "abcabc-bc-b");
}

TEST(ImageDecode, RepeatedOffsetIsOneAtFirst)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("ab").CopyAgain(3).End().Bytes(), 5), "abbbb");
}

TEST(ImageDecode, CopiesFromBeyond0xd00TakeAByteMore)
{
    for (std::size_t offset : {0xcff, 0xd00, 0xd01, 0xe00}) {
        const std::string text(offset, 'y');
        const std::string stream = Nrv2bStream()
                                       .Literals("ab" + text)
                                       .Copy(offset + 2, 4)
                                       .CopyAgain(4, offset + 2 > 0xd00)
                                       .End()
                                       .Bytes();
        EXPECT_EQ(Decoded(stream, offset + 10), "ab" + text + "abyyyyyy") << offset;
    }
}

TEST(ImageDecode, LiteralWithoutRoomFails)
{
    EXPECT_FALSE(Decoded(Nrv2bStream().Literals("abc").End().Bytes(), 2));
    EXPECT_FALSE(Decoded(Nrv2bStream().Literals("a").End().Bytes(), 0));
}

TEST(ImageDecode, LiteralsComeBackWhereverTheBuffersEnd)
{
    const std::string text = "abcdefghijklmnopqrstuvwxyz0123456789";
    for (std::size_t before = 0; before < 9; ++before) {
        for (std::size_t count = 0; count <= text.size(); ++count) {
            Nrv2bStream stream;
            stream.Literals(std::string(before + 2, 'x'))
                .Copy(1, 2)
                .Literals(text.substr(0, count));
            const std::string whole = stream.End().Bytes();
            const std::size_t room = before + 4 + count;
            const std::string all = std::string(before + 4, 'x') + text.substr(0, count);
            for (const GuardedBuffer::Side side : {GuardedBuffer::AtEnd, GuardedBuffer::AtBegin})
                EXPECT_EQ(Decoded(whole, room, side), all);
            EXPECT_EQ(Decoded(whole, room - 1).has_value(), count == 0);
            for (std::size_t length = 0; length < whole.size(); ++length)
                ExpectAsByTheRules(whole.substr(0, length), room, GuardedBuffer::AtEnd);
        }
    }
}

TEST(ImageDecode, CopiesOfEveryLengthAndOffsetComeBack)
{
    const std::string text = "abcdefghijklmnopqrstuvwxyz0123456789";
    for (std::size_t offset = 1; offset <= text.size(); ++offset) {
        for (std::size_t length = 2; length < 80; ++length) {
            std::string all = text;
            for (std::size_t i = 0; i < length; ++i)
                all.push_back(all[all.size() - offset]);
            const std::string stream =
                Nrv2bStream().Literals(text).Copy(offset, length).End().Bytes();
            EXPECT_EQ(Decoded(stream, all.size()), all) << offset << ' ' << length;
        }
    }
}

TEST(ImageDecode, CopyMayPassTheRoomByOneByteThatIsNotStored)
{
    const std::string stream = Nrv2bStream().Literal('a').Copy(1, 5).End().Bytes();
    EXPECT_EQ(Decoded(stream, 6), "aaaaaa");
    EXPECT_EQ(Decoded(stream, 5), "aaaaa");
    EXPECT_FALSE(Decoded(stream, 4));
}

TEST(ImageDecode, NothingFollowsAByteBeyondTheRoom)
{
    Nrv2bStream literal = Nrv2bStream().Literal('a').Copy(1, 5);
    Nrv2bStream copy = literal;
    EXPECT_FALSE(Decoded(literal.Literal('a').End().Bytes(), 5));
    EXPECT_FALSE(Decoded(copy.CopyAgain(2).End().Bytes(), 5));
}

TEST(ImageDecode, EndMarkerBeforeTheRoomIsFullIsAnEnd)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("ab").End().Bytes(), 4), std::string("ab\0\0", 4));
}

TEST(ImageDecode, OffsetAboveTheEndMarkerFails)
{
    EXPECT_FALSE(Decoded(Nrv2bStream().Literals("ab").Bit(0).Number(0x1000003).Byte(0).Bytes(), 9));
}

TEST(ImageDecode, LengthOfMoreThanTheRoomFailsWhileItIsRead)
{
    Nrv2bStream stream = Nrv2bStream().Literal('a').Bit(0).Number(3).Byte(0).Bit(0).Bit(0);
    EXPECT_FALSE(Decoded(stream.Number(std::uint64_t{1} << 62).End().Bytes(), 100));
}

TEST(ImageDecode, EmptyStreamFails)
{
    EXPECT_FALSE(Decoded("", 0));
    EXPECT_FALSE(Decoded("", 10));
}

TEST(ImageDecode, BytesBehindTheEndMarkerAreNotReached)
{
    EXPECT_EQ(Decoded(Nrv2bStream().Literals("ab").End().Byte(1).Byte(2).Bytes(), 2), "ab");
}

TEST(ImageDecode, EveryTruncationOfAHandWrittenStreamFails)
{
    const std::string stream = Nrv2bStream()
                                   .Literals("abcdef")
                                   .Copy(3, 4)
                                   .CopyAgain(9)
                                   .Literals("gh")
                                   .Copy(1, 300)
                                   .End()
                                   .Bytes();
    ASSERT_TRUE(Decoded(stream, 321));
    for (std::size_t length = 0; length < stream.size(); ++length) {
        EXPECT_FALSE(Decoded(stream.substr(0, length), 321)) << length;
        ExpectAsByTheRules(stream.substr(0, length), 321, GuardedBuffer::AtEnd);
    }
}

// ---- What UCL compresses

class ImageDecodeLevel : public testing::TestWithParam<int>
{
};

TEST_P(ImageDecodeLevel, EveryPictureComesBack)
{
    SeededRandom random;
    for (const SampleKind& kind : kSampleKinds) {
        for (std::size_t size : {1, 2, 3, 7, 64, 1000, 3327, 3329, 6000, 40000}) {
            const std::string pixels = kind.make(size, random.Engine());
            const std::string stream = Compressed(pixels, GetParam());
            EXPECT_TRUE(Decoded(stream, size) == pixels) << kind.name << ' ' << size;
            EXPECT_TRUE(Decoded(stream, size, GuardedBuffer::AtBegin) == pixels)
                << kind.name << ' ' << size;
        }
    }
}

TEST_P(ImageDecodeLevel, LargePictureComesBack)
{
    SeededRandom random;
    const std::string pixels =
        MakeLogo(300000, random.Engine()) + MakeText(300000, random.Engine());
    EXPECT_TRUE(Decoded(Compressed(pixels, GetParam()), pixels.size()) == pixels);
}

INSTANTIATE_TEST_SUITE_P(Levels, ImageDecodeLevel, testing::Range(1, 11));

TEST(ImageDecode, EveryTruncationOfASmallStreamFails)
{
    SeededRandom random;
    for (const SampleKind& kind : kSampleKinds) {
        const std::string pixels = kind.make(400, random.Engine());
        const std::string stream = Compressed(pixels, 7);
        for (std::size_t length = 0; length < stream.size(); ++length) {
            EXPECT_FALSE(Decoded(stream.substr(0, length), pixels.size()))
                << kind.name << ' ' << length;
            ExpectAsByTheRules(stream.substr(0, length), pixels.size(), GuardedBuffer::AtEnd);
        }
    }
}

TEST(ImageDecode, EveryRoomIsKept)
{
    SeededRandom random;
    for (const SampleKind& kind : kSampleKinds) {
        const std::string stream = Compressed(kind.make(300, random.Engine()), 7);
        for (std::size_t room = 0; room < 310; ++room)
            ExpectAsByTheRules(stream, room, GuardedBuffer::AtEnd);
    }
}

std::string Corrupted(std::string stream, SeededRandom& random)
{
    const auto place = [&] {
        return static_cast<std::size_t>(random.Between(0, static_cast<int>(stream.size()) - 1));
    };
    for (auto changes = random.Between(1, 3); changes > 0 && !stream.empty(); --changes) {
        switch (random.Between(0, 4)) {
        case 0:
            stream.resize(place());
            break;
        case 1:
            stream.insert(place(), 1, static_cast<char>(random.Between(0, 255)));
            break;
        case 2:
            stream.erase(place(), 1);
            break;
        default:
            stream[place()] ^= static_cast<char>(1 << random.Between(0, 7));
            break;
        }
    }
    return stream;
}

TEST(ImageDecode, CorruptedStreamsStayInTheirBuffersAndFollowTheRules)
{
    SeededRandom random;
    std::vector<std::string> streams;
    for (const SampleKind& kind : kSampleKinds) {
        for (std::size_t size : {40, 400, 4000})
            streams.push_back(Compressed(kind.make(size, random.Engine()), 5));
    }
    const int rounds = SeededRandom::Rounds(20000);
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const auto which =
            static_cast<std::size_t>(random.Between(0, static_cast<int>(streams.size()) - 1));
        const std::size_t room = which % 3 == 0 ? 40 : which % 3 == 1 ? 400 : 4000;
        ExpectAsByTheRules(Corrupted(streams[which], random),
                           room - static_cast<std::size_t>(random.Between(0, 2)),
                           random.Chance(50) ? GuardedBuffer::AtEnd : GuardedBuffer::AtBegin);
    }
}

// ---- For programs that want the pixels

TEST(ImageData, IsCountedBeforeRoomIsMadeAndThenUnpacked)
{
    const std::string stream = Nrv2bStream().Literals("abc").Copy(2, 5).End().Bytes();
    EXPECT_EQ(zelxxx::zelDecodeImageData(stream.data(), stream.size(), nullptr, 1000), 8U);
    const GuardedBuffer out(8);
    EXPECT_EQ(zelxxx::zelDecodeImageData(stream.data(), stream.size(), out.Data(), 8), 8U);
    EXPECT_EQ(std::string(out.Data(), out.Data() + 8), "abcbcbcb");
}

TEST(ImageData, OfADamagedOrTooLongStreamIsNone)
{
    const std::string stream = Nrv2bStream().Literals("abcd").End().Bytes();
    const GuardedBuffer out(2);
    EXPECT_EQ(zelxxx::zelDecodeImageData(stream.data(), stream.size(), out.Data(), 2), 0U);
    EXPECT_EQ(zelxxx::zelDecodeImageData(stream.data(), stream.size() - 1, nullptr, 9), 0U);
    EXPECT_EQ(zelxxx::zelDecodeImageData(nullptr, 0, nullptr, 9), 0U);
}

TEST(ImageData, ByteBeyondTheRoomIsNotCounted)
{
    const std::string stream = Nrv2bStream().Literal('a').Copy(1, 5).End().Bytes();
    const GuardedBuffer out(5);
    EXPECT_EQ(zelxxx::zelDecodeImageData(stream.data(), stream.size(), out.Data(), 5), 5U);
    EXPECT_EQ(std::string(out.Data(), out.Data() + 5), "aaaaa");
}

} // namespace
