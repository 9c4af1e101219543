#include "tscene.h"

#include "DFB/view.h"
#include "held.h"
#include "scene_test.h"
#include "test_modifier.h"

#include <chrono>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::AreaHasColor;
using kestrin_test::EngineDisplay;
using kestrin_test::kBlue;
using kestrin_test::kGreen;
using kestrin_test::kGrey;
using kestrin_test::kRed;
using kestrin_test::MakeLayer;
using kestrin_test::MakeRectangle;
using kestrin_test::SamePicture;
using kestrin_test::SceneTest;
using kestrin_test::Shown;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

constexpr auto kFlippingSingleBuffer =
    static_cast<SceneOption>(SceneUseFlipping | SceneUseSingleBuffer);

/** Makes scenes on a display of 720 x 576 and looks at their canvas. */
class SceneCanvas : public testing::Test
{
protected:
    void TearDown() override { zelSetBackBufferSize(1, 1); }

    static std::vector<int> SizeOf(int width, int height,
                                   SceneOption options = SceneUseDoubleBuffer)
    {
        ZELObjPtr<Scene> scene(new Scene(0, static_cast<MetricValue>(width),
                                         static_cast<MetricValue>(height), Color32Bit, options,
                                         BlendSrcOver));
        EXPECT_EQ(scene->GetWidth(), width);
        EXPECT_EQ(scene->GetHeight(), height);
        return {scene->GetCanvas()->GetWidth(), scene->GetCanvas()->GetHeight()};
    }
    using Size = std::vector<int>;

    EngineDisplay engine = EngineDisplay(720, 576);
};

TEST_F(SceneCanvas, IsAsLargeAsTheSceneAtFirst)
{
    EXPECT_EQ(SizeOf(720, 576), (Size{720, 576}));
}

TEST_F(SceneCanvas, IsOneTileLarge)
{
    zelSetBackBufferSize(3, 4); // rows first
    EXPECT_EQ(SizeOf(720, 576), (Size{180, 192}));
}

TEST_F(SceneCanvas, CountThatDoesNotDivideBecomesOneForLaterScenesToo)
{
    zelSetBackBufferSize(3, 4);
    EXPECT_EQ(SizeOf(721, 576), (Size{721, 192}));
    EXPECT_EQ(SizeOf(720, 576), (Size{720, 192}));
    zelSetBackBufferSize(3, 4);
    EXPECT_EQ(SizeOf(720, 577), (Size{180, 577}));
    EXPECT_EQ(SizeOf(720, 576), (Size{180, 576}));
}

TEST_F(SceneCanvas, CountsThatAreNotPositiveBecomeOne)
{
    zelSetBackBufferSize(0, -1);
    EXPECT_EQ(SizeOf(720, 576), (Size{720, 576}));
    zelSetBackBufferSize(-3, 0);
    EXPECT_EQ(SizeOf(720, 576), (Size{720, 576}));
}

TEST_F(SceneCanvas, IsTheViewWhenFlippingAndTheCountsStay)
{
    zelSetBackBufferSize(5, 7);
    {
        ZELObjPtr<Scene> scene(new Scene(0, 720, 576, Color32Bit, SceneUseFlipping, BlendSrcOver));
        EXPECT_NE(dynamic_cast<View*>(scene->GetCanvas()), nullptr);
    }
    EXPECT_EQ(SizeOf(700, 575), (Size{100, 115}));
}

TEST_F(SceneCanvas, IsTheViewInSingleBufferModeAndTheCountsAreReset)
{
    zelSetBackBufferSize(3, 4);
    {
        ZELObjPtr<Scene> scene(
            new Scene(0, 720, 576, Color32Bit, SceneUseSingleBuffer, BlendSrcOver));
        EXPECT_NE(dynamic_cast<View*>(scene->GetCanvas()), nullptr);
    }
    EXPECT_EQ(SizeOf(720, 576), (Size{720, 576}));
}

