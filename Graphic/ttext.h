/** The text widget. */
#pragma once

#include "twidget.h"

#include <memory>

namespace zelxxx {

/**
 * What a formatter has laid out: a stream of records, each of them 8, a type byte and its values,
 * multi-byte values with the high byte first.
 *
 *     8  0  r g b a              colour, on 32-bit displays
 *     8  0  index                colour index, on all others
 *     8  1  x x y y ch ch c c c c  cursor line under a character
 *     8 16  x x y y ch ch        character
 *
 * Colour and colour index share their type: the display's colour mode tells them apart.
 */
class TextInfo
{
public:
    static constexpr UInt8 kMark = 8;
    static constexpr UInt8 kColor = 0;
    static constexpr UInt8 kCursor = 1;
    static constexpr UInt8 kChar = 16;
    static constexpr UInt32 kColorSize = 6;
    static constexpr UInt32 kColorIndexSize = 3;
    static constexpr UInt32 kCursorSize = 12;
    static constexpr UInt32 kCharSize = 8;

    TextInfo();
    ~TextInfo();
    TextInfo(const TextInfo&) = delete;
    TextInfo& operator=(const TextInfo&) = delete;

    /** Empties the stream. */
    void Initialize();

    // Append a record; it is dropped when there is no memory for it.
    void AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a);
    void AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color);
    /** The size is not stored: the widget's own applies. */
    void AddCharInfo(Int16 x, Int16 y, UInt8 size, UInt16 ch);
    void AddColorIndex(UInt8 index);

    const UInt8* Bytes() const { return _text; }
    UInt32 Length() const { return _current_length; }
    UInt32 Capacity() const { return _length; }

private:
    static constexpr UInt32 kFirstCapacity = 100;

    UInt8* Append(UInt32 size, UInt8 type);

    UInt8* _text;
    UInt32 _current_length;
    UInt32 _length;
};

/**
 * A run of text in a font of a resource. The client's formatter places each character while the
 * widget paints, when something has changed; the records it leaves are replayed at every painting.
 */
class Text : public WidgetTemplate<IText, Text>
{
public:
    explicit Text(IResource* resource);
    ~Text() override;

    WidgetBase* Clone() override;
    /** Also takes over font, sizes, line height, colour and format; not the text. */
    void Copy(WidgetBase* widget) override;
    void Paint() override;

    void SetAttribute(AttrIndex index, AttrValue value) override;
    AttrValue GetAttribute(AttrIndex index) override;

    void SetText(PtrConstAny text, UInt32 length, TextEncoding encoding,
                 ITextFormater* text_formater) override;
    void AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color) override;
    void AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a) override;
    void AddCharInfo(Int16 x, Int16 y, UInt8 size, UInt16 ch) override;
    void AddColorIndex(UInt8 index) override;
    IFont* GetFont() override;
    void SwitchResource(IResource* os) override { _resource = os; }

    // The reference span that the Org sizes refer to; layouts of the client use them.
    MetricValue OrgSpanX, OrgSpanY;

private:
    struct Replay;

    bool Grow(UInt32 units);
    void StoreUnicode(PtrConstAny text, UInt32 length);
    void StoreConverted(PtrConstAny text, UInt32 length, TextEncoding encoding);

    void DrawTextExt();
    void TakeColor(Replay& replay, const UInt8* record) const;
    void DrawCharacter(Replay& replay, const UInt8* record);
    static bool IsSeen(const Replay& replay, MetricValue left, MetricValue top,
                       const DirtyRect& seen);
    void DrawCursor(Replay& replay, const UInt8* record);
    UInt32 ReplayRecord(Replay& replay, const UInt8* record, UInt32 left);

    /** The modified copy if there is one: it decides font and size. */
    Text* Shown() { return static_cast<Text*>(Effective()); }

    FontMetrics _font_metrics;
    std::unique_ptr<TextInfo> _text_info; /**< from the first formatter on */
    PtrWChar _text;
    UInt32 _text_length;
    UInt32 _buffer_length; /**< code units asked for; the buffer has room for twice as many */
    PResource _resource;
    ResIndex _font_index;
    UInt16 _font_size;
    UInt16 _Org_font_size;
    UInt32 _font_scaler_molecule;
    UInt32 _font_scaler_denominator;
    UInt16 _line_height;
    UInt16 _org_line_height;
    Int32 _letter_space;
    ColorValue _color;
    TextFormat _format;
    UInt32 _cursor_index;
    bool _formater_need_process; /**< the layout is stale */
    ITextFormater* _text_formater;
};

} // namespace zelxxx
