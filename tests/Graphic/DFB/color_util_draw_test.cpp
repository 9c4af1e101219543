#include "color_model.h"
#include "display_fixture.h"
#include "seeded_random.h"
#include "vrel_kestrin_graphic.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <directfb.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

using namespace zelxxx;
using namespace kestrin_test;
using testing::ElementsAre;

namespace {

/** An 8-bit surface whose pixels can be set and read at will. */
class LutSurface
{
public:
    LutSurface(int width, int height, int first_index) : _width(width), _height(height)
    {
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                                    DSDESC_PIXELFORMAT);
        description.width = width;
        description.height = height;
        description.pixelformat = DSPF_LUT8;
        IDirectFB* dfb = zelGetDFBHandle();
        EXPECT_EQ(dfb->CreateSurface(dfb, &description, &_surface), DFB_OK);
        std::vector<int> pixels(static_cast<std::size_t>(width) * height);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<int>((first_index + i * 7) % 188);
        Access(DSLF_WRITE, [&](UInt8& pixel, int x, int y) {
            pixel = static_cast<UInt8>(pixels[y * _width + x]);
        });
    }
    ~LutSurface() { _surface->Release(_surface); }
    LutSurface(const LutSurface&) = delete;
    LutSurface& operator=(const LutSurface&) = delete;

    std::vector<int> Pixels()
    {
        std::vector<int> pixels(static_cast<std::size_t>(_width) * _height);
        Access(DSLF_READ, [&](UInt8& pixel, int x, int y) { pixels[y * _width + x] = pixel; });
        return pixels;
    }
    IDirectFBSurface* Get() const { return _surface; }

private:
    template <class Visit>
    void Access(DFBSurfaceLockFlags flags, Visit visit)
    {
        void* data = nullptr;
        int pitch = 0;
        ASSERT_EQ(_surface->Lock(_surface, flags, &data, &pitch), DFB_OK);
        for (int y = 0; y < _height; ++y)
            for (int x = 0; x < _width; ++x)
                visit(static_cast<UInt8*>(data)[y * pitch + x], x, y);
        ASSERT_EQ(_surface->Unlock(_surface), DFB_OK);
    }

    int _width, _height;
    IDirectFBSurface* _surface = nullptr;
};

constexpr int kWidth = 40;
constexpr int kHeight = 30;

class MhegDrawing : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        _display = std::make_unique<TestDisplay>(320, 200);
        zelInitialize(320, 200, Color8Bit);
    }
    static void TearDownTestSuite()
    {
        zelUninitialize();
        _display.reset();
    }

    /** `before` with a colour blended over the pixels for which `colour` gives one. */
    template <class Colour>
    static std::vector<int> Expected(std::vector<int> before, Colour colour)
    {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                int& pixel = before[y * kWidth + x];
                pixel = BlendModel(pixel, colour(x, y));
            }
        return before;
    }

    LutSurface _surface{kWidth, kHeight, 3};

private:
    static std::unique_ptr<TestDisplay> _display;
};

std::unique_ptr<TestDisplay> MhegDrawing::_display;

/** The calls made on a surface, in order; they are carried out all the same. */
class CallRecorder
{
public:
    explicit CallRecorder(IDirectFBSurface* surface) : _surface(surface)
    {
        calls.clear();
        real = *surface;
        surface->SetDrawingFlags = [](IDirectFBSurface* s, DFBSurfaceDrawingFlags flags) {
            calls.push_back("SetDrawingFlags " + std::to_string(flags));
            return real.SetDrawingFlags(s, flags);
        };
        surface->SetPorterDuff = [](IDirectFBSurface* s, DFBSurfacePorterDuffRule rule) {
            calls.push_back("SetPorterDuff " + std::to_string(rule));
            return real.SetPorterDuff(s, rule);
        };
        surface->SetColorIndex = [](IDirectFBSurface* s, unsigned index) {
            calls.push_back("SetColorIndex " + std::to_string(index));
            return real.SetColorIndex(s, index);
        };
        surface->FillRectangle = [](IDirectFBSurface* s, int x, int y, int w, int h) {
            calls.push_back("FillRectangle " + std::to_string(x) + ' ' + std::to_string(y) + ' ' +
                            std::to_string(w) + ' ' + std::to_string(h));
            return real.FillRectangle(s, x, y, w, h);
        };
        surface->Lock = [](IDirectFBSurface* s, DFBSurfaceLockFlags flags, void** data,
                           int* pitch) {
            calls.push_back("Lock " + std::to_string(flags));
            return real.Lock(s, flags, data, pitch);
        };
        surface->Unlock = [](IDirectFBSurface* s) {
            calls.emplace_back("Unlock");
            return real.Unlock(s);
        };
    }
    ~CallRecorder()
    {
        _surface->SetDrawingFlags = real.SetDrawingFlags;
        _surface->SetPorterDuff = real.SetPorterDuff;
        _surface->SetColorIndex = real.SetColorIndex;
        _surface->FillRectangle = real.FillRectangle;
        _surface->Lock = real.Lock;
        _surface->Unlock = real.Unlock;
    }
    CallRecorder(const CallRecorder&) = delete;
    CallRecorder& operator=(const CallRecorder&) = delete;

