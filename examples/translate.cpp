/**
 * TranslateModifier: a page of the programme guide is scrolled.
 *
 * The modifier of the page's layer shifts all of its rows at once; what is beyond the page is cut
 * off by the layer's span. Every row keeps the position it was given.
 */
#include "screen.h"
#include "vrel_kestrin_anim.h"

#include <vector>

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

struct Row
{
    const char* time;
    const char* title;
};

const std::vector<Row> kRows = {{"18:00", "News in brief"},        {"18:15", "Local weather"},
                                {"18:30", "Gardens of the north"}, {"19:15", "Quiz at seven"},
                                {"20:00", "The evening news"},     {"20:15", "The lighthouse"},
                                {"21:45", "Sport this week"},      {"22:30", "Film of the month"},
                                {"00:10", "Night music"},          {"01:00", "The lighthouse (r)"}};

constexpr int kRowHeight = 80;

void Show(Screen& screen)
{
    ZELObjPtr<IScene> scene(zelCreateScene(0, screen.width, screen.height, Color32Bit,
                                           SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> head(zelCreateLayer(nullptr));
    scene->AddLayer(head);
    AddBox(head, 160, 60, 960, 90, 0x804820);
    AddLine(screen, head, 190, 76, 900, 40, "Tonight");

    ZELObjPtr<ILayer> page(zelCreateLayer(nullptr));
    Place(page, 160, 150, 960, 5 * kRowHeight); // shows five rows
    scene->AddLayer(page);
    int y = 0;
    for (const Row& row : kRows) {
        AddBox(page, 0, y, 960, kRowHeight - 2, 0x402414, 230);
        AddLine(screen, page, 30, y + 14, 150, 32, row.time, 0x60c8ff);
        AddLine(screen, page, 190, y + 14, 740, 32, row.title);
        y += kRowHeight;
    }

    ZELObjPtr<TranslateModifier> scroll(new TranslateModifier);
    page->AddModifier(scroll);
    screen.Picture("1-top");
    scroll->SetAttribute(AttrPosY, -kRowHeight * 5 / 2);
    screen.Picture("2-between");
    scroll->SetAttribute(AttrPosY, -kRowHeight * 5);
    screen.Picture("3-end");
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show);
}
