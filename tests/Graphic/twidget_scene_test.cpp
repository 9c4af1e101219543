/** How widgets enter a scene, find their place in its paint list and leave it. */
#include "held.h"
#include "layer.h"
#include "seeded_random.h"
#include "test_modifier.h"
#include "trectangle.h"
#include "tscene.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::Held;
using kestrin_test::SeededRandom;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

/** A scene that is never updated: one that paints into its view makes no surface. */
ZELObjPtr<IScene> MakeScene()
{
    return zelCreateScene(0, 100, 50, Color32Bit, SceneUseSingleBuffer, BlendSrcOver);
}

using Order = std::vector<WidgetBase*>;

class InScene : public testing::Test
{
protected:
    void SetUp() override
    {
        scene->AddLayer(layer);
        root = layer->ParentLayer;
        ASSERT_NE(root, nullptr);
    }

    /** The paint list from its head, found through a widget that is in it. */
    static std::vector<WidgetBase*> PaintList(WidgetBase* member)
    {
        while (member->Prev)
            member = member->Prev;
        std::vector<WidgetBase*> list;
        for (; member; member = member->Next) {
            if (member->Next) {
                EXPECT_EQ(member->Next->Prev, member);
            }
            list.push_back(member);
        }
        return list;
    }
    std::vector<WidgetBase*> PaintList() { return PaintList(layer); }

    /** Sorts the whole tree as an update does. */
    void Sort()
    {
        root->ParentScene->CurrentTOrder = 0;
        root->Sort();
    }

    ZELObjPtr<IScene> scene = MakeScene();
    Held<Layer> layer;
    Layer* root = nullptr;
    Held<Widget> a;
    Held<Widget> b;
    Held<Widget> c;
};

TEST_F(InScene, WidgetEntersAsAppearing)
{
    a->DirtyBlend = 77;
    a->ZOrder = 5;
    a->TOrder = 6;
    layer->AddWidget(a);
    EXPECT_EQ(a->ParentScene, root->ParentScene);
    EXPECT_EQ(a->DirtyState, WidgetBase::StateMoved | WidgetBase::StateReordered |
                                 WidgetBase::StateFaded | WidgetBase::StateSettled);
    EXPECT_EQ(a->DirtyBlend, 0);
    EXPECT_EQ(a->ZOrder, 32767);
    EXPECT_EQ(a->TOrder, 32767);
    EXPECT_EQ(PaintList(), (Order{layer, a}));
}

TEST_F(InScene, ReAddingAWidgetDoesNotEnterAgain)
{
    layer->AddWidget(a);
    layer->AddWidget(b);
    a->DirtyState = 0;
    a->DirtyBlend = 255;
    layer->AddWidget(a);
    EXPECT_EQ(a->DirtyState, 0);
    EXPECT_EQ(a->DirtyBlend, 255);
    EXPECT_EQ(PaintList(), (Order{layer, a, b}));
}

TEST_F(InScene, LayerEntersBeforeItsChildrenAndTakesThemAlong)
{
    Held<Layer> outer;
    Held<Layer> inner;
    outer->AddWidget(a);
    outer->AddWidget(inner);
    inner->AddWidget(b);
    outer->AddWidget(c);
    EXPECT_EQ(b->ParentScene, nullptr);
    scene->AddLayer(outer);
    EXPECT_EQ(PaintList(), (Order{layer, outer, a, inner, b, c}));
    EXPECT_EQ(b->ParentScene, root->ParentScene);
    EXPECT_EQ(outer->ParentLayer, root);
}

TEST_F(InScene, SetSceneReachesTheChildrenAlsoWhenTheLayerIsThereAlready)
{
    layer->AddWidget(a);
    a->SetScene(nullptr);
    EXPECT_EQ(PaintList(), (Order{layer}));
    layer->SetScene(root->ParentScene);
    EXPECT_EQ(PaintList(), (Order{layer, a}));
}

TEST_F(InScene, RootIsNotInThePaintList)
{
    EXPECT_EQ(PaintList(), (Order{layer}));
    EXPECT_EQ(root->Next, nullptr);
    EXPECT_EQ(root->Prev, nullptr);
    EXPECT_EQ(root->ParentScene, layer->ParentScene);
}

TEST_F(InScene, LeavingTakesTheWidgetOutOfThePaintList)
{
    for (Widget* widget : {&*a, &*b, &*c})
        layer->AddWidget(widget);
    b->SetScene(nullptr);
    EXPECT_EQ(PaintList(), (Order{layer, a, c}));
    EXPECT_EQ(b->Next, nullptr);
    EXPECT_EQ(b->Prev, nullptr);
    EXPECT_EQ(b->ParentScene, nullptr);
    c->SetScene(nullptr);
    layer->SetScene(nullptr);
    EXPECT_EQ(a->ParentScene, nullptr);
}

