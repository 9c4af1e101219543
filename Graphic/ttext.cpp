#include "ttext.h"

#include "tscene.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace zelxxx {

namespace {

/** Shown in place of a text whose font cannot be had. */
constexpr ColorValue kNoFontColor = 0x00ff00ff;

UInt8* PutUInt16(UInt8* at, UInt16 value)
{
    at[0] = static_cast<UInt8>(value >> 8);
    at[1] = static_cast<UInt8>(value);
    return at + 2;
}

} // namespace

TextInfo::TextInfo() : _text(nullptr), _current_length(0), _length(0)
{
    Initialize();
}

TextInfo::~TextInfo()
{
    std::free(_text);
}

void TextInfo::Initialize()
{
    if (_length != 0)
        std::free(_text);
    _text = static_cast<UInt8*>(std::malloc(kFirstCapacity));
    _length = _text ? kFirstCapacity : 0;
    _current_length = 0;
}

/** Room for a record with its first two bytes written; null when there is no memory. */
UInt8* TextInfo::Append(UInt32 size, UInt8 type)
{
    if (_current_length + size >= _length) {
        // Enough for any record: the stream holds at least 88 bytes by then.
        const UInt32 length = _current_length * 2;
        void* text = length > _length ? std::realloc(_text, length) : nullptr;
        if (!text)
            return nullptr;
        _text = static_cast<UInt8*>(text);
        _length = length;
    }
    UInt8* record = _text + _current_length;
    _current_length += size;
    record[0] = kMark;
    record[1] = type;
    return record + 2;
}

void TextInfo::AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a)
{
    if (UInt8* at = Append(kColorSize, kColor)) {
        at[0] = r;
        at[1] = g;
        at[2] = b;
        at[3] = a;
    }
}

void TextInfo::AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color)
{
    if (UInt8* at = Append(kCursorSize, kCursor)) {
        at = PutUInt16(at, x);
        at = PutUInt16(at, y);
        at = PutUInt16(at, ch);
        at = PutUInt16(at, static_cast<UInt16>(color >> 16));
        PutUInt16(at, static_cast<UInt16>(color));
    }
}

void TextInfo::AddCharInfo(Int16 x, Int16 y, UInt8, UInt16 ch)
{
    if (UInt8* at = Append(kCharSize, kChar)) {
        at = PutUInt16(at, x);
        at = PutUInt16(at, y);
        PutUInt16(at, ch);
    }
}

void TextInfo::AddColorIndex(UInt8 index)
{
    if (UInt8* at = Append(kColorIndexSize, kColor))
        *at = index;
}

Text::Text(IResource* resource)
    : OrgSpanX(720), OrgSpanY(576), _font_metrics(), _text(nullptr), _text_length(0),
      _buffer_length(0), _resource(resource), _font_index(0), _font_size(16), _Org_font_size(16),
      _font_scaler_molecule(100), _font_scaler_denominator(100), _line_height(16),
      _org_line_height(16), _letter_space(0), _color(0x00ffffff), _format(TextAlignCenter),
      _cursor_index(0), _formater_need_process(true), _text_formater(nullptr)
{
}

Text::~Text()
{
    delete[] _text;
}

WidgetBase* Text::Clone()
{
    Text* text = new Text(_resource);
    text->Copy(this);
    return text;
}

void Text::Copy(WidgetBase* widget)
{
    WidgetBase::Copy(widget);
    const Text* text = static_cast<Text*>(widget);
    _font_index = text->_font_index;
    _font_size = text->_font_size;
    _Org_font_size = text->_Org_font_size;
    _line_height = text->_line_height;
    _color = text->_color;
    _format = text->_format;
}

void Text::Paint()
{
    if (!_resource)
        return;
    if (!GetFont()) {
        ParentScene->CurrentPainter->DrawRectangle(
            DirtyBound.x1, DirtyBound.y1, Wrap(DirtyBound.x2 - DirtyBound.x1),
            Wrap(DirtyBound.y2 - DirtyBound.y1), kNoFontColor, DirtyBlend,
            static_cast<BlendMode>(BlendingMode), NoBlit, 0);
        return;
    }
    if (_formater_need_process) {
        if (!_text_formater) {
            _formater_need_process = false;
            return;
        }
        _text_info->Initialize();
        _text_formater->Format(this, _text, _text_length);
        _formater_need_process = false;
    }
    if (_text_formater)
        DrawTextExt();
}

void Text::SetText(PtrConstAny text, UInt32 length, TextEncoding encoding,
                   ITextFormater* text_formater)
{
    if (!text)
        _text_length = 0;
    else if (encoding == EncodingUnicode)
        StoreUnicode(text, length);
    else
        StoreConverted(text, length, encoding);

    _formater_need_process = true;
    if (text_formater) {
        if (!_text_info)
            _text_info = std::make_unique<TextInfo>();
        _text_formater = text_formater;
    }
    SetChanged();
}

