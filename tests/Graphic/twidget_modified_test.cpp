/** Modifiers of a widget and the modified copy they work on. */
#include "held.h"
#include "layer.h"
#include "test_modifier.h"
#include "trectangle.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using kestrin_test::Held;
using kestrin_test::TestModifier;
using testing::ElementsAre;

namespace zelxxx {
namespace {

/** Moves a widget to the right, reading through the interface. */
TestModifier::Effect Shift(int distance)
{
    return [distance](IWidget* widget) {
        widget->SetAttribute(AttrPosX, widget->GetAttribute(AttrPosX) + distance);
    };
}

std::vector<ModifierBase*> ModifiersOf(const WidgetBase& widget)
{
    std::vector<ModifierBase*> modifiers;
    for (ModifierBase* at = widget.Modifiers.GetFirstElement(); at; at = at->GetNextElement())
        modifiers.push_back(at);
    return modifiers;
}

TEST(Modifier, StartsEnabledAndUnattached)
{
    TestModifier modifier;
    EXPECT_TRUE(modifier.Enabled);
    EXPECT_EQ(modifier.Widget, nullptr);
    EXPECT_EQ(modifier.Count(), 0);
    modifier.Enable(false);
    EXPECT_FALSE(modifier.Enabled);
    modifier.SetDirty(); // without a widget: nothing
}

TEST(Modifier, BaseOperationsCountTheObjectsReferences)
{
    int destroyed = 0;
    auto* modifier = new TestModifier(nullptr, &destroyed);
    ModifierBase* base = modifier;
    EXPECT_EQ(base->Hold(), 1);
    EXPECT_EQ(static_cast<IModifier*>(modifier)->Hold(), 2);
    EXPECT_EQ(base->Release(), 1);
    EXPECT_EQ(base->Release(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST(Modifier, CanBeHeldByItsOwnClass)
{
    int destroyed = 0;
    {
        ZELObjPtr<TestModifier> modifier(new TestModifier(nullptr, &destroyed));
        Held<Rectangle> rectangle;
        rectangle->AddModifier(static_cast<IModifier*>(modifier));
        EXPECT_EQ(modifier->Count(), 2);
    }
    EXPECT_EQ(destroyed, 1);
}

class WidgetModifiers : public testing::Test
{
protected:
    void SetUp() override
    {
        first = new TestModifier(Shift(100), &destroyed);
        second = new TestModifier(
            [](IWidget* widget) {
                widget->SetAttribute(AttrPosX, widget->GetAttribute(AttrPosX) * 2);
            },
            &destroyed);
        static_cast<IModifier*>(first)->Hold();
        static_cast<IModifier*>(second)->Hold();
    }

    void TearDown() override
    {
        static_cast<IModifier*>(first)->Release();
        static_cast<IModifier*>(second)->Release();
    }

    int destroyed = 0;
    TestModifier* first = nullptr;
    TestModifier* second = nullptr;
    Held<Rectangle> rectangle;
};

TEST_F(WidgetModifiers, AddHoldsAppendsAndLinksBack)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(second));
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(first, second));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(rectangle));
    rectangle->AddModifier(static_cast<IModifier*>(first));
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(second, first));
    EXPECT_EQ(first->Count(), 2);
}

TEST_F(WidgetModifiers, AddMakesOneHeldCopy)
{
    rectangle->SetAttribute(AttrColor, 0x123456);
    rectangle->AddModifier(static_cast<IModifier*>(first));
    WidgetBase* copy = rectangle->Modified;
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->Hold(), 2); // held on, so that no other copy can get its address
    EXPECT_EQ(static_cast<Rectangle*>(copy)->GetAttribute(AttrColor), 0x123456);
    EXPECT_EQ(copy->ParentScene, nullptr);
    EXPECT_EQ(copy->ParentLayer, nullptr);
    rectangle->AddModifier(static_cast<IModifier*>(second));
    EXPECT_EQ(rectangle->Modified, copy);
    EXPECT_EQ(copy->Release(), 1);
}

