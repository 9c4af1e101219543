/** A caption that moves: what a client of the library needs at least. The README shows it, too. */
#include "vrel_kestrin_flow.h" // the toolkit's text formatter, and with it the engine
#include <cstdio>
#include <fstream>
using namespace zelxxx;

int main()
{
    std::ofstream("fonts.txt") << "1\nfnt:/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf\n";
    zelInitialize(1280, 720, Color32Bit);
    {
        FlowFormatter formatter(Color32Bit);
        ZELObjPtr<IScene> scene(
            zelCreateScene(0, 1280, 720, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        ZELObjPtr<ILayer> caption(zelCreateLayer(nullptr));
        caption->SetAttribute(AttrPosX, 320);
        caption->SetAttribute(AttrPosY, 560);
        scene->AddLayer(caption);

        ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
        box->SetAttribute(AttrSpanX, 640);
        box->SetAttribute(AttrSpanY, 90);
        box->SetAttribute(AttrColor, 0x402010); // red is the lowest byte
        box->SetAttribute(AttrBlend, 200);      // of 255
        caption->AddWidget(box);

        ZELObjPtr<IText> text(zelCreateText(PResource(zelOpenResource("fonts.txt"))));
        text->SetAttribute(AttrSpanX, 640);
        text->SetAttribute(AttrSpanY, 90);
        text->SetAttribute(AttrFontIndex, 1); // the first of fonts.txt
        text->SetAttribute(AttrFontSize, 44);
        text->SetText("Good evening", 12, EncodingASCII, &formatter);
        caption->AddWidget(text);

        zelUpdateScreen(true, false); // everything, once
        std::getchar();               // until Enter
        caption->SetAttribute(AttrPosY, 40);
        zelUpdateScreen(false, false); // what has changed, and nothing else
    }
    zelUninitialize();
}
