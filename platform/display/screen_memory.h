/**
 * The screen file as its writer sees it: video memory to allocate from, and the layers' blocks.
 *
 *     | header, blocks |  -  | buffer A    |  -  | buffer B  |  -  | free ...
 *                       page   whole pages  page   whole pages page
 *
 * The video memory is mapped without any access right. Only the pages of allocated buffers can be
 * touched, and at least one page between two buffers never can: drawing that leaves its buffer
 * ends in a fault instead of another picture.
 */
#pragma once

#include "screen_file.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace kestrin_display {

class ScreenMemory
{
public:
    /** The halves of the video memory; one is left untouched while the other is used. */
    enum class Area
    {
        Programs,
        Desktops
    };

    /**
     * Makes the file, in place of one with the same name.
     *
     * @param path    where; its directory exists
     * @param width   of the screen in pixels
     * @param height  of the screen in pixels
     * @param error   receives the reason of a failure
     * @return null after a failure
     */
    static std::unique_ptr<ScreenMemory> Create(const std::string& path, std::uint32_t width,
                                                std::uint32_t height, std::string& error);

    /** Unmaps everything; the file stays for readers. */
    ~ScreenMemory();

    ScreenMemory(const ScreenMemory&) = delete;
    ScreenMemory& operator=(const ScreenMemory&) = delete;

    std::uint32_t Width() const { return _header->width; }
    std::uint32_t Height() const { return _header->height; }
    std::uint64_t Size() const { return _header->memory_size; }
    LayerBlock& Block(std::uint32_t layer);

    /**
     * Takes memory for one buffer. Its contents are what was there before, zeros at first.
     *
     * @param size  in bytes, above 0
     * @param area  where to look for it
     * @return the offset in the video memory, a multiple of the page size and never 0; nothing when
     *         memory or disk are full
     */
    std::optional<std::uint64_t> Allocate(std::uint64_t size, Area area);

    /** Gives a buffer back. Its pages become inaccessible; the picture stays in the file. */
    void Free(std::uint64_t offset);

    void* Address(std::uint64_t offset) const { return _memory + offset; }
    unsigned long Physical(std::uint64_t offset) const { return _header->physical_base + offset; }
    std::uint64_t FileOffset(std::uint64_t offset) const { return _header->memory_offset + offset; }

private:
    ScreenMemory(int file, std::uint64_t page);

    bool Map(std::uint32_t width, std::uint32_t height);
    std::uint64_t WholePages(std::uint64_t bytes) const;

    const int _file;
    const std::uint64_t _page;
    ScreenHeader* _header = nullptr;
    std::byte* _memory = nullptr;
    std::map<std::uint64_t, std::uint64_t> _buffers; // offset to size in whole pages, ascending
};

} // namespace kestrin_display
