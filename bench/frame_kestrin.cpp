// The engine: widgets, and zelUpdateScreen. One display mode to a process.
#include "frame_scenes.h"

#include "DFB/view.h"
#include "display_setup.h"
#include "tscene.h"
#include "vrel_kestrin_graphic.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <unistd.h>

namespace kestrin_bench {

namespace {

using namespace zelxxx;

/** What is written through DirectFB's calls on the back buffer and the display. */
class PixelCounter
{
public:
    void Watch(IDirectFBSurface* surface)
    {
        if (_real.FillRectangle == nullptr)
            _real = *surface;
        surface->SetClip = SetClip;
        surface->FillRectangle = FillRectangle;
        surface->Blit = Blit;
        surface->Lock = Lock;
        surface->GetSize(surface, &_clip.w, &_clip.h);
        _watched.push_back(surface);
    }
    void Release()
    {
        for (IDirectFBSurface* surface : _watched) {
            surface->SetClip = _real.SetClip;
            surface->FillRectangle = _real.FillRectangle;
            surface->Blit = _real.Blit;
            surface->Lock = _real.Lock;
        }
        _watched.clear();
    }

    Work work;
    bool glyphs_count_themselves = false;

    static PixelCounter& Get()
    {
        static PixelCounter counter;
        return counter;
    }

private:
    static DFBResult SetClip(IDirectFBSurface* surface, const DFBRegion_C* clip)
    {
        // The engine's corners are exclusive, though DirectFB takes them for inclusive.
        Rect whole = {};
        surface->GetSize(surface, &whole.w, &whole.h);
        Get()._clip = clip ? Intersection(whole, {clip->x1, clip->y1, clip->x2 - clip->x1,
                                                  clip->y2 - clip->y1})
                           : whole;
        return Get()._real.SetClip(surface, clip);
    }
    static DFBResult FillRectangle(IDirectFBSurface* surface, int x, int y, int w, int h)
    {
        Get().Count(surface, {x, y, w, h});
        return Get()._real.FillRectangle(surface, x, y, w, h);
    }
    static DFBResult Blit(IDirectFBSurface* surface, IDirectFBSurface* source,
                          const DFBRectangle_C* rect, int x, int y)
    {
        Get().Count(surface, {x, y, rect->w, rect->h});
        if (surface == View::_primary)
            ++Get().work.copies;
        return Get()._real.Blit(surface, source, rect, x, y);
    }
    /** What is drawn without DirectFB on an 8-bit display: a widget under its clip, or a glyph. */
    static DFBResult Lock(IDirectFBSurface* surface, DFBSurfaceLockFlags flags, void** data,
                          int* pitch)
    {
        if ((flags & DSLF_WRITE) != 0 && !Get().glyphs_count_themselves)
            Get().Count(surface, Get()._clip);
        return Get()._real.Lock(surface, flags, data, pitch);
    }
    void Count(IDirectFBSurface* surface, Rect area)
    {
        // The display is never drawn on under a clip.
        if (surface != View::_primary)
            area = Intersection(area, _clip);
        work.pixels += area.Area();
    }

    IDirectFBSurface _real = {};
    Rect _clip = {};
    std::vector<IDirectFBSurface*> _watched;
};

/** Puts the characters into their cells. */
class CellFormatter final : public ITextFormater
{
public:
    CellFormatter(const Item& item, bool palette) : _item(item), _palette(palette) {}

