/** Scalable fonts through FreeType's cache, and DirectFB fonts made from the same files. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <directfb.h>
#include <ft2build.h>

#include FT_FREETYPE_H
#include FT_CACHE_H

#include <memory>
#include <utility>

namespace zelxxx {

/**
 * A font face. All FreeType state is static: a process has one library, one cache manager and one
 * description of the face that is to be opened next.
 *
 * The manager knows a face by a number and asks the requester to open it; the requester opens what
 * the description says, whatever the number. It describes the font constructed last, so a face that
 * the manager gave up (it keeps 16) comes back with the glyphs of that font.
 */
class Font : public ZELObject<IFont, Font>
{
public:
    /** A font file. */
    explicit Font(const char* font_name);
    /** `len` bytes of a font file in memory, which outlive the font; the name serves messages. */
    Font(const char* font_name, const char* pcontent, int len);
    ~Font() override;

    /** Starts FreeType, once in a process. */
    static bool Initialize();
    /** Ends FreeType for good: fonts answer 0 from now on, and Initialize does nothing. */
    static bool Uninitialize();
    /** Opens faces for the cache manager; see the class. */
    static FT_Error Requester(FTC_FaceID face_id, FT_Library library, FT_Pointer request_data,
                              FT_Face* aface);

    void GetFTFontMetrics(UInt16 font_size, FontStyle font_style,
                          FontMetrics* font_metrics) override;
    Int32 GetFTNoScaleCharMetricsX(WChar ch, UInt16 font_size, FontStyle font_style) override;
    Int32 GetFTKerning(WChar left_character, WChar right_character, UInt16 font_size,
                       FontStyle font_style) override;
    Int32 GetFTYOffsetTop(UInt16 font_size) override;
    Int32 GetFTYOffsetBottom(UInt16 font_size) override;
    Int32 GetFTXOffsetLeft(UInt16 font_size, UInt32 font_scaler_molecule,
                           UInt32 font_scaler_denominator) override;
    void GetFTCharMetrics(WChar ch, UInt16 font_size, FontStyle font_style,
                          CharMetrics* char_metrics, UInt32 font_scaler_molecule,
                          UInt32 font_scaler_denominator) override;
    Int32 NoScaleFontUnitsToPixelsInCalculate(Int32 val, UInt32 font_scaler_molecule,
                                              UInt32 font_scaler_denominator) override;
    Int32 NoScaleFontUnitsToPixelsInDrawText(Int32 val, Int32 font_scaler_molecule,
                                             Int32 font_scaler_denominator) override;

    // The same questions to the DirectFB font, which knows no offsets and no kerning.
    virtual void GetFontMetrics(UInt16 font_size, FontStyle font_style, FontMetrics* font_metrics);
    /** Sets the width only, to the advance of the glyph numbered `ch`. */
    virtual void GetCharMetrics(WChar ch, UInt16 font_size, FontStyle font_style,
                                CharMetrics* char_metrics);
    virtual Int32 GetKerning(WChar left_character, WChar right_character, UInt16 font_size,
                             FontStyle font_style);
    virtual Int32 GetYOffsetTop(UInt16 font_size);
    virtual Int32 GetYOffsetBottom(UInt16 font_size);
    virtual Int32 GetXOffsetLeft(UInt16 font_size);

    /** True, also for a face that could not be opened. */
    bool IsAvailable() const { return true; }
    /**
     * The DirectFB font of a size and style, made on first use and owned by this font. Null when 20
     * are in use; the scaler is recorded only.
     */
    IDirectFBFont* GetFont(UInt16 font_size, UInt16 font_style, UInt32 font_scaler);
    /** The glyph of a character; the one of the space when there is none. */
    FT_UInt GetFontIndex(WChar ch) const;

    /** Makes the font free its bytes itself: for a holder that keeps it beyond its resource. */
    void AdoptContent(std::unique_ptr<char[]> content) { _content = std::move(content); }

private:
    struct Font_Attr
    {
        UInt16 font_size = 0;
        UInt16 font_style = 0;
        int font_scaler = -1;
        IDirectFBFont* font = nullptr;
    };
    static constexpr int kNameRoom = 200;
    static constexpr int kDfbFonts = 20;
    static constexpr int kIndexed = 256;

    void SetName(const char* font_name);
    void TakeFace();
    FTC_FaceID FaceId() const;
    FT_Face Face() const;
    Int32 UnitsPerEm() const;

    int _faceID = 0;
    char _font_name[kNameRoom] = {};
    int _current_font_size = 0;
    Font_Attr _font_attr[kDfbFonts];
    FT_Face _ft_face = nullptr;
    FT_UInt _index_cache[kIndexed] = {};
    std::unique_ptr<char[]> _content;

    static FT_Library s_library;
    static FTC_Manager s_manager;
    static FTC_SBitCache s_bitCache;
    static FTC_CMapCache s_mapCache;
    static FTC_ImageCache s_imagecache;
    static const char* s_font_name; /**< file to open next, unless s_pcontent is set */
    static const char* s_pcontent;
    static int s_len;
    static int s_faceID;
    static const Font* s_described; /**< whose name or bytes the description points to */
};

} // namespace zelxxx
