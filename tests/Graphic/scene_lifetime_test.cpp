/** Scenes, layers, widgets and modifiers that end in every order: nothing points at what is gone.
 */
#include "held.h"
#include "layer.h"
#include "scene_test.h"
#include "test_modifier.h"
#include "trectangle.h"
#include "tscene.h"

#include <gtest/gtest.h>

using kestrin_test::kGrey;
using kestrin_test::kRed;
using kestrin_test::MakeLayer;
using kestrin_test::MakeRectangle;
using kestrin_test::SceneTest;
using kestrin_test::Shown;
using kestrin_test::TestModifier;

namespace zelxxx {
namespace {

class SceneLifetime : public SceneTest
{
protected:
    SceneLifetime() { layer->AddWidget(red); }

    /** Uses a widget in every way that leads to its scene or layer. */
    static void Use(IWidget* widget)
    {
        widget->SetAttribute(AttrPosX, 12);
        widget->SetAttribute(AttrBlend, 200);
        widget->SetVisibility(false);
        widget->SetVisibility(true);
        if (ILayer* layer = widget->GetLayer())
            layer->GetAttribute(AttrPosX);
    }

    ZELObjPtr<IWidget> red = MakeRectangle(10, 10, 8, 8, kRed);
};

TEST_F(SceneLifetime, LayersAndWidgetsOutliveTheScene)
{
    Repainted();
    scene = nullptr;
    Use(red);
    Use(layer);
    EXPECT_EQ(layer->GetLayer(), nullptr);
    EXPECT_EQ(red->GetLayer(), static_cast<ILayer*>(layer));
    zelUpdateScreen(true, true); // there is none

    scene = zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver);
    scene->SetBackgroundColor(0x808080, 255);
    scene->AddLayer(layer);
    for (IWidget* widget : {static_cast<IWidget*>(layer), static_cast<IWidget*>(red)}) {
        widget->SetAttribute(AttrPosX, 5);
        widget->SetAttribute(AttrBlend, 255);
    }
    EXPECT_EQ(Repainted().At(13, 13), Shown(kRed));
}

TEST_F(SceneLifetime, RootOutlivesTheScene)
{
    PLayer root(layer->GetLayer());
    Repainted();
    scene = nullptr;
    Use(root);
    Use(layer);
    root->RemoveWidget(layer);
    EXPECT_EQ(layer->GetLayer(), nullptr);
    root->AddWidget(red);
    Use(red);
    root = nullptr;
    EXPECT_EQ(red->GetLayer(), nullptr);
}

TEST_F(SceneLifetime, WidgetOutlivesItsLayer)
{
    Repainted();
    scene->RemoveLayer(layer);
    layer = nullptr;
    Updated(); // releases the layer
    EXPECT_EQ(red->GetLayer(), nullptr);
    Use(red);
    EXPECT_EQ(Repainted().At(12, 12), kGrey);
}

TEST_F(SceneLifetime, LayerThatNobodyHoldsTakesItsWidgetsAlong)
{
    layer->AddWidget(zelCreateRectangle(nullptr));
    PLayer inner = MakeLayer();
    inner->AddWidget(zelCreateRectangle(nullptr));
    layer->AddWidget(inner);
    inner = nullptr;
    Repainted();
    layer = nullptr;
    scene = nullptr;
    EXPECT_EQ(red->GetLayer(), nullptr);
}

TEST_F(SceneLifetime, WidgetsMarkedForRemovalMayEndWithTheScene)
{
    Repainted();
    layer->RemoveWidget(red);
    scene->RemoveLayer(layer);
    scene = nullptr;
    Use(red);
}

TEST_F(SceneLifetime, ModifierOutlivesItsWidgetAndTheScene)
{
    ZELObjPtr<TestModifier> modifier(new TestModifier);
    red->AddModifier(modifier);
    ZELObjPtr<TestModifier> of_layer(new TestModifier);
    layer->AddModifier(of_layer);
    Repainted();
    scene = nullptr;
    modifier->SetDirty();
    of_layer->SetDirty();
    red = nullptr;
    layer = nullptr;
    modifier->SetDirty();
    of_layer->Enable(false);
    EXPECT_EQ(modifier->Widget, nullptr);
    EXPECT_EQ(of_layer->Widget, nullptr);
}

TEST_F(SceneLifetime, WidgetLeavesWithAModifierAttached)
{
    auto* modifier = new TestModifier([](IWidget* copy) { copy->SetAttribute(AttrPosX, 30); });
    red->AddModifier(modifier);
    EXPECT_EQ(Repainted().At(31, 12), Shown(kRed));
    layer->RemoveWidget(red);
    EXPECT_EQ(Updated().At(31, 12), kGrey);
    red = nullptr;
    Repainted();
}

// Such a widget stands in no list; it leaves with its layer, or with the scene.
TEST_F(SceneLifetime, WidgetAtAnUnknownPositionLeavesWithItsLayer)
{
    const auto unknown = static_cast<WidgetInstertPosition>(3);
    ZELObjPtr<IWidget> stray = MakeRectangle(40, 10, 8, 8, kRed);
    layer->InsertWidget(stray, nullptr, unknown);
    Updated();
    scene->RemoveLayer(layer);
    layer = nullptr;
    red = nullptr;
    Updated();
    EXPECT_EQ(stray->GetLayer(), nullptr);
    Use(stray);
    EXPECT_EQ(Repainted().At(41, 11), kGrey);

    PLayer other = MakeLayer();
    scene->AddLayer(other);
    other->InsertWidget(stray, nullptr, unknown);
    scene = nullptr;
    Use(stray);
}

TEST_F(SceneLifetime, WidgetAtAnUnknownPositionForgetsALayerThatEndsBesideItsOwn)
{
    {
        PLayer other = MakeLayer();
        other->InsertWidget(red, nullptr, static_cast<WidgetInstertPosition>(16));
        EXPECT_EQ(red->GetLayer(), static_cast<ILayer*>(other));
        Repainted(); // with a widget in its list that is in no scene
    }
    // It still stands in the list of the first layer, which takes it into scenes.
    EXPECT_EQ(red->GetLayer(), nullptr);
    Repainted();
    layer->AddWidget(red);
    EXPECT_EQ(Repainted().At(13, 13), Shown(kRed));
}

TEST_F(SceneLifetime, WidgetAtAnUnknownPositionMayEndBeforeTheLayer)
{
    {
        ZELObjPtr<IWidget> stray = MakeRectangle(10, 10, 8, 8, kRed);
        layer->InsertWidget(stray, nullptr, static_cast<WidgetInstertPosition>(16));
        Repainted();
    }
    layer->RemoveWidget(red);
    EXPECT_EQ(Repainted().At(13, 13), kGrey);
    layer = nullptr;
}

TEST_F(SceneLifetime, CopyOfALayerThatAModifierHoldsForgetsTheLayer)
{
    PLayer inner = MakeLayer();
    layer->AddWidget(inner);
    ZELObjPtr<IWidget> copy;
    layer->AddModifier(new TestModifier([&copy](IWidget* widget) { copy = widget; }));
    Repainted();
    ASSERT_NE(static_cast<IWidget*>(copy), nullptr);
    layer->RemoveWidget(inner);
    Repainted();
    inner = nullptr;
    copy->SetAttribute(AttrPosX, 3); // marks the children of no layer
    EXPECT_EQ(copy->GetAttribute(AttrPosX), 3);
}

TEST_F(SceneLifetime, SceneMayEndBetweenOthers)
{
    auto make = [] {
        return zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver);
    };
    ZELObjPtr<IScene> second(make());
    ZELObjPtr<IScene> third(make());
    second = nullptr;
    zelUpdateScreen(true, true);
    third = nullptr;
    zelUpdateScreen(true, true);
    EXPECT_EQ(engine.Shot().At(0, 0), kGrey);
    ZELObjPtr<IScene> fourth(make());
    scene = nullptr;
    zelUpdateScreen(true, true);
}

} // namespace
} // namespace zelxxx