    void Format(IText* text, PtrWChar units, UInt32 length) override
    {
        if (_palette)
            text->AddColorIndex(_item.index);
        else
            text->AddColorInfo(255, 255, 255, 255);
        const TextGrid& grid = _item.text;
        for (UInt32 i = 0; i < length; ++i) {
            const int column = static_cast<int>(i) % grid.columns;
            const int row = static_cast<int>(i) / grid.columns;
            text->AddCharInfo(static_cast<Int16>(column * grid.cell_width),
                              static_cast<Int16>(row * grid.line_height),
                              static_cast<UInt8>(grid.size), units[i]);
        }
    }
    /** A step of grey for each quarter of the coverage. */
    void GetCharBuffer(const CharMetrics* glyph, ColorValue, BlendValue, PtrSChar buffer) override
    {
        static constexpr UInt8 ramp[] = {0, 50, 51, 187};
        const int count = glyph->width * glyph->height;
        for (int i = 0; glyph->buffer && i < count; ++i)
            buffer[i] = static_cast<SChar>(ramp[glyph->buffer[i] >> 6]);
        if (PixelCounter::Get().glyphs_count_themselves)
            PixelCounter::Get().work.pixels += count;
    }

private:
    const Item& _item;
    bool _palette;
};

std::string BytesOf(const char* name)
{
    std::ifstream file(name, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (bytes.empty())
        throw std::runtime_error(std::string("cannot read ") + name);
    return bytes;
}

/** The engine takes red in the lowest byte. */
ColorValue LowRed(std::uint32_t argb)
{
    return (argb & 0xff) << 16 | (argb & 0xff00) | (argb >> 16 & 0xff);
}

/** Straight colours as the engine takes them from memory: an opaque picture into the frame buffer,
 * which draws fastest, another where its transparency stays. */
PImage MakeImage(const Picture& picture, bool palette)
{
    std::vector<UInt8> bytes;
    for (const std::uint32_t word : picture.words) {
        const auto alpha = static_cast<UInt8>(word >> 24);
        if (palette) {
            const auto opaque = static_cast<UInt8>(54 + (word >> 18 & 0x3f));
            bytes.push_back(alpha < 64 ? 0 : alpha < 192 ? 20 : opaque);
            continue;
        }
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<UInt8>(word >> shift));
        if (!picture.opaque)
            bytes.push_back(alpha);
    }
    const ColorMode mode = palette ? Color8Bit : picture.opaque ? Color24Bit : Color32Bit;
    return zelCreateImage(mode, static_cast<MetricValue>(picture.width),
                          static_cast<MetricValue>(picture.height), bytes.data(),
                          picture.opaque ? UseFrameBuffer : UseSystemMemory, TypePNG, 0, nullptr,
                          nullptr);
}

class KestrinFrames final : public FramePainter
{
public:
    explicit KestrinFrames(bool palette) : _mode(palette ? Color8Bit : Color32Bit)
    {
        const int width = palette ? 720 : 1280;
        const int height = palette ? 576 : 720;
        const std::string screen = "/tmp/kestrin-frame-bench-" + std::to_string(getpid());
        const std::string arguments = kestrin_display::ScreenFileArguments(screen, width, height);
        setenv("DFBARGS", arguments.c_str(), 1);
        zelInitialize(static_cast<UInt32>(width), static_cast<UInt32>(height),
                      static_cast<UInt8>(_mode));
        unlink(screen.c_str());
    }

    void Prepare(const Scene& scene) override
    {
        Clear();
        _indices = scene.palette && !scene.blends;
        _scene = zelCreateScene(0, static_cast<MetricValue>(scene.width),
                                static_cast<MetricValue>(scene.height), _mode, SceneUseDoubleBuffer,
                                _indices ? BlendSrcOver8BIT : BlendSrcOver);
        if (scene.palette)
            LoadPalette();
        _scene->SetBackgroundColor(scene.palette ? kBackgroundIndex : kBackground & 0xffffff, 255);
        _layer = zelCreateLayer(nullptr);
        _scene->AddLayer(_layer);
        for (const Item& item : scene.items)
            Add(item);
        if (!scene.steps.empty())
            Change(scene.steps.back());
        zelUpdateScreen(true, false);
    }

    void Show(const Step& step) override
    {
        Change(step);
        zelUpdateScreen(false, false);
    }

    void Idle() override { zelUpdateScreen(false, false); }

    std::vector<std::uint32_t> Screen() const override
    {
        IDirectFBSurface* surface = View::_primary;
        int width = 0;
        int height = 0;
        surface->GetSize(surface, &width, &height);
        void* data = nullptr;
        int pitch = 0;
        surface->Lock(surface, DSLF_READ, &data, &pitch);
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < height; ++y) {
            const UInt8* row = static_cast<UInt8*>(data) + std::ptrdiff_t{pitch} * y;
            const auto* words = reinterpret_cast<const std::uint32_t*>(row);
            for (int x = 0; x < width; ++x)
                pixels.push_back(_mode == Color8Bit ? row[x] : words[x]);
        }
        surface->Unlock(surface);
        return pixels;
    }

