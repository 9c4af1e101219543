#include "twidget.h"

#include "dirty_rects.h"
#include "engine_display.h"
#include "held.h"
#include "layer.h"
#include "picture_compare.h"
#include "trectangle.h"
#include "tscene.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::AreaHasColor;
using kestrin_test::Delivered;
using kestrin_test::EngineDisplay;
using kestrin_test::Held;
using testing::ElementsAre;
using testing::IsEmpty;

namespace zelxxx {
namespace {

constexpr DirtyRect kArea = {0, 0, 100, 50};

TEST(Widget, StartsWithItsDocumentedValues)
{
    Held<Widget> widget;
    EXPECT_FALSE(widget->IsLayer);
    EXPECT_TRUE(widget->IsVisible);
    EXPECT_FALSE(widget->IsEven);
    EXPECT_EQ(widget->Existence, 0);
    EXPECT_EQ(widget->ParentScene, nullptr);
    EXPECT_EQ(widget->ParentLayer, nullptr);
    EXPECT_EQ(widget->Anchors, 5);
    EXPECT_THAT((std::vector<int>{widget->PosX, widget->PosY, widget->PosZ, widget->SpanX,
                                  widget->SpanY, widget->OriginX, widget->OriginY}),
                testing::Each(0));
    EXPECT_EQ(widget->ScaleX, 256);
    EXPECT_EQ(widget->ScaleY, 256);
    EXPECT_EQ(widget->Blend, 255);
    EXPECT_EQ(widget->BlendingMode, BlendSrcOver);
    EXPECT_EQ(widget->BlendPainter, 255);
    EXPECT_EQ(widget->ZOrder, 32767);
    EXPECT_EQ(widget->TOrder, 32767);
    EXPECT_EQ(widget->DirtyState, 0);
    EXPECT_EQ(widget->DirtyBound, (DirtyRect{0, 0, 0, 0}));
    EXPECT_EQ(widget->DirtyShown, (DirtyRect{0, 0, 0, 0}));
    EXPECT_EQ(widget->DirtyScaleX, 256);
    EXPECT_EQ(widget->DirtyScaleY, 256);
    EXPECT_TRUE(widget->DirtyVisibility);
    EXPECT_EQ(widget->DirtyBlend, 255);
    EXPECT_EQ(widget->DirtyZOrder, 32767);
    EXPECT_EQ(widget->DirtyTOrder, 32767);
    EXPECT_EQ(widget->Next, nullptr);
    EXPECT_EQ(widget->Prev, nullptr);
    EXPECT_EQ(widget->Modified, nullptr);
    EXPECT_EQ(widget->Modifiers.GetFirstElement(), nullptr);
}

TEST(Widget, StateBitsHaveTheirValues)
{
    EXPECT_THAT((std::vector<int>{WidgetBase::StateUnchanged, WidgetBase::StateSettled,
                                  WidgetBase::StateMoved, WidgetBase::StateReordered,
                                  WidgetBase::StateFaded, WidgetBase::StateScaled,
                                  WidgetBase::StateChanged}),
                ElementsAre(0, 1, 2, 4, 8, 16, 32));
}

struct AttributeCase
{
    AttrIndex index;
    AttrValue value;  /**< too wide for the field */
    AttrValue stored; /**< what the field keeps */
    int mark;
};

class WidgetAttribute : public testing::TestWithParam<AttributeCase>
{
};

TEST_P(WidgetAttribute, IsNarrowedStoredAndMarked)
{
    Held<Widget> widget;
    const AttributeCase& attribute = GetParam();
    widget->SetAttribute(attribute.index, attribute.value);
    EXPECT_EQ(widget->GetAttribute(attribute.index), attribute.stored);
    EXPECT_EQ(widget->DirtyState, attribute.mark);

    // The same value again marks again.
    widget->DirtyState = 0;
    widget->SetAttribute(attribute.index, attribute.stored);
    EXPECT_EQ(widget->DirtyState, attribute.mark);
}

TEST_P(WidgetAttribute, LeavesTheOthersAlone)
{
    Held<Widget> widget;
    Held<Widget> untouched;
    widget->SetAttribute(GetParam().index, GetParam().value);
    for (int index = 0; index <= AttrDstColorKey; ++index) {
        if (index != GetParam().index) {
            EXPECT_EQ(widget->GetAttribute(static_cast<AttrIndex>(index)),
                      untouched->GetAttribute(static_cast<AttrIndex>(index)))
                << index;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Common, WidgetAttribute,
    testing::Values(AttributeCase{AttrPosX, 0x18001, -32767, WidgetBase::StateMoved},
                    AttributeCase{AttrPosY, -32769, 32767, WidgetBase::StateMoved},
                    AttributeCase{AttrPosZ, 0x10007, 7, WidgetBase::StateReordered},
                    AttributeCase{AttrSpanX, 0x1FFFF, -1, WidgetBase::StateMoved},
                    AttributeCase{AttrSpanY, 0x10010, 16, WidgetBase::StateMoved},
                    AttributeCase{AttrOriginX, 0x18000, -32768, WidgetBase::StateMoved},
                    AttributeCase{AttrOriginY, -65537, -1, WidgetBase::StateMoved},
                    AttributeCase{AttrScaleX, -1, 65535, WidgetBase::StateScaled},
                    AttributeCase{AttrScaleY, 0x10100, 256, WidgetBase::StateScaled},
                    AttributeCase{AttrBlend, 0x17F, 127, WidgetBase::StateFaded},
                    AttributeCase{AttrBlendMode, 0x101, 1, WidgetBase::StateFaded}));

TEST(Widget, IgnoresOtherAttributes)
{
    Held<Widget> widget;
    for (int index :
         {0, 5, 7, 12, 13, 14, 15, 16, 17, 18, 21, 22, 23, 24, 30, 43, 49, 50, 51, -1}) {
        widget->SetAttribute(static_cast<AttrIndex>(index), 77);
        EXPECT_EQ(widget->GetAttribute(static_cast<AttrIndex>(index)), 0) << index;
        EXPECT_EQ(widget->DirtyState, 0) << index;
    }
}

TEST(Widget, MarksAddUp)
{
    Held<Widget> widget;
    widget->SetSettled();
    EXPECT_EQ(widget->DirtyState, 1);
    widget->SetMoved();
    widget->SetReordered();
    EXPECT_EQ(widget->DirtyState, 7);
    widget->SetFaded();
    widget->SetScaled();
    widget->SetChanged();
    EXPECT_EQ(widget->DirtyState, 63);
}

TEST(Widget, VisibilityMarksOnlyAChange)
{
    Held<Widget> widget;
    widget->SetVisibility(true);
    EXPECT_EQ(widget->DirtyState, 0);
    widget->SetVisibility(false);
    EXPECT_FALSE(widget->IsVisible);
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateFaded);
    widget->DirtyState = 0;
    widget->SetVisibility(false);
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST(Widget, AnchorsAreStoredWithoutAMark)
{
    Held<Widget> widget;
    widget->SetAnchors(AnchorRight | AnchorBottom);
    EXPECT_EQ(widget->Anchors, 10);
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST(Widget, RemovalIsRequestedByTrueAndCompletedByFalse)
{
    Held<Widget> widget;
    widget->SetRemoving(false);
    EXPECT_EQ(widget->Existence, 0);
    widget->SetRemoving(true);
    EXPECT_EQ(widget->Existence, 1);
    widget->SetRemoving(false);
    EXPECT_EQ(widget->Existence, 2);
    widget->SetRemoving(false);
    EXPECT_EQ(widget->Existence, 2);
    widget->SetRemoving(true);
    EXPECT_EQ(widget->Existence, 1);
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST(Widget, KnowsItsLayer)
{
    PLayer layer(zelCreateLayer(nullptr));
    Held<Widget> widget;
    EXPECT_EQ(widget->GetLayer(), nullptr);
    layer->AddWidget(widget);
    EXPECT_EQ(widget->GetLayer(), static_cast<ILayer*>(layer));
}

TEST(Widget, CopyTakesGeometryDepthAndOpacityOnly)
{
    Held<Widget> source;
    Held<Widget> copy;
    AttrValue value = 100;
    for (AttrIndex index : {AttrPosX, AttrPosY, AttrPosZ, AttrOriginX, AttrOriginY, AttrScaleX,
                            AttrScaleY, AttrSpanX, AttrSpanY, AttrBlend})
        source->SetAttribute(index, ++value);
    source->SetAttribute(AttrBlendMode, BlendSrcCopy);
    source->SetVisibility(false);
    source->SetAnchors(AnchorRight);
    source->ZOrder = 1;
    source->IsEven = true;

    copy->Copy(source);
    value = 100;
    for (AttrIndex index : {AttrPosX, AttrPosY, AttrPosZ, AttrOriginX, AttrOriginY, AttrScaleX,
                            AttrScaleY, AttrSpanX, AttrSpanY, AttrBlend})
        EXPECT_EQ(copy->GetAttribute(index), ++value) << index;
    EXPECT_EQ(copy->BlendingMode, BlendSrcOver);
    EXPECT_TRUE(copy->IsVisible);
    EXPECT_EQ(copy->Anchors, 5);
    EXPECT_EQ(copy->ZOrder, 32767);
    EXPECT_FALSE(copy->IsEven);
    EXPECT_EQ(copy->DirtyState, 0);
}

TEST(Widget, PlainOneCannotBeCloned)
{
    Held<Widget> widget;
    EXPECT_EQ(widget->Clone(), nullptr);
}

TEST(Widget, ReferencesAreThoseOfItsInterface)
{
    Held<Widget> widget;
    WidgetBase* base = widget;
    IWidget* interface = widget;
    EXPECT_EQ(base->Hold(), 2);
    EXPECT_EQ(interface->Hold(), 3);
    EXPECT_EQ(base->Release(), 2);
    EXPECT_EQ(base->Release(), 1);
}

/** A widget in a layer whose computed values the test sets, and a manager of its own. */
class WidgetDirty : public testing::Test
{
protected:
    void SetUp() override
    {
        layer->ClipRight = 100;
        layer->ClipBottom = 50;
        widget = new Widget;
        layer->AddWidget(widget);
        widget->PosX = 10;
        widget->PosY = 5;
        widget->SpanX = 20;
        widget->SpanY = 8;
        Dirty(WidgetBase::StateMoved);
    }

    /** What the widget reports with these marks pending, collected in an empty manager. */
    std::vector<DirtyRect> Dirty(int marks)
    {
        manager.Clear();
        widget->DirtyState = static_cast<UInt8>(marks);
        widget->Dirty(&manager);
        return Delivered(manager, kArea);
    }

    Held<Layer> layer;
    Widget* widget = nullptr;
    DirtyManager manager = {100, 50};
    const DirtyRect place = {10, 5, 30, 13};
};

TEST_F(WidgetDirty, WithoutMarksNothingHappens)
{
    widget->PosX = 50;
    widget->Blend = 10;
    widget->ZOrder = 3;
    EXPECT_THAT(Dirty(0), IsEmpty());
    EXPECT_EQ(widget->DirtyShown, place);
    EXPECT_EQ(widget->DirtyBlend, 255);
    EXPECT_EQ(widget->DirtyZOrder, 32767);
}

TEST_F(WidgetDirty, SettledOrChangedReportsTheShownArea)
{
    EXPECT_THAT(Dirty(WidgetBase::StateSettled), ElementsAre(place));
    EXPECT_THAT(Dirty(WidgetBase::StateChanged), ElementsAre(place));
}

TEST_F(WidgetDirty, FadedToTheOpacityAlreadyShownIsDropped)
{
    widget->BlendPainter = 1;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
    EXPECT_EQ(widget->BlendPainter, 255);
}

TEST_F(WidgetDirty, FadedCombinesWithTheLayerRoundedDown)
{
    layer->LayerBlend = 100;
    widget->Blend = 100;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    EXPECT_EQ(widget->BlendPainter, 39);
    EXPECT_EQ(widget->DirtyBlend, 39);
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateFaded);
}

TEST_F(WidgetDirty, FadedReportsAChangeOfVisibilityAlone)
{
    widget->IsVisible = false;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    EXPECT_FALSE(widget->DirtyVisibility);
    EXPECT_EQ(widget->DirtyBlend, 255);
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), IsEmpty());
    widget->IsVisible = true;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    EXPECT_TRUE(widget->DirtyVisibility);
}

TEST_F(WidgetDirty, FadedInFromNothingReportsTheAreaThoughItDidNotMove)
{
    widget->Blend = 0;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    widget->Blend = 9;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    EXPECT_EQ(widget->DirtyBlend, 9);
}

TEST_F(WidgetDirty, FadedInFromNothingFindsItsNewPlaceWithoutAMovedMark)
{
    widget->DirtyBlend = 0;
    widget->PosX = 60;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place, DirtyRect{60, 5, 80, 13}));
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateFaded | WidgetBase::StateMoved);
}