TEST_F(InScene, MovingToAnotherSceneChangesTheLists)
{
    ZELObjPtr<IScene> other = MakeScene();
    Held<Layer> there;
    other->AddLayer(there);
    layer->AddWidget(a);
    layer->AddWidget(b);
    there->AddWidget(a);
    EXPECT_EQ(PaintList(), (Order{layer, b}));
    EXPECT_EQ(PaintList(there), (Order{there, a}));
    EXPECT_EQ(a->ParentScene, there->ParentScene);
}

TEST_F(InScene, SortNumbersTheTreeDepthFirst)
{
    Held<Layer> inner;
    layer->AddWidget(a);
    layer->AddWidget(inner);
    inner->AddWidget(b);
    layer->AddWidget(c);
    Sort();
    EXPECT_EQ(layer->TOrder, 0);
    EXPECT_EQ(a->TOrder, 1);
    EXPECT_EQ(inner->TOrder, 2);
    EXPECT_EQ(b->TOrder, 3);
    EXPECT_EQ(c->TOrder, 4);
    EXPECT_EQ(root->TOrder, 0);
    EXPECT_EQ(root->ParentScene->CurrentTOrder, 5);
    EXPECT_EQ(PaintList(), (Order{layer, a, inner, b, c}));
}

TEST_F(InScene, SortAddsDepthsDownTheTreeIn16Bits)
{
    layer->AddWidget(a);
    layer->SetAttribute(AttrPosZ, 30000);
    a->SetAttribute(AttrPosZ, 5000);
    Sort();
    EXPECT_EQ(layer->ZOrder, 30000);
    EXPECT_EQ(a->ZOrder, 35000 - 65536);
    EXPECT_EQ(PaintList(), (Order{a, layer}));
}

TEST_F(InScene, SortTakesTheDepthOfTheModifiedCopy)
{
    Held<Rectangle> rectangle;
    layer->AddWidget(rectangle);
    layer->AddWidget(a);
    rectangle->CreateModified();
    rectangle->Modified->PosZ = 3;
    rectangle->PosZ = -3;
    Sort();
    EXPECT_EQ(rectangle->ZOrder, 3);
    EXPECT_EQ(PaintList(), (Order{layer, a, rectangle}));
}

TEST_F(InScene, WidgetWhoseKeyFallsMovesForward)
{
    for (Widget* widget : {&*a, &*b, &*c})
        layer->AddWidget(widget);
    Sort();
    c->SetAttribute(AttrPosZ, -1);
    Sort();
    EXPECT_EQ(PaintList(), (Order{c, layer, a, b}));
    c->SetAttribute(AttrPosZ, 0);
    Sort();
    EXPECT_EQ(PaintList(), (Order{layer, a, b, c}));
}

// The head finds nothing before itself and still has to look behind.
TEST_F(InScene, HeadWhoseKeyRisesMovesBackward)
{
    layer->AddWidget(a);
    layer->AddWidget(b);
    Sort();
    layer->SetAttribute(AttrPosZ, 1);
    a->SetAttribute(AttrPosZ, -1);
    b->SetAttribute(AttrPosZ, -1);
    Sort();
    EXPECT_EQ(PaintList(), (Order{a, b, layer}));
}

TEST_F(InScene, PaintListIsAlwaysAscending)
{
    SeededRandom random(21);
    std::vector<std::unique_ptr<Held<Widget>>> widgets;
    Held<Layer> inner;
    layer->AddWidget(inner);
    for (int i = 0; i < 12; ++i)
        widgets.push_back(std::make_unique<Held<Widget>>());
    for (int step = 0; step < 400; ++step) {
        for (int i = random.Between(1, 4); i > 0; --i) {
            Held<Widget>& widget = *widgets[static_cast<std::size_t>(random.Between(0, 11))];
            const int kind = random.Between(0, 3);
            if (kind == 0)
                (random.Chance(50) ? &*layer : &*inner)->AddWidget(widget);
            else if (kind == 1)
                widget->SetAttribute(AttrPosZ, random.Between(-2, 2));
            else if (kind == 2)
                inner->SetAttribute(AttrPosZ, random.Between(-2, 2));
            else
                widget->SetScene(random.Chance(50) && widget->ParentLayer ? layer->ParentScene
                                                                          : nullptr);
        }
        // Only what is in the scene is sorted.
        for (const auto& widget : widgets) {
            if ((*widget)->ParentLayer)
                (*widget)->SetScene(layer->ParentScene);
        }
        Sort();
        const auto list = PaintList();
        ASSERT_TRUE(std::is_sorted(list.begin(), list.end(),
                                   [](const WidgetBase* first, const WidgetBase* second) {
                                       return std::pair(first->ZOrder, first->TOrder) <
                                              std::pair(second->ZOrder, second->TOrder);
                                   }))
            << "step " << step;
    }
}

