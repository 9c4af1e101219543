/**
 * The toolkit's text layout beside Pango's, and what of it is FriBidi's and the line breaker's.
 *
 * 1000 characters of one paragraph, wrapped at 600 pixels. The four take turns; of each the fastest
 * turn counts, in the time that the thread had the processor. Counters are microseconds for a
 * character, and ratios: `of_pango` below 1 is faster than Pango, `bidi_share` and `break_share`
 * are parts of our own time. Every turn has a text of its own, so that no layout is found; metrics
 * of letters are known to both from the turns before.
 */
#include "flow_bidi_p.h"
#include "flow_breaks_p.h"

#include "engine_display.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <pango/pangoft2.h>

using namespace zelxxx;

namespace {

constexpr int kCharacters = 1000;
constexpr int kWidth = 600;
constexpr int kSize = 32;
constexpr int kTurns = 5; // in a row, so that each finds the processor's caches its own

struct Sample
{
    const char* name;
    const char* font;
    const char* family;
    const char16_t* text;
};

const char kDejaVu[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const Sample kSamples[] = {
    {"english", kDejaVu, "DejaVu Sans",
     u"All human beings are born free and equal in dignity and rights (1948). "},
    {"arabic", kDejaVu, "DejaVu Sans",
     u"يولد جميع الناس أحرارا متساوين في الكرامة والحقوق (1948). "},
    {"hebrew", kDejaVu, "DejaVu Sans", u"כל בני האדם נולדו בני חורין ושווים בערכם (1948). "},
    {"mixed", kDejaVu, "DejaVu Sans",
     u"The word שלום is Hebrew, and مرحبا is Arabic, since 1948. "},
    {"thai", "/usr/share/fonts/truetype/tlwg/Loma.ttf", "Loma",
     u"มนุษย์ทั้งหลายเกิดมามีอิสระและเสมอภาคกันในเกียรติศักดิ์และสิทธิ "},
    {"chinese", "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc", "WenQuanYi Micro Hei",
     u"人人生而自由，在尊严和权利上一律平等。他们赋有理性和良心。"},
};

std::u16string TextOf(const Sample& sample)
{
    std::u16string text;
    while (text.size() < kCharacters)
        text += sample.text;
    text.resize(kCharacters);
    return text;
}

double Now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/** The fastest turn of something, in microseconds for a character. */
class Best
{
public:
    template <class Work>
    void Turn(Work work)
    {
        const double start = Now();
        work();
        _seconds = std::min(_seconds, Now() - start);
    }
    double PerCharacter() const { return _seconds * 1e6 / kCharacters; }

private:
    double _seconds = std::numeric_limits<double>::max();
};

/** Pango with one font of the same size and the same width. */
class Pango
{
public:
    explicit Pango(const char* family)
        : _map(pango_ft2_font_map_new()), _context(pango_font_map_create_context(_map)),
          _description(pango_font_description_from_string(family))
    {
        pango_font_description_set_absolute_size(_description, kSize * PANGO_SCALE);
    }
    ~Pango()
    {
        pango_font_description_free(_description);
        g_object_unref(_context);
        g_object_unref(_map);
    }
    Pango(const Pango&) = delete;
    Pango& operator=(const Pango&) = delete;

    int Lines(const std::string& text) const
    {
        PangoLayout* layout = pango_layout_new(_context);
        pango_layout_set_font_description(layout, _description);
        pango_layout_set_width(layout, kWidth * PANGO_SCALE);
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        int width = 0;
        pango_layout_get_pixel_size(layout, &width, nullptr);
        const int lines = pango_layout_get_line_count(layout);
        g_object_unref(layout);
        return lines;
    }

private:
    PangoFontMap* _map;
    PangoContext* _context;
    PangoFontDescription* _description;
};

void LayOutAll(benchmark::State& state, const Sample& sample)
{
    std::ifstream file(sample.font, std::ios::binary);
    const std::vector<char> font((std::istreambuf_iterator<char>(file)),
                                 std::istreambuf_iterator<char>());
    const PResource resource(
        zelOpenResource(sample.name, font.data(), static_cast<int>(font.size())));
    const ZELObjPtr<IText> widget(zelCreateText(resource));
    widget->SetAttribute(AttrFontIndex, 1);
    widget->SetAttribute(AttrFontSize, kSize);
    widget->SetAttribute(AttrSpanX, kWidth);
    widget->SetAttribute(AttrTextFormat, TextWrap | TextAlignLeft);

    std::u16string text = TextOf(sample);
    const std::vector<UInt32> codes(text.begin(), text.end());
    const Pango pango(sample.family);
    char* converted = g_utf16_to_utf8(reinterpret_cast<const gunichar2*>(text.data()), kCharacters,
                                      nullptr, nullptr, nullptr);
    const std::string utf8 = converted;
    g_free(converted);

    FlowFormatter formatter(Color32Bit);
    FlowBreaker breaker;
    Best flow, bidi, breaks, others;
    int lines = 0, others_lines = 0;
    UInt32 number = 0;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        for (int turn = 0; turn < kTurns; ++turn) {
            // Four digits at the end make it another text.
            for (UInt32 digit = 0, rest = ++number; digit < 4; ++digit, rest /= 10)
                text[kCharacters - 1 - digit] = static_cast<char16_t>('0' + rest % 10);
            flow.Turn([&] {
                const FlowLayout layout =
                    formatter.LayOut(widget, text.data(), kCharacters * 2, EncodingUnicode);
                lines = static_cast<int>(layout.GetLineCount());
            });
        }
        for (int turn = 0; turn < kTurns; ++turn) {
            bidi.Turn([&] {
                FlowOrder order(codes);
                benchmark::DoNotOptimize(order.Resolve(0, codes.size(), FlowAutomatic));
            });
        }
        for (int turn = 0; turn < kTurns; ++turn) {
            breaks.Turn([&] {
                const auto found =
                    breaker.Find(reinterpret_cast<PtrConstWChar>(text.data()), kCharacters);
                benchmark::DoNotOptimize(found.data());
            });
        }
        for (int turn = 0; turn < kTurns; ++turn)
            others.Turn([&] { others_lines = pango.Lines(utf8); });
    }
    state.counters["us_per_char"] = flow.PerCharacter();
    state.counters["pango"] = others.PerCharacter();
    state.counters["of_pango"] = flow.PerCharacter() / others.PerCharacter();
    state.counters["bidi_share"] = bidi.PerCharacter() / flow.PerCharacter();
    state.counters["break_share"] = breaks.PerCharacter() / flow.PerCharacter();
    state.counters["lines"] = lines;
    state.counters["pango_lines"] = others_lines;
}

} // namespace

int main(int argc, char** argv)
{
    const kestrin_test::EngineDisplay engine(64, 48);
    for (const Sample& sample : kSamples)
        benchmark::RegisterBenchmark(sample.name, LayOutAll, sample)->MinTime(0.5);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