/** Replaces a buffer of fewer than `units` code units, losing the text; false without memory. */
bool Text::Grow(UInt32 units)
{
    if (units <= _buffer_length)
        return true;
    // The conversion clears, and may fill, twice the units it is told of.
    PtrWChar text = new (std::nothrow) WChar[std::size_t{units} * 2];
    if (!text)
        return false;
    delete[] _text;
    _text = text;
    _buffer_length = units;
    return true;
}

void Text::StoreUnicode(PtrConstAny text, UInt32 length)
{
    const UInt32 units = length / 2;
    _text_length = Grow(units) ? units : 0;
    if (_text_length != 0)
        std::memmove(_text, text, std::size_t{units} * 2);
}

void Text::StoreConverted(PtrConstAny text, UInt32 length, TextEncoding encoding)
{
    _text_length = 0;
    // The conversion takes a signed number; no text is that long.
    if (length <= INT32_MAX && Grow(length))
        _text_length =
            zelConvertToUnicode(text, length, encoding, _text, static_cast<Int32>(length));
}

void Text::AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color)
{
    if (_text_info)
        _text_info->AddCursorInfo(x, y, ch, color);
}

void Text::AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a)
{
    if (_text_info)
        _text_info->AddColorInfo(r, g, b, a);
}

void Text::AddCharInfo(Int16 x, Int16 y, UInt8 size, UInt16 ch)
{
    if (_text_info)
        _text_info->AddCharInfo(x, y, size, ch);
}

void Text::AddColorIndex(UInt8 index)
{
    if (_text_info)
        _text_info->AddColorIndex(index);
}

IFont* Text::GetFont()
{
    bool download = false;
    return _resource ? _resource->OpenFont(Shown()->_font_index, download) : nullptr;
}

void Text::SetAttribute(AttrIndex index, AttrValue value)
{
    // Before the index is looked at: one that is not answered lays the text out anew, too.
    _formater_need_process = true;
    switch (index) {
    case AttrOrgSpanX:
        OrgSpanX = static_cast<MetricValue>(value);
        SetMoved();
        break;
    case AttrOrgSpanY:
        OrgSpanY = static_cast<MetricValue>(value);
        SetMoved();
        break;
    case AttrColor:
        _color = static_cast<ColorValue>(value);
        SetChanged();
        break;
    case AttrFontIndex:
        _font_index = static_cast<ResIndex>(value);
        SetChanged();
        break;
    case AttrFontSize:
        _font_size = static_cast<UInt16>(value);
        SetChanged();
        break;
    case AttrOrgFontSize:
        _Org_font_size = static_cast<UInt16>(value);
        SetChanged();
        break;
    case AttrFontScalerMolecule:
        _font_scaler_molecule = static_cast<UInt32>(value);
        SetMoved();
        break;
    case AttrFontScalerDenominator:
        _font_scaler_denominator = static_cast<UInt32>(value);
        SetMoved();
        break;
    case AttrLineHeight:
        _line_height = static_cast<UInt16>(value);
        SetChanged();
        break;
    case AttrOrgLineHeight:
        _org_line_height = static_cast<UInt16>(value);
        SetChanged();
        break;
    case AttrTextFormat:
        _format = static_cast<TextFormat>(value);
        SetChanged();
        break;
    case AttrCursorIndex:
        _cursor_index = static_cast<UInt32>(value);
        SetChanged();
        break;
    case AttrLetterSpace:
        _letter_space = value;
        SetChanged();
        break;
    default:
        SetCommonAttribute(index, value);
        break;
    }
}

AttrValue Text::GetAttribute(AttrIndex index)
{
    switch (index) {
    case AttrOrgSpanX:
        return OrgSpanX;
    case AttrOrgSpanY:
        return OrgSpanY;
    case AttrColor:
        return static_cast<AttrValue>(_color);
    case AttrFontIndex:
        return _font_index;
    case AttrFontSize:
        return _font_size;
    case AttrOrgFontSize:
        return _Org_font_size;
    case AttrFontScalerMolecule:
        return static_cast<AttrValue>(_font_scaler_molecule);
    case AttrFontScalerDenominator:
        return static_cast<AttrValue>(_font_scaler_denominator);
    case AttrLineHeight:
        return _line_height;
    case AttrOrgLineHeight:
        return _org_line_height;
    case AttrTextFormat:
        return _format;
    case AttrCursorIndex:
        return static_cast<AttrValue>(_cursor_index);
    case AttrLetterSpace:
        return _letter_space;
    default:
        return GetCommonAttribute(index);
    }
}

IText* zelCreateText(IResource* resource)
{
    return new Text(resource);
}

} // namespace zelxxx