TEST_F(InScene, KillTakesOutWhatIsReady)
{
    layer->AddWidget(a);
    layer->AddWidget(b);
    a->Existence = 2;
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(layer->Widgets.GetFirstElement(), static_cast<WidgetBase*>(b));
    EXPECT_EQ(a->ParentLayer, nullptr);
    EXPECT_EQ(a->ParentScene, nullptr);
    EXPECT_EQ(a.Count(), 1);
    EXPECT_EQ(PaintList(), (Order{layer, b}));
}

TEST_F(InScene, KillWaitsForARequestedRemoval)
{
    layer->AddWidget(a);
    layer->AddWidget(b);
    a->SetRemoving(true);
    EXPECT_FALSE(a->Kill());
    EXPECT_FALSE(root->Kill());
    EXPECT_EQ(a->ParentLayer, static_cast<Layer*>(layer));
    a->SetRemoving(false);
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(a->ParentLayer, nullptr);
}

TEST_F(InScene, KillVisitsAllChildrenBeforeItAnswers)
{
    layer->AddWidget(a);
    layer->AddWidget(b);
    a->SetRemoving(true);
    b->Existence = 2;
    EXPECT_FALSE(layer->Kill());
    EXPECT_EQ(b->ParentLayer, nullptr);
}

TEST_F(InScene, KillKeepsAReadyLayerWhileAChildWaits)
{
    layer->AddWidget(a);
    layer->Existence = 2;
    a->SetRemoving(true);
    EXPECT_FALSE(root->Kill());
    EXPECT_EQ(layer->ParentLayer, root);
    a->SetRemoving(false);
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(layer->ParentLayer, nullptr);
    EXPECT_EQ(layer->Widgets.GetFirstElement(), nullptr);
}

TEST_F(InScene, KillOfALayerTakesItsChildrenOutOfTheSceneWithIt)
{
    layer->AddWidget(a);
    layer->Existence = 2;
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(a->ParentScene, nullptr);
    EXPECT_EQ(a->ParentLayer, static_cast<Layer*>(layer));
}

TEST_F(InScene, KillDestroysWhatNobodyElseHolds)
{
    auto* rectangle = new Rectangle;
    layer->AddWidget(rectangle);
    rectangle->CreateModified();
    rectangle->Existence = 2;
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(PaintList(), (Order{layer}));
}

TEST_F(InScene, KillGivesUpTheCopyThatALayersModifiersAskedFor)
{
    Held<Rectangle> rectangle;
    layer->AddWidget(rectangle);
    layer->AddModifier(new TestModifier);
    EXPECT_NE(rectangle->Modified, nullptr);
    rectangle->Existence = 2;
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(rectangle->Modified, nullptr);
}

TEST_F(InScene, KillLeavesTheCopyOfAWidgetWithModifiers)
{
    Held<Rectangle> rectangle;
    layer->AddWidget(rectangle);
    auto* modifier = new TestModifier;
    rectangle->AddModifier(static_cast<IModifier*>(modifier));
    WidgetBase* copy = rectangle->Modified;
    rectangle->Existence = 2;
    EXPECT_TRUE(root->Kill());
    EXPECT_EQ(rectangle->ParentScene, nullptr);
    EXPECT_EQ(rectangle->Modified, copy);
    EXPECT_EQ(modifier->Widget, static_cast<WidgetBase*>(rectangle));
}

TEST_F(InScene, KillOfAWidgetWithoutALayerOnlyAnswers)
{
    a->Existence = 2;
    EXPECT_TRUE(a->Kill());
    EXPECT_EQ(a->Existence, 2);
}

TEST_F(InScene, DestroyedWidgetLeavesThePaintList)
{
    auto* widget = new Widget;
    layer->AddWidget(widget);
    layer->AddWidget(a);
    static_cast<IWidget*>(widget)->Release(); // the layer's own reference
    EXPECT_EQ(PaintList(), (Order{layer, a}));
    EXPECT_EQ(layer->Widgets.GetFirstElement(), static_cast<WidgetBase*>(a));
}

} // namespace
} // namespace zelxxx
