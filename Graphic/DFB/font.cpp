#include "font.h"

#include "tdebug.h"
#include "view.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>

namespace zelxxx {

FT_Library Font::s_library = nullptr;
FTC_Manager Font::s_manager = nullptr;
FTC_SBitCache Font::s_bitCache = nullptr;
FTC_CMapCache Font::s_mapCache = nullptr;
FTC_ImageCache Font::s_imagecache = nullptr;
const char* Font::s_font_name = nullptr;
const char* Font::s_pcontent = nullptr;
int Font::s_len = 0;
int Font::s_faceID = 0;
const Font* Font::s_described = nullptr;

namespace {

/**
 * The face of a font that cannot be opened: a bitmap font of one blank pixel. It has no units per
 * EM, so that every metric is 0, and no character, so that every glyph is number 0.
 */
constexpr char kBlankFont[] = "STARTFONT 2.1\n"
                              "FONT blank\n"
                              "SIZE 1 72 72\n"
                              "FONTBOUNDINGBOX 1 1 0 0\n"
                              "CHARS 1\n"
                              "STARTCHAR blank\n"
                              "ENCODING 0\n"
                              "SWIDTH 0 0\n"
                              "DWIDTH 0 0\n"
                              "BBX 1 1 0 0\n"
                              "BITMAP\n"
                              "00\n"
                              "ENDCHAR\n"
                              "ENDFONT\n";

/**
 * Faces that the manager reopened from the bytes of another font, by the number of the face. They
 * are dropped when that font goes, since its bytes may go with it.
 */
std::map<FTC_FaceID, const Font*>& Borrowed()
{
    // Never destroyed: static objects of the client may hold fonts to the very end.
    static auto& faces = *new std::map<FTC_FaceID, const Font*>;
    return faces;
}

FT_Error OpenMemory(FT_Library library, const char* content, int length, FT_Face* face)
{
    return FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte*>(content), length, 0, face);
}

/**
 * While it lives, the memory that FreeType takes comes filled with zeros.
 *
 * FreeType 2.12 counts the bytes in its cache from whatever the memory of a new cache manager held.
 * From a large number on, every new glyph drives all others out, and each is rendered anew whenever
 * it is drawn.
 */
class ZeroedMemory
{
public:
    explicit ZeroedMemory(FT_Library library)
    {
        // A face is where FreeType shows its memory.
        FT_Face face = nullptr;
        if (OpenMemory(library, kBlankFont, sizeof kBlankFont - 1, &face))
            return;
        _memory = face->memory;
        FT_Done_Face(face);
        s_alloc = _memory->alloc;
        _memory->alloc = AllocZeroed;
    }
    ~ZeroedMemory()
    {
        if (_memory)
            _memory->alloc = s_alloc;
    }
    ZeroedMemory(const ZeroedMemory&) = delete;
    ZeroedMemory& operator=(const ZeroedMemory&) = delete;

private:
    static void* AllocZeroed(FT_Memory memory, long size)
    {
        void* block = s_alloc(memory, size);
        if (block)
            std::memset(block, 0, static_cast<std::size_t>(size));
        return block;
    }

    FT_Memory _memory = nullptr;
    static FT_Alloc_Func s_alloc;
};

FT_Alloc_Func ZeroedMemory::s_alloc = nullptr;

constexpr int kSpace = ' ';

/** Signed quotient, cut to 32 bits; 0 without a divisor. The operands leave 64 bits no overflow. */
Int32 Divide(int64_t dividend, int64_t divisor)
{
    return divisor == 0 ? 0 : static_cast<Int32>(dividend / divisor);
}

/**
 * Quotient of the low 32 bits of both, unsigned: a dividend that was negative gives a huge result.
 * The operands are unsigned, so that larger products wrap and keep those bits.
 */
Int32 DivideUnsigned(uint64_t dividend, uint64_t divisor)
{
    const UInt32 by = static_cast<UInt32>(divisor);
    return by == 0 ? 0 : static_cast<Int32>(static_cast<UInt32>(dividend) / by);
}

/** Bits of a pixel of a cached bitmap; 0 for those that are no coverage. */
int PixelBits(FT_Byte format)
{
    switch (format) {
    case FT_PIXEL_MODE_MONO:
        return 1;
    case FT_PIXEL_MODE_GRAY2:
        return 2;
    case FT_PIXEL_MODE_GRAY4:
        return 4;
    case FT_PIXEL_MODE_GRAY:
        return 8;
    default:
        return 0;
    }
}

/**
 * A cached bitmap as rows of 8-bit coverage without padding. That is what rendered outlines are;
 * bitmaps that a font file brings along are unpacked into a buffer valid until the next call.
 */
UInt8* Coverage(const FTC_SBitRec& bitmap)
{
    const int bits = PixelBits(bitmap.format);
    if (bits == 8 && bitmap.pitch == bitmap.width)
        return bitmap.buffer;

    static UInt8 unpacked[255 * 255];
    const int full = (1 << bits) - 1;
    const UInt8* row = bitmap.buffer;
    // Rows from the bottom up are stored in this order, too, with the first one last.
    if (bitmap.pitch < 0)
        row -= static_cast<std::ptrdiff_t>(bitmap.pitch) * (bitmap.height - 1);
    UInt8* pixel = unpacked;
    for (int y = 0; y < bitmap.height; ++y, row += bitmap.pitch) {
        for (int x = 0; x < bitmap.width; ++x) {
            const int shift = 8 - bits - x * bits % 8;
            *pixel++ = static_cast<UInt8>((row[x * bits / 8] >> shift & full) * 255 / full);
        }
    }
    return unpacked;
}

} // namespace

