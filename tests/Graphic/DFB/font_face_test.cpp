#include "display_fixture.h"
#include "font_support.h"
#include "seeded_random.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sys/wait.h>

using namespace kestrin_test;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// ---- Opening ----

TEST_F(FontTest, FontStartsWithoutAReference)
{
    Font* font = new Font(kSans.c_str());
    EXPECT_EQ(font->Hold(), 1);
    EXPECT_EQ(font->Release(), 0);
}

TEST_F(FontTest, BytesInMemoryAreTheSameFontAsTheirFile)
{
    const std::string bytes = BytesOf(kSerif);
    const PFont file = OpenFile(kSerif);
    const PFont memory = OpenBytes(bytes);
    EXPECT_EQ(memory->GetFTYOffsetTop(40), file->GetFTYOffsetTop(40));
    for (WChar ch = 0x20; ch < 0x180; ++ch)
        EXPECT_EQ(Rows(GlyphOf(*memory, ch, 22)), Rows(GlyphOf(*file, ch, 22)));
}

TEST_F(FontTest, FileThatCannotBeOpenedIsAnAvailableBlankFont)
{
    PFont font;
    const std::string log = LogOf(1, [&] { font = OpenFile("/missing/font.ttf"); });
    EXPECT_THAT(log, ContainsRegex("\\[1\\] Graphic/DFB/font.cpp:[0-9]+ Requester: "
                                   "FT_New_Face failed, /missing/font.ttf, [0-9]+\n"));
    ExpectBlank(*font);
}

TEST_F(FontTest, BytesThatAreNoFontAreAnAvailableBlankFont)
{
    const std::string bytes(5000, 'x');
    PFont font;
    const std::string log = LogOf(1, [&] { font = OpenBytes(bytes); });
    EXPECT_THAT(log, HasSubstr("Requester: FT_New_Face failed\n"));
    ExpectBlank(*font);
}

TEST_F(FontTest, DirectoryIsABlankFont)
{
    ExpectBlank(*OpenFile("/tmp"));
}

TEST_F(FontTest, LengthsThatHoldNoFontAreBlankFonts)
{
    const std::string bytes = BytesOf(kSans);
    for (const int length : {0, -1, INT_MIN, 3, 200}) {
        const PFont font = new Font("cut", bytes.data(), length);
        ExpectBlank(*font);
    }
    const PFont null = new Font("none", nullptr, 100);
    ExpectBlank(*null);
}

TEST_F(FontTest, DamagedBytesAreSafe)
{
    const std::string bytes = BytesOf(kScreen);
    SeededRandom random;
    for (int i = 0; i < 40; ++i) {
        std::string damaged = bytes.substr(0, random.Between(bytes.size() / 2, bytes.size()));
        for (int hit = 0; hit < 20; ++hit)
            damaged[random.Between(0, damaged.size() - 1)] =
                static_cast<char>(random.Between(0, 255));
        const PFont font = OpenBytes(damaged);
        for (WChar ch = 0x20; ch < 0x100; ch += 3) {
            font->GetFTNoScaleCharMetricsX(ch, 20, FontRegular);
            const CharMetrics glyph = GlyphOf(*font, ch, 20);
            EXPECT_EQ(Rows(glyph).empty(), glyph.buffer == nullptr || glyph.height == 0);
        }
    }
}

TEST_F(FontTest, NameOf200CharactersIsCutTo199)
{
    for (const std::size_t length : {199U, 200U, 5000U}) {
        const std::string log = LogOf(1, [&] { OpenFile(std::string(length, 'n')); });
        EXPECT_THAT(log, HasSubstr(", " + std::string(199, 'n') + ", ")) << length;
    }
}

TEST_F(FontTest, OnlyMemoryFontsLogTheirNumberAtLevelFour)
{
    const std::string bytes = BytesOf(kSans);
    EXPECT_THAT(LogOf(4, [&] { OpenBytes(bytes); }), ContainsRegex(" Font: _face_ID:[0-9]+\n$"));
    EXPECT_THAT(LogOf(3, [&] { OpenBytes(bytes); }), IsEmpty());
    EXPECT_THAT(LogOf(4, [&] { OpenFile(kSans); }), IsEmpty());
}

TEST_F(FontTest, EveryFontTakesTheNextNumber)
{
    const auto number = [] {
        const std::string log = LogOf(1, [] { OpenFile("missing"); });
        return std::stoi(log.substr(log.rfind(' ')));
    };
    const int first = number();
    EXPECT_EQ(number(), first + 1);
    const PFont other = OpenFile(kSans);
    EXPECT_EQ(number(), first + 3);
}

// ---- Faces that the cache gave up ----

