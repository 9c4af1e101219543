/**
 * A caption in a box: what a client of the library needs at least.
 *
 * Takes a font file as its argument, or DejaVu Sans.
 */
#include "vrel_kestrin_graphic.h"

#include <cstdio>
#include <fstream>

using namespace zelxxx;

/** Puts the characters side by side from the widget's top left corner. */
class OneLine : public ITextFormater
{
public:
    void Format(IText* text, PtrWChar units, UInt32 length) override
    {
        const UInt16 size = static_cast<UInt16>(text->GetAttribute(AttrFontSize));
        IFont* font = text->GetFont();
        Int32 pen = 0;
        text->AddColorInfo(255, 220, 120, 255);
        for (UInt32 i = 0; i < length; ++i) {
            const Int32 x = font->NoScaleFontUnitsToPixelsInCalculate(pen, 100, 100);
            text->AddCharInfo(static_cast<Int16>(x), 0, 0, units[i]);
            pen += font->GetFTNoScaleCharMetricsX(units[i], size, FontRegular);
        }
    }
    void GetCharBuffer(const CharMetrics*, ColorValue, BlendValue, PtrSChar) override
    {
        // Asked for on 8-bit displays only.
    }
};

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
        OneLine formatter;
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
        const char caption[] = "Grüße vom Bildschirm";
        text->SetText(caption, sizeof caption - 1, EncodingUTF8, &formatter);
        layer->AddWidget(text);

        zelUpdateScreen(true, false);
    }
    zelUninitialize();
    std::remove(index);
}