TEST_F(SceneCanvas, DirtyOptionsChangeNothing)
{
    EXPECT_EQ(
        SizeOf(720, 576, static_cast<SceneOption>(SceneUseDirtyRectangles | SceneUseDirtyBuffer)),
        (Size{720, 576}));
}

TEST_F(SceneCanvas, SceneWithoutPixelsIsUpdatedWithoutEnd)
{
    for (SceneOption options : {SceneUseFlipping, SceneUseSingleBuffer}) {
        for (MetricValue height : {MetricValue{0}, MetricValue{576}}) {
            ZELObjPtr<IScene> scene(
                zelCreateScene(0, 0, height, Color32Bit, options, BlendSrcOver));
            PLayer layer = MakeLayer();
            scene->AddLayer(layer);
            scene->Update(true, true);
        }
    }
}

TEST_F(SceneCanvas, NewSceneCountsNothingAndIsNotPainting)
{
    ZELObjPtr<Scene> scene(new Scene(0, 720, 576, Color8Bit, SceneUseFlipping, BlendSrcOver8BIT));
    EXPECT_EQ(scene->CurrentTOrder, 0);
    EXPECT_EQ(scene->CurrentPainter, nullptr);
    EXPECT_EQ(scene->GetColorMode(), Color8Bit);
}

class SceneUpdate : public SceneTest
{
protected:
    using SceneTest::SceneTest;

    /** Whether an update runs, seen by the sequence number that each one starts anew. */
    bool Runs(bool force, bool wait = true)
    {
        auto* impl = dynamic_cast<Scene*>(static_cast<IScene*>(scene));
        impl->CurrentTOrder = -5;
        scene->Update(force, wait);
        EXPECT_EQ(impl->CurrentPainter, nullptr);
        return impl->CurrentTOrder != -5;
    }

    ZELObjPtr<IWidget> red = MakeRectangle(10, 10, 8, 8, kRed);
    ZELObjPtr<IWidget> green = MakeRectangle(14, 14, 8, 8, kGreen);
};

TEST_F(SceneUpdate, FirstOneRunsWithoutForce)
{
    EXPECT_TRUE(Runs(false));
}

TEST_F(SceneUpdate, UnchangedSceneDoesNothing)
{
    EXPECT_TRUE(Runs(true));
    const auto presented = engine.Presented();
    EXPECT_FALSE(Runs(false));
    EXPECT_EQ(engine.Presented(), presented);
    EXPECT_TRUE(Runs(true));
    EXPECT_GT(engine.Presented(), presented);
}

TEST_F(SceneUpdate, EveryMarkOfAWidgetInTheSceneAsksForOne)
{
    layer->AddWidget(red);
    for (AttrIndex index :
         {AttrPosX, AttrPosZ, AttrScaleX, AttrBlend, AttrColor, AttrBlittingFlag}) {
        Runs(true);
        red->SetAttribute(index, red->GetAttribute(index)); // no change at all
        EXPECT_TRUE(Runs(false)) << index;
        EXPECT_FALSE(Runs(false)) << index;
    }
    layer->RemoveWidget(red);
    EXPECT_TRUE(Runs(false));
    red->SetAttribute(AttrPosX, 3); // no longer in the scene
    EXPECT_FALSE(Runs(false));
}

TEST_F(SceneUpdate, WhatDidNotChangeIsNotPresented)
{
    layer->AddWidget(red);
    Runs(true);
    const auto presented = engine.Presented();
    red->SetAttribute(AttrPosX, 10);
    EXPECT_TRUE(Runs(false));
    EXPECT_EQ(engine.Presented(), presented);
}

TEST_F(SceneUpdate, DisabledSceneIgnoresEvenForce)
{
    scene->Enable(false);
    EXPECT_FALSE(Runs(false));
    EXPECT_FALSE(Runs(true));
    scene->Enable(true);
    EXPECT_TRUE(Runs(false));
}