bool Font::Initialize()
{
    static bool initialized = false;
    if (initialized)
        return true;
    FT_Init_FreeType(&s_library);
    const ZeroedMemory zeroed(s_library);
    FTC_Manager_New(s_library, 16, 32, 0x80000, Requester, nullptr, &s_manager);
    FTC_CMapCache_New(s_manager, &s_mapCache);
    FTC_SBitCache_New(s_manager, &s_bitCache);
    FTC_ImageCache_New(s_manager, &s_imagecache);
    initialized = true;
    return true;
}

bool Font::Uninitialize()
{
    if (s_library) {
        FTC_Manager_Done(s_manager);
        FT_Done_FreeType(s_library);
        s_library = nullptr;
        s_manager = nullptr;
        s_mapCache = nullptr;
        s_bitCache = nullptr;
        s_imagecache = nullptr;
        Borrowed().clear();
    }
    return true;
}

FT_Error Font::Requester(FTC_FaceID face_id, FT_Library library, FT_Pointer, FT_Face* aface)
{
    FT_Error error;
    Borrowed().erase(face_id);
    if (s_pcontent) {
        error = OpenMemory(library, s_pcontent, s_len, aface);
        if (error)
            KESTRIN_LOG(kLogFailure, "FT_New_Face failed\n");
        else if (s_described->FaceId() != face_id)
            Borrowed()[face_id] = s_described;
    } else {
        error = FT_New_Face(library, s_font_name, 0, aface);
        if (error)
            KESTRIN_LOG(kLogFailure, "FT_New_Face failed, %s, %d\n", s_font_name ? s_font_name : "",
                        static_cast<int>(reinterpret_cast<intptr_t>(face_id)));
    }
    // The manager takes the answer for a face, so there has to be one. Only a FreeType without
    // bitmap fonts has none to give.
    return error ? OpenMemory(library, kBlankFont, sizeof kBlankFont - 1, aface) : FT_Err_Ok;
}

Font::Font(const char* font_name)
{
    SetName(font_name);
    s_font_name = _font_name;
    s_pcontent = nullptr;
    s_len = 0;
    _faceID = s_faceID++;
    TakeFace();
}

Font::Font(const char* font_name, const char* pcontent, int len)
{
    SetName(font_name);
    s_font_name = nullptr;
    s_pcontent = pcontent;
    s_len = std::max(len, 0);
    _faceID = s_faceID++;
    KESTRIN_LOG(kLogInformation, "_face_ID:%d\n", _faceID);
    TakeFace();
}

Font::~Font()
{
    for (const Font_Attr& attr : _font_attr) {
        if (attr.font)
            attr.font->Release(attr.font);
    }
    if (s_described == this) {
        s_font_name = nullptr;
        s_pcontent = nullptr;
        s_len = 0;
        s_described = nullptr;
    }
    auto& borrowed = Borrowed();
    for (auto face = borrowed.begin(); face != borrowed.end();) {
        if (face->second == this) {
            FTC_Manager_RemoveFaceID(s_manager, face->first);
            face = borrowed.erase(face);
        } else {
            ++face;
        }
    }
    if (Face())
        FT_Done_Face(_ft_face);
}

void Font::SetName(const char* font_name)
{
    std::strncpy(_font_name, font_name, kNameRoom - 1);
}

