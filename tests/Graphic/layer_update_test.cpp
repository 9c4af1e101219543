/** Coordinates of layers: conversion of points, and the values an update computes. */
#include "layer.h"

#include "held.h"
#include "seeded_random.h"
#include "trectangle.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

using kestrin_test::Held;
using kestrin_test::SeededRandom;

namespace zelxxx {
namespace {

class Nested : public testing::Test
{
protected:
    void SetUp() override
    {
        outer->AddWidget(inner);
        Place(outer, 100, 50, 7, 3, 11, 13);
        Place(inner, 10, 20, 1, 2, 5, 6);
    }

    static void Place(Layer* layer, int x, int y, int scroll_x, int scroll_y, int origin_x,
                      int origin_y)
    {
        layer->SetAttribute(AttrPosX, x);
        layer->SetAttribute(AttrPosY, y);
        layer->SetAttribute(AttrScrollX, scroll_x);
        layer->SetAttribute(AttrScrollY, scroll_y);
        layer->SetAttribute(AttrOriginX, origin_x);
        layer->SetAttribute(AttrOriginY, origin_y);
    }

    Held<Layer> outer;
    Held<Layer> inner;
    MetricValue x = 4;
    MetricValue y = 9;
};

TEST_F(Nested, LayerToSceneAddsPositionsAndTakesScrollAndOriginOff)
{
    inner->LayerToScene(&x, &y);
    EXPECT_EQ(x, 4 + (10 - 1 - 5) + (100 - 7 - 11));
    EXPECT_EQ(y, 9 + (20 - 2 - 6) + (50 - 3 - 13));
}

TEST_F(Nested, SceneToLayerLeavesOriginsOut)
{
    inner->SceneToLayer(&x, &y);
    EXPECT_EQ(x, 4 - 10 + 1 + 7 - 100);
    EXPECT_EQ(y, 9 - 20 + 2 + 3 - 50);
}

TEST_F(Nested, SceneToLayerIsNotTheInverse)
{
    inner->LayerToScene(&x, &y);
    inner->SceneToLayer(&x, &y);
    EXPECT_EQ(x, 4 - 5 - 11);
    EXPECT_EQ(y, 9 - 6 - 13);
}

TEST_F(Nested, ConversionsIgnoreScale)
{
    inner->SetAttribute(AttrScaleX, 512);
    outer->SetAttribute(AttrScaleY, 128);
    inner->LayerToScene(&x, &y);
    EXPECT_EQ(x, 4 + 4 + 82);
    EXPECT_EQ(y, 9 + 12 + 34);
}

TEST_F(Nested, ConversionsWrapTo16Bits)
{
    outer->SetAttribute(AttrPosX, 32767);
    outer->SetAttribute(AttrScrollX, 0);
    outer->SetAttribute(AttrOriginX, 0);
    x = 1;
    outer->LayerToScene(&x, &y);
    EXPECT_EQ(x, -32768);
    x = -2;
    outer->SceneToLayer(&x, &y);
    EXPECT_EQ(x, 32767);
}

class Updated : public testing::Test
{
protected:
    void SetUp() override
    {
        root->AddWidget(layer);
        root->ClipRight = 720;
        root->ClipBottom = 576;
    }

    std::vector<int> ClipOf(const Layer* of) const
    {
        return {of->ClipLeft, of->ClipTop, of->ClipRight, of->ClipBottom};
    }