TEST_F(SceneUpdate, OnlyDirtyPartsAreRepainted)
{
    layer->AddWidget(red);
    Repainted();
    // Spoil the display: what is not dirty stays spoilt.
    View::_primary->Clear(View::_primary, 1, 2, 3, 255);
    red->SetAttribute(AttrColor, kBlue);
    const auto shot = Updated();
    EXPECT_TRUE(AreaHasColor(shot, 10, 10, 18, 18, Shown(kBlue)));
    EXPECT_EQ(shot.At(9, 10), 0xff010203U);
    EXPECT_EQ(shot.At(18, 17), 0xff010203U);
    EXPECT_EQ(shot.At(0, 0), 0xff010203U);
}

TEST_F(SceneUpdate, NewWidgetIsPaintedThoughItDidNotMove)
{
    Repainted();
    layer->AddWidget(red);
    EXPECT_TRUE(AreaHasColor(Updated(), 10, 10, 18, 18, Shown(kRed)));
}

TEST_F(SceneUpdate, RemovedWidgetsAreaIsCleared)
{
    layer->AddWidget(red);
    Repainted();
    layer->RemoveWidget(red);
    EXPECT_TRUE(AreaHasColor(Updated(), 0, 0, kWidth, kHeight, kGrey));
    EXPECT_EQ(red->GetLayer(), nullptr);
}

TEST_F(SceneUpdate, MovedWidgetLeavesNothingBehind)
{
    layer->AddWidget(red);
    Repainted();
    red->SetAttribute(AttrPosX, 40);
    const auto shot = Updated();
    EXPECT_TRUE(AreaHasColor(shot, 10, 10, 18, 18, kGrey));
    EXPECT_TRUE(AreaHasColor(shot, 40, 10, 48, 18, Shown(kRed)));
}

TEST_F(SceneUpdate, RemovalIsParkedUntilItIsCompleted)
{
    layer->AddWidget(red);
    Repainted();
    red->SetRemoving(true);
    layer->RemoveWidget(red);
    EXPECT_EQ(Updated().At(12, 12), Shown(kRed));
    EXPECT_TRUE(Runs(false)); // it keeps looking
    red->SetRemoving(false);
    EXPECT_EQ(Updated().At(12, 12), kGrey);
    EXPECT_FALSE(Runs(false));
}

TEST_F(SceneUpdate, RemoveOfNothingLooksForDyingWidgets)
{
    layer->AddWidget(red);
    Repainted();
    red->SetRemoving(true);
    red->SetRemoving(false);
    EXPECT_FALSE(Runs(false));
    layer->RemoveWidget(nullptr);
    EXPECT_EQ(Updated().At(12, 12), kGrey);
}

TEST_F(SceneUpdate, RemovedLayerTakesItsWidgetsAway)
{
    layer->AddWidget(red);
    Repainted();
    scene->RemoveLayer(layer);
    EXPECT_EQ(Updated().At(12, 12), kGrey);
    EXPECT_EQ(layer->GetLayer(), nullptr);
    EXPECT_EQ(red->GetLayer(), static_cast<ILayer*>(layer));
    scene->AddLayer(layer);
    EXPECT_EQ(Updated().At(12, 12), Shown(kRed));
}

TEST_F(SceneUpdate, HiddenWidgetsAndLayersAreNotPainted)
{
    layer->AddWidget(red);
    red->SetVisibility(false);
    EXPECT_EQ(Repainted().At(12, 12), kGrey);
    red->SetVisibility(true);
    EXPECT_EQ(Updated().At(12, 12), Shown(kRed));
    layer->SetVisibility(false);
    EXPECT_EQ(Updated().At(12, 12), kGrey);
    layer->SetVisibility(true);
    EXPECT_EQ(Updated().At(12, 12), Shown(kRed));
}

TEST_F(SceneUpdate, EqualDepthsPaintInTreeOrder)
{
    layer->AddWidget(red);
    layer->AddWidget(green);
    EXPECT_EQ(Repainted().At(15, 15), Shown(kGreen));
    layer->InsertWidget(red, green, InsertBehind);
    EXPECT_EQ(Updated().At(15, 15), Shown(kRed));
}

