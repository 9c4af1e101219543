/** Frames of painters that keep nothing: what touches a changed rectangle is drawn anew in it. */
#pragma once

#include "frame_glyphs.h"
#include "frame_scenes.h"

#include <cstdint>
#include <vector>

namespace kestrin_bench {

class ImmediateFrames : public FramePainter
{
public:
    void Prepare(const Scene& scene) override;
    void Show(const Step& step) override;
    std::vector<std::uint32_t> Screen() const override { return _words; }
    void StartCounting() override
    {
        _counting = true;
        _counted = 0;
    }
    Work StopCounting() override
    {
        _counting = false;
        return {_counted, -1};
    }

protected:
    /** Makes what the items of a scene need; the buffer has the scene's size by now. */
    virtual void Load(const Scene& scene) = 0;
    /** Confines drawing to a rectangle and clears it. */
    virtual void Begin(const Rect& clip) = 0;
    virtual void Fill(const Rect& box, std::uint32_t argb) = 0;
    /** Draws the picture of an item; an opaque one replaces what is there. */
    virtual void Draw(std::size_t item, int x, int y) = 0;
    /** Draws characters in white, each with its pen and the top of its line at a place. */
    virtual void Write(const TextGrid& grid, const std::u16string& text, int x, int y) = 0;
    /** Brings what is still outstanding into the buffer. */
    virtual void End() {}

    std::uint32_t* Words() { return _words.data(); }

private:
    void Paint(const Rect& clip, const Step& step);
    std::int64_t InkWithin(const Rect& clip, const Item& item, const Rect& box, const Step& step);

    const Scene* _scene = nullptr;
    std::vector<std::uint32_t> _words;
    bool _counting = false;
    std::int64_t _counted = 0;
};

} // namespace kestrin_bench
