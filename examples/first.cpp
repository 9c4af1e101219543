/**
 * A caption in a box: what a client of the library needs at least.
 *
 * Takes a font file as its argument, or DejaVu Sans.
 */
#include "vrel_kestrin_flow.h"

#include <cstdio>
#include <fstream>

using namespace zelxxx;

template <class Widget>
void Place(Widget& widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

int main(int argc, char** argv)
{
    // An index file names the fonts. Without a directory of its own it takes their names as given.
    const char* font = argc > 1 ? argv[1] : "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    const char index[] = "first-fonts";
    std::ofstream(index) << "1\nfnt:" << font << '\n';

    zelInitialize(1280, 720, Color32Bit);
    {
        FlowFormatter formatter(Color32Bit);
        ZELObjPtr<IScene> scene(
            zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
        scene->AddLayer(layer);

        ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
        Place(box, 320, 560, 640, 90);
        box->SetAttribute(AttrColor, 0x402010); // red is the lowest byte
        box->SetAttribute(AttrBlend, 200);
        layer->AddWidget(box);

        ZELObjPtr<IText> text(zelCreateText(PResource(zelOpenResource(index))));
        Place(text, 350, 575, 600, 60);
        text->SetAttribute(AttrFontIndex, 1);
        text->SetAttribute(AttrFontSize, 44);
        text->SetAttribute(AttrTextFormat, TextAlignLeft | TextEndEllipsis);
        text->SetAttribute(AttrColor, 0x78dcff);
        const char caption[] = "Grüße vom Bildschirm";
        text->SetText(caption, sizeof caption - 1, EncodingUTF8, &formatter);
        layer->AddWidget(text);

        zelUpdateScreen(true, false);
    }
    zelUninitialize();
    std::remove(index);
}