    static std::vector<std::string> calls;

private:
    static IDirectFBSurface real;
    IDirectFBSurface* _surface;
};

std::vector<std::string> CallRecorder::calls;
IDirectFBSurface CallRecorder::real;

TEST_F(MhegDrawing, OpaqueRectangleIsFilledByDirectFb)
{
    const std::vector<int> before = _surface.Pixels();
    {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 3, 4, 12, 6, 60);
        EXPECT_THAT(recorder.calls, ElementsAre("SetDrawingFlags " + std::to_string(DSDRAW_NOFX),
                                                "SetPorterDuff " + std::to_string(DSPD_NONE),
                                                "SetColorIndex 60", "FillRectangle 3 4 10 3"));
    }
    EXPECT_EQ(_surface.Pixels(), Expected(before, [](int x, int y) {
                  return x >= 3 && x <= 12 && y >= 4 && y <= 6 ? 60 : 0;
              }));
}

TEST_F(MhegDrawing, SemiTransparentRectangleIsBlendedPixelByPixel)
{
    const std::vector<int> before = _surface.Pixels();
    {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 0, 0, kWidth - 1, kHeight - 2, 10);
        EXPECT_THAT(recorder.calls, ElementsAre("Lock " + std::to_string(DSLF_WRITE), "Unlock"));
    }
    EXPECT_EQ(_surface.Pixels(),
              Expected(before, [](int, int y) { return y <= kHeight - 2 ? 10 : 0; }));
}

TEST_F(MhegDrawing, OpaqueColoursAre49To187)
{
    for (const int color : {1, 48, 188, 255}) {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 1, 1, 2, 2, color);
        EXPECT_EQ(recorder.calls.size(), 2U) << color;
    }
    for (const int color : {49, 53, 187}) {
        const CallRecorder recorder(_surface.Get());
        MHEG_displayRectangle(_surface.Get(), 1, 1, 2, 2, color);
        EXPECT_EQ(recorder.calls.size(), 4U) << color;
    }
}

TEST_F(MhegDrawing, CornersAreInclusiveSoOneCornerIsAPixel)
{
    const std::vector<int> before = _surface.Pixels();
    MHEG_displayRectangle(_surface.Get(), 5, 6, 5, 6, 100);
    MHEG_displayRectangle(_surface.Get(), kWidth - 1, kHeight - 1, kWidth - 1, kHeight - 1, 10);
    EXPECT_EQ(_surface.Pixels(), Expected(before, [](int x, int y) {
                  return x == 5 && y == 6 ? 100 : x == kWidth - 1 && y == kHeight - 1 ? 10 : 0;
              }));
}

TEST_F(MhegDrawing, NegativeEmptyAndTransparentRectanglesMakeNoCall)
{
    const CallRecorder recorder(_surface.Get());
    MHEG_displayRectangle(nullptr, 0, 0, 5, 5, 60);
    for (const int color : {60, 10}) {
        MHEG_displayRectangle(_surface.Get(), -1, 0, 5, 5, color);
        MHEG_displayRectangle(_surface.Get(), 0, -1, 5, 5, color);
        MHEG_displayRectangle(_surface.Get(), 5, 0, 4, 5, color);
        MHEG_displayRectangle(_surface.Get(), 0, 5, 5, 4, color);
    }
    MHEG_displayRectangle(_surface.Get(), 0, 0, 5, 5, 0);
    EXPECT_THAT(recorder.calls, ElementsAre());
}

/** A bitmap of palette indices with a margin around the part to be drawn. */
struct Bitmap
{
    static constexpr int kRow = 37;
    static constexpr int kRows = 33;
    Bitmap()
    {
        for (std::size_t i = 0; i < indices.size(); ++i)
            indices[i] = static_cast<UInt8>(i % 5 == 0 ? 0 : i * 11 % 188);
    }
    int At(int x, int y) const { return indices[y * kRow + x]; }
    std::array<UInt8, kRow * kRows> indices;
};