/** Enough fonts that the cache has no room left for a face from before. */
std::vector<PFont> Crowd(const std::string& name)
{
    std::vector<PFont> fonts;
    for (int i = 0; i < 17; ++i)
        fonts.push_back(OpenFile(name));
    return fonts;
}

TEST_F(FontTest, GivenUpFaceComesBackWithTheGlyphsOfTheFontMadeLast)
{
    const PFont font = OpenFile(kSans);
    Oracle sans(kSans);
    Oracle serif(kSerif);
    const auto crowd = Crowd(kSerif);
    // The glyph's number is still the font's own.
    ExpectGlyph(GlyphOf(*font, 'Q', 40), serif, sans.Glyph('Q'), 40, 72);
}

TEST_F(FontTest, GivenUpFaceKeepsItsMetrics)
{
    const PFont font = OpenFile(kSans);
    const Oracle oracle(kSans);
    const Int32 top = font->GetFTYOffsetTop(100);
    const Int32 kerning = font->GetFTKerning('A', 'V', 100, FontRegular);
    ASSERT_NE(kerning, 0);
    const auto crowd = Crowd(kScreen);
    GlyphOf(*font, 'Q', 40);
    EXPECT_EQ(font->GetFTYOffsetTop(100), top);
    EXPECT_EQ(font->GetFTKerning('A', 'V', 100, FontRegular), kerning);
    EXPECT_EQ(font->GetFontIndex(0x416), oracle.Glyph(0x416));
}

TEST_F(FontTest, GivenUpFaceIsBlankOnceTheFontMadeLastIsGone)
{
    const PFont font = OpenFile(kSans);
    Crowd(kSerif).clear();
    EXPECT_EQ(GlyphOf(*font, 'Q', 40).buffer, nullptr);
    EXPECT_GT(font->GetFTYOffsetTop(40), 0);
}

TEST_F(FontTest, FaceReopenedFromTheBytesOfAnotherFontGoesWithThatFont)
{
    const PFont font = OpenFile(kSans);
    const std::string bytes = BytesOf(kSerif);
    const auto crowd = Crowd(kScreen);
    {
        const PFont memory = OpenBytes(bytes);
        Oracle sans(kSans);
        Oracle serif(kSerif);
        ExpectGlyph(GlyphOf(*font, 'Q', 40), serif, sans.Glyph('Q'), 40, 72);
    }
    // The bytes could be gone now.
    EXPECT_EQ(GlyphOf(*font, 'R', 41).buffer, nullptr);
    EXPECT_EQ(GlyphOf(*font, 'Q', 40).buffer, nullptr);
}

TEST_F(FontTest, BytesMayGoWithTheirFontWhileTheCacheKeepsTheFace)
{
    for (int i = 0; i < 40; ++i) {
        const auto bytes = std::make_unique<std::string>(BytesOf(i % 2 ? kScreen : kSerif));
        const PFont font = OpenBytes(*bytes);
        EXPECT_NE(GlyphOf(*font, 'a', 30).buffer, nullptr);
        EXPECT_GT(font->GetFTNoScaleCharMetricsX('a', 30, FontRegular), 0);
    }
    const PFont font = OpenFile(kSans);
    EXPECT_NE(GlyphOf(*font, 'a', 30).buffer, nullptr);
}

TEST_F(FontTest, AdoptedBytesLiveAsLongAsTheFont)
{
    const std::string bytes = BytesOf(kSerif);
    std::unique_ptr<char[]> content(new char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), content.get());
    const PFont font = new Font("adopted", content.get(), static_cast<int>(bytes.size()));
    font->AdoptContent(std::move(content));
    Oracle oracle(kSerif);
    ExpectGlyph(GlyphOf(*font, 'k', 50), oracle, oracle.Glyph('k'), 50, 72);
}

// ---- Start and end of FreeType ----

TEST_F(FontTest, InitializeAgainKeepsFreeTypeAndItsFaces)
{
    const PFont font = OpenFile(kSans);
    EXPECT_TRUE(Font::Initialize());
    EXPECT_NE(GlyphOf(*font, 'A', 20).buffer, nullptr);
}

/** Ends the process with 0 if all is as it should be after the end of FreeType. */
[[noreturn]] void LookUpAfterTheEnd()
{
    Font::Initialize();
    const std::string bytes = BytesOf(kSans);
    const PFont file = OpenFile(kSans);
    const PFont memory = OpenBytes(bytes);
    GlyphOf(*file, 'A', 20);
    bool good = Font::Uninitialize() && Font::Uninitialize() && Font::Initialize();
    const PFont late = OpenFile(kSans);
    for (const PFont& font : {file, memory, late}) {
        ExpectBlank(*font);
        good = good && !testing::Test::HasFailure() && GlyphOf(*font, 'A', 20).pix_mode == 2;
    }
    std::exit(good ? 0 : 1);
}

