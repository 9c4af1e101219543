/**
 * PerspectiveModifier and FadingModifier: the main menu as a carousel, and a GIF of it turning.
 * `carousel docs/pictures` makes docs/pictures/carousel.gif.
 *
 * Each of the eight cards is a layer, which the program moves around a ring that lies in space.
 * The modifiers of the layer above make the picture of it: the first projects the cards' positions
 * and scales, the second fades what then is far from the front.
 */
#include "gif_file.h"
#include "screen.h"
#include "vrel_kestrin_anim.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

using namespace zelxxx;
using namespace kestrin_examples;

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 450;

/** Cards of this size at the ring's front, where they stand on this line. */
constexpr int kCardWidth = 164;
constexpr int kCardHeight = 204;
constexpr int kGround = 338;
constexpr int kRadius = 430;

/** The eye is this far in front of the ring's front, and at this height. */
constexpr int kFocus = 760;
constexpr int kHorizon = 66;

/** The opacity is gone this far above the front's ground, on the screen. */
constexpr int kFadeHeight = 205;

/** Frames on the way from one item to the next, and the time in hundredths of a second. */
constexpr int kSteps = 5;
constexpr int kStepTime = 5;
constexpr int kRestTime = 90;

/** What the television shows behind the menu, 0xRRGGBB; the menu's background is the same. */
constexpr std::uint32_t kVideo = 0x0c1422;

constexpr double kPi = 3.14159265358979;

struct Item
{
    const char* title;
    const char* icon;
    const char* hint;
    ColorValue color;
};

const std::vector<Item> kItems = {{"Live TV", "▶", "Channels and what is on now", 0x3c46dc},
                                  {"Guide", "☰", "The week ahead, all channels", 0x2878e6},
                                  {"Films", "★", "New this month, and old friends", 0x1ea0d2},
                                  {"Radio", "♫", "Forty stations and their songs", 0x50a03c},
                                  {"Weather", "☀", "Today and the next five days", 0x96962d},
                                  {"Messages", "✉", "From your service provider", 0xc88232},
                                  {"Home", "⌂", "Lights, heating, front door", 0xc85064},
                                  {"Settings", "⚙", "Picture, sound, languages", 0xaa4696}};

/** Where a card stands on the ring. */
struct Spot
{
    int x; ///< from the middle of the screen
    int z; ///< 0 at the front, negative behind
    double Scale() const { return static_cast<double>(kFocus) / (kFocus - z); }
};

/** @param turn  items that the card is away from the front, clockwise from above */
Spot SpotAt(double turn)
{
    const double angle = turn * 2 * kPi / static_cast<double>(kItems.size());
    return {static_cast<int>(std::lround(kRadius * std::sin(angle))),
            static_cast<int>(std::lround(kRadius * (std::cos(angle) - 1)))};
}

/** A layer with a coloured face, an icon and a title. */
class Card
{
public:
    Card(Screen& screen, ILayer* ring, const Item& item)
        : _formatter(screen.Formatter()), _layer(zelCreateLayer(nullptr))
    {
        Place(_layer, 0, kGround, kCardWidth, kCardHeight);
        _layer->SetAttribute(AttrOriginX, kCardWidth / 2);
        _layer->SetAttribute(AttrOriginY, kCardHeight);
        _frame = AddFace(0, 0, kCardWidth, kCardHeight, 0xffffff);
        AddFace(5, 5, kCardWidth - 10, kFaceHeight, item.color);
        AddFace(5, 5 + kFaceHeight, kCardWidth - 10, kStripHeight, 0x3c2818);
        _icon = AddText(screen, item.icon, 84, 5 + kFaceHeight / 2);
        _title = AddText(screen, item.title, 24, 5 + kFaceHeight + kStripHeight / 2);
        ring->AddWidget(_layer);
    }
    ~Card()
    {
        _formatter.Forget(_icon.widget);
        _formatter.Forget(_title.widget);
    }
    Card(const Card&) = delete;
    Card& operator=(const Card&) = delete;

    void MoveTo(const Spot& spot, bool focused)
    {
        _layer->SetAttribute(AttrPosX, kWidth / 2 + spot.x);
        _layer->SetAttribute(AttrPosZ, spot.z);
        _frame->SetVisibility(focused);

        const double above = (kGround - kHorizon) * (1 - spot.Scale());
        const auto opacity = static_cast<BlendValue>(255 - 255 * above / kFadeHeight);
        for (const Text& text : {_icon, _title})
            Follow(text, spot.Scale(), opacity);
    }

private:
    struct Text
    {
        ZELObjPtr<IText> widget;
        const char* words;
        int size;   ///< of the font at the ring's front
        int middle; ///< height in the card at which it stands
    };

