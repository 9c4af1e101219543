#include "sprite.h"

#include "DFB/image.h"
#include "held.h"
#include "scene_test.h"
#include "test_modifier.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_display::ArgbImage;
using kestrin_test::AreaHasColor;
using kestrin_test::Held;
using kestrin_test::kGrey;
using kestrin_test::SceneTest;
using kestrin_test::TestModifier;
using testing::ElementsAre;
using testing::IsEmpty;

namespace zelxxx {
namespace {

constexpr int kMoved = WidgetBase::StateMoved;
constexpr int kScaled = WidgetBase::StateScaled;
constexpr int kFaded = WidgetBase::StateFaded;
constexpr int kChanged = WidgetBase::StateChanged;

/** A resource without fonts. */
class NoResource : public ZELObject<IResource, NoResource>
{
public:
    IFont* OpenFont(ResIndex, bool&) override { return nullptr; }
    int Count() const { return _ref; }
};

/** An image that only notes which parts of it are drawn, "frame: source to place". */
class NotedImage : public Image
{
public:
    NotedImage(MetricValue width, MetricValue height)
        : Image(Color32Bit, width, height, nullptr, UseSystemMemory, TypeImg, 0, nullptr, nullptr)
    {
    }
    void PaintToSurface(IDirectFBSurface*, UInt16 frame, MetricValue x, MetricValue y,
                        MetricValue width, MetricValue height, MetricValue src_x, MetricValue src_y,
                        BlendMode) override
    {
        painted.push_back(std::to_string(frame) + ": " + std::to_string(src_x) + ' ' +
                          std::to_string(src_y) + " to " + std::to_string(x) + ' ' +
                          std::to_string(y) + ' ' + std::to_string(width) + 'x' +
                          std::to_string(height));
    }
    int Count() const { return _ref; }
    std::vector<std::string> painted;
};

// ---- Attributes

TEST(Sprite, StartsWithItsDocumentedValues)
{
    Held<Sprite> sprite(nullptr);
    EXPECT_FALSE(sprite->IsEven);
    EXPECT_FALSE(sprite->IsLayer);
    for (AttrIndex index : {AttrImageIndex, AttrImageFrame, AttrImageFormat})
        EXPECT_EQ(sprite->GetAttribute(index), 0) << index;
}

struct AttributeCase
{
    AttrIndex index;
    AttrValue value;
    AttrValue read;
    int mark;
};

const AttributeCase kTable[] = {{AttrPosX, 0x18003, -32765, kMoved},
                                {AttrPosY, -5, -5, kMoved},
                                {AttrPosZ, 7, 7, WidgetBase::StateReordered},
                                {AttrSpanX, 8, 8, kMoved},
                                {AttrSpanY, 9, 9, kMoved},
                                {AttrOriginX, 10, 10, kMoved},
                                {AttrOriginY, 11, 11, kMoved},
                                {AttrScaleX, 0x10200, 512, kScaled},
                                {AttrScaleY, 128, 128, kScaled},
                                {AttrBlend, 0x17F, 127, kFaded},
                                {AttrBlendMode, 0x101, 1, kFaded},
                                {AttrImageIndex, 0x12345, 0x2345, kChanged},
                                {AttrImageFrame, -2, -2, kChanged},
                                {AttrImageFormat, 21, 21, kChanged}};

class SpriteAttribute : public testing::TestWithParam<AttributeCase>
{
};

TEST_P(SpriteAttribute, IsNarrowedStoredAndMarked)
{
    Held<Sprite> sprite(nullptr);
    for (int i = 0; i < 2; ++i) { // an unchanged value marks again
        sprite->DirtyState = 0;
        sprite->SetAttribute(GetParam().index, GetParam().value);
        EXPECT_EQ(sprite->GetAttribute(GetParam().index), GetParam().read);
        EXPECT_EQ(sprite->DirtyState, GetParam().mark);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, SpriteAttribute, testing::ValuesIn(kTable));

TEST(Sprite, AttributesOutsideTheTableReadAsZeroAndMarkNothing)
{
    Held<Sprite> sprite(nullptr);
    for (int i = 0; i <= AttrDstColorKey + 5; ++i) {
        const auto index = static_cast<AttrIndex>(i);
        bool listed = false;
        for (const AttributeCase& row : kTable)
            listed = listed || row.index == index;
        if (listed)
            continue;
        sprite->DirtyState = 0;
        sprite->SetAttribute(index, 5);
        EXPECT_EQ(sprite->GetAttribute(index), 0) << i;
        EXPECT_EQ(sprite->DirtyState, 0) << i;
    }
}

// ---- What it holds

TEST(Sprite, FactoryHandsItOutWithoutAReference)
{
    ISprite* sprite = zelCreateSprite(nullptr);
    EXPECT_EQ(sprite->Hold(), 1);
    EXPECT_EQ(sprite->Release(), 0);
}

TEST(Sprite, HoldsResourceAndImage)
{
    const ZELObjPtr<NoResource> resource(new NoResource);
    const ZELObjPtr<NotedImage> image(new NotedImage(1, 1));
    const ZELObjPtr<NotedImage> other(new NotedImage(1, 1));
    {
        const ZELObjPtr<ISprite> sprite(zelCreateSprite(resource));
        EXPECT_EQ(resource->Count(), 2);
        sprite->SetImage(image);
        sprite->SetImage(image);
        EXPECT_EQ(image->Count(), 2);
        sprite->SetImage(other);
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(other->Count(), 2);
    }
    EXPECT_EQ(resource->Count(), 1);
    EXPECT_EQ(other->Count(), 1);
}

TEST(Sprite, ImagesMarkItChanged)
{
    Held<Sprite> sprite(nullptr);
    const ZELObjPtr<NotedImage> image(new NotedImage(1, 1));
    for (IImage* given : {static_cast<IImage*>(image), static_cast<IImage*>(nullptr)}) {
        sprite->DirtyState = 0;
        sprite->SetImage(given);
        EXPECT_EQ(sprite->DirtyState, kChanged);
    }
    sprite->DirtyState = 0;
    sprite->UpdateImage();
    EXPECT_EQ(sprite->DirtyState, kChanged);
}

TEST(Sprite, CloneHasFrameAndNumberAndNeitherImageNorFormat)
{
    const ZELObjPtr<NoResource> resource(new NoResource);
    const ZELObjPtr<NotedImage> image(new NotedImage(1, 1));
    Held<Sprite> source(resource);
    source->SetImage(image);
    source->SetAttribute(AttrPosX, 7);
    source->SetAttribute(AttrImageIndex, 8);
    source->SetAttribute(AttrImageFrame, 9);
    source->SetAttribute(AttrImageFormat, ImageAlignTiling);
    auto* clone = static_cast<Sprite*>(source->Clone());
    clone->WidgetBase::Hold();
    EXPECT_EQ(resource->Count(), 3);
    EXPECT_EQ(image->Count(), 2);
    EXPECT_EQ(clone->GetAttribute(AttrPosX), 7);
    EXPECT_EQ(clone->GetAttribute(AttrImageIndex), 8);
    EXPECT_EQ(clone->GetAttribute(AttrImageFrame), 9);
    EXPECT_EQ(clone->GetAttribute(AttrImageFormat), ImageAlignCenter);
    clone->WidgetBase::Release();
}

// ---- Painting

class SpritePicture : public SceneTest
{
protected:
    SpritePicture() : sprite(zelCreateSprite(nullptr)) { layer->AddWidget(sprite); }

    void Place(int x, int y, int w, int h)
    {
        sprite->SetAttribute(AttrPosX, x);
        sprite->SetAttribute(AttrPosY, y);
        sprite->SetAttribute(AttrSpanX, w);
        sprite->SetAttribute(AttrSpanY, h);
    }
    /** What of an image of this size is drawn in a sprite at (10, 10). */
    std::vector<std::string> Parts(int image_width, int image_height, int w, int h, int format,
                                   int scale_x = 256, int scale_y = 256)
    {
        const ZELObjPtr<NotedImage> image(new NotedImage(static_cast<MetricValue>(image_width),
                                                         static_cast<MetricValue>(image_height)));
        sprite->SetImage(image);
        Place(10, 10, w, h);
        sprite->SetAttribute(AttrImageFormat, format);
        sprite->SetAttribute(AttrScaleX, scale_x);
        sprite->SetAttribute(AttrScaleY, scale_y);
        Repainted();
        return image->painted;
    }

    ZELObjPtr<ISprite> sprite;
};

TEST_F(SpritePicture, ResourceWithoutAnImageShowsABoxOverTheShownArea)
{
    const ZELObjPtr<ISprite> boxed(zelCreateSprite(new NoResource));
    layer->RemoveWidget(sprite);
    layer->AddWidget(boxed);
    layer->SetAttribute(AttrSpanX, 20);
    layer->SetAttribute(AttrSpanY, 20);
    layer->SetAttribute(AttrClipLeft, 15);
    boxed->SetAttribute(AttrPosX, 10);
    boxed->SetAttribute(AttrPosY, 12);
    boxed->SetAttribute(AttrSpanX, 20);
    boxed->SetAttribute(AttrSpanY, 20);
    const ArgbImage picture = Repainted();
    EXPECT_TRUE(AreaHasColor(picture, 15, 12, 20, 20, 0xffff00ff));
    EXPECT_TRUE(AreaHasColor(picture, 10, 12, 15, 20, kGrey));
    EXPECT_TRUE(AreaHasColor(picture, 20, 12, 30, 32, kGrey));
}

TEST_F(SpritePicture, NeitherResourceNorImageShowsNothing)
{
    Place(10, 10, 20, 20);
    EXPECT_TRUE(AreaHasColor(Repainted(), 0, 0, kWidth, kHeight, kGrey));
}

TEST_F(SpritePicture, SmallImageIsCentredTowardsTheTopLeft)
{
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignCenter), ElementsAre("0: 0 0 to 17 13 5x4"));
}

TEST_F(SpritePicture, LargeImageIsCutOnBothSidesTheOddPixelOnTheRight)
{
    EXPECT_THAT(Parts(15, 13, 10, 10, ImageAlignCenter), ElementsAre("0: 2 1 to 10 10 10x10"));
}

TEST_F(SpritePicture, EdgesOfSmallImages)
{
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignLeft | ImageAlignTop),
                ElementsAre("0: 0 0 to 10 10 5x4"));
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignRight | ImageAlignBottom),
                ElementsAre("0: 0 0 to 25 17 5x4"));
}