TEST(FontCache, KeepsGlyphsWhateverItsMemoryHeldBefore)
{
    {
        // FreeType finds them in the blocks that it takes next.
        std::vector<std::unique_ptr<std::string>> leftovers;
        for (std::size_t size = 16; size < 4096; size += 16) {
            for (int i = 0; i < 10; ++i)
                leftovers.push_back(std::make_unique<std::string>(size, '\x7f'));
        }
    }
    Font::Initialize();
    const PFont font = OpenFile(kSans);
    UInt8* const first_pixel = GlyphOf(*font, 'H', 24).buffer;
    const auto mark = static_cast<UInt8>(*first_pixel - 1);
    *first_pixel = mark;
    for (WChar ch = 0x400; ch < 0x460; ++ch)
        GlyphOf(*font, ch, 24);
    EXPECT_EQ(GlyphOf(*font, 'H', 24).buffer, first_pixel);
    EXPECT_EQ(*first_pixel, mark); // and was not rendered anew
}

TEST(FontDeathTest, AfterUninitializeEverythingIsZeroAlsoAfterAnotherInitialize)
{
    EXPECT_EXIT(LookUpAfterTheEnd(), testing::ExitedWithCode(0), "");
}

/** Ends the process with 0 if fonts made before the start of FreeType are blank for good. */
[[noreturn]] void LookUpBeforeTheStart()
{
    const PFont font = OpenFile(kSans);
    ExpectBlank(*font);
    Font::Initialize();
    ExpectBlank(*font);
    std::exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(FontDeathTest, FontMadeBeforeInitializeIsBlank)
{
    EXPECT_EXIT(LookUpBeforeTheStart(), testing::ExitedWithCode(0), "");
}

// ---- DirectFB fonts ----

class DirectFbFont : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        _display = std::make_unique<TestDisplay>(320, 200);
        zelInitialize(320, 200, Color32Bit);
    }
    static void TearDownTestSuite()
    {
        zelUninitialize();
        _display.reset();
    }

    PFont _font = OpenFile(kSans);

private:
    static std::unique_ptr<TestDisplay> _display;
};

std::unique_ptr<TestDisplay> DirectFbFont::_display;

TEST_F(DirectFbFont, IsMadeOncePerSizeAndStyle)
{
    IDirectFBFont* font = _font->GetFont(20, FontRegular, 0x10000);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(_font->GetFont(20, FontRegular, 0x10000), font);
    EXPECT_NE(_font->GetFont(20, FontBold, 0x10000), font);
    EXPECT_NE(_font->GetFont(21, FontRegular, 0x10000), font);
    EXPECT_EQ(_font->GetFont(20, FontRegular, 0x10000), font);
}

TEST_F(DirectFbFont, ScalerMakesNoDifference)
{
    EXPECT_EQ(_font->GetFont(20, FontRegular, 1), _font->GetFont(20, FontRegular, 0x20000));
}

TEST_F(DirectFbFont, HasTheSizeAsItsHeight)
{
    int last = 0;
    for (const UInt16 size : {10, 20, 60}) {
        IDirectFBFont* font = _font->GetFont(size, FontRegular, 0);
        int ascender = 0;
        font->GetAscender(font, &ascender);
        EXPECT_GT(ascender, last);
        EXPECT_NEAR(ascender, 0.93 * size, 2.0); // the ascender of DejaVu Sans
        last = ascender;
    }
}

TEST_F(DirectFbFont, TwentyFirstIsNullWhileTheTwentyStay)
{
    std::vector<IDirectFBFont*> fonts;
    for (int i = 0; i < 20; ++i)
        fonts.push_back(
            _font->GetFont(static_cast<UInt16>(10 + i / 2), i % 2 ? FontBold : FontRegular, 0));
    EXPECT_THAT(fonts, testing::Not(testing::Contains(nullptr)));
    EXPECT_EQ(_font->GetFont(99, FontRegular, 0), nullptr);
    EXPECT_EQ(_font->GetFont(10, FontRegular, 0), fonts.front());
    EXPECT_EQ(_font->GetFont(19, FontBold, 0), fonts.back());

    CharMetrics metrics = {7, 7, 7, 7, 7, nullptr};
    _font->GetCharMetrics('A', 99, FontRegular, &metrics);
    EXPECT_EQ(metrics.width, 7) << "without a font nothing is written";
}