/** Has the manager open the face that the description names. */
void Font::TakeFace()
{
    s_described = this;
    if (s_manager && FTC_Manager_LookupFace(s_manager, FaceId(), &_ft_face) == FT_Err_Ok) {
        // The manager closes faces it has not been asked about for long; this one stays ours.
        FT_Reference_Face(_ft_face);
        for (int c = 0; c < kIndexed; ++c)
            _index_cache[c] = FT_Get_Char_Index(_ft_face, c);
    }
    _current_font_size = 0;
}

FTC_FaceID Font::FaceId() const
{
    // The manager only compares it.
    return reinterpret_cast<FTC_FaceID>( // NOLINT(performance-no-int-to-ptr)
        static_cast<intptr_t>(_faceID));
}

/** The face while FreeType runs; null afterwards, and when there never was one. */
FT_Face Font::Face() const
{
    return s_library ? _ft_face : nullptr;
}

Int32 Font::UnitsPerEm() const
{
    return Face() ? Face()->units_per_EM : 0;
}

FT_UInt Font::GetFontIndex(WChar ch) const
{
    FT_UInt index = 0;
    if (ch < kIndexed)
        index = _index_cache[ch];
    else if (Face())
        index = FT_Get_Char_Index(Face(), ch);
    return index ? index : _index_cache[kSpace];
}

void Font::GetFTFontMetrics(UInt16 font_size, FontStyle, FontMetrics* font_metrics)
{
    const int x_min = 40;
    const int y_min = 62;
    const int x_max = 271;
    const int y_max = 231;
    font_metrics->x_min = x_min;
    font_metrics->y_min = y_min;
    font_metrics->x_max = x_max;
    font_metrics->y_max = y_max;
    font_metrics->outline_resolution = 0;
    font_metrics->metrics_resolution = 1;
    font_metrics->metrics_x_scale = 0;
    font_metrics->metrics_y_scale = 0;
    // Parts of 256 of the size, below and above the baseline, each rounded up.
    font_metrics->height =
        static_cast<UInt16>(((font_size * y_min + 255) >> 8) + ((font_size * y_max + 255) >> 8));
}

Int32 Font::GetFTNoScaleCharMetricsX(WChar ch, UInt16 font_size, FontStyle)
{
    if (!Face())
        return 0;
    FTC_ImageTypeRec type = {FaceId(), 0, 0, FT_LOAD_NO_SCALE};
    FT_Glyph glyph = nullptr;
    if (FTC_ImageCache_Lookup(s_imagecache, &type, GetFontIndex(ch), &glyph, nullptr)) {
        KESTRIN_LOG(kLogFailure, "FTC_ImageCache_Lookup failed\n");
        return 0;
    }
    // 16.16 of a 26.6 number, which unscaled glyphs fill with whole font units.
    return static_cast<Int32>(int64_t{font_size} * (glyph->advance.x / 1024));
}

Int32 Font::GetFTKerning(WChar left_character, WChar right_character, UInt16 font_size, FontStyle)
{
    if (!Face())
        return 0;
    FT_Vector kerning = {0, 0};
    FT_Get_Kerning(Face(), GetFontIndex(left_character), GetFontIndex(right_character),
                   FT_KERNING_UNSCALED, &kerning);
    return static_cast<Int32>(int64_t{kerning.x} * font_size);
}

Int32 Font::GetFTYOffsetTop(UInt16 font_size)
{
    const int64_t units = UnitsPerEm();
    return units ? Divide(Face()->bbox.yMax * int64_t{font_size} + units - 1, units) : 0;
}

Int32 Font::GetFTYOffsetBottom(UInt16 font_size)
{
    const int64_t units = UnitsPerEm();
    return units ? Divide(units - Face()->bbox.yMin * int64_t{font_size} - 1, units) : 0;
}

Int32 Font::GetFTXOffsetLeft(UInt16 font_size, UInt32 font_scaler_molecule,
                             UInt32 font_scaler_denominator)
{
    if (UnitsPerEm() == 0)
        return 0;
    const uint64_t divisor = uint64_t{font_scaler_denominator} * UnitsPerEm();
    const int64_t overhang = -int64_t{Face()->bbox.xMin} * font_size;
    return DivideUnsigned(static_cast<uint64_t>(overhang) * font_scaler_molecule + divisor - 1,
                          divisor);
}

