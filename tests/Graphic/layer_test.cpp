#include "layer.h"

#include "held.h"
#include "trectangle.h"
#include "tscene.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::Held;

namespace zelxxx {
namespace {

constexpr int kNone = WidgetBase::StateUnchanged;
constexpr int kMoved = WidgetBase::StateMoved;
constexpr int kReordered = WidgetBase::StateReordered;
constexpr int kFaded = WidgetBase::StateFaded;
constexpr int kChanged = WidgetBase::StateChanged;
constexpr int kScaledAndMoved = WidgetBase::StateScaled | WidgetBase::StateMoved;

using Order = std::vector<WidgetBase*>;

Order ChildrenOf(const Layer& layer)
{
    Order children;
    for (WidgetBase* child = layer.Widgets.GetFirstElement(); child;
         child = child->GetNextElement())
        children.push_back(child);
    return children;
}

TEST(Layer, StartsWithItsDocumentedValues)
{
    Held<Layer> layer;
    EXPECT_TRUE(layer->IsLayer);
    EXPECT_TRUE(layer->IsEven);
    EXPECT_EQ(layer->SpanX, 10000);
    EXPECT_EQ(layer->SpanY, 10000);
    EXPECT_THAT((std::vector<int>{layer->OffsetX, layer->OffsetY, layer->ClipLeft, layer->ClipTop,
                                  layer->ClipRight, layer->ClipBottom}),
                testing::Each(0));
    EXPECT_EQ(layer->LayerScaleX, 256);
    EXPECT_EQ(layer->LayerScaleY, 256);
    EXPECT_EQ(layer->LayerBlend, 255);
    EXPECT_EQ(layer->Widgets.GetFirstElement(), nullptr);
    EXPECT_EQ(layer->Original, nullptr);
    for (AttrIndex index : {AttrScrollX, AttrScrollY, AttrBkgndColor, AttrBkgndBlend})
        EXPECT_EQ(layer->GetAttribute(index), 0) << index;
    EXPECT_EQ(layer->Blend, 255);
    EXPECT_EQ(layer->Anchors, 5);
}

TEST(Layer, FactoryIgnoresTheResource)
{
    PLayer layer(zelCreateLayer(nullptr));
    EXPECT_EQ(layer->GetAttribute(AttrSpanX), 10000);
    EXPECT_EQ(layer->Hold(), 2);
    layer->Release();
}

struct AttributeCase
{
    AttrIndex index;
    AttrValue value; /**< too wide for the field */
    AttrValue read;  /**< what is read back */
    int own_mark;
    int child_mark;
};

class LayerAttribute : public testing::TestWithParam<AttributeCase>
{
protected:
    void SetUp() override
    {
        layer->AddWidget(child);
        layer->AddWidget(inner);
        inner->AddWidget(grandchild);
    }

    void ExpectMarks(int own, int descendants)
    {
        EXPECT_EQ(layer->DirtyState, own);
        EXPECT_EQ(child->DirtyState, descendants);
        EXPECT_EQ(inner->DirtyState, descendants);
        EXPECT_EQ(grandchild->DirtyState, descendants);
        for (WidgetBase* widget : Order{layer, child, inner, grandchild})
            widget->DirtyState = 0;
    }