    void StartCounting() override
    {
        auto& counter = PixelCounter::Get();
        ICanvas* canvas = SideOf<zelxxx::Scene>(static_cast<IScene*>(_scene))->GetCanvas();
        counter.glyphs_count_themselves = _text && _mode == Color8Bit;
        counter.Watch(View::_primary);
        counter.Watch(SideOf<CanvasBase>(canvas)->GetSurface());
        counter.work = {0, 0};
    }
    Work StopCounting() override
    {
        PixelCounter::Get().Release();
        PixelCounter::Get().glyphs_count_themselves = false;
        return PixelCounter::Get().work;
    }

private:
    void Clear()
    {
        _scene = nullptr;
        _layer = nullptr;
        _widgets.clear();
        _text = nullptr;
        _formatter = nullptr;
    }

    void Change(const Step& step)
    {
        IWidget* last = _widgets.back();
        if (step.opacity != _opacity) {
            _layer->SetAttribute(AttrBlend, step.opacity);
        } else if (_text) {
            _text->SetText(step.text.data(), static_cast<UInt32>(step.text.size() * 2),
                           EncodingUnicode, _formatter.get());
        } else {
            last->SetAttribute(AttrPosX, step.x);
            last->SetAttribute(AttrPosY, step.y);
        }
        _opacity = step.opacity;
    }

    void Add(const Item& item)
    {
        const bool palette = _mode == Color8Bit;
        ZELObjPtr<IWidget> widget;
        switch (item.kind) {
        case Kind::Rectangle:
            widget = zelCreateRectangle(nullptr);
            widget->SetAttribute(AttrColor,
                                 static_cast<AttrValue>(_indices ? item.index : LowRed(item.argb)));
            widget->SetAttribute(AttrBlend, static_cast<AttrValue>(item.argb >> 24));
            break;
        case Kind::Text:
            AddText(item);
            widget = static_cast<IText*>(_text);
            break;
        case Kind::Picture: {
            ZELObjPtr<ISprite> sprite(zelCreateSprite(nullptr));
            sprite->SetImage(MakeImage(item.picture, palette));
            if (item.picture.opaque)
                sprite->SetAttribute(AttrBlendMode, BlendSrcCopy);
            widget = static_cast<ISprite*>(sprite);
            break;
        }
        }
        widget->SetAttribute(AttrPosX, item.box.x);
        widget->SetAttribute(AttrPosY, item.box.y);
        widget->SetAttribute(AttrSpanX, item.box.w);
        widget->SetAttribute(AttrSpanY, item.box.h);
        _layer->AddWidget(widget);
        _widgets.push_back(widget);
    }

    void AddText(const Item& item)
    {
        _font = BytesOf(item.text.font);
        PResource resource(zelOpenResource("font", _font.data(), static_cast<int>(_font.size())));
        _formatter = std::make_unique<CellFormatter>(item, _mode == Color8Bit);
        _text = zelCreateText(resource);
        _text->SetAttribute(AttrFontIndex, 1);
        _text->SetAttribute(AttrFontSize, item.text.size);
    }

    void LoadPalette()
    {
        PaletteEntry entries[256];
        for (int i = 0; i < 256; ++i) {
            const auto grey = static_cast<UInt8>(i);
            entries[i] = {grey, grey, grey, 255};
        }
        ZELObjPtr<IPalette> palette(zelCreatePalette(entries));
        _scene->SetPalette(palette, 256, 256, 256);
    }

    ColorMode _mode;
    bool _indices = false; // the scene draws by palette index
    std::string _font;
    std::unique_ptr<CellFormatter> _formatter;
    ZELObjPtr<IScene> _scene;
    ZELObjPtr<ILayer> _layer;
    std::vector<ZELObjPtr<IWidget>> _widgets;
    ZELObjPtr<IText> _text;
    std::uint8_t _opacity = 255;
};

} // namespace

std::unique_ptr<FramePainter> MakeKestrinFrames(bool palette)
{
    return std::make_unique<KestrinFrames>(palette);
}

} // namespace kestrin_bench
