/**
 * FadingModifier: a strip of thumbnails fades out towards its ends.
 *
 * The layer has two modifiers, which act in the order they were added: the first scrolls the
 * thumbnails, the second fades each by how far it then is from the middle of the screen.
 */
#include "screen.h"
#include "vrel_kestrin_anim.h"

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

constexpr int kThumbnails = 9;
constexpr int kPitch = 170;
constexpr ColorValue kColors[] = {0x3c50e6, 0x2896f0, 0x50b43c, 0xb4a028, 0xdc6e32};

void Show(Screen& screen)
{
    ZELObjPtr<IScene> scene(zelCreateScene(0, screen.width, screen.height, Color32Bit,
                                           SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> strip(zelCreateLayer(nullptr));
    scene->AddLayer(strip);
    for (int i = 0; i < kThumbnails; ++i) {
        ZELObjPtr<IWidget> thumbnail =
            AddBox(strip, 640 + i * kPitch, 500, 150, 100, kColors[i % 5]);
        thumbnail->SetAttribute(AttrOriginX, 75); // its position is its middle
    }

    ZELObjPtr<TranslateModifier> scroll(new TranslateModifier);
    strip->AddModifier(scroll);
    screen.Picture("1-without");

    // Opaque in the middle of the screen, nothing left 720 pixels to its side. Beyond that the
    // opacity is left alone, so the span reaches as far as a thumbnail can be and still be seen.
    ZELObjPtr<FadingModifier> fade(new FadingModifier);
    fade->SetAttribute(AttrPosX, 640);
    fade->SetAttribute(AttrPosY, 500);
    fade->SetAttribute(AttrSpanX, 720);
    fade->SetAttribute(AttrSpanY, 100);
    strip->AddModifier(fade);
    screen.Picture("2-first");

    scroll->SetAttribute(AttrPosX, -4 * kPitch);
    screen.Picture("3-fifth");
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show);
}