    Held<Layer> layer;
    Held<Layer> inner;
    Held<Rectangle> child;
    Held<Rectangle> grandchild;
};

TEST_P(LayerAttribute, IsNarrowedStoredAndMarksTheTree)
{
    const AttributeCase& attribute = GetParam();
    layer->SetAttribute(attribute.index, attribute.value);
    EXPECT_EQ(layer->GetAttribute(attribute.index), attribute.read);
    ExpectMarks(attribute.own_mark, attribute.child_mark);
    layer->SetAttribute(attribute.index, attribute.value);
    ExpectMarks(attribute.own_mark, attribute.child_mark);
}

TEST_P(LayerAttribute, LeavesTheOthersAlone)
{
    Held<Layer> untouched;
    layer->SetAttribute(GetParam().index, GetParam().value);
    for (int index = 0; index <= AttrDstColorKey; ++index) {
        if (index != GetParam().index) {
            EXPECT_EQ(layer->GetAttribute(static_cast<AttrIndex>(index)),
                      untouched->GetAttribute(static_cast<AttrIndex>(index)))
                << index;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, LayerAttribute,
    testing::Values(AttributeCase{AttrPosX, 0x18001, -32767, kMoved, kMoved},
                    AttributeCase{AttrPosY, -32769, 32767, kMoved, kMoved},
                    AttributeCase{AttrPosZ, 0x10007, 7, kReordered, kReordered},
                    AttributeCase{AttrSpanX, 0x10123, 0x123, kMoved, kMoved},
                    AttributeCase{AttrSpanY, 0x1FFFF, -1, kMoved, kMoved},
                    AttributeCase{AttrOriginX, 40000, -25536, kMoved, kMoved},
                    AttributeCase{AttrOriginY, -5, -5, kMoved, kMoved},
                    AttributeCase{AttrScaleX, -1, 65535, kNone, kScaledAndMoved},
                    AttributeCase{AttrScaleY, 0x10200, 512, kNone, kScaledAndMoved},
                    AttributeCase{AttrScrollX, 0x1FFFE, -2, kNone, kMoved},
                    AttributeCase{AttrScrollY, 3, 3, kNone, kMoved},
                    AttributeCase{AttrClipLeft, 4, 0, kMoved, kMoved},
                    AttributeCase{AttrClipTop, 5, 0, kMoved, kMoved},
                    AttributeCase{AttrClipRight, -6, 0, kMoved, kMoved},
                    AttributeCase{AttrClipBottom, -7, 0, kMoved, kMoved},
                    AttributeCase{AttrBlend, 0x17F, 127, kFaded, kFaded},
                    AttributeCase{AttrBlendMode, 0x101, 1, kFaded, kNone},
                    AttributeCase{AttrBkgndColor, -2, -2, kChanged, kNone},
                    AttributeCase{AttrBkgndBlend, 0x180, 128, kChanged, kNone}));

TEST_F(LayerAttribute, OthersAreIgnored)
{
    for (int index : {0, 5, 7, 18, 23, 24, 26, 30, 36, 43, 49, 50, 51, -1}) {
        layer->SetAttribute(static_cast<AttrIndex>(index), 77);
        EXPECT_EQ(layer->GetAttribute(static_cast<AttrIndex>(index)), 0) << index;
        ExpectMarks(kNone, kNone);
    }
}

TEST_F(LayerAttribute, VisibilityFadesTheTreeAndIsTakenOverByNestedLayers)
{
    layer->SetVisibility(true);
    ExpectMarks(kNone, kNone);
    layer->SetVisibility(false);
    ExpectMarks(kFaded, kFaded);
    EXPECT_FALSE(layer->IsVisible);
    EXPECT_FALSE(inner->IsVisible);
    EXPECT_TRUE(child->IsVisible);
    EXPECT_TRUE(grandchild->IsVisible);
    layer->SetVisibility(true);
    EXPECT_TRUE(inner->IsVisible);
}

TEST(LayerCopy, TakesGeometryClipScrollAndBackground)
{
    Held<Layer> source;
    Held<Rectangle> child;
    source->AddWidget(child);
    source->EnableAnchors(true);
    AttrValue value = 10;
    for (int index = AttrPosX; index <= AttrBkgndBlend; ++index)
        source->SetAttribute(static_cast<AttrIndex>(index), value++);
    source->OffsetX = 99;

    auto* clone = static_cast<Layer*>(source->Clone());
    EXPECT_EQ(clone->WidgetBase::Hold(), 1);
    for (int index = AttrPosX; index <= AttrBkgndBlend; ++index) {
        if (index != AttrBlendMode) {
            EXPECT_EQ(clone->GetAttribute(static_cast<AttrIndex>(index)),
                      source->GetAttribute(static_cast<AttrIndex>(index)))
                << index;
        }
    }
    EXPECT_EQ(clone->GetAttribute(AttrBlendMode), BlendSrcOver);
    EXPECT_TRUE(ChildrenOf(*clone).empty());
    EXPECT_EQ(clone->OffsetX, 0);
    EXPECT_EQ(clone->Original, nullptr);
    EXPECT_TRUE(clone->IsLayer);

    // The clip edges cannot be read, but they act.
    Held<Layer> parent;
    parent->AddWidget(clone);
    parent->ClipRight = parent->ClipBottom = 30000;
    clone->UpdateLayers();
    EXPECT_EQ(clone->ClipLeft - (clone->OffsetX + clone->GetAttribute(AttrScrollX)),
              10 + AttrClipLeft - AttrPosX);
    clone->WidgetBase::Release();
}

class LayerChildren : public testing::Test
{
protected:
    void SetUp() override
    {
        for (Widget* widget : {&*a, &*b, &*c})
            layer->AddWidget(widget);
    }

    void Insert(Widget* widget, Widget* destination, int position)
    {
        for (Widget* each : {&*a, &*b, &*c, &*x})
            each->DirtyState = 0;
        layer->InsertWidget(widget, destination, static_cast<WidgetInstertPosition>(position));
    }

    /** Expects the children's order, that each is held once, and who was marked changed. */
    void Expect(const Order& order, const Order& marked)
    {
        EXPECT_EQ(ChildrenOf(*layer), order);
        for (const Held<Widget>* each : {&a, &b, &c, &x}) {
            Widget* widget = *each;
            const bool is_child = std::find(order.begin(), order.end(), widget) != order.end();
            EXPECT_EQ(each->Count(), is_child ? 2 : 1);
            const bool is_marked = std::find(marked.begin(), marked.end(), widget) != marked.end();
            EXPECT_EQ(widget->DirtyState, is_marked ? kChanged : kNone);
        }
    }

    Held<Layer> layer;
    Held<Widget> a;
    Held<Widget> b;
    Held<Widget> c;
    Held<Widget> x; // not a child at first
};

TEST_F(LayerChildren, AddAppendsAndAdopts)
{
    x->Existence = 2;
    layer->AddWidget(x);
    EXPECT_EQ(ChildrenOf(*layer), (Order{a, b, c, x}));
    EXPECT_EQ(x->Existence, 0);
    EXPECT_EQ(x->ParentLayer, static_cast<Layer*>(layer));
    EXPECT_EQ(x.Count(), 2);
    EXPECT_EQ(x->DirtyState, 0); // outside a scene nothing is marked
}

TEST_F(LayerChildren, AddMovesAChildToTheEndAndOutOfAnotherLayer)
{
    layer->AddWidget(a);
    EXPECT_EQ(ChildrenOf(*layer), (Order{b, c, a}));
    Held<Layer> other;
    other->AddWidget(b);
    EXPECT_EQ(ChildrenOf(*layer), (Order{c, a}));
    EXPECT_EQ(ChildrenOf(*other), (Order{b}));
    EXPECT_EQ(b->ParentLayer, static_cast<Layer*>(other));
    EXPECT_EQ(b.Count(), 2);
}

TEST_F(LayerChildren, InsertFirst)
{
    Insert(x, nullptr, InsertFirst);
    Expect({x, a, b, c}, {x});
    Insert(c, nullptr, InsertFirst);
    Expect({c, x, a, b}, {c});
    Insert(c, b, InsertFirst);
    Expect({c, x, a, b}, {c, b});
    EXPECT_EQ(x->ParentLayer, static_cast<Layer*>(layer));
}

TEST_F(LayerChildren, InsertFirstIntoAnEmptyLayer)
{
    Held<Layer> empty;
    empty->InsertWidget(x, nullptr, InsertFirst);
    EXPECT_EQ(ChildrenOf(*empty), (Order{x}));
}

TEST_F(LayerChildren, InsertLast)
{
    Insert(x, nullptr, InsertLast);
    Expect({a, b, c, x}, {x});
    Insert(a, b, InsertLast);
    Expect({b, c, x, a}, {a, b});
    Insert(a, nullptr, InsertLast);
    Expect({b, c, x, a}, {a});
}

TEST_F(LayerChildren, InsertBefore)
{
    Insert(x, b, InsertBefore);
    Expect({a, x, b, c}, {x, b});
    Insert(c, a, InsertBefore);
    Expect({c, a, x, b}, {c, a});
    Insert(c, a, InsertBefore);
    Expect({c, a, x, b}, {c, a});
}

TEST_F(LayerChildren, InsertBehind)
{
    Insert(x, a, InsertBehind);
    Expect({a, x, b, c}, {x, a});
    Insert(x, a, InsertBehind); // follows already
    Expect({a, x, b, c}, {x, a});
    Insert(a, c, InsertBehind); // the last one
    Expect({x, b, c, a}, {a, c});
    Insert(a, x, InsertBehind);
    Expect({x, a, b, c}, {a, x});
}

TEST_F(LayerChildren, InsertBesideNothingDoesNothing)
{
    Insert(x, nullptr, InsertBefore);
    Expect({a, b, c}, {});
    Insert(x, nullptr, InsertBehind);
    Expect({a, b, c}, {});
    EXPECT_EQ(x->ParentLayer, nullptr);
}

TEST_F(LayerChildren, InsertBesideAForeignWidgetAppends)
{
    Held<Layer> other;
    Held<Widget> foreign;
    Held<Widget> neighbour;
    other->AddWidget(foreign);
    other->AddWidget(neighbour);
    Insert(x, foreign, InsertBefore);
    Expect({a, b, c, x}, {x});
    EXPECT_EQ(foreign->DirtyState, kChanged);
    Insert(a, foreign, InsertBehind);
    Expect({b, c, x, a}, {a});
    EXPECT_EQ(ChildrenOf(*other), (Order{foreign, neighbour}));
}

TEST_F(LayerChildren, InsertOfAWidgetBesideItselfDoesNothing)
{
    for (int position : {1, 2, 4, 8, 3}) {
        Insert(b, b, position);
        Expect({a, b, c}, {});
    }
    Insert(nullptr, nullptr, InsertFirst);
    Expect({a, b, c}, {});
}

TEST_F(LayerChildren, InsertOfNothingOnlyMarksTheDestination)
{
    for (int position : {1, 2, 4, 8, 3}) {
        Insert(nullptr, b, position);
        Expect({a, b, c}, {b});
    }
    Held<Layer> empty;
    b->DirtyState = 0;
    empty->InsertWidget(nullptr, b, InsertFirst);
    EXPECT_EQ(b->DirtyState, kNone);
    empty->InsertWidget(nullptr, b, InsertLast);
    EXPECT_EQ(b->DirtyState, kChanged);
}

// The widget takes itself for a child, and the layer does not know it.
TEST_F(LayerChildren, InsertAtAnUnknownPositionAdoptsWithoutLinking)
{
    x->Existence = 2;
    Insert(x, b, 3);
    Expect({a, b, c}, {x, b});
    EXPECT_EQ(x->ParentLayer, static_cast<Layer*>(layer));
    EXPECT_EQ(x->GetCollection(), nullptr);
    EXPECT_EQ(x->Existence, 0);
}

TEST_F(LayerChildren, InsertTakesAWidgetOutOfAnotherLayer)
{
    Held<Layer> other;
    other->AddWidget(x);
    Insert(x, b, InsertBefore);
    Expect({a, x, b, c}, {x, b});
    EXPECT_TRUE(ChildrenOf(*other).empty());
}

TEST_F(LayerChildren, InsertMarksBeforeTheWidgetEntersTheScene)
{
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 100, 50, Color32Bit, SceneUseSingleBuffer, BlendSrcOver));
    scene->AddLayer(layer);
    Insert(x, nullptr, InsertLast);
    EXPECT_EQ(x->DirtyState, kChanged | 15);
    EXPECT_EQ(x->ParentScene, layer->ParentScene);
}

TEST_F(LayerChildren, RemoveOutsideASceneUnlinksAtOnce)
{
    layer->RemoveWidget(b);
    Expect({a, c}, {});
    EXPECT_EQ(b->ParentLayer, nullptr);
    EXPECT_EQ(b->GetNextElement(), nullptr);
    EXPECT_EQ(b->Existence, 2);
    layer->AddWidget(b);
    EXPECT_EQ(b->Existence, 0);
}

TEST_F(LayerChildren, RemoveOutsideASceneIgnoresNullAndForeignWidgets)
{
    Held<Layer> other;
    other->AddWidget(x);
    layer->RemoveWidget(nullptr);
    layer->RemoveWidget(x);
    EXPECT_EQ(ChildrenOf(*layer), (Order{a, b, c}));
    EXPECT_EQ(ChildrenOf(*other), (Order{x}));
    EXPECT_EQ(x->ParentLayer, static_cast<Layer*>(other));
}

TEST_F(LayerChildren, RemoveInASceneOnlyMakesTheWidgetReady)
{
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 100, 50, Color32Bit, SceneUseSingleBuffer, BlendSrcOver));
    scene->AddLayer(layer);
    layer->RemoveWidget(b);
    EXPECT_EQ(ChildrenOf(*layer), (Order{a, b, c}));
    EXPECT_EQ(b->Existence, 2);
    EXPECT_EQ(b->ParentLayer, static_cast<Layer*>(layer));
    layer->RemoveWidget(nullptr);
    EXPECT_EQ(ChildrenOf(*layer), (Order{a, b, c}));
}

