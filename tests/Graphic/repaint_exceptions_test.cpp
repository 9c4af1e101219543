/**
 * Changes that an update does not show, or shows otherwise than a forced one: clients rely on what
 * is marked and what is not, and force an update where they need more.
 */
#include "DFB/view.h"
#include "random_scene.h"
#include "scene_test.h"
#include "test_font.h"
#include "test_modifier.h"

#include <gtest/gtest.h>

using kestrin_test::AreaHasColor;
using kestrin_test::kBlue;
using kestrin_test::kGreen;
using kestrin_test::kGrey;
using kestrin_test::kRed;
using kestrin_test::LineFormater;
using kestrin_test::MakeFontResource;
using kestrin_test::MakeLayer;
using kestrin_test::MakeRectangle;
using kestrin_test::SamePicture;
using kestrin_test::SceneTest;
using kestrin_test::Shown;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

class RepaintException : public SceneTest
{
protected:
    explicit RepaintException(SceneOption options = SceneUseDoubleBuffer) : SceneTest(options)
    {
        layer->AddWidget(red);
    }

    /** Expects that an update leaves the picture and a forced one does not. */
    void ExpectOnlyForceShowsIt()
    {
        const auto before = engine.Shot();
        EXPECT_TRUE(SamePicture(Updated(), before));
        EXPECT_FALSE(SamePicture(Repainted(), before));
    }

    /** The outer layer's modifier moves the green rectangle of a nested layer by 20. */
    void ShowGreenMovedInANestedLayer()
    {
        layer->AddWidget(nested);
        nested->AddWidget(green);
        layer->AddModifier(mover);
        EXPECT_EQ(Repainted().At(50, 20), Shown(kGreen));
    }
    void ExpectGreenStaysUntilItsLayerChanges()
    {
        EXPECT_EQ(Updated().At(50, 20), Shown(kGreen));
        EXPECT_EQ(Repainted().At(50, 20), Shown(kGreen));
        nested->SetAttribute(AttrPosX, 0);
        const auto shot = Updated();
        EXPECT_EQ(shot.At(50, 20), kGrey);
        EXPECT_EQ(shot.At(32, 32), Shown(kGreen));
    }

    ZELObjPtr<IText> MakeText(int y, int h)
    {
        resource = MakeFontResource();
        ZELObjPtr<IText> text(zelCreateText(resource));
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, 14);
        text->SetAttribute(AttrPosY, y);
        text->SetAttribute(AttrSpanX, kWidth);
        text->SetAttribute(AttrSpanY, h);
        text->SetText("jjjj", 4, EncodingASCII, &formater);
        return text;
    }

    ZELObjPtr<IWidget> red = MakeRectangle(10, 10, 20, 20, kRed);
    ZELObjPtr<IWidget> green = MakeRectangle(15, 15, 20, 20, kGreen);
    PLayer nested = MakeLayer();
    ZELObjPtr<IModifier> mover = new TestModifier(
        [](IWidget* copy) { copy->SetAttribute(AttrPosX, copy->GetAttribute(AttrPosX) + 20); });
    LineFormater formater;
    PResource resource;
};

TEST_F(RepaintException, BlendModeAloneIsNotShown)
{
    red->SetAttribute(AttrBlend, 100);
    Repainted();
    red->SetAttribute(AttrBlendMode, BlendSrcCopy);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, BorderBlendAndItsModeAreNotShown)
{
    red->SetAttribute(AttrBorderWidth, 2);
    Repainted();
    red->SetAttribute(AttrBorderBlend, 100);
    ExpectOnlyForceShowsIt();
    red->SetAttribute(AttrBorderBlendMode, BlendSrcCopy);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, BorderThatMovesWhileTheShownAreaStaysIsNotShown)
{
    layer->SetAttribute(AttrSpanY, 20);
    red->SetAttribute(AttrPosY, -10);
    red->SetAttribute(AttrSpanY, 100);
    red->SetAttribute(AttrBorderWidth, 9);
    red->SetAttribute(AttrSpanX, 30);
    red->SetAttribute(AttrBorderWidth, 13);
    Repainted();
    red->SetAttribute(AttrPosY, -12);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, BackgroundColourIsNotShown)
{
    Repainted();
    scene->SetBackgroundColor(0x102030, 255);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, BlendModeOfTheSceneIsNotShown)
{
    Repainted();
    scene->SetBlendMode(BlendSrcCopy); // as the painter's mode it draws nothing
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, ReAddedWidgetIsNotShownAboveTheOthers)
{
    layer->AddWidget(green);
    Repainted();
    layer->AddWidget(red);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, WidgetMovedOutOfTheSceneWithALayerStaysInThePicture)
{
    Repainted();
    PLayer outside = MakeLayer();
    outside->AddWidget(red);
    ExpectOnlyForceShowsIt();
    EXPECT_TRUE(AreaHasColor(engine.Shot(), 0, 0, kWidth, kHeight, kGrey));
}

