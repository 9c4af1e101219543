#include "trectangle.h"

#include "held.h"
#include "layer.h"
#include "scene_test.h"
#include "test_modifier.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::AreaHasColor;
using kestrin_test::Held;
using kestrin_test::kBlue;
using kestrin_test::kGreen;
using kestrin_test::kGrey;
using kestrin_test::MakeRectangle;
using kestrin_test::SamePicture;
using kestrin_test::SceneTest;
using kestrin_test::Shown;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

constexpr int kFaded = WidgetBase::StateFaded;
constexpr int kChanged = WidgetBase::StateChanged;

TEST(Rectangle, StartsWithItsDocumentedValues)
{
    Held<Rectangle> rectangle;
    EXPECT_TRUE(rectangle->IsEven);
    EXPECT_FALSE(rectangle->IsLayer);
    for (AttrIndex index : {AttrColor, AttrBorderWidth, AttrBorderColor, AttrBorderBlendMode})
        EXPECT_EQ(rectangle->GetAttribute(index), 0) << index;
    EXPECT_EQ(rectangle->GetAttribute(AttrBorderBlend), 255);
    EXPECT_EQ(rectangle->GetAttribute(AttrBlend), 255);
    EXPECT_EQ(rectangle->GetAttribute(AttrBlendMode), BlendSrcOver);
}

struct AttributeCase
{
    AttrIndex index;
    AttrValue value;
    AttrValue read;
    int mark;
};

class RectangleAttribute : public testing::TestWithParam<AttributeCase>
{
};

TEST_P(RectangleAttribute, IsNarrowedStoredAndMarked)
{
    Held<Rectangle> rectangle;
    for (int i = 0; i < 2; ++i) { // an unchanged value marks again
        rectangle->DirtyState = 0;
        rectangle->SetAttribute(GetParam().index, GetParam().value);
        EXPECT_EQ(rectangle->GetAttribute(GetParam().index), GetParam().read);
        EXPECT_EQ(rectangle->DirtyState, GetParam().mark);
    }
}

TEST_P(RectangleAttribute, LeavesTheOthersAlone)
{
    Held<Rectangle> rectangle;
    Held<Rectangle> untouched;
    rectangle->SetAttribute(GetParam().index, GetParam().value);
    for (int index = 0; index <= AttrDstColorKey; ++index) {
        if (index != GetParam().index) {
            EXPECT_EQ(rectangle->GetAttribute(static_cast<AttrIndex>(index)),
                      untouched->GetAttribute(static_cast<AttrIndex>(index)))
                << index;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, RectangleAttribute,
    testing::Values(AttributeCase{AttrColor, -2, -2, kChanged},
                    AttributeCase{AttrBorderWidth, 0x18003, -32765, kChanged},
                    AttributeCase{AttrBorderColor, 0x7654321, 0x7654321, kChanged},
                    AttributeCase{AttrBorderBlend, 0x17F, 127, kFaded},
                    AttributeCase{AttrBorderBlendMode, 0x101, 1, kFaded},
                    // The colour-key pair can only be written.
                    AttributeCase{AttrBlittingFlag, Blit_DST_COLORKEY, 0, kFaded},
                    AttributeCase{AttrDstColorKey, 7, 0, kFaded},
                    // The rest is the widget's.
                    AttributeCase{AttrPosX, 5, 5, WidgetBase::StateMoved},
                    AttributeCase{AttrScaleX, 512, 512, WidgetBase::StateScaled},
                    AttributeCase{AttrBlend, 100, 100, kFaded},
                    AttributeCase{AttrBlendMode, 1, 1, kFaded},
                    AttributeCase{AttrScrollX, 5, 0, 0}));

TEST(Rectangle, CloneHasTheFillColourAndNoBorder)
{
    Held<Rectangle> source;
    source->SetAttribute(AttrColor, 0x112233);
    source->SetAttribute(AttrPosX, 7);
    source->SetAttribute(AttrBorderWidth, 3);
    source->SetAttribute(AttrBorderColor, 0x445566);
    source->SetAttribute(AttrBorderBlend, 100);
    source->SetAttribute(AttrBorderBlendMode, BlendSrcCopy);
    auto* clone = static_cast<Rectangle*>(source->Clone());
    clone->WidgetBase::Hold();
    EXPECT_EQ(clone->GetAttribute(AttrColor), 0x112233);
    EXPECT_EQ(clone->GetAttribute(AttrPosX), 7);
    EXPECT_EQ(clone->GetAttribute(AttrBorderWidth), 0);
    EXPECT_EQ(clone->GetAttribute(AttrBorderColor), 0);
    EXPECT_EQ(clone->GetAttribute(AttrBorderBlend), 255);
    EXPECT_EQ(clone->GetAttribute(AttrBorderBlendMode), BlendSrcOver);
    EXPECT_TRUE(clone->IsEven);
    clone->WidgetBase::Release();
}

class RectanglePicture : public SceneTest
{
protected:
    /** A blue rectangle with a green border. */
    void Show(int x, int y, int w, int h, int border)
    {
        rectangle = MakeRectangle(x, y, w, h, kBlue);
        rectangle->SetAttribute(AttrBorderWidth, border);
        rectangle->SetAttribute(AttrBorderColor, kGreen);
        layer->AddWidget(rectangle);
        shot = Repainted();
    }

    /** Expects the picture to be this and grey around: one letter a pixel, from (x, y) on. */
    void ExpectPicture(int x, int y, const std::vector<std::string>& rows)
    {
        kestrin_display::ArgbImage expected(kWidth, kHeight, kGrey);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t column = 0; column < rows[row].size(); ++column) {
                const char letter = rows[row][column];
                expected.At(x + static_cast<int>(column), y + static_cast<int>(row)) =
                    letter == 'B'   ? Shown(kBlue)
                    : letter == 'G' ? Shown(kGreen)
                                    : kGrey;
            }
        }
        EXPECT_TRUE(SamePicture(shot, expected));
    }

    ZELObjPtr<IWidget> rectangle;
    kestrin_display::ArgbImage shot;
};

