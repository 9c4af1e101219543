/**
 * A client of the installed libraries: shows an opaque rectangle, moved by a modifier, and a word
 * beside it. check_picture.cpp knows where they are to be.
 *
 *     client FONT
 */
#include "vrel_kestrin_anim.h"
#include "vrel_kestrin_condition.h"
#include "vrel_kestrin_dlautils.h"
#include "vrel_kestrin_dynlib.h"
#include "vrel_kestrin_flow.h"
#include "vrel_kestrin_loader.h"
#include "vrel_kestrin_semaphore.h"
#include "vrel_kestrin_thread.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

using namespace zelxxx;

namespace {

template <class Widget>
void Place(Widget& widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

void Show(const std::string& font)
{
    FlowFormatter formatter(Color32Bit);
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
    ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
    scene->AddLayer(layer);

    ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
    Place(box, 100, 100, 200, 100);
    box->SetAttribute(AttrColor, 0x3214c8); // red is the lowest byte
    box->SetAttribute(AttrBlend, 255);
    layer->AddWidget(box);
    IModifier* modifier = new TranslateModifier;
    modifier->SetAttribute(AttrPosX, 50);
    modifier->SetAttribute(AttrPosY, 20);
    box->AddModifier(modifier);

    ZELObjPtr<IText> text(zelCreateText(
        PResource(zelOpenResource("font", font.data(), static_cast<int>(font.size())))));
    Place(text, 400, 100, 400, 100);
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, 72);
    text->SetAttribute(AttrColor, 0x602000);
    const char word[] = "Kestrin";
    text->SetText(word, sizeof word - 1, EncodingUTF8, &formatter);
    layer->AddWidget(text);

    zelUpdateScreen(true, false);
}

} // namespace

int main(int argc, char** argv)
{
    std::ifstream file(argc > 1 ? argv[1] : "", std::ios::binary);
    const std::string font((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    if (font.empty()) {
        std::cerr << "client: the argument names no font file\n";
        return 1;
    }
    zelInitialize(1280, 720, Color32Bit);
    Show(font);
    zelUninitialize();
    return 0;
}