TEST_F(RepaintException, InsertedLayerMarksOnlyItsOwnArea)
{
    PLayer small = MakeLayer();
    small->SetAttribute(AttrSpanX, 5);
    small->SetAttribute(AttrSpanY, 5);
    small->SetAttribute(AttrClipRight, 100);
    small->SetAttribute(AttrClipBottom, 100);
    small->AddWidget(green);
    layer->InsertWidget(small, nullptr, InsertFirst);
    EXPECT_EQ(Repainted().At(16, 16), Shown(kRed));
    layer->InsertWidget(small, red, InsertBehind);
    // The one it was inserted behind is marked, and nothing of the layer's child beside it.
    red->SetAttribute(AttrSpanX, 20);
    Updated();
    layer->InsertWidget(small, nullptr, InsertFirst);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, AddedOrRemovedModifierIsNotShown)
{
    Repainted();
    ZELObjPtr<TestModifier> modifier(
        new TestModifier([](IWidget* copy) { copy->SetAttribute(AttrPosX, 40); }));
    red->AddModifier(modifier);
    ExpectOnlyForceShowsIt();
    red->RemoveModifier(modifier);
    ExpectOnlyForceShowsIt();
}

// The nested layer's copy keeps its marks, but what stands in that layer got marks only from the
// effect. Not even force moves it back; an attribute of the nested layer does.
TEST_F(RepaintException, ContentOfANestedLayerStaysWhenTheOuterLayersModifierIsDisabled)
{
    ShowGreenMovedInANestedLayer();
    mover->Enable(false);
    ExpectGreenStaysUntilItsLayerChanges();
}

TEST_F(RepaintException, ContentOfANestedLayerStaysFadedWhenTheLayerLeavesTheFadingBox)
{
    PLayer inner = MakeLayer();
    layer->AddWidget(inner);
    inner->AddWidget(green);
    ZELObjPtr<FadingModifier> modifier(new FadingModifier);
    modifier->SetAttribute(AttrPosX, 10); // the layer stands at the box's rim
    modifier->SetAttribute(AttrSpanX, 10);
    layer->AddModifier(modifier);
    EXPECT_EQ(Repainted().At(32, 32), kGrey);
    modifier->SetAttribute(AttrPosX, 11);
    EXPECT_EQ(Updated().At(32, 32), kGrey);
    EXPECT_EQ(Repainted().At(32, 32), kGrey);
    inner->SetAttribute(AttrBlend, 255);
    EXPECT_EQ(Updated().At(32, 32), Shown(kGreen));
}

TEST_F(RepaintException, ContentOfANestedLayerStaysWhenTheOuterLayersModifierIsRemoved)
{
    ShowGreenMovedInANestedLayer();
    layer->RemoveModifier(mover);
    ExpectGreenStaysUntilItsLayerChanges();
}

TEST_F(RepaintException, ChildOfAHiddenLayerWithoutOpacityBeforeAndAfterStays)
{
    red->SetAttribute(AttrBlend, 0);
    red->SetAttribute(AttrBorderWidth, 3);
    red->SetAttribute(AttrBorderColor, kBlue);
    EXPECT_EQ(Repainted().At(10, 10), Shown(kBlue));
    // Not what the layer covers itself.
    layer->SetAttribute(AttrSpanX, 0);
    layer->SetAttribute(AttrClipRight, kWidth);
    Repainted();
    layer->SetVisibility(false);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, FirstUpdatePaintsNoBackgroundOutsideTheWidgets)
{
    layer->SetAttribute(AttrSpanX, 32);
    View::_primary->Clear(View::_primary, 1, 2, 3, 255);
    const auto shot = Updated();
    EXPECT_EQ(shot.At(12, 12), Shown(kRed));
    EXPECT_EQ(shot.At(5, 5), kGrey); // in the layer
    EXPECT_EQ(shot.At(40, 5), 0xff010203U);
    EXPECT_EQ(Repainted().At(40, 5), kGrey);
}

