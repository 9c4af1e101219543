/**
 * PerspectiveModifier: a row of channels leads away from the viewer.
 *
 * The modifier projects the positions of its layer's children by their depth, and with both of its
 * scales set it scales them as well. The children are layers themselves, since a layer's scale
 * applies to what is in it.
 */
#include "screen.h"
#include "vrel_kestrin_anim.h"

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

constexpr int kCards = 6;
constexpr ColorValue kColors[kCards] = {0x3c50e6, 0x2896f0, 0x50b43c, 0xb4a028, 0xdc6e32, 0xb43c8c};

/** A card of 200 x 260 pixels about the point (x, y), at a depth. */
void AddCard(ILayer* row, int x, int y, int z, ColorValue color)
{
    ZELObjPtr<ILayer> card(zelCreateLayer(nullptr));
    Place(card, x, y, 200, 260);
    card->SetAttribute(AttrOriginX, 100);
    card->SetAttribute(AttrOriginY, 130);
    card->SetAttribute(AttrPosZ, z); // smaller is farther, and painted earlier
    AddBox(card, 0, 0, 200, 260, 0xf0f0f0);
    AddBox(card, 6, 6, 188, 188, color);
    AddBox(card, 20, 210, 160, 10, 0x404040);
    AddBox(card, 20, 232, 110, 10, 0x808080);
    row->AddWidget(card);
}

void Show(Screen& screen)
{
    ZELObjPtr<IScene> scene(zelCreateScene(0, screen.width, screen.height, Color32Bit,
                                           SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> row(zelCreateLayer(nullptr));
    scene->AddLayer(row);
    for (int i = 0; i < kCards; ++i)
        AddCard(row, 150 + 195 * i, 480, -200 * i, kColors[i]);
    screen.Picture("1-flat");

    // The eye is 1000 in front of depth 0, at the middle of the screen and a little above the row.
    ZELObjPtr<PerspectiveModifier> eye(new PerspectiveModifier);
    eye->SetAttribute(AttrPosX, 640);
    eye->SetAttribute(AttrPosY, 300);
    eye->SetAttribute(AttrFocus, 1000);
    eye->SetAttribute(AttrScaleX, 256);
    eye->SetAttribute(AttrScaleY, 256);
    row->AddModifier(eye);
    screen.Picture("2-perspective");

    eye->SetAttribute(AttrPosX, 1240);
    screen.Picture("3-from-the-right");
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show);
}