TEST_F(DirectFbFont, CreationThatGivesNoFontUsesUpItsSlotForGood)
{
    IDirectFB* dfb = zelGetDFBHandle();
    static auto create = dfb->CreateFont;
    static int creations = 0;
    // Every second creation succeeds without a font.
    dfb->CreateFont = [](IDirectFB* thiz, const char* name, const DFBFontDescription* description,
                         IDirectFBFont** font) {
        return ++creations % 2 ? create(thiz, name, description, font) : DFB_OK;
    };
    for (UInt16 size = 10; size < 30; ++size)
        EXPECT_EQ(_font->GetFont(size, FontBold, 0) != nullptr, size % 2 == 0) << size;
    EXPECT_EQ(creations, 20);
    EXPECT_NE(_font->GetFont(28, FontBold, 0), nullptr);
    EXPECT_EQ(_font->GetFont(29, FontBold, 0), nullptr) << "the slot does not know its size";
    EXPECT_EQ(_font->GetFont(0, FontRegular, 0), nullptr) << "what an unused slot looks like";
    EXPECT_EQ(creations, 20) << "no slot is left to try again";
    dfb->CreateFont = create;
}

TEST_F(DirectFbFont, CharMetricsHoldTheAdvanceOfTheGlyphOfThatNumberOnly)
{
    UInt8 byte = 0;
    CharMetrics metrics = {7, 8, 9, 10, 11, &byte};
    _font->GetCharMetrics(36, 20, FontRegular, &metrics);
    IDirectFBFont* font = _font->GetFont(20, FontRegular, 0);
    int advance = 0;
    ASSERT_EQ(font->GetGlyphExtents(font, 36, nullptr, &advance), DFB_OK);
    EXPECT_GT(advance, 0);
    EXPECT_EQ(metrics.width, advance);
    EXPECT_EQ(metrics.pix_mode, 7);
    EXPECT_EQ(metrics.height, 9);
    EXPECT_EQ(metrics.hori_bearing_x, 10);
    EXPECT_EQ(metrics.bitmap_top, 11);
    EXPECT_EQ(metrics.buffer, &byte);
}

TEST_F(DirectFbFont, KnowsNoOffsetsAndNoKerning)
{
    EXPECT_EQ(_font->GetKerning('A', 'V', 20, FontRegular), 0);
    EXPECT_EQ(_font->GetYOffsetTop(20), 0);
    EXPECT_EQ(_font->GetYOffsetBottom(20), 0);
    EXPECT_EQ(_font->GetXOffsetLeft(20), 0);
}

TEST_F(DirectFbFont, AreReleasedWithTheirFont)
{
    static int releases = 0;
    static DirectResult (*release)(IDirectFBFont*) = nullptr;
    for (const UInt16 size : {12, 13, 14}) {
        IDirectFBFont* font = _font->GetFont(size, FontRegular, 0);
        release = font->Release;
        font->Release = [](IDirectFBFont* thiz) {
            ++releases;
            return release(thiz);
        };
    }
    _font = nullptr;
    EXPECT_EQ(releases, 3);
}

class DirectFbFontDeathTest : public testing::Test
{
protected:
    static bool Exited(int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; }
    TestDisplay _display{320, 200};
};

TEST_F(DirectFbFontDeathTest, SizeZeroAndMissingFilesEndTheProcess)
{
    const char* report = "Graphic/DFB/font\\.cpp <[0-9]+>:\n\t.*"
                         "View::_dfb->CreateFont\\(View::_dfb, _font_name, &fdsc, &font\\)";
    EXPECT_EXIT(
        {
            zelInitialize(320, 200, Color32Bit);
            OpenFile(kSans)->GetFont(0, FontRegular, 0);
        },
        Exited, report);
    EXPECT_EXIT(
        {
            zelInitialize(320, 200, Color32Bit);
            OpenFile("missing")->GetFont(20, FontRegular, 0);
        },
        Exited, report);
}

TEST_F(DirectFbFontDeathTest, FailedGlyphExtentsEndTheProcess)
{
    EXPECT_EXIT(
        {
            zelInitialize(320, 200, Color32Bit);
            const PFont font = OpenFile(kSans);
            font->GetFont(20, FontRegular, 0)->GetGlyphExtents = [](IDirectFBFont*, unsigned, auto*,
                                                                    int*) { return DFB_FAILURE; };
            CharMetrics metrics = {};
            font->GetCharMetrics('A', 20, FontRegular, &metrics);
        },
        Exited,
        "Graphic/DFB/font\\.cpp <[0-9]+>:\n\t.*"
        "font->GetGlyphExtents\\(font, glyphindex, NULL, &glyphadvance\\)");
}

} // namespace