TEST_F(RepaintException, OpacityOfATextIsNotShownWhenTheProductIsTheSame)
{
    ZELObjPtr<IText> text = MakeText(0, 30);
    layer->AddWidget(text);
    layer->SetAttribute(AttrBlend, 10);
    text->SetAttribute(AttrBlend, 230); // 230 * 10 / 255 and 250 * 10 / 255 are 9
    Repainted();
    text->SetAttribute(AttrBlend, 250);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, FontScalerOfATextThatDoesNotMoveIsNotShown)
{
    ZELObjPtr<IText> text = MakeText(0, 30);
    layer->AddWidget(text);
    Repainted();
    text->SetAttribute(AttrFontScalerMolecule, 200);
    ExpectOnlyForceShowsIt();
}

TEST_F(RepaintException, SwitchedResourceIsNotShown)
{
    ZELObjPtr<IText> text = MakeText(0, 30);
    layer->AddWidget(text);
    Repainted();
    text->SwitchResource(nullptr); // without a font to draw with
    ExpectOnlyForceShowsIt();
}

// The clip rectangle's corners are inclusive to DirectFB.
TEST_F(RepaintException, GlyphCutAtTheBottomReachesOneRowFurther)
{
    layer->RemoveWidget(red);
    const auto empty = Repainted();
    ZELObjPtr<IText> text = MakeText(4, 8);
    layer->AddWidget(text);
    const auto updated = Updated();
    const auto repainted = Repainted();
    int beyond = 0;
    for (int x = 0; x < kWidth; ++x) {
        EXPECT_EQ(updated.At(x, 12), kGrey); // drawn, and not copied to the view
        beyond += repainted.At(x, 12) != kGrey;
        EXPECT_EQ(repainted.At(x, 13), kGrey);
    }
    EXPECT_GT(beyond, 0);
    // It stays when the text goes.
    layer->RemoveWidget(text);
    EXPECT_FALSE(SamePicture(Updated(), empty));
    EXPECT_TRUE(SamePicture(Repainted(), empty));
}

// The copy leaves blending on, the glyphs leave the rule that blends over.
TEST_F(RepaintException, CopyBelowATextMakesTheNextClearBlend)
{
    scene->SetBackgroundColor(0x808080, 0x40);
    const auto plain = Repainted();
    EXPECT_EQ(plain.At(60, 40), 0x40808080U);
    red->SetAttribute(AttrBlendMode, BlendSrcCopy);
    ZELObjPtr<IText> text = MakeText(0, 30);
    layer->AddWidget(text);
    EXPECT_EQ(Repainted().At(60, 40), 0x40808080U);
    EXPECT_NE(Repainted().At(60, 40), 0x40808080U);
}

class SingleBufferException : public RepaintException
{
protected:
    SingleBufferException() : RepaintException(SceneUseSingleBuffer) {}
};

TEST_F(SingleBufferException, UpdateWipesWhatItDoesNotRepaint)
{
    green->SetAttribute(AttrPosX, 40);
    layer->AddWidget(green);
    Repainted();
    red->SetAttribute(AttrColor, kBlue);
    const auto shot = Updated();
    EXPECT_EQ(shot.At(12, 12), Shown(kBlue));
    EXPECT_TRUE(AreaHasColor(shot, 40, 15, 60, 35, kGrey)); // the view clears all of itself
    EXPECT_EQ(Repainted().At(41, 16), Shown(kGreen));
}

// Through a back buffer nothing in a hidden layer is painted.
TEST_F(SingleBufferException, BorderInAHiddenLayerIsPainted)
{
    red->SetAttribute(AttrBorderWidth, 2);
    red->SetAttribute(AttrBorderColor, kBlue);
    layer->SetVisibility(false);
    const auto shot = Repainted();
    EXPECT_EQ(shot.At(10, 10), Shown(kBlue));
    EXPECT_EQ(shot.At(15, 15), kGrey);
}

} // namespace
} // namespace zelxxx