TEST_F(SceneUpdate, LaterLayersPaintOverEarlierOnes)
{
    PLayer above = MakeLayer();
    scene->AddLayer(above);
    above->AddWidget(red);
    layer->AddWidget(green);
    EXPECT_EQ(Repainted().At(15, 15), Shown(kRed));
}

TEST_F(SceneUpdate, GreaterDepthPaintsOverSmallerWhateverTheTree)
{
    PLayer above = MakeLayer();
    scene->AddLayer(above);
    above->AddWidget(green);
    layer->AddWidget(red);
    EXPECT_EQ(Repainted().At(15, 15), Shown(kGreen));
    red->SetAttribute(AttrPosZ, 1);
    EXPECT_EQ(Updated().At(15, 15), Shown(kRed));
    above->SetAttribute(AttrPosZ, 2);
    EXPECT_EQ(Updated().At(15, 15), Shown(kGreen));
    green->SetAttribute(AttrPosZ, -2);
    EXPECT_EQ(Updated().At(15, 15), Shown(kRed));
}

TEST_F(SceneUpdate, ModifierAsksForOneAndWorksOnTheCopy)
{
    layer->AddWidget(red);
    auto* modifier = new TestModifier;
    red->AddModifier(modifier);
    Runs(true);
    modifier->SetEffect([](IWidget* copy) { copy->SetAttribute(AttrPosX, 40); });
    auto shot = Updated();
    EXPECT_EQ(shot.At(41, 12), Shown(kRed));
    EXPECT_EQ(shot.At(12, 12), kGrey);
    EXPECT_EQ(red->GetAttribute(AttrPosX), 10);
    modifier->Enable(false);
    shot = Updated();
    EXPECT_EQ(shot.At(41, 12), kGrey);
    EXPECT_EQ(shot.At(12, 12), Shown(kRed));
    modifier->Enable(false); // as it is: nothing
    EXPECT_FALSE(Runs(false));
}

TEST_F(SceneUpdate, LayerBackgroundFillsItsClipRectangle)
{
    layer->SetAttribute(AttrPosX, 20);
    layer->SetAttribute(AttrSpanX, 10);
    layer->SetAttribute(AttrSpanY, 5);
    layer->SetAttribute(AttrBkgndColor, kBlue);
    EXPECT_TRUE(AreaHasColor(Repainted(), 0, 0, kWidth, kHeight, kGrey)); // no opacity at first
    layer->SetAttribute(AttrBkgndBlend, 255);
    const auto shot = Updated();
    EXPECT_TRUE(AreaHasColor(shot, 20, 0, 30, 5, Shown(kBlue)));
    EXPECT_EQ(shot.At(19, 0), kGrey);
    EXPECT_EQ(shot.At(30, 4), kGrey);
    EXPECT_EQ(shot.At(20, 5), kGrey);
}

// The fill is made with no opacity too, and a copy replaces what is there.
TEST_F(SceneUpdate, LayerBackgroundWithoutOpacityCopiesTransparency)
{
    layer->SetAttribute(AttrBkgndColor, kBlue);
    layer->SetAttribute(AttrBlendMode, BlendSrcCopy);
    EXPECT_TRUE(AreaHasColor(Repainted(), 0, 0, kWidth, kHeight, 0x000000ff));
}

TEST_F(SceneUpdate, LayerBackgroundOpacityMultipliesWithTheLayers)
{
    layer->SetAttribute(AttrBkgndColor, kBlue);
    layer->SetAttribute(AttrBkgndBlend, 100);
    layer->SetAttribute(AttrBlend, 100);
    layer->SetAttribute(AttrBlendMode, BlendSrcCopy);
    EXPECT_EQ(Repainted().At(0, 0), 0x270000ffU); // 100 * 100 / 255
}

