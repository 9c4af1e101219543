#include "resource.h"

#include "font.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <string_view>

namespace zelxxx {

namespace {

constexpr int kLineRoom = 1024;
/** More entries than indices can name; what a damaged file declares beyond is not allocated. */
constexpr UInt32 kMostEntries = 0x10000;
/** Highest index served is one more. */
constexpr UInt16 kLastServed = 1;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/** The number at the start of a line, at most UINT32_MAX; 0 without a digit. */
UInt32 LeadingNumber(const char* line)
{
    uint64_t number = 0;
    for (; *line >= '0' && *line <= '9'; ++line)
        number = std::min<uint64_t>(number * 10 + (*line - '0'), UINT32_MAX);
    return static_cast<UInt32>(number);
}

/** Takes the next field off a line, with the separator that ends it. */
std::string_view NextField(std::string_view& line)
{
    const std::size_t end = std::min(line.find_first_of(":\r\n"), line.size());
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

/** A file to read; null for a directory, too, which fopen accepts. */
File OpenForReading(const char* name)
{
    File file(std::fopen(name, "rb"));
    struct stat status;
    if (file && fstat(fileno(file.get()), &status) == 0 && S_ISDIR(status.st_mode))
        file.reset();
    return file;
}

/** Reads the whole file into an entry; what a short read left is zero. False without memory. */
bool ReadContent(std::FILE* file, ResourceInfo& entry)
{
    std::fseek(file, 0, SEEK_END);
    const long length = std::ftell(file);
    entry.file_content.reset();
    if (length >= 0 && length <= INT_MAX)
        entry.file_content.reset(new (std::nothrow) char[length]());
    if (!entry.file_content) {
        std::printf("Failed to read  font file %s\n", entry.file_name.get());
        return false;
    }
    std::fseek(file, 0, SEEK_SET);
    entry.file_length = static_cast<int>(std::fread(entry.file_content.get(), 1, length, file));
    if (entry.file_length < length)
        std::printf("Failed to read  font file %s\n", entry.file_name.get());
    return true;
}

} // namespace

Resource::Resource(PtrConstTChar file_name)
{
    if (!SetRootPath(file_name))
        return;
    const File index(std::fopen(file_name, "rt"));
    if (index)
        ReadIndex(index.get());
}

Resource::Resource(const char* font_name, const char* pcontent, int len)
    : _downloadable(new Font(font_name, pcontent, len))
{
}

Resource::~Resource()
{
    const UInt32 kept = std::min(_count, kMostEntries);
    for (UInt32 i = 0; _resources && i < kept; ++i) {
        ResourceInfo& entry = _resources[i];
        // Somebody else may hold the font; it needs its bytes then.
        if (entry.object && entry.object->Release() > 0)
            static_cast<Font*>(entry.object)->AdoptContent(std::move(entry.file_content));
    }
}

/** Keeps the directory part of the path; false when it has no room. */
bool Resource::SetRootPath(PtrConstTChar file_name)
{
    const char* slash = std::strrchr(file_name, '/');
    const std::size_t length = slash ? slash + 1 - file_name : 0;
    if (length >= kPathRoom)
        return false;
    std::memcpy(_root_path, file_name, length);
    return true;
}

void Resource::ReadIndex(std::FILE* index)
{
    char line[kLineRoom];
    if (std::fgets(line, kLineRoom, index))
        _count = LeadingNumber(line);
    const UInt32 kept = std::min(_count, kMostEntries);
    _resources.reset(new (std::nothrow) ResourceInfo[kept]);
    for (UInt32 i = 0; _resources && i < kept && std::fgets(line, kLineRoom, index); ++i)
        ReadEntry(line, _resources[i]);
}

void Resource::ReadEntry(const char* line, ResourceInfo& entry) const
{
    std::string_view rest = line;
    entry.type = NextField(rest) == "fnt" ? ResourceFont : ResourceUnknown;
    const std::string_view file = NextField(rest);
    if (file.empty())
        return;
    const std::string_view root = _root_path;
    entry.file_name.reset(new char[root.size() + file.size() + 1]());
    file.copy(std::copy(root.begin(), root.end(), entry.file_name.get()), file.size());
}

IFont* Resource::OpenFont(ResIndex index, bool& bDownload)
{
    const UInt16 position = static_cast<UInt16>(index - 1);
    if (position > kLastServed)
        return nullptr;
    if (_downloadable) {
        bDownload = true;
        return static_cast<Font*>(static_cast<IZELObject*>(_downloadable));
    }
    bDownload = false;
    // Only 16 bits of the count are compared: a file that declares 65536 entries serves none.
    if (position >= static_cast<UInt16>(_count))
        return nullptr;
    ResourceInfo& entry = _resources[position];
    if (entry.type != ResourceFont)
        return nullptr;
    if (entry.object)
        return static_cast<Font*>(entry.object);
    if (!entry.file_name)
        return nullptr;

    const File file = OpenForReading(entry.file_name.get());
    if (!file) {
        std::printf("Failed to open font file %s\n", entry.file_name.get());
        return nullptr;
    }
    if (!ReadContent(file.get(), entry))
        return nullptr;
    // A face that FreeType rejects is a font all the same: it measures 0 and draws nothing.
    Font* font = new Font(entry.file_name.get(), entry.file_content.get(), entry.file_length);
    if (!font->IsAvailable()) {
        delete font;
        return nullptr;
    }
    font->Hold();
    entry.object = font;
    return font;
}

IResource* zelOpenResource(const char* file_name)
{
    auto* resource = new Resource(file_name);
    if (!resource->IsAvailable()) {
        delete resource;
        return nullptr;
    }
    return resource;
}

IResource* zelOpenResource(const char* font_name, const char* con, int len)
{
    return new Resource(font_name, con, len);
}

} // namespace zelxxx