    Held<Layer> root;
    Held<Layer> layer;
};

TEST_F(Updated, RootKeepsWhatWasSet)
{
    root->SetAttribute(AttrPosX, 5);
    root->SetAttribute(AttrBlend, 5);
    root->SetAttribute(AttrScaleX, 512);
    root->UpdateLayers();
    EXPECT_EQ(root->OffsetX, 0);
    EXPECT_EQ(ClipOf(root), (std::vector<int>{0, 0, 720, 576}));
    EXPECT_EQ(root->LayerBlend, 255);
    EXPECT_EQ(root->LayerScaleX, 256);
}

TEST_F(Updated, ClipNeverExtendsBeyondTheParents)
{
    layer->SetAttribute(AttrPosX, -50);
    layer->SetAttribute(AttrClipTop, -10);
    layer->SetAttribute(AttrClipRight, 100);
    root->UpdateLayers();
    EXPECT_EQ(ClipOf(layer), (std::vector<int>{0, 0, 720, 576}));

    layer->SetAttribute(AttrPosX, 20);
    layer->SetAttribute(AttrPosY, 30);
    layer->SetAttribute(AttrSpanX, 100);
    layer->SetAttribute(AttrSpanY, 100);
    layer->SetAttribute(AttrClipLeft, 1);
    layer->SetAttribute(AttrClipTop, 2);
    layer->SetAttribute(AttrClipRight, -3);
    layer->SetAttribute(AttrClipBottom, -4);
    root->UpdateLayers();
    EXPECT_EQ(ClipOf(layer), (std::vector<int>{21, 32, 117, 126}));
}

TEST_F(Updated, ScrollMovesTheContentAndNotTheClipRectangle)
{
    layer->SetAttribute(AttrPosX, 20);
    layer->SetAttribute(AttrSpanX, 100);
    root->UpdateLayers();
    const auto clip = ClipOf(layer);
    EXPECT_EQ(layer->OffsetX, 20);
    layer->SetAttribute(AttrScrollX, 7);
    root->UpdateLayers();
    EXPECT_EQ(ClipOf(layer), clip);
    EXPECT_EQ(layer->OffsetX, 13);
}

TEST_F(Updated, ContentOfALayerInAScaledLayerBeginsWhereItWouldUnscaled)
{
    Held<Layer> inner;
    layer->AddWidget(inner);
    layer->SetAttribute(AttrPosX, 7);
    layer->SetAttribute(AttrScaleX, 512);
    inner->SetAttribute(AttrPosX, 10);
    root->UpdateLayers();
    EXPECT_EQ(inner->OffsetX, 17);
    EXPECT_EQ(inner->LayerScaleX, 512);
}

TEST_F(Updated, HiddenLayerHasNoOpacityForItsLayersEither)
{
    Held<Layer> inner;
    layer->AddWidget(inner);
    layer->SetAttribute(AttrBlend, 100);
    inner->SetAttribute(AttrBlend, 100);
    root->UpdateLayers();
    EXPECT_EQ(layer->LayerBlend, 100);
    EXPECT_EQ(inner->LayerBlend, 39);
    layer->IsVisible = false; // not SetVisibility, which would hide the inner one itself
    root->UpdateLayers();
    EXPECT_EQ(layer->LayerBlend, 0);
    EXPECT_EQ(inner->LayerBlend, 0);
}

TEST_F(Updated, OwnScaleAppliesToOriginAndSpanAndAccumulates)
{
    Held<Layer> inner;
    layer->AddWidget(inner);
    layer->SetAttribute(AttrScaleX, 384);
    layer->SetAttribute(AttrOriginX, -3);
    layer->SetAttribute(AttrPosX, 100);
    layer->SetAttribute(AttrSpanX, 101);
    inner->SetAttribute(AttrScaleX, 128);
    root->UpdateLayers();
    EXPECT_EQ(layer->OffsetX, 100 + 5); // -4.5, rounded down
    EXPECT_EQ(layer->ClipRight, 105 + 151);
    EXPECT_EQ(layer->LayerScaleX, 384);
    EXPECT_EQ(inner->LayerScaleX, 192);
    EXPECT_EQ(inner->LayerScaleY, 256);
}

TEST_F(Updated, ModifiedCopyStandsForTheLayerExceptForItsVisibility)
{
    layer->CreateModified();
    auto* copy = static_cast<Layer*>(layer->Modified);
    copy->SetAttribute(AttrPosX, 33);
    copy->SetAttribute(AttrBlend, 44);
    copy->SetAttribute(AttrScrollX, 3);
    copy->IsVisible = false;
    root->UpdateLayers();
    EXPECT_EQ(layer->OffsetX, 30);
    EXPECT_EQ(layer->LayerBlend, 44);
    EXPECT_EQ(copy->OffsetX, 0);
}

/** The computed values, kept in 64 bits and cut where the engine's fields are cut. */
struct Model
{
    std::int64_t offset[2] = {};
    std::int64_t low[2] = {};
    std::int64_t high[2] = {};
    std::int64_t scale[2] = {256, 256};
    std::int64_t blend = 255;
};

std::int64_t Cut(std::int64_t value)
{
    value %= 65536;
    if (value < 0)
        value += 65536;
    return value >= 32768 ? value - 65536 : value;
}

std::int64_t Times(std::int64_t value, std::int64_t ratio)
{
    const std::int64_t product = value * ratio;
    return Cut(product >= 0 ? product / 256 : -((-product + 255) / 256));
}

/** What the client set on a layer, per axis where there are two. */
struct Wishes
{
    std::int64_t pos[2], origin[2], span[2], scale[2], scroll[2], clip_low[2], clip_high[2];
    std::int64_t blend;
    bool visible;