TEST_F(SceneUpdate, BackgroundColourCountsForTheNextRepaint)
{
    Repainted();
    scene->SetBackgroundColor(0x102030, 0x40);
    EXPECT_TRUE(AreaHasColor(Updated(), 0, 0, kWidth, kHeight, kGrey));
    EXPECT_TRUE(AreaHasColor(Repainted(), 0, 0, kWidth, kHeight, 0x40102030));
}

TEST_F(SceneUpdate, TilesShowWhatOneCanvasShows)
{
    layer->AddWidget(red);
    layer->AddWidget(green);
    const auto expected = Repainted();
    scene = nullptr;
    zelSetBackBufferSize(3, 4);
    scene = zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver);
    zelSetBackBufferSize(1, 1); // is of no concern to a scene already made
    scene->SetBackgroundColor(0x808080, 255);
    scene->AddLayer(layer);
    View::_primary->Clear(View::_primary, 0, 0, 0, 0);
    EXPECT_TRUE(SamePicture(Repainted(), expected));
    red->SetAttribute(AttrPosX, 50);
    Updated();
    red->SetAttribute(AttrPosX, 10);
    EXPECT_TRUE(SamePicture(Updated(), expected));
}

TEST_F(SceneUpdate, ScenesAreUpdatedNewestFirst)
{
    Repainted();
    layer->AddWidget(red);
    {
        ZELObjPtr<IScene> newer(
            zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        newer->SetBackgroundColor(0, 255);
        zelUpdateScreen(true, true); // the older one has the last word
        EXPECT_EQ(engine.Shot().At(0, 0), kGrey);
        scene->Enable(false);
        zelUpdateScreen(true, true);
        EXPECT_EQ(engine.Shot().At(0, 0), 0xff000000U);
        scene->Enable(true);
    }
    zelUpdateScreen(true, true);
    EXPECT_EQ(engine.Shot().At(12, 12), Shown(kRed));
}

TEST_F(SceneUpdate, ViewOperationsReachTheDisplay)
{
    scene->Clear(0, 0, 1, 1, 0x0000ff, 255);
    EXPECT_TRUE(AreaHasColor(engine.Shot(), 0, 0, kWidth, kHeight, 0xffff0000));
    ZELObjPtr<ICanvas> canvas(zelCreateCanvas(4, 4, Color32Bit));
    canvas->Clear(0, 0, 4, 4, 0x0000ff, 255);
    scene->Copy(2, 3, canvas, 0, 0, 4, 4);
    EXPECT_EQ(engine.Shot().At(2, 3), 0xff0000ffU);
    scene->Hide();
    const auto presented = engine.Presented();
    scene->Flip();
    EXPECT_EQ(engine.Presented(), presented + 1);
    EXPECT_EQ(EngineDisplay::Display().Facts().opacity, 0U);
    scene->Show(0, 0, 1, 1);
    scene->Flip();
    EXPECT_EQ(EngineDisplay::Display().Facts().opacity, 255U);
    ZELObjPtr<IPalette> palette(zelCreatePalette(nullptr));
    scene->SetPalette(palette);
    EXPECT_TRUE(zelGetCurrentPalette() == palette);
    scene->SetPalette(nullptr, 256, 256, 256);
    EXPECT_TRUE(zelGetCurrentPalette() == nullptr);
}

TEST(SceneOnAnIndexedDisplay, SetPaletteEntryChangesOneColourOfTheDisplay)
{
    const EngineDisplay engine(64, 48, Color8Bit);
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 64, 48, Color8Bit, SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<IPalette> palette(zelCreatePalette(nullptr));
    scene->SetPalette(palette, 256, 256, 256);
    const auto before = EngineDisplay::Display().Facts();
    scene->SetPaletteEntry(7, 1, 2, 3, 4);
    const auto after = EngineDisplay::Display().Facts();
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(after.palette[i], i == 7 ? 0x04010203U : before.palette[i]) << i;
}

class FlippingScene : public SceneUpdate
{
protected:
    FlippingScene() : SceneUpdate(SceneUseFlipping) {}
};

TEST_F(FlippingScene, WaitsUntil20MillisecondsAfterTheLastFlip)
{
    scene->Update(true, true);
    for (int i = 0; i < 5; ++i) {
        const UInt32 before = zelGetTickCount();
        EXPECT_TRUE(Runs(true, true)); // flips now, at `before` or later
        EXPECT_TRUE(Runs(true, true));
        EXPECT_GE(zelGetTickCount() - before, 20U);
    }
}

TEST_F(FlippingScene, SkipsWithoutWaitingWithin20Milliseconds)
{
    bool skipped = false;
    for (int attempt = 0; attempt < 50 && !skipped; ++attempt) {
        EXPECT_TRUE(Runs(true, true));
        const bool ran = Runs(true, false);
        skipped = !ran;
    }
    EXPECT_TRUE(skipped); // a slow machine may need more than one attempt
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    EXPECT_TRUE(Runs(true, false));
}

TEST_F(FlippingScene, AllShareOnePace)
{
    ZELObjPtr<IScene> other(
        zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseFlipping, BlendSrcOver));
    bool skipped = false;
    for (int attempt = 0; attempt < 50 && !skipped; ++attempt) {
        scene->Update(true, true);
        const auto presented = engine.Presented();
        other->Update(true, false);
        skipped = engine.Presented() == presented;
    }
    EXPECT_TRUE(skipped); // a slow machine may need more than one attempt
    const auto presented = engine.Presented();
    other->Update(true, true);
    EXPECT_EQ(engine.Presented(), presented + 1);
}