TEST_F(LayerChildren, RemoveLeavesAParkedWidgetParked)
{
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 100, 50, Color32Bit, SceneUseSingleBuffer, BlendSrcOver));
    scene->AddLayer(layer);
    b->SetRemoving(true);
    layer->RemoveWidget(b);
    EXPECT_EQ(b->Existence, 1);
}

TEST_F(LayerChildren, AnchoredOnesFollowTheSpanOnceEnabled)
{
    a->SetAnchors(AnchorRight | AnchorBottom);
    b->SetAnchors(AnchorLeft | AnchorRight | AnchorTop | AnchorBottom);
    layer->SetAttribute(AttrSpanX, 100);
    layer->SetAttribute(AttrSpanY, 100);
    EXPECT_EQ(a->PosX, 0);
    layer->EnableAnchors(true);
    layer->SetAttribute(AttrSpanX, 130);
    layer->SetAttribute(AttrSpanY, 90);
    EXPECT_EQ(a->PosX, 30);
    EXPECT_EQ(a->PosY, -10);
    EXPECT_EQ(b->SpanX, 30);
    EXPECT_EQ(b->SpanY, -10);
    EXPECT_EQ(c->PosX, 0);
    EXPECT_EQ(c->SpanX, 0);

    a->DirtyState = 0;
    layer->SetAttribute(AttrSpanX, 130); // unchanged: marked, and not moved
    EXPECT_EQ(a->PosX, 30);
    EXPECT_EQ(a->DirtyState, kMoved);
    layer->EnableAnchors(false);
    layer->SetAttribute(AttrSpanX, 0);
    EXPECT_EQ(a->PosX, 30);
}

