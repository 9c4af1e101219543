#include "vrel_debug.h"
#include "vrel_kestrin_graphic.h"

#include "seeded_random.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

using namespace zelxxx;
using kestrin_test::SeededRandom;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr WChar kGuard = 0x5aa5;

/** A conversion with room for `length` units and guards behind the area it may use. */
struct Conversion
{
    Conversion(std::string_view bytes, int encoding, Int32 length)
        : room(2 * static_cast<std::size_t>(std::max(length, 0))), buffer(room + 4, kGuard)
    {
        count = zelConvertToUnicode(bytes.data(), static_cast<UInt32>(bytes.size()),
                                    static_cast<TextEncoding>(encoding), buffer.data(), length);
    }
    std::vector<WChar> Units() const { return {buffer.begin(), buffer.begin() + count}; }
    bool RestIsZero(std::size_t from) const
    {
        return std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(from),
                           buffer.begin() + static_cast<std::ptrdiff_t>(room),
                           [](WChar unit) { return unit == 0; });
    }
    bool GuardsAreIntact() const
    {
        return std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(room), buffer.end(),
                           [](WChar unit) { return unit == kGuard; });
    }

    std::size_t room;
    std::vector<WChar> buffer;
    Int32 count = 0;
};

/** Text in an encoding and what the character set's own table says it means. */
struct Sample
{
    int encoding;
    const char* name;
    std::string bytes;
    std::vector<WChar> units;
};

void PrintTo(const Sample& sample, std::ostream* out)
{
    *out << sample.name;
}

std::string HostUnits(const std::vector<WChar>& units)
{
    return {reinterpret_cast<const char*>(units.data()), units.size() * 2};
}

const std::string kUtf8 = "A\xC3\xA9\xD0\x96\xE4\xB8\xAD\xF0\x9F\x98\x80";
const std::vector<WChar> kUtf8Units = {0x41, 0xe9, 0x416, 0x4e2d, 0xd83d, 0xde00};

const Sample kSamples[] = {
    {0, "ASCII", "ABC", {0x41, 0x42, 0x43}},
    {1, "Unicode", HostUnits({0x41, 0x4e2d, 0xfffd}), {0x41, 0x4e2d, 0xfffd}},
    {2, "Big5", "A\xA4\xA4\xA4\xE5", {0x41, 0x4e2d, 0x6587}},
    {3, "GB2312", "A\xD6\xD0\xCE\xC4", {0x41, 0x4e2d, 0x6587}},
    {4, "EucKr", "A\xB0\xA1\xC7\xD1", {0x41, 0xac00, 0xd55c}},
    {5, "EucJp", "A\xA4\xA2\xB4\xC1\x8E\xB1", {0x41, 0x3042, 0x6f22, 0xff71}},
    {6, "JisIsReadAs16BitUnits", HostUnits({0x3042, 0x41}), {0x3042, 0x41}},
    {7, "Latin1", "\xE9\xDF\xA4\xFF", {0xe9, 0xdf, 0xa4, 0xff}},
    {8, "Latin2", "\xA1\xB1\xE8\xF8", {0x104, 0x105, 0x10d, 0x159}},
    {9, "Latin3", "\xA1\xA6\xFD\xDD", {0x126, 0x124, 0x16d, 0x16c}},
    {10, "Latin4", "\xA1\xA2\xBF\xF1", {0x104, 0x138, 0x14b, 0x146}},
    {11, "Cyrillic", "\xA1\xB6\xD0\xF0", {0x401, 0x416, 0x430, 0x2116}},
    {12, "Arabic", "\xAC\xC7\xEA", {0x60c, 0x627, 0x64a}},
    {13, "Greek", "\xC1\xE1\xD9\xFE", {0x391, 0x3b1, 0x3a9, 0x3ce}},
    {14, "Hebrew", "\xE0\xFA\xAA", {0x5d0, 0x5ea, 0xd7}},
    {15, "Latin5", "\xD0\xDD\xFE\xF0", {0x11e, 0x130, 0x15f, 0x11f}},
    {16, "Latin6IsReadAsUtf8", kUtf8, kUtf8Units},
    {17, "ThaiIsReadAsUtf8", kUtf8, kUtf8Units},
    {18, "Part12IsReadAsUtf8", kUtf8, kUtf8Units},
    {19, "Latin7IsReadAsUtf8", kUtf8, kUtf8Units},
    {20, "Latin8IsReadAsUtf8", kUtf8, kUtf8Units},
    {21, "Latin9", "\xA4\xA6\xBC\xBE", {0x20ac, 0x160, 0x152, 0x178}},
    {22, "Latin10IsReadAsUtf8", kUtf8, kUtf8Units},
    {23, "Iso6937PutsAccentsFirst", "A\xC2\x65\xC8\x75\xE1\xF1", {0x41, 0xe9, 0xfc, 0xc6, 0xe6}},
    {24, "Utf8", kUtf8, kUtf8Units},
    {25, "AribIsReadAsUtf8", kUtf8, kUtf8Units},
    {26, "FirstUnknownValueIsReadAsUtf8", kUtf8, kUtf8Units},
    {255, "LargeUnknownValueIsReadAsUtf8", kUtf8, kUtf8Units},
    {-1, "NegativeValueIsReadAsUtf8", kUtf8, kUtf8Units},
};