TEST_F(WidgetDirty, FadedFromSomeOpacityStaysWhereItWas)
{
    widget->Blend = 100;
    widget->PosX = 60;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), ElementsAre(place));
    EXPECT_EQ(widget->DirtyShown, place);
}

TEST_F(WidgetDirty, FadedWithNothingBeforeAndAfterIsDropped)
{
    widget->DirtyBlend = 0;
    layer->LayerBlend = 0;
    EXPECT_THAT(Dirty(WidgetBase::StateFaded), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST_F(WidgetDirty, ScaledToTheScaleAlreadyShownIsDropped)
{
    EXPECT_THAT(Dirty(WidgetBase::StateScaled), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST_F(WidgetDirty, ScaledReportsAnOwnScaleThoughTheShownAreaIsTheSame)
{
    widget->ScaleY = 300;
    EXPECT_THAT(Dirty(WidgetBase::StateScaled), ElementsAre(place));
    EXPECT_EQ(widget->DirtyScaleX, 256);
    EXPECT_EQ(widget->DirtyScaleY, 300);
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateScaled);
}

TEST_F(WidgetDirty, ScaledCombinesWithTheLayerAndPlacesTheWidget)
{
    layer->LayerScaleX = 512;
    layer->LayerScaleY = 128;
    widget->ScaleX = 384;
    EXPECT_THAT(
        Dirty(WidgetBase::StateScaled),
        ElementsAre(DirtyRect{20, 2, 60, 5}, DirtyRect{10, 5, 60, 6}, DirtyRect{10, 6, 30, 13}));
    EXPECT_EQ(widget->DirtyScaleX, 768);
    EXPECT_EQ(widget->DirtyScaleY, 128);
    EXPECT_EQ(widget->DirtyShown, (DirtyRect{20, 2, 60, 6}));
}

TEST_F(WidgetDirty, ScaledIsNotTrackedForAnEvenWidget)
{
    widget->IsEven = true;
    widget->ScaleX = 300;
    EXPECT_THAT(Dirty(WidgetBase::StateScaled), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
    EXPECT_EQ(widget->DirtyScaleX, 256);
}

TEST_F(WidgetDirty, MovedReportsOldAndNewArea)
{
    widget->PosX = 60;
    widget->PosY = 20;
    EXPECT_THAT(Dirty(WidgetBase::StateMoved), ElementsAre(place, DirtyRect{60, 20, 80, 28}));
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateMoved);
    EXPECT_EQ(widget->DirtyBound, (DirtyRect{60, 20, 80, 28}));
}

TEST_F(WidgetDirty, MovedToTheSamePlaceIsDropped)
{
    EXPECT_THAT(Dirty(WidgetBase::StateMoved), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST_F(WidgetDirty, MovedTakesOffsetOriginAndLayerScale)
{
    layer->OffsetX = 7;
    layer->OffsetY = -3;
    layer->LayerScaleX = 384;
    layer->LayerScaleY = 320;
    widget->OriginX = 4;
    widget->OriginY = -2;
    widget->SpanY = 9;
    Dirty(WidgetBase::StateMoved);
    // (10 - 4) * 1.5 + 7 and (5 + 2) * 1.25 - 3, rounded down; spans 20 * 1.5 and 9 * 1.25.
    EXPECT_EQ(widget->DirtyBound, (DirtyRect{16, 5, 46, 16}));
}

TEST_F(WidgetDirty, MovedOwnScaleDoesNotPlaceTheWidget)
{
    widget->ScaleX = 512;
    EXPECT_THAT(Dirty(WidgetBase::StateMoved), IsEmpty());
    EXPECT_EQ(widget->DirtyBound, place);
}

TEST_F(WidgetDirty, MovedIsCutAtTheLayersClipRectangle)
{
    layer->ClipLeft = 12;
    layer->ClipTop = 6;
    layer->ClipRight = 25;
    layer->ClipBottom = 9;
    // The old area, in bands cut by the new one.
    EXPECT_THAT(
        Dirty(WidgetBase::StateMoved),
        ElementsAre(DirtyRect{10, 5, 30, 6}, DirtyRect{10, 6, 30, 9}, DirtyRect{10, 9, 30, 13}));
    EXPECT_EQ(widget->DirtyShown, (DirtyRect{12, 6, 25, 9}));
    EXPECT_EQ(widget->DirtyBound, place);
}

TEST_F(WidgetDirty, MovedBehindTheClipRectangleCountsAsChanged)
{
    layer->ClipRight = 20;
    Dirty(WidgetBase::StateMoved);
    widget->SpanX = 40;
    EXPECT_THAT(Dirty(WidgetBase::StateMoved), ElementsAre(DirtyRect{10, 5, 20, 13}));
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateChanged);
    EXPECT_EQ(widget->DirtyBound, (DirtyRect{10, 5, 50, 13}));
}

TEST_F(WidgetDirty, MovedBehindTheClipRectangleIsNothingToAnEvenWidget)
{
    layer->ClipRight = 20;
    Dirty(WidgetBase::StateMoved);
    widget->IsEven = true;
    widget->SpanX = 40;
    EXPECT_THAT(Dirty(WidgetBase::StateMoved), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
    EXPECT_EQ(widget->DirtyBound, (DirtyRect{10, 5, 50, 13}));
}

TEST_F(WidgetDirty, MovedSumsWrapTo16Bits)
{
    layer->OffsetX = 32767;
    layer->ClipLeft = -32768;
    widget->PosX = 2;
    Dirty(WidgetBase::StateMoved);
    EXPECT_EQ(widget->DirtyBound.x1, -32767);
    EXPECT_EQ(widget->DirtyBound.x2, -32747);
    widget->PosX = -32768;
    widget->OriginX = 1;
    layer->OffsetX = 0;
    Dirty(WidgetBase::StateMoved);
    EXPECT_EQ(widget->DirtyBound.x1, 32767);
}

TEST_F(WidgetDirty, ReorderedReportsANewPlaceInTheOrder)
{
    widget->TOrder = 4;
    EXPECT_THAT(Dirty(WidgetBase::StateReordered), ElementsAre(place));
    EXPECT_EQ(widget->DirtyTOrder, 4);
    EXPECT_EQ(widget->DirtyZOrder, 32767);
    EXPECT_THAT(Dirty(WidgetBase::StateReordered), IsEmpty());
    EXPECT_EQ(widget->DirtyState, 0);
    widget->ZOrder = 9;
    EXPECT_THAT(Dirty(WidgetBase::StateReordered), ElementsAre(place));
    EXPECT_EQ(widget->DirtyZOrder, 9);
}

TEST_F(WidgetDirty, ReorderedWhereItWasLeavesOtherMarksTheirReport)
{
    EXPECT_THAT(Dirty(WidgetBase::StateReordered | WidgetBase::StateChanged), ElementsAre(place));
    EXPECT_EQ(widget->DirtyState, WidgetBase::StateChanged);
}

TEST_F(WidgetDirty, TheModifiedCopyStandsForTheWidget)
{
    auto* rectangle = new Rectangle;
    layer->AddWidget(rectangle);
    rectangle->IsEven = false;
    rectangle->Blend = 200;
    rectangle->SpanX = 4;
    rectangle->SpanY = 4;
    rectangle->CreateModified();
    rectangle->Modified->PosX = 70;
    rectangle->Modified->PosY = 30;
    rectangle->Modified->Blend = 50;
    rectangle->Modified->ScaleX = 512;
    rectangle->DirtyState =
        WidgetBase::StateMoved | WidgetBase::StateFaded | WidgetBase::StateScaled;
    rectangle->Dirty(&manager);
    EXPECT_EQ(rectangle->DirtyShown, (DirtyRect{70, 30, 74, 34}));
    EXPECT_EQ(rectangle->DirtyBlend, 50);
    EXPECT_EQ(rectangle->DirtyScaleX, 512);
    EXPECT_EQ(rectangle->PosX, 0);
    EXPECT_EQ(rectangle->Blend, 200);
}

class WidgetAnchors : public testing::Test
{
protected:
    void Grow(int anchors, MetricValue dx, MetricValue dy)
    {
        widget->Anchors = static_cast<UInt8>(anchors);
        widget->AnchorX(dx);
        widget->AnchorY(dy);
    }
    std::vector<int> Geometry() const
    {
        return {widget->PosX, widget->PosY, widget->SpanX, widget->SpanY};
    }
    Held<Widget> widget;
};

TEST_F(WidgetAnchors, LeftAndTopStay)
{
    Grow(AnchorLeft | AnchorTop, 5, 6);
    EXPECT_THAT(Geometry(), ElementsAre(0, 0, 0, 0));
    Grow(0, 5, 6);
    EXPECT_THAT(Geometry(), ElementsAre(0, 0, 0, 0));
}

TEST_F(WidgetAnchors, RightAndBottomMove)
{
    Grow(AnchorRight | AnchorBottom, 5, -6);
    EXPECT_THAT(Geometry(), ElementsAre(5, -6, 0, 0));
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST_F(WidgetAnchors, BothEdgesStretch)
{
    Grow(AnchorLeft | AnchorRight | AnchorTop | AnchorBottom, 5, 6);
    EXPECT_THAT(Geometry(), ElementsAre(0, 0, 5, 6));
    EXPECT_EQ(widget->DirtyState, 0);
}

TEST_F(WidgetAnchors, SumsWrapTo16Bits)
{
    widget->PosX = 32767;
    Grow(AnchorRight, 1, 0);
    EXPECT_EQ(widget->PosX, -32768);
}

TEST_F(WidgetAnchors, StretchingLayerPassesItsGrowthOn)
{
    Held<Layer> layer;
    layer->AddWidget(widget);
    widget->Anchors = AnchorRight | AnchorBottom;
    layer->Anchors = AnchorLeft | AnchorRight;
    layer->AnchorX(3);
    EXPECT_EQ(layer->SpanX, 10003);
    EXPECT_THAT(Geometry(), ElementsAre(3, 0, 0, 0));
}

TEST_F(WidgetAnchors, LayerThatStretchesDownwardsMovesItsChildrenSideways)
{
    Held<Layer> layer;
    layer->AddWidget(widget);
    widget->Anchors = AnchorRight | AnchorBottom;
    layer->Anchors = AnchorTop | AnchorBottom;
    layer->AnchorY(3);
    EXPECT_EQ(layer->SpanY, 10003);
    EXPECT_THAT(Geometry(), ElementsAre(3, 0, 0, 0));
}

TEST_F(WidgetAnchors, LayerThatMovesPassesNothingOn)
{
    Held<Layer> layer;
    layer->AddWidget(widget);
    widget->Anchors = AnchorRight | AnchorBottom;
    layer->Anchors = AnchorRight | AnchorBottom;
    layer->AnchorX(3);
    layer->AnchorY(4);
    EXPECT_EQ(layer->PosX, 3);
    EXPECT_EQ(layer->PosY, 4);
    EXPECT_THAT(Geometry(), ElementsAre(0, 0, 0, 0));
}

TEST(WidgetPaint, PlainWidgetIsMagenta)
{
    EngineDisplay engine(64, 48);
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 64, 48, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
    scene->SetBackgroundColor(0x808080, 255);
    PLayer layer(zelCreateLayer(nullptr));
    scene->AddLayer(layer);
    ZELObjPtr<IWidget> widget(new Widget);
    widget->SetAttribute(AttrPosX, 10);
    widget->SetAttribute(AttrPosY, 20);
    widget->SetAttribute(AttrSpanX, 8);
    widget->SetAttribute(AttrSpanY, 4);
    layer->AddWidget(widget);
    zelUpdateScreen(true, true);

    auto shot = engine.Shot();
    EXPECT_TRUE(AreaHasColor(shot, 10, 20, 18, 24, 0xffff00ff));
    EXPECT_EQ(shot.At(9, 20), 0xff808080U);
    EXPECT_EQ(shot.At(18, 23), 0xff808080U);
    EXPECT_EQ(shot.At(10, 19), 0xff808080U);
    EXPECT_EQ(shot.At(17, 24), 0xff808080U);

    // With the opacity and blend mode of the widget.
    widget->SetAttribute(AttrBlend, 0x40);
    widget->SetAttribute(AttrBlendMode, BlendSrcCopy);
    zelUpdateScreen(false, true);
    EXPECT_TRUE(AreaHasColor(engine.Shot(), 10, 20, 18, 24, 0x40ff00ff));
}

} // namespace
} // namespace zelxxx