TEST_F(MhegDrawing, BitmapIsBlendedWhereItStands)
{
    const std::vector<int> before = _surface.Pixels();
    Bitmap bitmap;
    MHEG_draw_bitmap(_surface.Get(), 7, 5, Bitmap::kRow, 20, 10, bitmap.indices.data(), 3, 2);
    EXPECT_EQ(_surface.Pixels(), Expected(before, [&](int x, int y) {
                  const bool inside = x >= 7 && x < 27 && y >= 5 && y < 15;
                  return inside ? bitmap.At(x - 7 + 3, y - 5 + 2) : 0;
              }));
}

TEST_F(MhegDrawing, BitmapsAreCutAtTheSurfaceOnEverySide)
{
    Bitmap bitmap;
    for (const auto& [left, top] : {std::array{-5, -3},
                                    {30, 25},
                                    {-36, 29},
                                    {39, -32},
                                    {-37, 0},
                                    {0, 30},
                                    {40, 0},
                                    {0, -33}}) {
        const std::vector<int> before = _surface.Pixels();
        MHEG_draw_bitmap(_surface.Get(), left, top, Bitmap::kRow, Bitmap::kRow, Bitmap::kRows,
                         bitmap.indices.data(), 0, 0);
        const int l = left;
        const int t = top;
        EXPECT_EQ(_surface.Pixels(), Expected(before,
                                              [&](int x, int y) {
                                                  const bool inside =
                                                      x >= l && x < l + Bitmap::kRow && y >= t &&
                                                      y < t + Bitmap::kRows;
                                                  return inside ? bitmap.At(x - l, y - t) : 0;
                                              }))
            << left << ' ' << top;
    }
}

TEST_F(MhegDrawing, PositionsAndSizesAtTheEndsOfTheirRangeDrawNothing)
{
    const std::vector<int> before = _surface.Pixels();
    Bitmap bitmap;
    UInt8* pixels = bitmap.indices.data();
    MHEG_draw_bitmap(_surface.Get(), INT32_MAX, 0, Bitmap::kRow, INT32_MAX, 1, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, INT32_MAX, Bitmap::kRow, 1, INT32_MAX, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), INT32_MIN, 0, Bitmap::kRow, INT32_MAX, 1, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, INT32_MIN, Bitmap::kRow, 1, INT32_MAX, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, -1, 5, pixels, 0, 0);
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, 5, INT32_MIN, pixels, 0, 0);
    EXPECT_EQ(_surface.Pixels(), before);
}

TEST_F(MhegDrawing, BitmapFromMemoryLocksTheSurfaceOnce)
{
    Bitmap bitmap;
    const CallRecorder recorder(_surface.Get());
    MHEG_draw_bitmap(_surface.Get(), 0, 0, Bitmap::kRow, 5, 5, bitmap.indices.data(), 0, 0);
    EXPECT_THAT(recorder.calls, ElementsAre("Lock " + std::to_string(DSLF_WRITE), "Unlock"));
}

TEST_F(MhegDrawing, BitmapFromASurfaceIsCutAtBoth)
{
    constexpr int source_width = 25;
    constexpr int source_height = 20;
    LutSurface source(source_width, source_height, 50);
    const std::vector<int> indices = source.Pixels();
    SeededRandom random;
    for (int i = 0; i < 200; ++i) {
        const int left = static_cast<int>(random.Between(-45, 45));
        const int top = static_cast<int>(random.Between(-35, 35));
        const int width = static_cast<int>(random.Between(-2, 45));
        const int height = static_cast<int>(random.Between(-2, 35));
        const int from_x = static_cast<int>(random.Between(-30, 30));
        const int from_y = static_cast<int>(random.Between(-30, 30));
        const std::vector<int> before = _surface.Pixels();
        MHEG_draw_bitmap(_surface.Get(), left, top, width, height, source.Get(), from_x, from_y);
        ASSERT_EQ(_surface.Pixels(),
                  Expected(before,
                           [&](int x, int y) {
                               const int column = x - left;
                               const int row = y - top;
                               const int sx = from_x + column;
                               const int sy = from_y + row;
                               const bool inside = column >= 0 && column < width && row >= 0 &&
                                                   row < height && sx >= 0 && sx < source_width &&
                                                   sy >= 0 && sy < source_height;
                               return inside ? indices[sy * source_width + sx] : 0;
                           }))
            << left << ' ' << top << ' ' << width << ' ' << height << ' ' << from_x << ' '
            << from_y;
    }
    EXPECT_EQ(source.Pixels(), indices);
}