    /** A box that replaces what is beneath it: cards behind do not shine through a faded one. */
    ZELObjPtr<IWidget> AddFace(int x, int y, int width, int height, ColorValue color)
    {
        ZELObjPtr<IWidget> face = AddBox(_layer, x, y, width, height, color);
        face->SetAttribute(AttrBlendMode, BlendSrcCopy);
        return face;
    }

    Text AddText(Screen& screen, const char* words, int size, int middle)
    {
        return {AddLine(screen, _layer, 0, 0, kCardWidth, size, words, 0xffffff,
                        TextAlignLeft | TextAlignTop),
                words, size, middle};
    }

    /**
     * Scales and fades stop at the glyphs, which are the formatter's. It measures the text in its
     * size on the screen, so that its box, which is scaled, can be put where its middle is right.
     */
    void Follow(const Text& text, double scale, BlendValue opacity)
    {
        text.widget->SetAttribute(AttrFontSize, static_cast<int>(std::lround(text.size * scale)));
        const FlowColorRun faded = {0, UINT32_MAX, 0xffffff, opacity};
        _formatter.SetColors(&faded, 1, text.widget);
        const FlowLayout layout = _formatter.LayOut(
            text.widget, text.words, static_cast<UInt32>(std::strlen(text.words)), EncodingUTF8);
        const auto start = [&](int middle, int span) {
            return static_cast<int>(std::lround(middle - span / scale / 2));
        };
        text.widget->SetAttribute(AttrPosX, start(kCardWidth / 2, layout.GetWidth()));
        text.widget->SetAttribute(AttrPosY, start(text.middle, layout.GetHeight()));
    }

    static constexpr int kFaceHeight = 141;
    static constexpr int kStripHeight = kCardHeight - 10 - kFaceHeight;

    FlowFormatter& _formatter;
    ZELObjPtr<ILayer> _layer;
    ZELObjPtr<IWidget> _frame;
    Text _icon;
    Text _title;
};

void AddEye(ILayer* ring)
{
    ZELObjPtr<PerspectiveModifier> eye(new PerspectiveModifier);
    eye->SetAttribute(AttrPosX, kWidth / 2);
    eye->SetAttribute(AttrPosY, kHorizon);
    eye->SetAttribute(AttrFocus, kFocus);
    eye->SetAttribute(AttrScaleX, 256); // scales the cards as well
    eye->SetAttribute(AttrScaleY, 256);
    ring->AddModifier(eye);

    ZELObjPtr<FadingModifier> fade(new FadingModifier);
    fade->SetAttribute(AttrPosX, kWidth / 2);
    fade->SetAttribute(AttrPosY, kGround);
    fade->SetAttribute(AttrSpanX, 32767); // only the height counts
    fade->SetAttribute(AttrSpanY, kFadeHeight);
    ring->AddModifier(fade);
}

/** From 0 to 1, slow at both ends. */
double Eased(double part)
{
    return part * part * (3 - 2 * part);
}

void Show(Screen& screen)
{
    std::vector<std::unique_ptr<Card>> cards;
    ZELObjPtr<IScene> scene(
        zelCreateScene(0, kWidth, kHeight, Color32Bit, SceneUseDoubleBuffer, BlendSrcOver));
    scene->SetBackgroundColor(kVideo, 255); // red is high here, and low in all other colors

    ZELObjPtr<ILayer> page(zelCreateLayer(nullptr));
    scene->AddLayer(page);
    AddBox(page, 0, 380, kWidth, 70, 0x34200f);
    AddLine(screen, page, 40, 22, 300, 26, "Home", 0xe0e0e0);
    AddLine(screen, page, 690, 22, 100, 26, "20:15", 0xe0e0e0);
    ZELObjPtr<IText> hint = AddLine(screen, page, 0, 400, kWidth, 20, "", 0xd0b090, 0);

    ZELObjPtr<ILayer> ring(zelCreateLayer(nullptr));
    scene->AddLayer(ring);
    AddEye(ring);
    for (const Item& item : kItems)
        cards.push_back(std::make_unique<Card>(screen, ring, item));

    std::vector<GifFrame> frames;
    for (std::size_t item = 0; item < kItems.size(); ++item) {
        for (int step = 0; step <= kSteps; ++step) {
            const bool resting = step == 0;
            const double front = static_cast<double>(item) + Eased(step / (kSteps + 1.0));
            for (std::size_t i = 0; i < cards.size(); ++i)
                cards[i]->MoveTo(SpotAt(static_cast<double>(i) - front), resting && i == item);
            SetLine(screen, hint, resting ? kItems[item].hint : "");
            frames.push_back({screen.Update(), resting ? kRestTime : kStepTime});
        }
    }
    const std::string path = screen.folder + "/carousel.gif";
    WriteGif(path, frames, kVideo);
    std::printf("%s\n", path.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Show, kWidth, kHeight);
}