TEST_F(RectanglePicture, WithoutABorderFillsItsSpan)
{
    Show(10, 20, 4, 3, 0);
    ExpectPicture(10, 20, {"BBBB", "BBBB", "BBBB"});
}

TEST_F(RectanglePicture, BorderLiesInsideTheSpan)
{
    Show(10, 20, 7, 5, 2);
    ExpectPicture(10, 20, {"GGGGGGG", "GGGGGGG", "GGBBBGG", "GGGGGGG", "GGGGGGG"});
}

TEST_F(RectanglePicture, BorderOfOnePixel)
{
    Show(0, 0, 4, 4, 1);
    ExpectPicture(0, 0, {"GGGG", "GBBG", "GBBG", "GGGG"});
}

TEST_F(RectanglePicture, BorderAsWideAsTheRectangleIsStillDrawn)
{
    Show(10, 20, 4, 6, 4);
    ExpectPicture(10, 20, {"GGGG", "GGGG", "GGGG", "GGGG", "GGGG", "GGGG"});
}

TEST_F(RectanglePicture, BorderWiderOrTallerThanTheRectangleIsNotDrawn)
{
    Show(10, 20, 4, 6, 5);
    ExpectPicture(10, 20, {"BBBB", "BBBB", "BBBB", "BBBB", "BBBB", "BBBB"});
    layer->RemoveWidget(rectangle);
    Show(10, 20, 6, 2, 3);
    ExpectPicture(10, 20, {"BBBBBB", "BBBBBB"});
}

TEST_F(RectanglePicture, NegativeBorderIsNotDrawn)
{
    Show(10, 20, 3, 2, -1);
    ExpectPicture(10, 20, {"BBB", "BBB"});
}

TEST_F(RectanglePicture, BorderWithoutOpacityIsFilledOver)
{
    Show(10, 20, 3, 3, 1);
    rectangle->SetAttribute(AttrBorderBlend, 0);
    shot = Repainted();
    ExpectPicture(10, 20, {"BBB", "BBB", "BBB"});
}