TEST_F(SpritePicture, EdgesOfLargeImages)
{
    EXPECT_THAT(Parts(15, 13, 10, 10, ImageAlignLeft | ImageAlignTop),
                ElementsAre("0: 0 0 to 10 10 10x10"));
    EXPECT_THAT(Parts(15, 13, 10, 10, ImageAlignRight | ImageAlignBottom),
                ElementsAre("0: 5 3 to 10 10 10x10"));
}

TEST_F(SpritePicture, LeftWinsOverRightAndTopOverBottom)
{
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignLeft | ImageAlignRight | ImageAlignBottom),
                ElementsAre("0: 0 0 to 10 17 5x4"));
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignRight | ImageAlignTop | ImageAlignBottom),
                ElementsAre("0: 0 0 to 25 10 5x4"));
}

TEST_F(SpritePicture, TilingWinsOverEverything)
{
    const std::vector<std::string> tiles = {"0: 0 0 to 10 10 5x4", "0: 0 0 to 15 10 2x4",
                                            "0: 0 0 to 10 14 5x1", "0: 0 0 to 15 14 2x1"};
    EXPECT_EQ(Parts(5, 4, 7, 5, ImageAlignTiling), tiles);
    EXPECT_EQ(Parts(5, 4, 7, 5, 31), tiles);
}