TEST_F(WidgetModifiers, AddTakesAModifierOutOfAnotherWidget)
{
    Held<Rectangle> other;
    other->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(first));
    EXPECT_THAT(ModifiersOf(*other), testing::IsEmpty());
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(first));
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(rectangle));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_NE(other->Modified, nullptr);
}

TEST_F(WidgetModifiers, PlainWidgetHasModifiersButNoCopy)
{
    Held<Widget> widget;
    widget->AddModifier(static_cast<IModifier*>(first));
    EXPECT_EQ(widget->Modified, nullptr);
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(widget));
    widget->Modify();
    EXPECT_EQ(widget->PosX, 0);
}

TEST_F(WidgetModifiers, RemoveReleasesAndKeepsTheCopy)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(second));
    WidgetBase* copy = rectangle->Modified;
    rectangle->RemoveModifier(static_cast<IModifier*>(first));
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(second));
    EXPECT_EQ(first->Widget, nullptr);
    EXPECT_EQ(first->Count(), 1);
    rectangle->RemoveModifier(static_cast<IModifier*>(second));
    EXPECT_EQ(rectangle->Modified, copy);
}

TEST_F(WidgetModifiers, RemoveDestroysWhatNobodyElseHolds)
{
    auto* modifier = new TestModifier(nullptr, &destroyed);
    rectangle->AddModifier(static_cast<IModifier*>(modifier));
    rectangle->RemoveModifier(static_cast<IModifier*>(modifier));
    EXPECT_EQ(destroyed, 1);
}

TEST_F(WidgetModifiers, RemoveIgnoresNullAndForeignOnes)
{
    Held<Rectangle> other;
    other->AddModifier(static_cast<IModifier*>(first));
    rectangle->RemoveModifier(static_cast<IModifier*>(nullptr));
    rectangle->RemoveModifier(static_cast<IModifier*>(first));
    rectangle->RemoveModifier(static_cast<IModifier*>(second));
    EXPECT_THAT(ModifiersOf(*other), ElementsAre(first));
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(other));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_EQ(second->Count(), 1);
}

TEST_F(WidgetModifiers, DestroyModifiedWaitsForTheLastModifier)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->DestroyModified();
    EXPECT_NE(rectangle->Modified, nullptr);
    rectangle->RemoveModifier(static_cast<IModifier*>(first));
    rectangle->DestroyModified();
    EXPECT_EQ(rectangle->Modified, nullptr);
    rectangle->DestroyModified();
}

TEST_F(WidgetModifiers, DestructionLetsThemGo)
{
    auto* unheld = new TestModifier(nullptr, &destroyed);
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(unheld));
    rectangle.Release();
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(first->Widget, nullptr);
    EXPECT_EQ(first->GetCollection(), nullptr);
    EXPECT_EQ(first->Count(), 1);
    first->SetDirty();
}

TEST_F(WidgetModifiers, DestroyedModifierLeavesItsWidget)
{
    auto* unheld = new TestModifier(nullptr, &destroyed);
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(unheld));
    static_cast<IModifier*>(unheld)->Release(); // the widget's own reference
    EXPECT_EQ(destroyed, 1);
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(first));
}

TEST_F(WidgetModifiers, ModifyResetsTheCopyAndRunsThemInOrder)
{
    rectangle->SetAttribute(AttrPosX, 5);
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->AddModifier(static_cast<IModifier*>(second));
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 210);
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 210);
    EXPECT_EQ(rectangle->PosX, 5);

    rectangle->SetAttribute(AttrPosX, 6);
    rectangle->SetAttribute(AttrBlend, 9);
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 212);
    EXPECT_EQ(rectangle->Modified->Blend, 9);
}

TEST_F(WidgetModifiers, ModifyWithoutModifiersStillResetsTheCopy)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->Modify();
    rectangle->RemoveModifier(static_cast<IModifier*>(first));
    rectangle->SetAttribute(AttrPosX, 7);
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 7);
}

TEST_F(WidgetModifiers, MarksOnTheCopyStayThere)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->DirtyState, WidgetBase::StateMoved);
    EXPECT_EQ(rectangle->DirtyState, 0);
}