class EncodingSample : public testing::TestWithParam<Sample>
{
};

TEST_P(EncodingSample, BecomesHostOrderUnits)
{
    const Conversion conversion(GetParam().bytes, GetParam().encoding, 20);
    EXPECT_EQ(conversion.Units(), GetParam().units);
    EXPECT_TRUE(conversion.RestIsZero(GetParam().units.size()));
    EXPECT_TRUE(conversion.GuardsAreIntact());
}

INSTANTIATE_TEST_SUITE_P(All, EncodingSample, testing::ValuesIn(kSamples),
                         [](const auto& test) { return test.param.name; });

/** Raises the log threshold and catches standard error while it lives. */
class LogCapture
{
public:
    explicit LogCapture(int threshold)
    {
        __vrel_debug_min = threshold;
        testing::internal::CaptureStderr();
    }
    std::string Text()
    {
        __vrel_debug_min = 0;
        return testing::internal::GetCapturedStderr();
    }
};

TEST(Encoding, ThreeAsciiBytesGiveThreeUnits)
{
    EXPECT_EQ(Conversion("ABC", EncodingASCII, 3).count, 3);
}

TEST(Encoding, NoByteOrderMarkIsAddedAndOneInTheTextStays)
{
    EXPECT_THAT(Conversion("A", EncodingUTF8, 4).Units(), ElementsAre(0x41));
    EXPECT_THAT(Conversion("\xEF\xBB\xBF"
                           "A",
                           EncodingUTF8, 4)
                    .Units(),
                ElementsAre(0xfeff, 0x41));
}

TEST(Encoding, MarkBefore16BitUnitsIsTakenForTheirByteOrder)
{
    EXPECT_THAT(Conversion(HostUnits({0xfeff, 0x4e2d}), EncodingUnicode, 4).Units(),
                ElementsAre(0x4e2d));
    EXPECT_THAT(Conversion(HostUnits({0xfffe, 0x2d4e}), EncodingUnicode, 4).Units(),
                ElementsAre(0x4e2d));
    EXPECT_THAT(Conversion(HostUnits({0x41, 0xfeff}), EncodingUnicode, 4).Units(),
                ElementsAre(0x41, 0xfeff));
}

TEST(Encoding, EveryLatin1ByteIsItsOwnUnit)
{
    std::string bytes(256, '\0');
    for (int i = 0; i < 256; ++i)
        bytes[i] = static_cast<char>(i);
    const Conversion conversion(bytes, Encoding8859_1, 256);
    ASSERT_EQ(conversion.count, 256);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(conversion.buffer[i], i);
}

TEST(Encoding, RandomUtf8TextMatchesAnEncoderWrittenByHand)
{
    SeededRandom random;
    std::string bytes;
    std::vector<WChar> units;
    for (int i = 0; i < 5000; ++i) {
        auto c = static_cast<UInt32>(random.Between(0, i % 2 ? 0x10ffff : 0xffff));
        if (c >= 0xd800 && c < 0xe000)
            c = 0x20;
        if (c < 0x80) {
            bytes += static_cast<char>(c);
        } else if (c < 0x800) {
            bytes += static_cast<char>(0xc0 | c >> 6);
            bytes += static_cast<char>(0x80 | (c & 63));
        } else if (c < 0x10000) {
            bytes += static_cast<char>(0xe0 | c >> 12);
            bytes += static_cast<char>(0x80 | (c >> 6 & 63));
            bytes += static_cast<char>(0x80 | (c & 63));
        } else {
            bytes += static_cast<char>(0xf0 | c >> 18);
            bytes += static_cast<char>(0x80 | (c >> 12 & 63));
            bytes += static_cast<char>(0x80 | (c >> 6 & 63));
            bytes += static_cast<char>(0x80 | (c & 63));
        }
        if (c < 0x10000) {
            units.push_back(static_cast<WChar>(c));
        } else {
            units.push_back(static_cast<WChar>(0xd7c0 + (c >> 10)));
            units.push_back(static_cast<WChar>(0xdc00 | (c & 0x3ff)));
        }
    }
    EXPECT_EQ(Conversion(bytes, EncodingUTF8, static_cast<Int32>(bytes.size())).Units(), units);
}

TEST(Encoding, LengthZeroGivesNothingAndAClearedBuffer)
{
    const Conversion conversion("", EncodingASCII, 5);
    EXPECT_EQ(conversion.count, 0);
    EXPECT_TRUE(conversion.RestIsZero(0));
    EXPECT_TRUE(conversion.GuardsAreIntact());
}