TEST_F(SpritePicture, HalfScaleTakesHalfTheRoomAndTheWholeSource)
{
    // The painter does not scale: it draws the part's beginning.
    EXPECT_THAT(Parts(20, 16, 10, 8, ImageAlignLeft | ImageAlignTop, 128, 128),
                ElementsAre("0: 0 0 to 10 10 10x8"));
    EXPECT_THAT(Parts(20, 16, 6, 4, ImageAlignRight | ImageAlignBottom, 128, 128),
                ElementsAre("0: 8 8 to 10 10 6x4"));
}

TEST_F(SpritePicture, DoubleScale)
{
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignCenter, 512, 256),
                ElementsAre("0: 0 0 to 15 13 10x4"));
}

TEST_F(SpritePicture, ScaleOfZeroDrawsNothing)
{
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignCenter, 0, 256), IsEmpty());
    EXPECT_THAT(Parts(5, 4, 20, 11, ImageAlignCenter, 256, 0), IsEmpty());
}

TEST_F(SpritePicture, FrameIsCutTo16Bits)
{
    sprite->SetAttribute(AttrImageFrame, 0x10003);
    EXPECT_THAT(Parts(5, 4, 5, 4, ImageAlignCenter), ElementsAre("3: 0 0 to 10 10 5x4"));
}

TEST_F(SpritePicture, FrameComesFromTheModifiedCopy)
{
    sprite->SetAttribute(AttrImageFrame, 2);
    sprite->AddModifier(
        new TestModifier([](IWidget* copy) { copy->SetAttribute(AttrImageFrame, 5); }));
    EXPECT_THAT(Parts(5, 4, 5, 4, ImageAlignCenter), ElementsAre("5: 0 0 to 10 10 5x4"));
    EXPECT_EQ(sprite->GetAttribute(AttrImageFrame), 2);
}

TEST_F(SpritePicture, ImageIsSeenAndItsUpdatesToo)
{
    const UInt8 pixels[] = {255, 0, 0, 255, 0, 255, 0, 255};
    const PImage image(zelCreateImage(Color32Bit, 2, 1, pixels, UseSystemMemory, TypeImg,
                                      sizeof pixels, nullptr, nullptr));
    sprite->SetImage(image);
    Place(3, 4, 2, 1);
    ArgbImage picture = Updated();
    EXPECT_EQ(picture.At(3, 4), 0xffff0000U);
    EXPECT_EQ(picture.At(4, 4), 0xff00ff00U);
    UInt32 blue = 0xff0000ff;
    image->SetImageData(&blue, 4, 1, 0, 1, 1, Color32Bit);
    EXPECT_EQ(Updated().At(4, 4), 0xff00ff00U);
    sprite->UpdateImage();
    picture = Updated();
    EXPECT_EQ(picture.At(3, 4), 0xffff0000U);
    EXPECT_EQ(picture.At(4, 4), 0xff0000ffU);
}

} // namespace
} // namespace zelxxx
