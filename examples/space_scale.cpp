/**
 * SpaceScaleModifier: a menu opens beneath the item that has the focus.
 *
 * The modifier stretches the band of space from the focused item to the next. What lies beyond the
 * band moves down by as much, and the items keep their size. The gap is filled by a text that is
 * not in the modified layer.
 */
#include "screen.h"
#include "vrel_kestrin_anim.h"

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

constexpr int kLeft = 340;
constexpr int kTop = 130;
constexpr int kPitch = 72;
const char* const kItems[] = {"Picture", "Sound", "Channels", "Network", "Parental control"};

/** Stretches the space from the item's top to the next item's, in 1/256. */
void Open(SpaceScaleModifier* space, int item, int scale)
{
    space->SetAttribute(AttrPosY, kTop + item * kPitch);
    space->SetAttribute(AttrSpanY, kPitch);
    space->SetAttribute(AttrScaleY, scale);
}

void Show(Screen& screen)
{
    ZELObjPtr<IScene> scene(zelCreateScene(0, screen.width, screen.height, Color32Bit,
                                           SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> details(zelCreateLayer(nullptr));
    scene->AddLayer(details);
    ZELObjPtr<IText> text =
        AddLine(screen, details, kLeft + 40, 0, 560, 24, "Brightness, contrast, colour", 0xc8c8c8);
    text->SetVisibility(false);

    ZELObjPtr<ILayer> menu(zelCreateLayer(nullptr));
    scene->AddLayer(menu);
    int y = kTop;
    for (const char* item : kItems) {
        // A layer for each item: its box and its text move as one.
        ZELObjPtr<ILayer> entry(zelCreateLayer(nullptr));
        Place(entry, kLeft, y, 600, kPitch - 6);
        AddBox(entry, 0, 0, 600, kPitch - 6, 0x603010, 230);
        AddLine(screen, entry, 24, 9, 560, 32, item);
        menu->AddWidget(entry);
        y += kPitch;
    }

    ZELObjPtr<SpaceScaleModifier> space(new SpaceScaleModifier);
    menu->AddModifier(space);
    screen.Picture("1-closed");

    Open(space, 0, 2 * 256); // the band is twice as high: a gap of one pitch
    text->SetAttribute(AttrPosY, kTop + kPitch + 15);
    text->SetVisibility(true);
    screen.Picture("2-first-open");

    Open(space, 2, 2 * 256);
    SetLine(screen, text, "Search, sort, favourites");
    text->SetAttribute(AttrPosY, kTop + 3 * kPitch + 15);
    screen.Picture("3-third-open");
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show);
}