TEST_F(WidgetModifiers, DisabledOneStaysAttached)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    first->Enable(false);
    EXPECT_THAT(ModifiersOf(*rectangle), ElementsAre(first));
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(rectangle));
    EXPECT_EQ(first->Count(), 2);
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 0);
    first->Enable(true);
    rectangle->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 100);
}

TEST_F(WidgetModifiers, CopyThatIsHeldElsewhereOutlivesItsWidget)
{
    rectangle->AddModifier(static_cast<IModifier*>(first));
    WidgetBase* copy = rectangle->Modified;
    copy->Hold();
    rectangle.Release();
    EXPECT_EQ(copy->Hold(), 2);
    copy->Release();
    copy->Release();
}

class LayerModifiers : public WidgetModifiers
{
protected:
    void SetUp() override
    {
        WidgetModifiers::SetUp();
        layer->AddWidget(rectangle);
    }

    Held<Layer> layer;
};

TEST_F(LayerModifiers, AddGivesEveryDirectChildACopyAndMarksIt)
{
    Held<Rectangle> deeper;
    Held<Layer> inner;
    layer->AddWidget(inner);
    inner->AddWidget(deeper);
    layer->AddModifier(first);
    EXPECT_THAT(ModifiersOf(*layer), ElementsAre(first));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(layer));
    EXPECT_NE(rectangle->Modified, nullptr);
    EXPECT_EQ(rectangle->DirtyState, WidgetBase::StateMoved);
    ASSERT_NE(inner->Modified, nullptr);
    EXPECT_EQ(static_cast<Layer*>(inner->Modified)->Original, static_cast<Layer*>(inner));
    EXPECT_EQ(deeper->Modified, nullptr);
    EXPECT_EQ(layer->Modified, nullptr);
}

TEST_F(LayerModifiers, WidgetsAddedLaterGetACopyToo)
{
    layer->AddModifier(first);
    Held<Rectangle> later;
    layer->AddWidget(later);
    EXPECT_NE(later->Modified, nullptr);
    Held<Rectangle> inserted;
    layer->InsertWidget(inserted, nullptr, InsertFirst);
    EXPECT_NE(inserted->Modified, nullptr);
    Held<Layer> plain;
    Held<Rectangle> without;
    plain->AddWidget(without);
    EXPECT_EQ(without->Modified, nullptr);
}

TEST_F(LayerModifiers, RemoveKeepsTheCopiesUntilTheLastOneGoes)
{
    layer->AddModifier(first);
    layer->AddModifier(second);
    rectangle->DirtyState = 0;
    layer->RemoveModifier(first);
    EXPECT_EQ(first->Widget, nullptr);
    EXPECT_EQ(first->Count(), 1);
    EXPECT_NE(rectangle->Modified, nullptr);
    EXPECT_EQ(rectangle->DirtyState, WidgetBase::StateMoved);
    rectangle->DirtyState = 0;
    layer->RemoveModifier(second);
    EXPECT_EQ(rectangle->Modified, nullptr);
    EXPECT_EQ(rectangle->DirtyState, WidgetBase::StateMoved);
}

TEST_F(LayerModifiers, ChildWithAModifierOfItsOwnKeepsItsCopy)
{
    rectangle->AddModifier(static_cast<IModifier*>(second));
    layer->AddModifier(first);
    layer->RemoveModifier(first);
    EXPECT_NE(rectangle->Modified, nullptr);
}

TEST_F(LayerModifiers, RemoveDestroysWhatNobodyElseHolds)
{
    auto* modifier = new TestModifier(nullptr, &destroyed);
    layer->AddModifier(modifier);
    layer->RemoveModifier(modifier);
    EXPECT_EQ(destroyed, 1);
}

TEST_F(LayerModifiers, AddAgainMovesAModifierToTheEnd)
{
    layer->AddModifier(first);
    layer->AddModifier(second);
    layer->AddModifier(first);
    EXPECT_THAT(ModifiersOf(*layer), ElementsAre(second, first));
    EXPECT_EQ(first->Count(), 2);
}

TEST_F(LayerModifiers, SeveralActInOrderOfAttachment)
{
    rectangle->SetAttribute(AttrPosX, 5);
    layer->AddModifier(first);
    layer->AddModifier(second);
    layer->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, (5 + 100) * 2);
    layer->AddModifier(first);
    layer->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 5 * 2 + 100);
}

