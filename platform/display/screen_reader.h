/**
 * Reads the picture out of a screen file, from any process and at any time.
 *
 * The file is read and never mapped, so nothing that happens to it can end the reading process:
 * whatever is wrong arrives as a ScreenError with a message for people.
 */
#pragma once

#include "argb_image.h"
#include "screen_file.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrin_display {

/** A screen file is missing, damaged or busy; what() names the file and the reason. */
class ScreenError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** A layer at one moment: facts and pixels belong together. */
struct LayerSnapshot
{
    LayerFacts facts;

    /** The buffer's bytes, facts.pitch * facts.height of them. */
    std::vector<std::uint8_t> bytes;

    /**
     * The picture as 0xAARRGGBB: palette applied, formats without alpha opaque. The layer's opacity
     * is left to the caller.
     */
    ArgbImage image;
};

class ScreenReader
{
public:
    /**
     * Opens a screen file.
     *
     * The reader stays with the file it opened: when another program puts a new one in its place,
     * a new reader is needed to see it.
     *
     * @throws ScreenError if there is none or it is no screen file this version can read
     */
    explicit ScreenReader(const std::string& path);
    ~ScreenReader();

    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    /** The header, as it was when the file was opened. */
    const ScreenHeader& Header() const { return _header; }
    int LayerCount() const { return static_cast<int>(_header.layer_count); }

    /**
     * What a layer shows, without its pixels.
     *
     * @param layer  id from 0 to LayerCount() - 1
     * @throws ScreenError for other ids, a truncated file, or a writer that died while writing
     */
    LayerFacts Facts(int layer) const;

    /**
     * A layer's picture. A layer taken off the screen still gives its last picture.
     *
     * @param layer  id from 0 to LayerCount() - 1
     * @throws ScreenError as Facts does, and if the layer was never set up, its facts make no sense
     *         or the buffers are exchanged faster than they can be read
     */
    LayerSnapshot Snapshot(int layer) const;

private:
    void ReadAt(std::uint64_t offset, void* data, std::size_t size) const;
    void CheckFacts(int layer, const LayerFacts& facts) const;
    [[noreturn]] void Fail(const std::string& reason) const;

    const std::string _path;
    int _file = -1;
    ScreenHeader _header = {};
};

/** Converts rows of the screen file's formats to 0xAARRGGBB, as LayerSnapshot::image holds them. */
ArgbImage ConvertToArgb(const LayerFacts& facts, const std::vector<std::uint8_t>& bytes);

} // namespace kestrin_display
