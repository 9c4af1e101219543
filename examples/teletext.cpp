/**
 * A page as teletext has them: 40 x 25 cells in eight colours, some rows of double height.
 *
 * Every run of cells with the same colours is a rectangle and a text. The font is stretched until a
 * character is as wide as a cell, and half as much where it is twice as high.
 */
#include "vrel_kestrin_flow.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

using namespace zelxxx;

namespace {

constexpr int kColumns = 40;
constexpr int kCellWidth = 18;
constexpr int kCellHeight = 23;
constexpr int kWidth = kColumns * kCellWidth;
constexpr int kHeight = 576;

// Red is in the lowest byte.
constexpr ColorValue kBlack = 0x000000;
constexpr ColorValue kRed = 0x0000ff;
constexpr ColorValue kGreen = 0x00ff00;
constexpr ColorValue kYellow = 0x00ffff;
constexpr ColorValue kBlue = 0xff0000;
constexpr ColorValue kMagenta = 0xff00ff;
constexpr ColorValue kCyan = 0xffff00;
constexpr ColorValue kWhite = 0xffffff;

struct Run
{
    int row, column, cells;
    ColorValue ink, ground;
    bool high;
    const char* text;
};

const Run kPage[] = {
    {0, 0, 40, kWhite, kBlack, false, " P100  KESTRIN  100  Sat 21 Nov  19:58"},
    {1, 0, 9, kYellow, kRed, true, " KESTREL "},
    {1, 9, 31, kWhite, kBlue, true, " News, weather and the rest"},
    {4, 1, 28, kYellow, kBlack, true, "Falcon seen over the harbour"},
    {4, 36, 4, kCyan, kBlack, true, "104"},
    {6, 1, 38, kWhite, kBlack, false, "For the third day in a row a kestrel"},
    {7, 1, 38, kWhite, kBlack, false, "hovered above the old pier and looked"},
    {8, 1, 38, kWhite, kBlack, false, "down at passers-by, who looked up."},
    {10, 0, 40, kBlack, kCyan, false, " HEADLINES"},
    {11, 1, 33, kWhite, kBlack, false, "Bridge to reopen on Monday"},
    {11, 36, 4, kYellow, kBlack, false, "110"},
    {12, 1, 33, kCyan, kBlack, false, "Choir takes first prize in Ghent"},
    {12, 36, 4, kYellow, kBlack, false, "111"},
    {13, 1, 33, kWhite, kBlack, false, "Rail: two trains an hour from May"},
    {13, 36, 4, kYellow, kBlack, false, "112"},
    {15, 0, 40, kBlack, kGreen, false, " WEATHER"},
    {16, 1, 13, kGreen, kBlack, false, "North   11 °C"},
    {16, 16, 6, kYellow, kYellow, false, ""},
    {17, 1, 13, kGreen, kBlack, false, "South   17 °C"},
    {17, 16, 9, kYellow, kYellow, false, ""},
    {18, 1, 13, kGreen, kBlack, false, "Coast   14 °C"},
    {18, 16, 7, kYellow, kYellow, false, ""},
    {20, 0, 40, kBlack, kMagenta, false, " SPORT"},
    {21, 1, 38, kWhite, kBlack, false, "Harbour Rowers  2 : 1  Old Town"},
    {22, 1, 38, kMagenta, kBlack, false, "United          0 : 0  Wanderers"},
    {24, 0, 10, kBlack, kRed, false, " Index"},
    {24, 10, 10, kBlack, kGreen, false, " News"},
    {24, 20, 10, kBlack, kYellow, false, " Weather"},
    {24, 30, 10, kBlack, kCyan, false, " Sport"},
};

void Place(IWidget* widget, const Run& run)
{
    widget->SetAttribute(AttrPosX, run.column * kCellWidth);
    widget->SetAttribute(AttrPosY, run.row * kCellHeight);
    widget->SetAttribute(AttrSpanX, run.cells * kCellWidth);
    widget->SetAttribute(AttrSpanY, (run.high ? 2 : 1) * kCellHeight);
}

void Show(const Run& run, ILayer* layer, IResource* resource, FlowFormatter& formatter)
{
    ZELObjPtr<IWidget> ground(zelCreateRectangle(nullptr));
    Place(ground, run);
    ground->SetAttribute(AttrColor, static_cast<AttrValue>(run.ground));
    layer->AddWidget(ground);

    ZELObjPtr<IText> text(zelCreateText(resource));
    Place(text, run);
    // Glyphs that reach over a widget's edge are not drawn: there is room for rounding.
    text->SetAttribute(AttrSpanX, (run.cells + 1) * kCellWidth);
    constexpr int size = 20;
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, run.high ? 2 * size : size);
    text->SetAttribute(AttrLineHeight, (run.high ? 2 : 1) * kCellHeight);
    // The font's characters are 602 thousandths of its size wide.
    text->SetAttribute(AttrFontScalerMolecule, 1000 * kCellWidth);
    text->SetAttribute(AttrFontScalerDenominator, 602 * (run.high ? 2 * size : size));
    text->SetAttribute(AttrTextFormat, TextAlignLeft);
    text->SetAttribute(AttrColor, static_cast<AttrValue>(run.ink));
    text->SetText(run.text, static_cast<UInt32>(std::strlen(run.text)), EncodingUTF8, &formatter);
    layer->AddWidget(text);
}

} // namespace

int main()
{
    zelInitialize(kWidth, kHeight, Color32Bit);
    {
        std::ifstream file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf", std::ios::binary);
        const std::vector<char> font((std::istreambuf_iterator<char>(file)),
                                     std::istreambuf_iterator<char>());
        const PResource resource(
            zelOpenResource("mono", font.data(), static_cast<int>(font.size())));
        FlowFormatter formatter(Color32Bit);

        ZELObjPtr<IScene> scene(
            zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        scene->SetBackgroundColor(kBlack, 255);
        ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
        for (const Run& run : kPage)
            Show(run, layer, resource, formatter);
        scene->AddLayer(layer);
        zelUpdateScreen(true, false);
    }
    zelUninitialize();
}
