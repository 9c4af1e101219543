/**
 * The scene: a caption box with its lines, and a bar that shows how far the programme is.
 */
#pragma once

#include "programme.h"

#include "vrel_kestrin_flow.h"

#include <vector>

namespace kestrin_play {

struct ScreenFormat
{
    int width;
    int height;
    zelxxx::ColorMode mode; ///< Color8Bit or Color32Bit
};

/** Needs the engine initialised for the same format, and lets go of it before it ends. */
class Stage
{
public:
    explicit Stage(const ScreenFormat& format);

    /**
     * Arranges the widgets; the next update shows them.
     *
     * @param captions  from top to bottom
     * @param progress  0 to 1
     * @return lines there was no room for
     */
    int Show(const std::vector<const Caption*>& captions, double progress);

private:
    /** A line with the room it takes. */
    struct Measured
    {
        const CaptionLine* line;
        int rows;
        int width;
    };

    void LoadPalette();
    zelxxx::ZELObjPtr<zelxxx::IWidget> AddRectangle(zelxxx::ILayer* layer, std::uint32_t argb);
    zelxxx::ColorValue ColourValue(std::uint32_t rgb) const;
    Measured Measure(const CaptionLine& line);
    std::vector<Measured> MeasureWhatFits(const std::vector<const Caption*>& captions, int room,
                                          int* dropped);
    void ShowLine(std::size_t slot, const Measured& measured, int left, int top, int width);
    void SetFont(zelxxx::IText* text, const CaptionLine& line, int width) const;
    void SetColours(const CaptionLine& line, zelxxx::IText* text);
    zelxxx::IText* SlotAt(std::size_t index);

    const ScreenFormat _format;
    const int _font_size;
    zelxxx::FlowFormatter _formatter;
    zelxxx::ZELObjPtr<zelxxx::IText> _ruler;              ///< in no scene: for measuring
    std::vector<zelxxx::ZELObjPtr<zelxxx::IText>> _slots; ///< shown or waiting to be
    zelxxx::PLayer _captions;
    zelxxx::PLayer _programme;
    zelxxx::ZELObjPtr<zelxxx::IWidget> _box;
    zelxxx::ZELObjPtr<zelxxx::IWidget> _bar;
    // Last, so that it goes first: it ends the use of the formatter.
    zelxxx::ZELObjPtr<zelxxx::IScene> _scene;
};

} // namespace kestrin_play