// ---- Failed calls: each ends the process under its own text ----

/** Runs the statement in a child on a display of its own and expects it to end with the report. */
class ColorUtilDeathTest : public testing::Test
{
protected:
    static std::string Report(const std::string& call)
    {
        return "Graphic/DFB/color_util\\.cpp <[0-9]+>:\n\t.*" + call;
    }
    static bool Exited(int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; }

    static IDirectFBSurface* Surface(DFBSurfacePixelFormat format)
    {
        zelInitialize(320, 200, Color8Bit);
        DFBSurfaceDescription description = {};
        description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                                    DSDESC_PIXELFORMAT);
        description.width = 8;
        description.height = 8;
        description.pixelformat = format;
        IDirectFBSurface* surface = nullptr;
        zelGetDFBHandle()->CreateSurface(zelGetDFBHandle(), &description, &surface);
        return surface;
    }
    static IDirectFBSurface* Locked()
    {
        IDirectFBSurface* surface = Surface(DSPF_LUT8);
        void* data = nullptr;
        int pitch = 0;
        surface->Lock(surface, DSLF_WRITE, &data, &pitch);
        return surface;
    }
    static IDirectFBSurface* WithoutUnlock()
    {
        IDirectFBSurface* surface = Surface(DSPF_LUT8);
        surface->Unlock = [](IDirectFBSurface*) { return DFB_FAILURE; };
        return surface;
    }

    TestDisplay _display{320, 200};
    UInt8 _bitmap[64] = {};
};

TEST_F(ColorUtilDeathTest, EachFailedCallOfAnOpaqueFillIsReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(Surface(DSPF_ARGB), 0, 0, 1, 1, 60), Exited,
                Report(R"(dest_surf->SetColorIndex\(dest_surf, color\))"));
    EXPECT_EXIT(
        {
            IDirectFBSurface* surface = Surface(DSPF_LUT8);
            surface->SetDrawingFlags = [](IDirectFBSurface*, DFBSurfaceDrawingFlags) {
                return DFB_FAILURE;
            };
            MHEG_displayRectangle(surface, 0, 0, 1, 1, 60);
        },
        Exited, Report(R"(dest_surf->SetDrawingFlags\(dest_surf, DSDRAW_NOFX\))"));
    EXPECT_EXIT(
        {
            IDirectFBSurface* surface = Surface(DSPF_LUT8);
            surface->SetPorterDuff = [](IDirectFBSurface*, DFBSurfacePorterDuffRule) {
                return DFB_FAILURE;
            };
            MHEG_displayRectangle(surface, 0, 0, 1, 1, 60);
        },
        Exited, Report(R"(dest_surf->SetPorterDuff\(dest_surf, DSPD_NONE\))"));
    EXPECT_EXIT(MHEG_displayRectangle(Locked(), 0, 0, 1, 1, 60), Exited,
                Report(R"(dest_surf->FillRectangle\(dest_surf, x1, y1, x2 - x1 \+ 1, )"
                       R"(y2 - y1 \+ 1\))"));
}

TEST_F(ColorUtilDeathTest, FailedLocksAreReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(Locked(), 0, 0, 1, 1, 10), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Locked(), 0, 0, 8, 8, 8, _bitmap, 0, 0), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data, &ret_pitch\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Locked(), 0, 0, 8, 8, Surface(DSPF_LUT8), 0, 0), Exited,
                Report(R"(dest_surf->Lock\(dest_surf, DSLF_WRITE, &surf_data_dst, )"
                       R"(&ret_pitch_dst\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Surface(DSPF_LUT8), 0, 0, 8, 8, Locked(), 0, 0), Exited,
                Report(R"(src_surf->Lock\(src_surf, DSLF_READ, &surf_data_src, )"
                       R"(&ret_pitch_src\))"));
}

TEST_F(ColorUtilDeathTest, FailedUnlocksAreReported)
{
    EXPECT_EXIT(MHEG_displayRectangle(WithoutUnlock(), 0, 0, 1, 1, 10), Exited,
                Report(R"(dest_surf->Unlock\(dest_surf\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(WithoutUnlock(), 0, 0, 8, 8, 8, _bitmap, 0, 0), Exited,
                Report(R"(dest_surf->Unlock\(dest_surf\))"));
    EXPECT_EXIT(MHEG_draw_bitmap(Surface(DSPF_LUT8), 0, 0, 8, 8, WithoutUnlock(), 0, 0), Exited,
                Report(R"(src_surf->Unlock\(src_surf\))"));
}

} // namespace
