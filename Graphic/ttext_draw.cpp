#include "tscene.h"
#include "ttext.h"

#include <cstring>

namespace zelxxx {

namespace {

/** Room for the largest glyph the font cache has a bitmap for. */
constexpr int kGlyphRoom = 255 * 255;

constexpr ColorValue kWhite = 0x00ffffff;
constexpr BlendValue kOpaque = 255;

UInt16 TakeUInt16(const UInt8* at)
{
    return static_cast<UInt16>(at[0] << 8 | at[1]);
}

Int16 TakeInt16(const UInt8* at)
{
    return static_cast<Int16>(TakeUInt16(at));
}

UInt32 TakeUInt32(const UInt8* at)
{
    return static_cast<UInt32>(TakeUInt16(at)) << 16 | TakeUInt16(at + 2);
}

/** 0x00BBGGRR */
ColorValue LowRedColor(UInt8 red, UInt8 green, UInt8 blue)
{
    return red | static_cast<ColorValue>(green) << 8 | static_cast<ColorValue>(blue) << 16;
}

} // namespace

/** What one replay of the records carries along. */
struct Text::Replay
{
    IPainter* painter;
    ColorMode mode;
    IFont* font;
    UInt16 size;
    PPalette palette; /**< on 8-bit displays, if the client has set one */
    ColorValue color = kWhite;
    BlendValue alpha = kOpaque;
    CharMetrics glyph = {};
    /** Palette indices of the glyph being drawn; the part in use is cleared for each. */
    SChar buffer[kGlyphRoom];
};

/** Draws what the formatter has laid out. */
void Text::DrawTextExt()
{
    if (DirtyBlend == 0)
        return;
    Replay replay;
    replay.painter = ParentScene->CurrentPainter;
    replay.mode = replay.painter->GetColorMode();
    if (!_text_info || _text_info->Length() == 0)
        return;
    replay.font = GetFont();
    if (!replay.font) // the formatter may have switched the resource
        return;
    replay.size = Shown()->_font_size;
    if (replay.mode == Color8Bit)
        replay.palette = zelGetCurrentPalette();

    const UInt32 length = _text_info->Length();
    for (UInt32 at = 0; at < length - 1;) {
        const UInt32 size = ReplayRecord(replay, _text_info->Bytes() + at, length - at);
        if (size == 0)
            break;
        at += size;
    }
}

/**
 * Replays one record and returns its size; 0 for bytes that are none, which end the replay. One
 * that is longer than what is left, as a colour index read on a 32-bit display can be, is passed
 * over.
 */
UInt32 Text::ReplayRecord(Replay& replay, const UInt8* record, UInt32 left)
{
    if (record[0] != TextInfo::kMark)
        return 0;
    UInt32 size = 0;
    switch (record[1]) {
    case TextInfo::kColor:
        size = replay.mode == Color32Bit ? TextInfo::kColorSize : TextInfo::kColorIndexSize;
        if (size <= left)
            TakeColor(replay, record);
        break;
    case TextInfo::kChar:
        size = TextInfo::kCharSize;
        if (size <= left)
            DrawCharacter(replay, record);
        break;
    case TextInfo::kCursor:
        size = TextInfo::kCursorSize;
        if (size <= left)
            DrawCursor(replay, record);
        break;
    default:
        break;
    }
    return size;
}

void Text::TakeColor(Replay& replay, const UInt8* record) const
{
    if (replay.mode == Color32Bit) {
        replay.color = LowRedColor(record[2], record[3], record[4]);
        replay.alpha = record[5];
    } else if (replay.palette) {
        const UInt8 index = record[2];
        replay.color =
            LowRedColor(replay.palette->GetColorRed(index), replay.palette->GetColorGreen(index),
                        replay.palette->GetColorBlue(index));
        replay.alpha = replay.palette->GetColorBlending(index);
    } else {
        replay.color = kWhite;
        replay.alpha = kOpaque;
    }
}

void Text::DrawCharacter(Replay& replay, const UInt8* record)
{
    const MetricValue left = Wrap(DirtyBound.x1 + TakeInt16(record + 2));
    const MetricValue top = Wrap(DirtyBound.y1 + TakeInt16(record + 4));
    CharMetrics& glyph = replay.glyph;
    replay.font->GetFTCharMetrics(TakeUInt16(record + 6), replay.size, FontRegular, &glyph,
                                  _font_scaler_molecule, _font_scaler_denominator);
    // The widget's own opacity: what its layer or a modifier fades does not reach the glyphs.
    const BlendValue blend = CombineBlends(Blend, replay.alpha);
    if (replay.mode == Color32Bit) {
        if (ParentScene->CurrentSeen && !IsSeen(replay, left, top, *ParentScene->CurrentSeen))
            return;
        replay.painter->Draw32BitCharBitmap(&glyph, replay.font, replay.size, left, top,
                                            replay.color, blend);
        return;
    }
    std::memset(replay.buffer, 0, static_cast<std::size_t>(glyph.width) * glyph.height);
    _text_formater->GetCharBuffer(&glyph, replay.color, blend, replay.buffer);
    replay.painter->DrawCharBitmap(replay.buffer, &glyph, replay.font, replay.size, left, top,
                                   kOpaque);
}

/** Whether any of the glyph, with its pen and the top of its line at a place, is in a rectangle. */
bool Text::IsSeen(const Replay& replay, MetricValue left, MetricValue top, const DirtyRect& seen)
{
    const CharMetrics& glyph = replay.glyph;
    const int x = left + glyph.hori_bearing_x;
    const int y = top - glyph.bitmap_top + replay.font->GetFTYOffsetTop(replay.size);
    return x < seen.x2 && x + glyph.width > seen.x1 && y < seen.y2 && y + glyph.height > seen.y1;
}

/** A line one pixel high under a character, at nine tenths of the line's height. */
void Text::DrawCursor(Replay& replay, const UInt8* record)
{
    const UInt16 ch = TakeUInt16(record + 6);
    const UInt32 color = TakeUInt32(record + 8);
    const Int32 advance = replay.font->GetFTNoScaleCharMetricsX(ch, replay.size, FontRegular);
    const Int32 width = replay.font->NoScaleFontUnitsToPixelsInDrawText(
        advance, static_cast<Int32>(_font_scaler_molecule),
        static_cast<Int32>(_font_scaler_denominator));
    replay.font->GetFTFontMetrics(replay.size, FontRegular, &_font_metrics);
    const MetricValue left = Wrap(DirtyBound.x1 + TakeInt16(record + 2));
    const MetricValue top =
        Wrap(DirtyBound.y1 + 9 * _font_metrics.height / 10 + TakeInt16(record + 4));
    const bool true_color = replay.mode == Color32Bit;
    replay.painter->DrawRectangle(left, top, Wrap(width), 1, color & (true_color ? 0xffffff : 0xff),
                                  true_color ? static_cast<BlendValue>(color >> 24) : kOpaque,
                                  BlendSrcOver, NoBlit, 0);
}

} // namespace zelxxx