TEST(Encoding, RoomIsTwiceTheUnitsNamed)
{
    const Conversion fits("ABCD", EncodingASCII, 2);
    EXPECT_THAT(fits.Units(), ElementsAre('A', 'B', 'C', 'D'));
    EXPECT_TRUE(fits.GuardsAreIntact());
    const Conversion too_long("ABCDE", EncodingASCII, 2);
    EXPECT_EQ(too_long.count, 0);
    EXPECT_TRUE(too_long.GuardsAreIntact());
}

TEST(Encoding, WithoutRoomThereIsNothingAndTheBufferIsNotTouched)
{
    for (const Int32 length : {0, -1, INT32_MIN}) {
        const Conversion conversion("ABC", EncodingASCII, length);
        EXPECT_EQ(conversion.count, 0) << length;
        EXPECT_TRUE(conversion.GuardsAreIntact()) << length;
    }
}

TEST(Encoding, NullTextOfNoLengthIntoNoBufferIsNothing)
{
    EXPECT_EQ(zelConvertToUnicode(nullptr, 0, EncodingUTF8, nullptr, 0), 0);
    EXPECT_EQ(zelConvertToUnicode("x", 1, EncodingBig5, nullptr, 0), 0);
}

TEST(Encoding, BytesThatAreNoUtf8GiveNothingInAFallBackEncoding)
{
    EXPECT_EQ(Conversion("caf\xE9", Encoding8859_10, 10).count, 0);
}

TEST(Encoding, InvalidAndIncompleteInputGivesNothing)
{
    EXPECT_EQ(Conversion("\x80", EncodingASCII, 10).count, 0);
    EXPECT_EQ(Conversion("A\xE4\xB8", EncodingUTF8, 10).count, 0);
    EXPECT_EQ(Conversion("A\xA4", EncodingBig5, 10).count, 0);
    EXPECT_EQ(Conversion("ABC", EncodingUnicode, 10).count, 0);
    EXPECT_EQ(Conversion(HostUnits({0xd83d}), EncodingUnicode, 10).count, 0);
}

TEST(Encoding, WhatWasConvertedBeforeAnErrorStaysInTheBuffer)
{
    const Conversion invalid("AB\xFF"
                             "C",
                             EncodingUTF8, 10);
    EXPECT_EQ(invalid.count, 0);
    EXPECT_EQ(invalid.buffer[0], 'A');
    EXPECT_EQ(invalid.buffer[1], 'B');
    EXPECT_TRUE(invalid.RestIsZero(2));
}

TEST(Encoding, FailuresAreLoggedFromLevelOneOn)
{
    LogCapture silent(0);
    EXPECT_EQ(Conversion("\xFF", EncodingUTF8, 10).count, 0);
    EXPECT_THAT(silent.Text(), IsEmpty());

    LogCapture log(1);
    EXPECT_EQ(Conversion("\xFF", EncodingUTF8, 10).count, 0);
    const std::string text = log.Text();
    EXPECT_THAT(text, HasSubstr("zelConvertToUnicode error!\n"));
    EXPECT_THAT(text, HasSubstr("[1] Graphic/encoding.cpp:"));
}

TEST(Encoding, SuccessIsNotLogged)
{
    LogCapture log(9);
    EXPECT_EQ(Conversion("A", EncodingUTF8, 10).count, 1);
    EXPECT_THAT(log.Text(), IsEmpty());
}

/** Ends the process: without a file to open, iconv cannot load the character set. */
[[noreturn]] void ConvertWithoutFiles()
{
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    __vrel_debug_min = 1;
    WChar units[8] = {kGuard};
    const Int32 count = zelConvertToUnicode("AB", 2, EncodingBig5, units, 4);
    std::_Exit(count == 0 && units[0] == kGuard ? 0 : 1);
}

TEST(EncodingDeathTest, ConverterThatCannotBeOpenedIsLoggedAndGivesNothing)
{
    EXPECT_EXIT(ConvertWithoutFiles(), testing::ExitedWithCode(0), "iconv_open error!\n");
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHeapIsWatched = true;
#else
constexpr bool kHeapIsWatched = false;
#endif

TEST(Encoding, EveryFailedConversionKeepsItsConverter)
{
    if (kHeapIsWatched)
        GTEST_SKIP() << "the sanitizer's heap keeps no count";
    const auto growth = [](std::string_view bytes) {
        WChar units[16];
        const auto convert = [&] {
            zelConvertToUnicode(bytes.data(), static_cast<UInt32>(bytes.size()), EncodingUTF8,
                                units, 8);
        };
        convert();
        const std::size_t before = mallinfo2().uordblks;
        for (int i = 0; i < 100; ++i)
            convert();
        return mallinfo2().uordblks - before;
    };
    // A converter is more than a byte; the heap's own caches may take a few bytes once.
    EXPECT_LT(growth("AB"), 100U);
    EXPECT_GE(growth("\xFF"), 10000U);
}

} // namespace