// The owner that is left hears nothing of it.
TEST_F(LayerModifiers, OneThatMovesToAWidgetLeavesTheChildrenTheirCopies)
{
    Held<Rectangle> other;
    layer->AddModifier(first);
    layer->Modify();
    rectangle->DirtyState = 0;
    WidgetBase* copy = rectangle->Modified;
    other->AddModifier(static_cast<IModifier*>(first));
    EXPECT_THAT(ModifiersOf(*layer), testing::IsEmpty());
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(other));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_EQ(rectangle->Modified, copy);
    EXPECT_EQ(rectangle->DirtyState, 0);
    layer->Modify();
    EXPECT_EQ(copy->PosX, 0);
}

TEST_F(LayerModifiers, OneThatMovesToAnotherLayerActsThere)
{
    Held<Layer> other;
    Held<Rectangle> child;
    other->AddWidget(child);
    layer->AddModifier(first);
    other->AddModifier(first);
    EXPECT_THAT(ModifiersOf(*layer), testing::IsEmpty());
    EXPECT_THAT(ModifiersOf(*other), ElementsAre(first));
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(other));
    EXPECT_EQ(first->Count(), 2);
    layer->RemoveModifier(first); // foreign by now
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(other));
    other->Modify();
    layer->Modify();
    EXPECT_EQ(child->Modified->PosX, 100);
    EXPECT_EQ(rectangle->Modified->PosX, 0);
}

TEST_F(LayerModifiers, OneThatMovesFromAWidgetActsOnTheLayersChildren)
{
    Held<Rectangle> other;
    other->AddModifier(static_cast<IModifier*>(first));
    layer->AddModifier(first);
    EXPECT_THAT(ModifiersOf(*other), testing::IsEmpty());
    EXPECT_EQ(first->Widget, static_cast<WidgetBase*>(layer));
    EXPECT_EQ(first->Count(), 2);
    layer->Modify();
    other->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 100);
    EXPECT_EQ(other->Modified->PosX, 0);
}

TEST_F(LayerModifiers, DestroyedModifierLeavesItsLayerAndTheChildrenTheirCopies)
{
    auto* unheld = new TestModifier(Shift(100), &destroyed);
    layer->AddModifier(unheld);
    static_cast<IModifier*>(unheld)->Release(); // the layer's own reference
    EXPECT_EQ(destroyed, 1);
    EXPECT_THAT(ModifiersOf(*layer), testing::IsEmpty());
    ASSERT_NE(rectangle->Modified, nullptr);
    layer->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 0);
}

TEST_F(LayerModifiers, DestructionLetsThemGo)
{
    auto* unheld = new TestModifier(nullptr, &destroyed);
    layer->AddModifier(first);
    layer->AddModifier(unheld);
    layer.Release();
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(first->Widget, nullptr);
    EXPECT_EQ(first->GetCollection(), nullptr);
    EXPECT_EQ(first->Count(), 1);
    first->SetDirty();
}

// A layer's children are detached before its modifiers go, and these count only on the children.
TEST_F(LayerModifiers, ChildOfALayerThatEndsKeepsItsCopyOnlyForAModifierOfItsOwn)
{
    Held<Rectangle> with_own;
    layer->AddWidget(with_own);
    with_own->AddModifier(static_cast<IModifier*>(second));
    layer->AddModifier(first);
    layer.Release();
    EXPECT_EQ(rectangle->Modified, nullptr);
    EXPECT_NE(with_own->Modified, nullptr);
}

TEST_F(LayerModifiers, ChildRemovedOutsideASceneKeepsItsCopy)
{
    layer->AddModifier(first);
    layer->RemoveWidget(rectangle);
    EXPECT_EQ(rectangle->GetLayer(), nullptr);
    EXPECT_NE(rectangle->Modified, nullptr);
}

