/** A scene on a display, and widgets for it, for tests that compare pictures. */
#pragma once

#include "engine_display.h"
#include "picture_compare.h"

#include <gtest/gtest.h>

namespace kestrin_test {

/** A layer held by the test. */
inline zelxxx::PLayer MakeLayer()
{
    return zelxxx::zelCreateLayer(nullptr);
}

/** A filled rectangle of the given place and size. */
inline zelxxx::ZELObjPtr<zelxxx::IWidget> MakeRectangle(int x, int y, int w, int h,
                                                        zelxxx::ColorValue color)
{
    zelxxx::ZELObjPtr<zelxxx::IWidget> rectangle(zelxxx::zelCreateRectangle(nullptr));
    rectangle->SetAttribute(zelxxx::AttrPosX, x);
    rectangle->SetAttribute(zelxxx::AttrPosY, y);
    rectangle->SetAttribute(zelxxx::AttrSpanX, w);
    rectangle->SetAttribute(zelxxx::AttrSpanY, h);
    rectangle->SetAttribute(zelxxx::AttrColor, static_cast<zelxxx::AttrValue>(color));
    return rectangle;
}

constexpr std::uint32_t kGrey = 0xff808080;
constexpr zelxxx::ColorValue kRed = 0x0000ff; // red is in the lowest byte
constexpr zelxxx::ColorValue kGreen = 0x00ff00;
constexpr zelxxx::ColorValue kBlue = 0xff0000;

/** A scene of 64 x 48 pixels over an opaque grey background, with one layer. */
class SceneTest : public testing::Test
{
protected:
    static constexpr int kWidth = 64;
    static constexpr int kHeight = 48;

    explicit SceneTest(zelxxx::SceneOption options = zelxxx::SceneUseDoubleBuffer)
        : scene(zelxxx::zelCreateScene(0, kWidth, kHeight, zelxxx::Color32Bit, options,
                                       zelxxx::BlendSrcOver))
    {
        scene->SetBackgroundColor(0x808080, 255);
        scene->AddLayer(layer);
    }

    /** Updates what changed and returns the picture. */
    kestrin_display::ArgbImage Updated()
    {
        scene->Update(false, true);
        return engine.Shot();
    }
    kestrin_display::ArgbImage Repainted()
    {
        scene->Update(true, true);
        return engine.Shot();
    }

    EngineDisplay engine = EngineDisplay(kWidth, kHeight);
    zelxxx::ZELObjPtr<zelxxx::IScene> scene;
    zelxxx::PLayer layer = MakeLayer();
};

} // namespace kestrin_test