TEST_F(FlippingScene, RepaintsTheWholeFrameAndFlips)
{
    layer->AddWidget(red);
    Repainted();
    View::_primary->Clear(View::_primary, 1, 2, 3, 255);
    red->SetAttribute(AttrPosX, 40);
    const auto presented = engine.Presented();
    const auto shot = Updated();
    EXPECT_EQ(engine.Presented(), presented + 1);
    EXPECT_EQ(shot.At(0, 0), kGrey);
    EXPECT_TRUE(AreaHasColor(shot, 40, 10, 48, 18, Shown(kRed)));
}

TEST_F(FlippingScene, UnchangedOneIsNotFlipped)
{
    EXPECT_TRUE(Runs(true, true));
    const auto presented = engine.Presented();
    EXPECT_FALSE(Runs(false, true));
    EXPECT_EQ(engine.Presented(), presented);
}

class SingleBufferScene : public SceneUpdate
{
protected:
    explicit SingleBufferScene(SceneOption options = SceneUseSingleBuffer) : SceneUpdate(options) {}
};

TEST_F(SingleBufferScene, PaintsIntoTheViewWithoutPresenting)
{
    layer->AddWidget(red);
    const auto presented = engine.Presented();
    const auto shot = Repainted();
    EXPECT_EQ(engine.Presented(), presented);
    EXPECT_TRUE(AreaHasColor(shot, 10, 10, 18, 18, Shown(kRed)));
    EXPECT_EQ(shot.At(9, 9), kGrey);
}

TEST_F(SingleBufferScene, HiddenWidgetIsNotPaintedAndOneInAHiddenLayerHasNoOpacity)
{
    layer->AddWidget(red);
    red->SetVisibility(false);
    EXPECT_EQ(Repainted().At(12, 12), kGrey);
    red->SetVisibility(true);
    layer->SetVisibility(false);
    EXPECT_EQ(Repainted().At(12, 12), kGrey);
}

class FlippingSingleBufferScene : public SingleBufferScene
{
protected:
    FlippingSingleBufferScene() : SingleBufferScene(kFlippingSingleBuffer) {}
};

// Its own flips are not timed, so nothing holds the next one back.
TEST_F(FlippingSingleBufferScene, FlipsWithoutPacing)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    for (int i = 0; i < 5; ++i) {
        const auto presented = engine.Presented();
        EXPECT_TRUE(Runs(true, false));
        EXPECT_EQ(engine.Presented(), presented + 1);
    }
}

} // namespace
} // namespace zelxxx
