/**
 * MoveToModifier: a banner slides in from below the screen.
 *
 * The banner's widgets stand where they are while it is hidden, and are never moved themselves: the
 * modifier takes their layer a part of the way to the place where it is read. 256 is all the way.
 */
#include "screen.h"
#include "vrel_kestrin_anim.h"

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

void Show(Screen& screen)
{
    ZELObjPtr<IScene> scene(zelCreateScene(0, screen.width, screen.height, Color32Bit,
                                           SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> overlay(zelCreateLayer(nullptr));
    scene->AddLayer(overlay);

    ZELObjPtr<ILayer> banner(zelCreateLayer(nullptr));
    Place(banner, 120, 720, 1040, 120); // just below the screen
    overlay->AddWidget(banner);
    AddBox(banner, 0, 0, 1040, 120, 0x502818, 230);
    AddBox(banner, 0, 0, 12, 120, 0x30a0ff);
    AddLine(screen, banner, 40, 33, 980, 36, "20:15   Next: the evening news");

    ZELObjPtr<MoveToModifier> slide(new MoveToModifier);
    slide->SetAttribute(AttrPosX, 120);
    slide->SetAttribute(AttrPosY, 560);
    banner->GetLayer()->AddModifier(slide); // a layer's modifiers act on its children

    screen.Picture("1-hidden");
    slide->SetAttribute(AttrPercentage, 128);
    screen.Picture("2-half-way");
    slide->SetAttribute(AttrPercentage, 256);
    screen.Picture("3-shown");
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show);
}