void Font::GetFTCharMetrics(WChar ch, UInt16 font_size, FontStyle, CharMetrics* char_metrics,
                            UInt32 font_scaler_molecule, UInt32 font_scaler_denominator)
{
    *char_metrics = {2, 0, 0, 0, 0, nullptr};
    if (!Face())
        return;
    FTC_ScalerRec scaler = {};
    scaler.face_id = FaceId();
    scaler.width = font_size * 64U;
    scaler.height = font_size * 64U;
    // At 72 dots an inch a point is a pixel; glyphs are stretched by more dots sideways.
    scaler.x_res = static_cast<FT_UInt>(font_scaler_denominator ? uint64_t{font_scaler_molecule} *
                                                                      72 / font_scaler_denominator
                                                                : 0);
    scaler.y_res = 72;
    FTC_SBit bitmap = nullptr;
    FTC_SBitCache_LookupScaler(s_bitCache, &scaler, FT_LOAD_RENDER, GetFontIndex(ch), &bitmap,
                               nullptr);
    if (!bitmap || (bitmap->buffer && PixelBits(bitmap->format) == 0))
        return;
    char_metrics->width = bitmap->width;
    char_metrics->height = bitmap->height;
    // Without a buffer nothing else is set. A glyph comes so, as 255 x 0, when it passes 255 pixels
    // or its bearings or advance pass a signed byte.
    if (!bitmap->buffer)
        return;
    char_metrics->hori_bearing_x = bitmap->left;
    char_metrics->bitmap_top = bitmap->top;
    char_metrics->buffer = Coverage(*bitmap);
}

Int32 Font::NoScaleFontUnitsToPixelsInCalculate(Int32 val, UInt32 font_scaler_molecule,
                                                UInt32 font_scaler_denominator)
{
    const int64_t units = UnitsPerEm();
    if (units == 0)
        return 0;
    const uint64_t pixels = Divide(val + units - 1, units);
    return DivideUnsigned(pixels * font_scaler_molecule + font_scaler_denominator - 1,
                          font_scaler_denominator);
}

Int32 Font::NoScaleFontUnitsToPixelsInDrawText(Int32 val, Int32 font_scaler_molecule,
                                               Int32 font_scaler_denominator)
{
    const int64_t units = UnitsPerEm();
    if (units == 0)
        return 0;
    const int64_t pixels = Divide(val + units - 1, units);
    return Divide(pixels * font_scaler_molecule + font_scaler_denominator - 1,
                  font_scaler_denominator);
}

void Font::GetFontMetrics(UInt16 font_size, FontStyle font_style, FontMetrics* font_metrics)
{
    Font::GetFTFontMetrics(font_size, font_style, font_metrics);
}

void Font::GetCharMetrics(WChar ch, UInt16 font_size, FontStyle font_style,
                          CharMetrics* char_metrics)
{
    IDirectFBFont* font = GetFont(font_size, font_style, 65536);
    if (!font)
        return;
    const unsigned glyphindex = ch;
    int glyphadvance = 0;
    // NULL by that name: the call reports its own text.
    DFBCHECK(font->GetGlyphExtents(font, glyphindex, NULL, &glyphadvance)); // NOLINT
    char_metrics->width = glyphadvance;
}

Int32 Font::GetKerning(WChar, WChar, UInt16, FontStyle)
{
    return 0;
}

Int32 Font::GetYOffsetTop(UInt16)
{
    return 0;
}

Int32 Font::GetYOffsetBottom(UInt16)
{
    return 0;
}

Int32 Font::GetXOffsetLeft(UInt16)
{
    return 0;
}

IDirectFBFont* Font::GetFont(UInt16 font_size, UInt16 font_style, UInt32 font_scaler)
{
    for (int i = 0; i < _current_font_size; ++i) {
        if (_font_attr[i].font_size == font_size && _font_attr[i].font_style == font_style)
            return _font_attr[i].font;
    }
    if (_current_font_size >= kDfbFonts)
        return nullptr;

    DFBFontDescription fdsc = {};
    fdsc.flags = DFDESC_HEIGHT;
    fdsc.height = font_size;
    IDirectFBFont* font = nullptr;
    DFBCHECK(View::_dfb->CreateFont(View::_dfb, _font_name, &fdsc, &font));
    // A slot is used up either way.
    Font_Attr& attr = _font_attr[_current_font_size++];
    if (font) {
        attr.font_size = font_size;
        attr.font_style = font_style;
        attr.font_scaler = static_cast<int>(font_scaler);
        attr.font = font;
    }
    return font;
}

} // namespace zelxxx
