/** What of a scene is painted when a part of it has changed, as calls on its back buffer. */
#include "call_recorder.h"
#include "scene_test.h"
#include "seeded_random.h"
#include "surface_of.h"
#include "surface_pixels.h"
#include "tscene.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::AreaHasColor;
using kestrin_test::CallLog;
using kestrin_test::CallRecorder;
using kestrin_test::kBlue;
using kestrin_test::kGreen;
using kestrin_test::kRed;
using kestrin_test::MakeRectangle;
using kestrin_test::PixelsOf;
using kestrin_test::SamePicture;
using kestrin_test::SceneTest;
using kestrin_test::SeededRandom;
using kestrin_test::SetPixels;
using kestrin_test::SurfaceOf;
using testing::ElementsAre;

namespace zelxxx {
namespace {

class ScenePaint : public SceneTest
{
protected:
    ScenePaint()
    {
        layer->AddWidget(wide);
        layer->AddWidget(small);
        Repainted();
    }

    IDirectFBSurface* Back()
    {
        return SurfaceOf(SideOf<Scene>(static_cast<IScene*>(scene))->GetCanvas());
    }

    /** Clips and fills of an update. */
    CallLog Drawn()
    {
        CallLog log;
        CallRecorder<IDirectFBSurface> recorder(Back(), log);
        recorder.Watch<&IDirectFBSurface::SetClip>("SetClip");
        recorder.Watch<&IDirectFBSurface::FillRectangle>("FillRectangle");
        scene->Update(false, true);
        return log;
    }

    ZELObjPtr<IWidget> wide = MakeRectangle(0, 0, kWidth, kHeight, kRed);
    ZELObjPtr<IWidget> small = MakeRectangle(10, 12, 8, 6, kGreen);
};

TEST_F(ScenePaint, WidgetsAreClippedToWhatIsSeenOfThem)
{
    small->SetAttribute(AttrColor, kBlue);
    EXPECT_THAT(Drawn(), ElementsAre("SetClip([0 0 64 48])",        // of the painter
                                     "FillRectangle(10, 12, 8, 6)", // the first tile is cleared
                                     "SetClip([0 0 64 48])",        // of the tile
                                     "FillRectangle(10, 12, 8, 6)", // every tile is cleared
                                     "SetClip([10 12 17 17])",      // the layer has no background
                                     "SetClip([10 12 17 17])",      //
                                     "FillRectangle(0, 0, 64, 48)", // cut by the surface
                                     "SetClip([10 12 17 17])",      //
                                     "FillRectangle(10, 12, 8, 6)"));
}

TEST_F(ScenePaint, NothingIsDrawnOutsideWhatIsSeen)
{
    ArgbImage spoilt = PixelsOf(Back());
    std::fill(spoilt.pixels.begin(), spoilt.pixels.end(), 0xff010203U);
    SetPixels(Back(), spoilt);
    small->SetAttribute(AttrPosX, 14);
    scene->Update(false, true);
    ArgbImage back = PixelsOf(Back());
    EXPECT_TRUE(AreaHasColor(back, 10, 12, 14, 18, kestrin_test::Shown(kRed)));
    EXPECT_TRUE(AreaHasColor(back, 14, 12, 22, 18, kestrin_test::Shown(kGreen)));
    for (int y = 12; y < 18; ++y) {
        for (int x = 10; x < 22; ++x)
            back.pixels[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)] =
                0xff010203U;
    }
    EXPECT_TRUE(SamePicture(back, spoilt));
}

TEST_F(ScenePaint, ClipTakesInTheRowAndColumnBeyondWhereTheyAreSeen)
{
    // Below and to the right of the small one, and dirty as well.
    ZELObjPtr<IWidget> next = MakeRectangle(14, 16, 10, 10, kBlue);
    layer->AddWidget(next);
    Repainted();
    next->SetAttribute(AttrColor, kGreen);
    const CallLog drawn = Drawn();
    EXPECT_THAT(drawn, testing::Contains("SetClip([14 16 18 18])"));
}

TEST_F(ScenePaint, WidgetsArePaintedWholeWhereClearsMayBlend)
{
    small->SetAttribute(AttrBlendMode, BlendSrcCopy);
    small->SetAttribute(AttrColor, kBlue);
    Drawn(); // from now on a fill may have left the surface blending
    small->SetAttribute(AttrColor, kGreen);
    EXPECT_THAT(Drawn(), ElementsAre("SetClip([0 0 64 48])",        //
                                     "FillRectangle(10, 12, 8, 6)", //
                                     "SetClip([0 0 64 48])",        //
                                     "FillRectangle(10, 12, 8, 6)", //
                                     "SetClip([0 0 64 48])",        //
                                     "SetClip([0 0 64 48])",        //
                                     "FillRectangle(0, 0, 64, 48)", //
                                     "SetClip([10 12 18 18])",      //
                                     "FillRectangle(10, 12, 8, 6)"));
}

TEST_F(ScenePaint, OneOfManyThatMovesLeavesNothingBehindAndHidesNothing)
{
    std::vector<ZELObjPtr<IWidget>> many;
    for (int i = 0; i < 300; ++i) {
        many.push_back(
            MakeRectangle(i % 20 * 3, i / 20 * 3, 2, 2, static_cast<ColorValue>(i * 0x030507)));
        layer->AddWidget(many.back());
    }
    Repainted();
    SeededRandom random;
    for (int i = 0; i < SeededRandom::Rounds(60); ++i) {
        // Now and then all of them, so that both ways to find the marked ones are taken.
        const std::int64_t count = random.Chance(20) ? 200 : 1;
        for (std::int64_t moved = 0; moved < count; ++moved) {
            IWidget* one = many[static_cast<std::size_t>(random.Between(0, 299))];
            one->SetAttribute(AttrPosX, static_cast<AttrValue>(random.Between(-3, kWidth)));
            one->SetAttribute(AttrPosY, static_cast<AttrValue>(random.Between(-3, kHeight)));
        }
        const ArgbImage updated = Updated();
        ASSERT_TRUE(SamePicture(updated, Repainted())) << "step " << i;
    }
}

} // namespace
} // namespace zelxxx