TEST_F(LayerChildren, AnchorGrowthIsCutTo16Bits)
{
    layer->EnableAnchors(true);
    layer->SetAttribute(AttrSpanX, -32768);
    a->SetAnchors(AnchorRight);
    layer->SetAttribute(AttrSpanX, 32767);
    EXPECT_EQ(a->PosX, -1);
}

TEST_F(LayerChildren, EnableAnchorsReachesNestedLayers)
{
    Held<Layer> inner;
    Held<Layer> innermost;
    layer->AddWidget(inner);
    inner->AddWidget(innermost);
    innermost->AddWidget(x);
    x->SetAnchors(AnchorRight);
    layer->EnableAnchors(true);
    innermost->SetAttribute(AttrSpanX, 10007);
    EXPECT_EQ(x->PosX, 7);
    layer->EnableAnchors(false);
    innermost->SetAttribute(AttrSpanX, 10000);
    EXPECT_EQ(x->PosX, 7);
}

TEST_F(LayerChildren, DestructionDetachesAndReleasesThem)
{
    auto* rectangle = new Rectangle;
    layer->AddWidget(rectangle);
    Held<Rectangle> held;
    layer->AddWidget(held);
    held->CreateModified();
    layer.Release();
    EXPECT_EQ(a.Count(), 1);
    EXPECT_EQ(a->ParentLayer, nullptr);
    EXPECT_EQ(a->GetCollection(), nullptr);
    EXPECT_EQ(a->GetNextElement(), nullptr);
    EXPECT_EQ(held->Modified, nullptr);
    EXPECT_EQ(a->GetLayer(), nullptr);
}

} // namespace
} // namespace zelxxx
