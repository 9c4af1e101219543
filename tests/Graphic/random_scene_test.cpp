/**
 * Whole frames by two ways: what an update repaints in parts must be the picture that a repaint of
 * everything gives, however the back buffer is divided.
 */
#include "random_scene.h"

#include "engine_display.h"
#include "picture_compare.h"
#include "test_font.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::EngineDisplay;
using kestrin_test::MakeFontResource;
using kestrin_test::RandomScene;
using kestrin_test::RandomSceneKind;
using kestrin_test::SamePicture;
using kestrin_test::SeededRandom;

namespace zelxxx {
namespace {

/** How a scene is painted. */
struct Way
{
    bool force = false;
    int rows = 1;
    int columns = 1;
    SceneOption options = SceneUseDoubleBuffer;
};

struct Frame
{
    ArgbImage picture;
    std::string step;
};

/** Loads colours that tell the indices apart. */
void LoadPalette(IScene* scene)
{
    PaletteEntry entries[256];
    for (int i = 0; i < 256; ++i) {
        const auto number = static_cast<UInt8>(i);
        entries[i] = {number, static_cast<UInt8>(255 - i), static_cast<UInt8>(i * 7), 255};
    }
    ZELObjPtr<IPalette> palette(zelCreatePalette(entries));
    scene->SetPalette(palette, 256, 256, 256);
}

/** The pictures of a random scene, step by step. */
std::vector<Frame> Film(std::uint32_t seed, const RandomSceneKind& kind, const Way& way, int steps)
{
    const ColorMode mode = kind.palette ? Color8Bit : Color32Bit;
    EngineDisplay engine(kind.width, kind.height, mode);
    PResource resource = MakeFontResource();
    zelSetBackBufferSize(way.rows, way.columns);
    ZELObjPtr<IScene> scene(zelCreateScene(0, static_cast<MetricValue>(kind.width),
                                           static_cast<MetricValue>(kind.height), mode, way.options,
                                           kind.palette ? BlendSrcOver8BIT : BlendSrcOver));
    zelSetBackBufferSize(1, 1);
    // Grey, since the view and the canvas read colours in different byte orders.
    scene->SetBackgroundColor(kind.palette ? 120 : 0x808080, 255);
    if (kind.palette)
        LoadPalette(scene);

    RandomScene random(scene, resource, seed, kind);
    std::vector<Frame> film;
    zelUpdateScreen(true, true); // the first update paints no background outside the widgets
    film.push_back({engine.Shot(), "start"});
    for (int i = 0; i < steps; ++i) {
        random.Step();
        zelUpdateScreen(way.force, true);
        film.push_back({engine.Shot(), "step " + std::to_string(i) + ":" + random.LastStep()});
    }
    return film;
}

void ExpectSameFilm(const std::vector<Frame>& actual, const std::vector<Frame>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    int changes = 0;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(actual[i].step, expected[i].step); // or the films cannot be compared
        ASSERT_TRUE(SamePicture(actual[i].picture, expected[i].picture)) << actual[i].step;
        changes += i > 0 && actual[i].picture.pixels != actual[i - 1].picture.pixels;
    }
    // A film in which nothing happens would prove nothing.
    EXPECT_GT(changes, static_cast<int>(actual.size()) / 4);
}

class RandomScenes : public testing::TestWithParam<std::uint32_t>
{
protected:
    std::vector<Frame> Take(const Way& way)
    {
        return Film(random.Seed(), kind, way, SeededRandom::Rounds(250));
    }

    SeededRandom random = SeededRandom(GetParam());
    RandomSceneKind kind;
};

TEST_P(RandomScenes, UpdatesShowWhatARepaintShows)
{
    ExpectSameFilm(Take({}), Take({true}));
}

TEST_P(RandomScenes, TilesShowWhatOneCanvasShows)
{
    ExpectSameFilm(Take({false, 3, 4}), Take({}));
}

TEST_P(RandomScenes, TilesShowWhatOneCanvasShowsWhenForced)
{
    ExpectSameFilm(Take({true, 4, 2}), Take({true}));
}

TEST_P(RandomScenes, SingleBufferShowsWhatOneCanvasShowsWhenForced)
{
    // There a widget is painted though its layer is hidden, if it shows without opacity.
    kind.plain = true;
    ExpectSameFilm(Take({true, 1, 1, SceneUseSingleBuffer}), Take({true}));
}

class RandomPaletteScenes : public RandomScenes
{
protected:
    void SetUp() override { kind.palette = true; }
};

TEST_P(RandomPaletteScenes, UpdatesShowWhatARepaintShows)
{
    ExpectSameFilm(Take({}), Take({true}));
}

TEST_P(RandomPaletteScenes, TilesShowWhatOneCanvasShows)
{
    ExpectSameFilm(Take({false, 3, 4}), Take({}));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomScenes, testing::Range(1U, 5U));
INSTANTIATE_TEST_SUITE_P(Seeds, RandomPaletteScenes, testing::Range(11U, 13U));

} // namespace
} // namespace zelxxx
