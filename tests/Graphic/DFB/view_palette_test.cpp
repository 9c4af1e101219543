/** The view on an 8-bit display: loading palettes with brightness and opacity, single entries. */
#include "DFB/view.h"

#include "call_recorder.h"
#include "engine_display.h"
#include "recording_surface.h"

#include <cmath>
#include <cstdint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::CallLog;
using kestrin_test::CallRecorder;
using kestrin_test::EngineDisplay;
using kestrin_test::NameInLogs;
using kestrin_test::RecordingSurface;
using testing::ElementsAre;
using testing::IsEmpty;
using zelxxx::Color8Bit;
using zelxxx::PaletteEntry;
using zelxxx::PPalette;
using zelxxx::PView;
using zelxxx::UInt16;
using zelxxx::UInt8;
using zelxxx::View;

namespace {

/** Every channel takes every value once, each in another order. */
struct Colors
{
    PaletteEntry entries[256];

    Colors()
    {
        for (int i = 0; i < 256; ++i) {
            entries[i].red = static_cast<UInt8>(i);
            entries[i].green = static_cast<UInt8>(255 - i);
            entries[i].blue = static_cast<UInt8>(i * 7);
            entries[i].blending = static_cast<UInt8>(i * 3 + 1);
        }
    }
};

/** A channel times an 8.8 factor in real numbers, rounded down and limited. */
std::uint32_t Scaled(int channel, int factor)
{
    return static_cast<std::uint32_t>(std::fmin(255, std::floor(channel * (factor / 256.0))));
}

class ViewPalette : public testing::Test
{
protected:
    std::uint32_t Shown(int index) { return _engine.Display().Facts().palette[index]; }

    EngineDisplay _engine{64, 48, Color8Bit};
    PView _view = zelxxx::zelCreateView(0, 64, 48, Color8Bit, false);
    Colors _colors;
    PPalette _palette = zelxxx::zelCreatePalette(_colors.entries);
};

struct Factors
{
    UInt16 brightness, opaque, transparent;
};

void PrintTo(const Factors& f, std::ostream* out)
{
    *out << f.brightness << " " << f.opaque << " " << f.transparent;
}

class ViewPaletteFactors : public ViewPalette, public testing::WithParamInterface<Factors>
{
};

TEST_P(ViewPaletteFactors, ScaleEveryEntryOfTheDisplay)
{
    const Factors f = GetParam();
    _view->SetPalette(_palette, f.brightness, f.opaque, f.transparent);
    const kestrin_display::LayerFacts facts = _engine.Display().Facts();
    for (int i = 0; i < 256; ++i) {
        const PaletteEntry& entry = _colors.entries[i];
        const std::uint32_t alpha =
            Scaled(entry.blending, entry.blending == 255 ? f.opaque : f.transparent);
        const std::uint32_t expected = alpha << 24 | Scaled(entry.red, f.brightness) << 16 |
                                       Scaled(entry.green, f.brightness) << 8 |
                                       Scaled(entry.blue, f.brightness);
        ASSERT_EQ(facts.palette[i], expected)
            << "entry " << i << std::hex << " is " << facts.palette[i];
    }
}

INSTANTIATE_TEST_SUITE_P(Factors, ViewPaletteFactors,
                         testing::Values(Factors{256, 256, 256}, Factors{0, 0, 0},
                                         Factors{1, 255, 254}, Factors{128, 64, 192},
                                         Factors{255, 257, 258}, Factors{300, 512, 511},
                                         Factors{65535, 65535, 65535}));

TEST_F(ViewPalette, FullFactorsKeepColoursAndOpacities)
{
    PaletteEntry entries[256] = {};
    entries[1] = {10, 20, 30, 255};
    entries[2] = {40, 50, 60, 128};
    _view->SetPalette(zelxxx::zelCreatePalette(entries), 256, 256, 256);
    EXPECT_EQ(Shown(0), 0U);
    EXPECT_EQ(Shown(1), 0xff0a141eU);
    EXPECT_EQ(Shown(2), 0x8028323cU);
}

TEST_F(ViewPalette, LoadingFetchesAndSetsTheDisplaysOwnPalette)
{
    const RecordingSurface recording(View::_primary);
    _view->SetPalette(_palette, 256, 256, 256);
    ASSERT_NE(View::_palette, nullptr);
    EXPECT_THAT(recording.Calls(), ElementsAre("GetPalette(out)", "SetPalette(object)"));
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == _palette);
}

TEST_F(ViewPalette, PlainSetPaletteLeavesTheDisplay)
{
    _view->SetPaletteEntry(7, 1, 2, 3, 4);
    const std::uint32_t before = Shown(7);
    const RecordingSurface recording(View::_primary);
    _view->SetPalette(_palette);
    EXPECT_THAT(recording.Calls(), IsEmpty());
    EXPECT_EQ(Shown(7), before);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == _palette);
}

TEST_F(ViewPalette, NoPaletteEmptiesTheRecordAndLeavesTheDisplay)
{
    _view->SetPalette(_palette, 256, 256, 256);
    const std::uint32_t before = Shown(200);
    const RecordingSurface recording(View::_primary);
    _view->SetPalette(nullptr, 0, 0, 0);
    EXPECT_THAT(recording.Calls(), IsEmpty());
    EXPECT_EQ(Shown(200), before);
    EXPECT_TRUE(zelxxx::zelGetCurrentPalette() == nullptr);
}

TEST_F(ViewPalette, EntryBeforeALoadedPaletteDoesNothing)
{
    const std::uint32_t before = Shown(7);
    _view->SetPaletteEntry(7, 1, 2, 3, 4);
    EXPECT_EQ(Shown(7), before);
    EXPECT_NE(before, 0x04010203U);
}

TEST_F(ViewPalette, EntryAfterALoadedPaletteChangesOneColour)
{
    _view->SetPalette(_palette, 256, 256, 256);
    const kestrin_display::LayerFacts before = _engine.Display().Facts();
    CallLog log;
    {
        CallRecorder<IDirectFBPalette> recording(View::_palette, log);
        recording.Watch<&IDirectFBPalette::SetEntries>("SetEntries");
        _view->SetPaletteEntry(7, 1, 2, 3, 4);
    }
    EXPECT_THAT(log, ElementsAre("SetEntries([4 1 2 3], 1, 7)"));
    const kestrin_display::LayerFacts after = _engine.Display().Facts();
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(after.palette[i], i == 7 ? 0x04010203U : before.palette[i]) << i;
}

} // namespace
