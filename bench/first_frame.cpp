/**
 * A small client for memory_bench: starts, shows a rectangle and a line of text, and as soon as the
 * first frame is on the display writes a line to the standard output with its resident bytes, and
 * those of them that are its own memory and no file's.
 *
 *     first_frame INDEX [WIDGETS]   with the font index file INDEX, and more widgets
 *     first_frame bare              without the engine: fills the same display by DirectFB
 */
#include "vrel_kestrin_graphic.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <directfb.h>
#include <unistd.h>

using namespace zelxxx;

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;

/** Puts the characters one after another. */
class Line : public ITextFormater
{
public:
    void Format(IText* text, PtrWChar units, UInt32 length) override
    {
        for (UInt32 i = 0; i < length; ++i)
            text->AddCharInfo(static_cast<Int16>(20 * i), 0, 36, units[i]);
    }
    void GetCharBuffer(const CharMetrics*, ColorValue, BlendValue, PtrSChar) override {}
};

template <class Widget>
void Place(Widget& widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

/** Says so and ends; what the exit costs is nobody's business here. */
[[noreturn]] void Shown()
{
    long resident = 0;
    long shared = 0;
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%*d %ld %ld", &resident, &shared) != 2)
        _exit(1);
    const long page = sysconf(_SC_PAGESIZE);
    dprintf(STDOUT_FILENO, "%ld %ld\n", resident * page, (resident - shared) * page);
    _exit(0);
}

[[noreturn]] void ShowBare()
{
    IDirectFB* dfb = nullptr;
    IDirectFBDisplayLayer* layer = nullptr;
    IDirectFBSurface* primary = nullptr;
    if (DirectFBInit(nullptr, nullptr) != DFB_OK || DirectFBCreate(&dfb) != DFB_OK ||
        dfb->GetDisplayLayer(dfb, 1, &layer) != DFB_OK)
        std::exit(1);
    layer->SetCooperativeLevel(layer, DLSCL_EXCLUSIVE);
    DFBDisplayLayerConfig config = {};
    config.flags =
        static_cast<DFBDisplayLayerConfigFlags>(DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT);
    config.width = kWidth;
    config.height = kHeight;
    config.pixelformat = DSPF_ARGB;
    layer->SetConfiguration(layer, &config);
    if (layer->GetSurface(layer, &primary) != DFB_OK)
        std::exit(1);
    primary->Clear(primary, 1, 2, 3, 255);
    primary->Flip(primary, nullptr, DSFLIP_NONE);
    Shown();
}

/** Rectangles, texts and sprites of one picture, all over the display. */
void AddWidgets(ILayer* layer, IResource* resource, ITextFormater* formatter, int count)
{
    std::vector<UInt8> pixels(32 * 32 * 4, 200);
    const PImage image(zelCreateImage(Color32Bit, 32, 32, pixels.data(), UseSystemMemory, TypeImg,
                                      0, nullptr, nullptr));
    for (int i = 0; i < count; ++i) {
        const int x = i * 37 % kWidth;
        const int y = i * 53 % kHeight;
        if (i % 3 == 0) {
            const ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
            Place(box, x, y, 60, 40);
            layer->AddWidget(box);
        } else if (i % 3 == 1) {
            const ZELObjPtr<IText> text(zelCreateText(resource));
            Place(text, x, y, 100, 30);
            text->SetAttribute(AttrFontIndex, 1);
            text->SetAttribute(AttrFontSize, 20);
            text->SetText("Widget", 6, EncodingASCII, formatter);
            layer->AddWidget(text);
        } else {
            const ZELObjPtr<ISprite> sprite(zelCreateSprite(nullptr));
            Place(sprite, x, y, 32, 32);
            sprite->SetImage(image);
            layer->AddWidget(sprite);
        }
    }
}

[[noreturn]] void Show(const char* index, int widgets)
{
    zelInitialize(kWidth, kHeight, Color32Bit);
    Line line;
    const ZELObjPtr<IScene> scene(
        zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
    const ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
    scene->AddLayer(layer);
    const ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
    Place(box, 320, 560, 640, 90);
    box->SetAttribute(AttrColor, 0x402010);
    layer->AddWidget(box);
    const PResource resource(zelOpenResource(index));
    const ZELObjPtr<IText> text(zelCreateText(resource));
    Place(text, 350, 575, 600, 60);
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, 36);
    const char words[] = "The first frame";
    text->SetText(words, sizeof words - 1, EncodingASCII, &line);
    layer->AddWidget(text);
    AddWidgets(layer, resource, &line, widgets);
    zelUpdateScreen(true, false);
    Shown();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 1;
    if (std::strcmp(argv[1], "bare") == 0)
        ShowBare();
    Show(argv[1], argc > 2 ? std::atoi(argv[2]) : 0);
}