TEST_F(LayerModifiers, ChildThatMovesToAPlainLayerKeepsItsCopyAsItIsItself)
{
    Held<Layer> plain;
    layer->AddModifier(first);
    layer->Modify();
    plain->AddWidget(rectangle);
    ASSERT_NE(rectangle->Modified, nullptr);
    rectangle->SetAttribute(AttrPosX, 4);
    plain->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 4);
}

TEST_F(LayerModifiers, ChildThatComesBackKeepsTheSameCopy)
{
    layer->AddModifier(first);
    WidgetBase* copy = rectangle->Modified;
    EXPECT_EQ(copy->Hold(), 2); // held on, so that no other copy can get its address
    layer->AddWidget(rectangle);
    EXPECT_EQ(rectangle->Modified, copy);
    EXPECT_EQ(copy->Release(), 1);
}

TEST_F(LayerModifiers, PlainWidgetAmongTheChildrenIsLeftAlone)
{
    Held<Widget> plain;
    layer->AddWidget(plain);
    layer->AddModifier(first);
    EXPECT_EQ(plain->Modified, nullptr);
    EXPECT_EQ(plain->DirtyState, WidgetBase::StateMoved);
    layer->Modify();
    EXPECT_EQ(plain->PosX, 0);
    EXPECT_EQ(rectangle->Modified->PosX, 100);
    layer->RemoveModifier(first);
}

TEST_F(LayerModifiers, RemoveIgnoresNullAndForeignOnes)
{
    layer->RemoveModifier(first);
    layer->AddModifier(second);
    rectangle->DirtyState = 0;
    layer->RemoveModifier(nullptr);
    layer->RemoveModifier(first);
    EXPECT_THAT(ModifiersOf(*layer), ElementsAre(second));
    EXPECT_EQ(rectangle->DirtyState, 0);
}

TEST_F(LayerModifiers, ActOnTheChildrenAfterTheirOwn)
{
    rectangle->SetAttribute(AttrPosX, 5);
    rectangle->AddModifier(static_cast<IModifier*>(second));
    layer->AddModifier(first);
    layer->Modify();
    EXPECT_EQ(rectangle->Modified->PosX, 5 * 2 + 100);
}

TEST_F(LayerModifiers, OfTheOuterLayerReachTheInnerLayersCopyOnly)
{
    Held<Layer> outer;
    outer->AddWidget(layer);
    outer->AddModifier(first);
    layer->SetAttribute(AttrPosX, 3);
    rectangle->CreateModified();
    outer->Modify();
    EXPECT_EQ(layer->Modified->PosX, 103);
    EXPECT_EQ(rectangle->Modified->PosX, 0);
}

TEST_F(LayerModifiers, LayersOwnCopyIsResetAndNotModified)
{
    Held<Layer> outer;
    outer->AddWidget(layer);
    auto* nothing = new TestModifier;
    outer->AddModifier(nothing); // gives the layer a copy
    layer->AddModifier(first);
    layer->SetAttribute(AttrPosX, 3);
    layer->SetAttribute(AttrScrollY, 4);
    outer->Modify();
    EXPECT_EQ(layer->Modified->PosX, 3);
    EXPECT_EQ(static_cast<Layer*>(layer->Modified)->GetAttribute(AttrScrollY), 4);
    EXPECT_EQ(rectangle->Modified->PosX, 100);
}

TEST_F(LayerModifiers, MarksOnALayersCopyGoToTheLayersChildren)
{
    Held<Layer> outer;
    outer->AddWidget(layer);
    outer->AddModifier(first);
    rectangle->DirtyState = 0;
    outer->Modify();
    EXPECT_EQ(layer->Modified->DirtyState, WidgetBase::StateMoved);
    EXPECT_EQ(rectangle->DirtyState, WidgetBase::StateMoved);
}

TEST_F(LayerModifiers, VisibilityOfALayersCopyReachesTheNestedLayers)
{
    Held<Layer> inner;
    layer->AddWidget(inner);
    Held<Layer> copy;
    copy->Original = layer;
    copy->SetVisibility(false);
    EXPECT_FALSE(inner->IsVisible);
    EXPECT_TRUE(layer->IsVisible);
    EXPECT_EQ(rectangle->DirtyState, WidgetBase::StateFaded);
}

} // namespace
} // namespace zelxxx
