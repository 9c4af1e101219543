/** The owner of fonts. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <cstddef>
#include <cstdio>
#include <memory>

namespace zelxxx {

class Font;

/** What an entry of a resource index file names. */
enum ResourceType
{
    ResourceUnknown = 0,
    ResourceFont = 1
};

/** One entry of a resource index file. */
struct ResourceInfo
{
    ResourceType type = ResourceUnknown;
    std::unique_ptr<char[]> file_name; /**< full path; null when the entry has no file */
    int file_length = 0;               /**< bytes read */
    /** The whole font file, from which FreeType reads as long as the font lives. */
    std::unique_ptr<char[]> file_content;
    IZELObject* object = nullptr; /**< the opened Font, held */
};

/**
 * The fonts that an index file names, opened on first use, or one font in memory.
 *
 * The index file is text: the number of entries on the first line, then a line "TYPE:FILE" for
 * each, FILE relative to the index file's directory. Only the type "fnt" is known.
 */
class Resource : public ZELObject<IResource, Resource>
{
public:
    /** Reads an index file; a resource without entries is not available. */
    explicit Resource(PtrConstTChar file_name);
    /** A font of `len` bytes in memory, which outlive the resource. It never is "available". */
    Resource(const char* font_name, const char* pcontent, int len);
    ~Resource() override;

    /** Serves the indices 1 and 2 and no others. */
    IFont* OpenFont(ResIndex index, bool& bDownload) override;

    bool IsAvailable() const { return _resources && _count != 0; }

private:
    static constexpr std::size_t kPathRoom = 200;

    bool SetRootPath(PtrConstTChar file_name);
    void ReadIndex(std::FILE* index);
    void ReadEntry(const char* line, ResourceInfo& entry) const;

    std::unique_ptr<ResourceInfo[]> _resources;
    TChar _root_path[kPathRoom] = {}; /**< with its trailing "/"; empty for the current directory */
    UInt32 _count = 0;                /**< as declared; entries past the 65536th are not kept */
    ZELObjPtr<IZELObject> _downloadable;
};

} // namespace zelxxx
