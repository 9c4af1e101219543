/**
 * The painter beside the bare DirectFB calls that it makes, and beside pixman.
 *
 * "Bare" makes the calls of the operation with nothing around them: the same state, the same
 * rectangle. Where the engine writes pixels itself, between Lock and Unlock, bare writes as many
 * bytes with the C library. pixman does the same to pixels in memory, with no state to set and no
 * locks to take. The three take turns; the counters are medians, in the time of the processor:
 *
 *     engine_ns, bare_ns, pixman_ns   one call
 *     overhead_ns, overhead_percent   what the engine takes more than bare
 *     of_pixman                       engine over pixman: below 1 the engine is faster
 *     above_goal                      1 where the overhead is: 150 ns a call, and 5 % from
 *                                     100 x 100 on. Operations whose pixels are the engine's own
 *                                     work have no goal
 *
 * Names end in the size of what is drawn, those of the 8-bit display begin with "lut8".
 */
#include "painter_peer.h"
#include "painter_stage.h"

#include <cstring>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

using namespace zelxxx;

namespace kestrin_bench {

namespace {

constexpr ColorValue kColor = 0x332211;
constexpr BlendValue kOpacity = 128;
constexpr UInt16 kTextSize = 36;
constexpr int kTile = 16;
constexpr double kSeconds = 0.1; // of rounds for each pair of operation and size

const auto kBlend3 =
    static_cast<DFBSurfaceBlittingFlags>(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_BLEND_COLORALPHA);
const auto kBlend225 =
    static_cast<DFBSurfaceBlittingFlags>(DSBLIT_BLEND_ALPHACHANNEL | DSBLIT_SRC_PREMULTIPLY |
                                         DSBLIT_DST_PREMULTIPLY | DSBLIT_DEMULTIPLY);

struct Size
{
    int width, height;
    MetricValue W() const { return static_cast<MetricValue>(width); }
    MetricValue H() const { return static_cast<MetricValue>(height); }
    std::size_t Pixels() const { return static_cast<std::size_t>(width) * height; }
    std::string Name() const { return std::to_string(width) + "x" + std::to_string(height); }
};

struct Job
{
    Turns::Work engine;
    Turns::Work bare;
    Turns::Work pixman = {};
    bool own_pixels = false; /**< written by the engine itself */
    int calls = 1;           /**< of the painter in one run */
};

using MakeJob = Job (*)(Stage&, Size);

/** Locks a surface and writes bytes, row by row. */
void WriteRows(IDirectFBSurface* surface, int bytes, int rows, const UInt8* from)
{
    void* data = nullptr;
    int pitch = 0;
    surface->Lock(surface, DSLF_WRITE, &data, &pitch);
    auto* row = static_cast<UInt8*>(data);
    for (int y = 0; y < rows; ++y, row += pitch, from += bytes)
        std::memcpy(row, from, static_cast<std::size_t>(bytes));
    surface->Unlock(surface);
}

void BareFill(IDirectFBSurface* s, DFBSurfaceDrawingFlags flags, DFBSurfacePorterDuffRule rule,
              Size size)
{
    s->SetDrawingFlags(s, flags);
    s->SetPorterDuff(s, rule);
    s->SetColor(s, 0x11, 0x22, 0x33, kOpacity);
    s->FillRectangle(s, 0, 0, size.width, size.height);
}

void BareBlit(IDirectFBSurface* to, IDirectFBSurface* from, Size size)
{
    const DFBRectangle area = {0, 0, size.width, size.height};
    to->Blit(to, from, &area, 0, 0);
}

// ---- Rectangles

Turns::Work Rectangle(Stage& stage, Size size, ColorValue color, BlendMode mode, BlitFlag flag)
{
    return [painter = stage.painter, size, color, mode, flag] {
        painter->DrawRectangle(0, 0, size.W(), size.H(), color, kOpacity, mode, flag, 3);
    };
}

Job FillOver(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    stage.painter->SetBlendMode(BlendSrcOver);
    return {Rectangle(stage, size, kColor, BlendSrcOver, NoBlit),
            [=] {
                BareFill(s, DSDRAW_BLEND, DSPD_SRC_OVER, size);
                s->SetDrawingFlags(s, DSDRAW_NOFX);
                s->SetPorterDuff(s, DSPD_NONE);
            },
            stage.mode == Color32Bit ? PixmanWork(PeerJob::FillOver, size.width, size.height)
                                     : Turns::Work()};
}

Job FillCopy(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    if (stage.mode == Color32Bit)
        return {Rectangle(stage, size, kColor, BlendSrcCopy, NoBlit),
                [=] { BareFill(s, DSDRAW_BLEND, DSPD_SRC, size); },
                PixmanWork(PeerJob::Fill, size.width, size.height)};
    return {Rectangle(stage, size, 60, BlendSrcCopy, NoBlit),
            [=] {
                s->SetDrawingFlags(s, DSDRAW_BLEND);
                s->SetPorterDuff(s, DSPD_SRC);
                s->SetColorIndex(s, 60);
                s->FillRectangle(s, 0, 0, size.width, size.height);
            },
            PixmanWork(PeerJob::FillBytes, size.width, size.height)};
}

Job FillKeyed(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    const bool indices = stage.mode == Color8Bit;
    return {Rectangle(stage, size, kColor, BlendSrcOver, Blit_SRC_COLORKEY), [=] {
                if (indices)
                    s->SetDstColorKeyIndex(s, 3);
                else
                    s->SetDstColorKey(s, 0x11, 0x22, 0x33);
                s->SetBlittingFlags(s, DSBLIT_SRC_COLORKEY);
                s->FillRectangle(s, 0, 0, size.width, size.height);
                s->SetBlittingFlags(s, DSBLIT_NOFX);
            }};
}

/** An opaque index of the fixed palette. */
Job FillTable(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    stage.painter->SetBlendMode(BlendSrcOver8BIT);
    return {Rectangle(stage, size, 60, BlendSrcOver, NoBlit),
            [=] {
                s->SetDrawingFlags(s, DSDRAW_NOFX);
                s->SetPorterDuff(s, DSPD_NONE);
                s->SetColorIndex(s, 60);
                s->FillRectangle(s, 0, 0, size.width, size.height);
            },
            PixmanWork(PeerJob::FillBytes, size.width, size.height)};
}

/** A translucent one: blended by table, pixel by pixel. */
Job FillTableOver(Stage& stage, Size size)
{
    stage.painter->SetBlendMode(BlendSrcOver8BIT);
    return {Rectangle(stage, size, 10, BlendSrcOver, NoBlit),
            [s = stage.surface, size, bytes = Noise(size.Pixels())] {
                WriteRows(s, size.width, size.height, bytes.data());
            },
            {},
            true};
}

// ---- Pictures

Turns::Work Picture(Stage& stage, const PImage& image, Size size, BlendMode mode)
{
    return [painter = stage.painter, image, size, mode] {
        painter->DrawImage(image, 0, 0, 0, size.W(), size.H(), 0, 0, size.W(), size.H(), kOpacity,
                           mode);
    };
}

/** A picture whose pixels are in a surface of the display's format. */
PImage FrameImage(Stage& stage, Size size)
{
    const ColorMode mode = stage.mode == Color8Bit ? Color8Bit : Color24Bit;
    const auto bytes = Noise(size.Pixels() * 3);
    return {zelCreateImage(mode, size.W(), size.H(), bytes.data(), UseFrameBuffer, TypeImg, 0,
                           nullptr, nullptr)};
}

/** A surface like the one in the picture. */
std::shared_ptr<IDirectFBSurface> FrameSurface(Stage& stage, Size size)
{
    DFBSurfaceDescription description = {};
    description.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    description.width = size.width;
    description.height = size.height;
    stage.surface->GetPixelFormat(stage.surface, &description.pixelformat);
    IDirectFBSurface* surface = nullptr;
    View::_dfb->CreateSurface(View::_dfb, &description, &surface);
    View::SharePalette(surface);
    const bool indices = stage.mode == Color8Bit;
    const auto pixels = Noise(size.Pixels() * (indices ? 1 : 4));
    WriteRows(surface, size.width * (indices ? 1 : 4), size.height, pixels.data());
    return {surface, [](IDirectFBSurface* done) { done->Release(done); }};
}

Job ImageCopy(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    const auto from = FrameSurface(stage, size);
    const PeerJob peer = stage.mode == Color8Bit ? PeerJob::CopyBytes : PeerJob::Copy;
    stage.painter->SetBlendMode(BlendSrcOver);
    return {Picture(stage, FrameImage(stage, size), size, BlendSrcCopy),
            [=] {
                s->SetBlittingFlags(s, DSBLIT_NOFX);
                BareBlit(s, from.get(), size);
            },
            PixmanWork(peer, size.width, size.height)};
}

void BareOver(IDirectFBSurface* to, IDirectFBSurface* from, Size size)
{
    to->SetBlittingFlags(to, kBlend3);
    to->SetPorterDuff(to, DSPD_SRC_OVER);
    to->SetColor(to, 0, 0, 0, kOpacity);
    BareBlit(to, from, size);
    to->SetBlittingFlags(to, DSBLIT_NOFX);
}

Job ImageOver(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    const auto from = FrameSurface(stage, size);
    stage.painter->SetBlendMode(BlendSrcOver);
    return {Picture(stage, FrameImage(stage, size), size, BlendSrcOver),
            [=] { BareOver(s, from.get(), size); },
            stage.mode == Color32Bit ? PixmanWork(PeerJob::Over, size.width, size.height)
                                     : Turns::Work()};
}

/** A picture in memory: its pixels go through a scratch surface. */
Job ImageMemoryOver(Stage& stage, Size size)
{
    const auto bytes = Noise(size.Pixels() * 4);
    const PImage image(zelCreateImage(Color32Bit, size.W(), size.H(), bytes.data(), UseSystemMemory,
                                      TypeImg, 0, nullptr, nullptr));
    stage.painter->SetBlendMode(BlendSrcOver);
    return {Picture(stage, image, size, BlendSrcOver),
            [s = stage.surface, from = FrameSurface(stage, size), size, bytes] {
                WriteRows(from.get(), 4 * size.width, size.height, bytes.data());
                from->SetSrcColorKey(from.get(), 0, 0, 0);
                BareOver(s, from.get(), size);
            },
            PixmanWork(PeerJob::Over, size.width, size.height), true};
}

/** Indices in memory, written as they are or blended by table. */
template <BlendMode mode>
Job ImageIndices(Stage& stage, Size size)
{
    const auto bytes = Noise(size.Pixels());
    const PImage image(zelCreateImage(Color8Bit, size.W(), size.H(), bytes.data(), UseSystemMemory,
                                      TypeImg, 0, nullptr, nullptr));
    return {[picture = Picture(stage, image, size, BlendSrcCopy), painter = stage.painter] {
                painter->SetBlendMode(mode);
                picture();
            },
            [s = stage.surface, size, bytes] {
                s->SetBlittingFlags(s, DSBLIT_NOFX);
                WriteRows(s, size.width, size.height, bytes.data());
            },
            mode == BlendSrcCopy ? PixmanWork(PeerJob::CopyBytes, size.width, size.height)
                                 : Turns::Work(),
            true};
}

/** A rectangle of tiles; the one of 1 x 1 cuts its tile. */
template <BlendMode mode>
Job Texture(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    const auto from = FrameSurface(stage, {kTile, kTile});
    stage.painter->SetBlendMode(BlendSrcOver);
    const auto bare = [=] {
        for (int y = 0; y < size.height; y += kTile) {
            for (int x = 0; x < size.width; x += kTile) {
                const DFBRectangle tile = {0, 0, std::min(kTile, size.width - x),
                                           std::min(kTile, size.height - y)};
                s->SetBlittingFlags(s, mode == BlendSrcOver ? kBlend3 : DSBLIT_NOFX);
                if (mode == BlendSrcOver) {
                    s->SetPorterDuff(s, DSPD_SRC_OVER);
                    s->SetColor(s, 0, 0, 0, kOpacity);
                }
                s->Blit(s, from.get(), &tile, x, y);
                if (mode == BlendSrcOver)
                    s->SetBlittingFlags(s, DSBLIT_NOFX);
            }
        }
    };
    const PImage image = FrameImage(stage, {kTile, kTile});
    const int tiles = ((size.width + kTile - 1) / kTile) * ((size.height + kTile - 1) / kTile);
    return {[painter = stage.painter, image, size] {
                painter->DrawTexture(image, 0, 0, 0, size.W(), size.H(), 0, 0, kOpacity, mode);
            },
            bare,
            PixmanWork(mode == BlendSrcOver ? PeerJob::TileOver : PeerJob::Tile, size.width,
                       size.height),
            false, tiles};
}

// ---- Text

void BareGlyph(IDirectFBSurface* to, IDirectFBSurface* scratch, Size size, const UInt8* pixels)
{
    WriteRows(scratch, 4 * size.width, size.height, pixels);
    to->SetBlittingFlags(to, kBlend225);
    to->SetPorterDuff(to, DSPD_SRC_OVER);
    BareBlit(to, scratch, size);
    to->SetBlittingFlags(to, DSBLIT_NOFX);
}

Job Glyph(Stage& stage, Size size)
{
    // The line's top and the glyph's are the same.
    const auto top = static_cast<Int16>(stage.font->GetFTYOffsetTop(kTextSize));
    return {[painter = stage.painter, font = stage.font, size, top,
             bytes = Noise(size.Pixels())]() mutable {
                const CharMetrics glyph = {2, size.width, size.height, 0, top, bytes.data()};
                painter->Draw32BitCharBitmap(&glyph, font, kTextSize, 0, 0, kColor, kOpacity);
            },
            [s = stage.surface, scratch = Painter::GetFontSurface(size.width, size.height), size,
             bytes = Noise(size.Pixels() * 4)] { BareGlyph(s, scratch, size, bytes.data()); },
            PixmanWork(PeerJob::Glyph, size.width, size.height), true};
}

/** Forty characters, with the look-up of each glyph; the size is that of the font. */
Job Text(Stage& stage, Size size)
{
    const auto font_size = static_cast<UInt16>(size.height);
    std::vector<Size> sizes;
    std::vector<Turns::Work> peers;
    for (WChar ch = 'A'; ch < 'A' + 40; ++ch) {
        CharMetrics glyph = {};
        stage.font->GetFTCharMetrics(ch, font_size, FontRegular, &glyph, 1, 1);
        sizes.push_back({glyph.width, glyph.height});
        peers.push_back(PixmanWork(PeerJob::Glyph, glyph.width, glyph.height));
    }
    Painter::GetFontSurface(100, 100);
    return {
        [painter = stage.painter, font = stage.font, font_size] {
            for (WChar ch = 'A'; ch < 'A' + 40; ++ch) {
                CharMetrics glyph;
                font->GetFTCharMetrics(ch, font_size, FontRegular, &glyph, 1, 1);
                painter->Draw32BitCharBitmap(&glyph, font, font_size, 100, 100, kColor, 255);
            }
        },
        [s = stage.surface, scratch = Painter::GetFontSurface(1, 1), sizes, bytes = Noise(40000)] {
            for (const Size& glyph : sizes)
                BareGlyph(s, scratch, glyph, bytes.data());
        },
        peers.front() ? Turns::Work([peers] {
            for (const Turns::Work& peer : peers)
                peer();
        })
                      : Turns::Work(),
        true, 40};
}

/** A character of a DirectFB font. */
Job Character(Stage& stage, Size size)
{
    const auto font_size = static_cast<UInt16>(size.height);
    IDirectFBSurface* s = stage.surface;
    IDirectFBFont* font =
        SideOf<Font>(static_cast<IFont*>(stage.font))->GetFont(font_size, FontRegular, 0x10000);
    return {[painter = stage.painter, font = stage.font, font_size] {
                painter->DrawChar('A', 100, 100, font, font_size, FontRegular, kColor, kOpacity,
                                  BlendSrcOver, 1, 1);
            },
            [=] {
                s->SetFont(s, font);
                s->SetDrawingFlags(
                    s, static_cast<DFBSurfaceDrawingFlags>(DSDRAW_BLEND | DSDRAW_SRC_PREMULTIPLY));
                s->SetPorterDuff(s, DSPD_SRC_OVER);
                s->SetColor(s, 0x11, 0x22, 0x33, kOpacity);
                s->DrawString(s, "A", 1, 100, 100,
                              static_cast<DFBSurfaceTextFlags>(DSTF_LEFT | DSTF_TOP));
                s->SetDrawingFlags(s, DSDRAW_NOFX);
                s->SetPorterDuff(s, DSPD_NONE);
            }};
}

/** Palette indices of a glyph: opaque strokes of four pixels with translucent edges. */
Job GlyphIndices(Stage& stage, Size size)
{
    const auto top = static_cast<Int16>(stage.font->GetFTYOffsetTop(kTextSize));
    std::vector<UInt8> indices(size.Pixels());
    for (std::size_t i = 0; i < indices.size(); ++i) {
        const UInt8 stroke[] = {0, 0, 0, 0, 0, 10, 60, 60, 60, 60, 20};
        indices[i] = stroke[i % sizeof stroke];
    }
    stage.painter->SetBlendMode(BlendSrcOver8BIT);
    return {[painter = stage.painter, font = stage.font, size, top, indices]() mutable {
                const CharMetrics glyph = {2, size.width, size.height, 0, top, nullptr};
                painter->DrawCharBitmap(reinterpret_cast<char*>(indices.data()), &glyph, font,
                                        kTextSize, 0, 0, 255);
            },
            [s = stage.surface, size, bytes = Noise(size.Pixels())] {
                WriteRows(s, size.width, size.height, bytes.data());
            },
            {},
            true};
}

// ---- Canvases

Job Clear(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    s->SetDrawingFlags(s, DSDRAW_NOFX);
    const bool indices = stage.mode == Color8Bit;
    return {
        [canvas = stage.canvas, size] { canvas->Clear(0, 0, size.W(), size.H(), 60, kOpacity); },
        [=] {
            if (indices)
                s->SetColorIndex(s, 60);
            else
                s->SetColor(s, 0, 0, 60, kOpacity);
            s->FillRectangle(s, 0, 0, size.width, size.height);
        },
        PixmanWork(indices ? PeerJob::FillBytes : PeerJob::Fill, size.width, size.height)};
}

Job CanvasToCanvas(Stage& stage, Size size)
{
    IDirectFBSurface* s = stage.surface;
    IDirectFBSurface* from = stage.source;
    s->SetBlittingFlags(s, DSBLIT_NOFX);
    const PeerJob peer = stage.mode == Color8Bit ? PeerJob::CopyBytes : PeerJob::Copy;
    return {[canvas = stage.canvas, other = stage.other, size] {
                canvas->Copy(0, 0, other, 0, 0, size.W(), size.H());
            },
            [=] { BareBlit(s, from, size); }, PixmanWork(peer, size.width, size.height)};
}

/** To the display, with the flip; a whole frame gets the subtitle surface below it. */
Job CanvasToView(Stage& stage, Size size)
{
    IDirectFBSurface* primary = View::_primary;
    IDirectFBSurface* back = stage.source;
    const bool whole = size.width == kStageWidth;
    const PeerJob peer = stage.mode == Color8Bit ? PeerJob::CopyBytes : PeerJob::Copy;
    return {[view = stage.view, other = stage.other, size] {
                view->Copy(0, 0, other, 0, 0, size.W(), size.H());
            },
            [=] {
                if (whole) {
                    const DFBRectangle frame = {0, 0, kStageWidth, kStageHeight};
                    back->SetBlittingFlags(back, DSBLIT_BLEND_ALPHACHANNEL);
                    back->SetPorterDuff(back, DSPD_DST_OVER);
                    back->SetClip(back, nullptr);
                    back->StretchBlit(back, View::_surface_subtitle, nullptr, &frame);
                    back->SetBlittingFlags(back, DSBLIT_NOFX);
                }
                BareBlit(primary, back, size);
                primary->Flip(primary, nullptr, DSFLIP_NONE);
            },
            whole ? Turns::Work() : PixmanWork(peer, size.width, size.height)};
}

// ---- All of them

enum Sizes
{
    AllSizes,
    GlyphSizes,
    FontSizes
};

struct Operation
{
    const char* name;
    MakeJob make;
    ColorMode mode;
    Sizes sizes = AllSizes;
};

const Operation kOperations[] = {
    {"rectangle_over", FillOver, Color32Bit},
    {"rectangle_copy", FillCopy, Color32Bit},
    {"rectangle_keyed", FillKeyed, Color32Bit},
    {"image_over", ImageOver, Color32Bit},
    {"image_copy", ImageCopy, Color32Bit},
    {"image_memory_over", ImageMemoryOver, Color32Bit},
    {"texture_over", Texture<BlendSrcOver>, Color32Bit},
    {"texture_copy", Texture<BlendSrcCopy>, Color32Bit},
    {"glyph", Glyph, Color32Bit, GlyphSizes},
    {"text", Text, Color32Bit, FontSizes},
    {"character", Character, Color32Bit, FontSizes},
    {"clear", Clear, Color32Bit},
    {"canvas_to_canvas", CanvasToCanvas, Color32Bit},
    {"canvas_to_view", CanvasToView, Color32Bit},
    {"lut8_rectangle_over", FillOver, Color8Bit},
    {"lut8_rectangle_copy", FillCopy, Color8Bit},
    {"lut8_rectangle_keyed", FillKeyed, Color8Bit},
    {"lut8_rectangle_table", FillTable, Color8Bit},
    {"lut8_rectangle_table_over", FillTableOver, Color8Bit},
    {"lut8_image_over", ImageOver, Color8Bit},
    {"lut8_image_copy", ImageCopy, Color8Bit},
    {"lut8_image_memory_copy", ImageIndices<BlendSrcCopy>, Color8Bit},
    {"lut8_image_memory_table", ImageIndices<BlendSrcOver8BIT>, Color8Bit},
    {"lut8_glyph", GlyphIndices, Color8Bit, GlyphSizes},
    {"lut8_clear", Clear, Color8Bit},
    {"lut8_canvas_to_canvas", CanvasToCanvas, Color8Bit},
    {"lut8_canvas_to_view", CanvasToView, Color8Bit},
};

std::vector<Size> SizesOf(Sizes sizes)
{
    if (sizes == FontSizes)
        return {{0, 16}, {0, 36}, {0, 100}};
    if (sizes == GlyphSizes)
        return {{1, 1}, {16, 16}, {100, 100}};
    return {{1, 1}, {16, 16}, {100, 100}, {640, 360}, {1280, 720}};
}

bool IsAboveGoal(const Job& job, Size size, double overhead, double bare)
{
    if (job.own_pixels)
        return false;
    if (size.Pixels() >= 10000 && job.calls == 1)
        return overhead > 0.05 * bare;
    return overhead > 150e-9;
}

void Compare(benchmark::State& state, const Operation& operation, Size size)
{
    Stage& stage = Stage::Of(operation.mode);
    const Job job = operation.make(stage, size);
    std::vector<Turns::Work> works = {job.engine, job.bare};
    if (job.pixman)
        works.push_back(job.pixman);
    Turns turns(std::move(works));
    for (auto iteration : state) {
        static_cast<void>(iteration);
        turns.Run(kSeconds);
        state.SetIterationTime(turns.Median(0) / job.calls);
    }
    const double overhead = turns.MedianExcess(0, 1) / job.calls;
    const double bare = turns.Median(1) / job.calls;
    state.counters["engine_ns"] = turns.Median(0) / job.calls * 1e9;
    state.counters["bare_ns"] = bare * 1e9;
    state.counters["overhead_ns"] = overhead * 1e9;
    state.counters["overhead_percent"] = overhead / bare * 100;
    state.counters["above_goal"] = IsAboveGoal(job, size, overhead, bare) ? 1 : 0;
    if (job.pixman) {
        state.counters["pixman_ns"] = turns.Median(2) / job.calls * 1e9;
        state.counters["of_pixman"] = turns.MedianRatio(0, 2);
    }
}

} // namespace

} // namespace kestrin_bench

int main(int argc, char** argv)
{
    using namespace kestrin_bench;
    for (const Operation& operation : kOperations) {
        for (const Size size : SizesOf(operation.sizes)) {
            const std::string extent =
                size.width == 0 ? std::to_string(size.height) + "px" : size.Name();
            benchmark::RegisterBenchmark(
                (std::string(operation.name) + "/" + extent).c_str(),
                [&operation, size](benchmark::State& state) { Compare(state, operation, size); })
                ->UseManualTime()
                ->Iterations(1);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    Stage::Leave();
    return 0;
}