TEST_F(RectanglePicture, NoPixelOfTheBorderIsPaintedTwice)
{
    Show(10, 20, 9, 7, 2);
    rectangle->SetAttribute(AttrBorderBlend, 128);
    shot = Repainted();
    const std::uint32_t once = shot.At(10, 20);
    EXPECT_NE(once, kGrey);
    EXPECT_NE(once, Shown(kGreen));
    EXPECT_TRUE(AreaHasColor(shot, 10, 20, 19, 22, once));
    EXPECT_TRUE(AreaHasColor(shot, 10, 20, 12, 27, once));
    EXPECT_TRUE(AreaHasColor(shot, 17, 20, 19, 27, once));
    EXPECT_TRUE(AreaHasColor(shot, 10, 25, 19, 27, once));
    EXPECT_TRUE(AreaHasColor(shot, 12, 22, 17, 25, Shown(kBlue)));
}

TEST_F(RectanglePicture, BorderHasABlendModeOfItsOwn)
{
    Show(10, 20, 5, 5, 1);
    rectangle->SetAttribute(AttrBorderBlend, 0x40);
    rectangle->SetAttribute(AttrBorderBlendMode, BlendSrcCopy);
    shot = Repainted();
    EXPECT_EQ(shot.At(10, 20), 0x4000ff00U);
    EXPECT_EQ(shot.At(12, 22), Shown(kBlue));
    EXPECT_EQ(shot.At(0, 0), kGrey);
}

TEST_F(RectanglePicture, FillFollowsTheWidgetsBlend)
{
    Show(10, 20, 5, 5, 1);
    rectangle->SetAttribute(AttrBlend, 0);
    shot = Repainted();
    ExpectPicture(10, 20, {"GGGGG", "G...G", "G...G", "G...G", "GGGGG"});
}

TEST_F(RectanglePicture, BorderIsCutWithTheShownArea)
{
    layer->SetAttribute(AttrClipLeft, 11);
    layer->SetAttribute(AttrClipTop, 21);
    Show(10, 20, 6, 4, 2);
    ExpectPicture(11, 21, {"GGGGG", "GGGGG", "GGGGG"});
    rectangle->SetAttribute(AttrSpanY, 5);
    shot = Repainted();
    ExpectPicture(11, 21, {"GGGGG", "GBBGG", "GGGGG", "GGGGG"});
}

TEST_F(RectanglePicture, BorderTakesTheLayersPositionAndOrigin)
{
    layer->SetAttribute(AttrPosX, 5);
    layer->SetAttribute(AttrScrollY, -3);
    Show(10, 20, 3, 3, 1);
    rectangle->SetAttribute(AttrOriginX, 2);
    shot = Repainted();
    ExpectPicture(13, 23, {"GGG", "GBG", "GGG"});
}

// The border is placed by the widget's own values, the fill by what is shown.
TEST_F(RectanglePicture, BorderStaysBehindWhenAModifierMovesTheRectangle)
{
    Show(10, 20, 4, 4, 1);
    rectangle->AddModifier(new TestModifier(
        [](IWidget* copy) { copy->SetAttribute(AttrPosX, copy->GetAttribute(AttrPosX) + 2); }));
    shot = Repainted();
    ExpectPicture(10, 20, {"..GG", "..BG", "..BG", "..GG"});
}

TEST_F(RectanglePicture, SumsWrapTo16Bits)
{
    // The left edge lies 4 pixels left of the scene, reached by passing 32767; so do the edges of
    // the layer's clip rectangle, which end up around the scene.
    layer->SetAttribute(AttrPosX, 32767);
    layer->SetAttribute(AttrClipLeft, 1);
    layer->SetAttribute(AttrSpanX, kWidth - 32767);
    Show(32765, 20, 10, 4, 1);
    ExpectPicture(0, 20, {"GGGGGG", "BBBBBG", "BBBBBG", "GGGGGG"});
}

TEST_F(RectanglePicture, FillFollowsTheLayersScaleAndTheBorderDoesNot)
{
    layer->SetAttribute(AttrScaleX, 512);
    Show(10, 20, 6, 3, 1);
    // Shown at x 20 to 32; the border stands at 10 to 16, outside of it.
    ExpectPicture(20, 20, {"............", "............", "............"});
}

} // namespace
} // namespace zelxxx