    void Apply(Layer* layer) const
    {
        const AttrIndex indices[2][7] = {{AttrPosX, AttrOriginX, AttrSpanX, AttrScaleX, AttrScrollX,
                                          AttrClipLeft, AttrClipRight},
                                         {AttrPosY, AttrOriginY, AttrSpanY, AttrScaleY, AttrScrollY,
                                          AttrClipTop, AttrClipBottom}};
        for (int axis = 0; axis < 2; ++axis) {
            const std::int64_t values[7] = {pos[axis],      origin[axis], span[axis],
                                            scale[axis],    scroll[axis], clip_low[axis],
                                            clip_high[axis]};
            for (int i = 0; i < 7; ++i)
                layer->SetAttribute(indices[axis][i], static_cast<AttrValue>(values[i]));
        }
        layer->SetAttribute(AttrBlend, static_cast<AttrValue>(blend));
        layer->IsVisible = visible;
    }

    Model Compute(const Model& parent) const
    {
        Model model;
        for (int axis = 0; axis < 2; ++axis) {
            const std::int64_t start =
                Cut(parent.offset[axis] + pos[axis] - Times(origin[axis], scale[axis]));
            model.low[axis] = std::max(Cut(start + clip_low[axis]), parent.low[axis]);
            model.high[axis] = std::min(
                Cut(start + clip_high[axis] + Times(span[axis], scale[axis])), parent.high[axis]);
            model.offset[axis] = Cut(start - scroll[axis]);
            model.scale[axis] = scale[axis] * parent.scale[axis] / 256 % 65536;
        }
        model.blend = visible ? blend * parent.blend / 255 : 0;
        return model;
    }
};

std::int64_t Length(SeededRandom& random)
{
    constexpr int extremes[] = {-32768, -32767, -1, 0, 1, 32766, 32767};
    if (random.Chance(20))
        return extremes[random.Between(0, 6)];
    return random.Chance(20) ? random.Between(-32768, 32767) : random.Between(-200, 900);
}

std::int64_t Ratio(SeededRandom& random)
{
    constexpr int extremes[] = {0, 1, 255, 256, 257, 32768, 65535};
    return random.Chance(50) ? extremes[random.Between(0, 6)] : random.Between(0, 1024);
}

Wishes RandomWishes(SeededRandom& random)
{
    Wishes wishes = {};
    for (int axis = 0; axis < 2; ++axis) {
        for (std::int64_t* field : {wishes.pos, wishes.origin, wishes.span, wishes.scroll,
                                    wishes.clip_low, wishes.clip_high})
            field[axis] = Length(random);
        wishes.scale[axis] = Ratio(random);
    }
    wishes.blend = random.Between(0, 255);
    wishes.visible = random.Chance(90);
    return wishes;
}

TEST(UpdateLayers, AgreesWithAModelForRandomTrees)
{
    SeededRandom random(31);
    const int rounds = SeededRandom::Rounds(500);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("tree " + std::to_string(round));
        std::vector<std::unique_ptr<Held<Layer>>> layers;
        std::vector<Model> models(1);
        layers.push_back(std::make_unique<Held<Layer>>());
        Layer* root = *layers[0];
        root->ClipRight = 1280;
        root->ClipBottom = 720;
        models[0].high[0] = 1280;
        models[0].high[1] = 720;
        for (std::size_t i = 1; i < 12; ++i) {
            const auto parent =
                static_cast<std::size_t>(random.Between(0, static_cast<int>(i) - 1));
            layers.push_back(std::make_unique<Held<Layer>>());
            const Wishes wishes = RandomWishes(random);
            wishes.Apply(*layers[i]);
            (*layers[parent])->AddWidget(*layers[i]);
            models.push_back(wishes.Compute(models[parent]));
        }
        root->UpdateLayers();
        for (std::size_t i = 0; i < layers.size(); ++i) {
            const Layer* layer = *layers[i];
            const Model& model = models[i];
            ASSERT_EQ(layer->OffsetX, model.offset[0]);
            ASSERT_EQ(layer->OffsetY, model.offset[1]);
            ASSERT_EQ(layer->ClipLeft, model.low[0]);
            ASSERT_EQ(layer->ClipTop, model.low[1]);
            ASSERT_EQ(layer->ClipRight, model.high[0]);
            ASSERT_EQ(layer->ClipBottom, model.high[1]);
            ASSERT_EQ(layer->LayerScaleX, model.scale[0]);
            ASSERT_EQ(layer->LayerScaleY, model.scale[1]);
            ASSERT_EQ(layer->LayerBlend, model.blend);
            if (layer->ParentLayer) {
                ASSERT_GE(layer->ClipLeft, layer->ParentLayer->ClipLeft);
                ASSERT_LE(layer->ClipBottom, layer->ParentLayer->ClipBottom);
            }
        }
    }
}

} // namespace
} // namespace zelxxx
