/**
 * Captions in six scripts beside each other: wrapped between words, each in its direction, with an
 * outline and a box behind every line.
 */
#include "vrel_kestrin_flow.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

using namespace zelxxx;

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr int kColumns = 3;
constexpr int kMargin = 24;
constexpr int kCellWidth = (kWidth - kMargin) / kColumns;
constexpr int kCellHeight = (kHeight - kMargin) / 2;

const char* const kFonts[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                              "/usr/share/fonts/truetype/tlwg/Loma.ttf",
                              "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"};
enum FontNumber
{
    DejaVu,
    Loma,
    MicroHei
};

struct Caption
{
    const char* language;
    FontNumber font;
    const char* text;
};

const Caption kCaptions[] = {
    {"Arabic", DejaVu, "يولد جميع الناس أحرارًا متساوين في الكرامة والحقوق (المادة 1)."},
    {"Hebrew", DejaVu, "כל בני האדם נולדו בני חורין ושווים בערכם ובזכויותיהם (סעיף 1)."},
    {"Thai", Loma, "มนุษย์ทั้งหลายเกิดมามีอิสระและเสมอภาคกันในเกียรติศักดิ์และสิทธิ"},
    {"Chinese", MicroHei, "人人生而自由，在尊严和权利上一律平等。他们赋有理性和良心。"},
    {"Japanese", MicroHei,
     "すべての人間は、生まれながらにして自由であり、かつ、尊厳と権利とについて平等である。"},
    {"Korean", MicroHei, "모든 인간은 태어날 때부터 자유로우며 그 존엄과 권리에 있어 동등하다."},
};

/** A font file in memory, and the resource that serves it. The bytes outlive the resource. */
struct Font
{
    explicit Font(const char* name)
    {
        std::ifstream file(name, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        resource = zelOpenResource(name, bytes.data(), static_cast<int>(bytes.size()));
    }
    std::vector<char> bytes;
    PResource resource;
};

void Place(IWidget* widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

void AddBox(ILayer* layer, int x, int y, int width, int height, ColorValue color)
{
    ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
    Place(box, x, y, width, height);
    box->SetAttribute(AttrColor, static_cast<AttrValue>(color));
    layer->AddWidget(box);
}

/** A text widget as large as its cell of the picture. */
ZELObjPtr<IText> MakeText(ILayer* layer, IResource* resource, int cell, int size, int format)
{
    ZELObjPtr<IText> text(zelCreateText(resource));
    Place(text, kMargin + cell % kColumns * kCellWidth, kMargin + cell / kColumns * kCellHeight,
          kCellWidth - kMargin, kCellHeight - kMargin);
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, size);
    text->SetAttribute(AttrLineHeight, size * 7 / 5);
    text->SetAttribute(AttrTextFormat, format);
    layer->AddWidget(text);
    return text;
}

void ShowCaption(ILayer* layer, FlowFormatter& formatter, const Caption& caption,
                 IResource* resource, int cell)
{
    const auto length = static_cast<UInt32>(std::strlen(caption.text));
    ZELObjPtr<IText> text = MakeText(layer, resource, cell, 34, TextWrap);
    // The lines are known before anything is drawn, so that the boxes can go behind them.
    const FlowLayout layout = formatter.LayOut(text, caption.text, length, EncodingUTF8);
    const int left = text->GetAttribute(AttrPosX);
    const int top = text->GetAttribute(AttrPosY);
    layer->RemoveWidget(text);
    for (UInt32 i = 0; i < layout.GetLineCount(); ++i) {
        const FlowRect box = layout.GetLine(i).box;
        AddBox(layer, left + box.left - 10, top + box.top, box.right - box.left + 20,
               box.bottom - box.top, 0x402820);
    }
    layer->AddWidget(text);
    // The first line is the one that is being sung.
    const FlowLine first = layout.GetLine(0);
    const FlowColorRun sung = {first.begin, first.end, 0x40e0ff, 255};
    formatter.SetColors(&sung, 1, text);
    text->SetText(caption.text, length, EncodingUTF8, &formatter);
}

} // namespace

int main()
{
    zelInitialize(kWidth, kHeight, Color32Bit);
    {
        const Font fonts[] = {Font(kFonts[DejaVu]), Font(kFonts[Loma]), Font(kFonts[MicroHei])};
        FlowFormatter formatter(Color32Bit);
        FlowStyle style;
        style.outline_width = 2;
        style.outline_blend = 255;
        style.balanced = true;
        style.korean_words = true;
        formatter.SetStyle(style);

        ZELObjPtr<IScene> scene(
            zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
        scene->SetBackgroundColor(0x604030, 255);
        ZELObjPtr<ILayer> layer(zelCreateLayer(nullptr));
        int cell = 0;
        for (const Caption& caption : kCaptions) {
            AddBox(layer, kMargin + cell % kColumns * kCellWidth,
                   kMargin + cell / kColumns * kCellHeight, kCellWidth - kMargin,
                   kCellHeight - kMargin, 0x785038);
            ZELObjPtr<IText> name =
                MakeText(layer, fonts[DejaVu].resource, cell, 24, TextAlignTop | TextAlignLeft);
            name->SetText(caption.language, static_cast<UInt32>(std::strlen(caption.language)),
                          EncodingASCII, &formatter);
            ShowCaption(layer, formatter, caption, fonts[caption.font].resource, cell);
            ++cell;
        }
        scene->AddLayer(layer);
        zelUpdateScreen(true, false);
    }
    zelUninitialize();
}
