#include "screen_memory.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kestrin_display {
namespace {

// Each half holds triple buffers of two 1920 x 1080 layers with 4 bytes a pixel, and more.
constexpr std::uint64_t memory_size = 192 * 1024 * 1024;

// Below 4 GiB, as on a set-top box, so that clients with 32-bit addresses keep all of it.
constexpr std::uint64_t physical_base = 0x40000000;

std::string Reason(const std::string& what, const std::string& path, int error)
{
    return what + " " + path + ": " + std::strerror(error);
}

} // namespace

std::unique_ptr<ScreenMemory> ScreenMemory::Create(const std::string& path, std::uint32_t width,
                                                   std::uint32_t height, std::string& error)
{
    std::string temporary = path + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) {
        error = Reason("cannot create screen file", path, errno);
        return nullptr;
    }

    std::unique_ptr<ScreenMemory> memory(
        new ScreenMemory(file, static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))));
    if (!memory->Map(width, height)) {
        error = Reason("cannot map screen file", temporary, errno);
        unlink(temporary.c_str());
        return nullptr;
    }
    if (rename(temporary.c_str(), path.c_str()) != 0) {
        error = Reason("cannot put in place screen file", path, errno);
        unlink(temporary.c_str());
        return nullptr;
    }
    return memory;
}

ScreenMemory::ScreenMemory(int file, std::uint64_t page) : _file(file), _page(page) {}

ScreenMemory::~ScreenMemory()
{
    if (_memory != nullptr)
        munmap(_memory, _header->memory_size);
    if (_header != nullptr)
        munmap(_header, _header->memory_offset);
    close(_file);
}

LayerBlock& ScreenMemory::Block(std::uint32_t layer)
{
    return *reinterpret_cast<LayerBlock*>(reinterpret_cast<std::byte*>(_header) +
                                          LayerBlockOffset(layer));
}

std::optional<std::uint64_t> ScreenMemory::Allocate(std::uint64_t size, Area area)
{
    const std::uint64_t wanted = WholePages(size);

    // The first page of the area stays inaccessible, and so does the one behind every buffer.
    const std::uint64_t half = _header->memory_size / 2;
    const std::uint64_t begin = area == Area::Programs ? 0 : half;
    std::uint64_t offset = begin + _page;
    for (auto used = _buffers.lower_bound(offset); used != _buffers.end(); ++used) {
        if (offset + wanted + _page <= used->first)
            break;
        offset = used->first + used->second + _page;
    }
    if (offset + wanted + _page > begin + half)
        return std::nullopt;

    // A full disk would otherwise end the program at the first pixel instead of here.
    if (fallocate(_file, 0, static_cast<off_t>(FileOffset(offset)), static_cast<off_t>(wanted)) !=
            0 &&
        errno != EOPNOTSUPP)
        return std::nullopt;
    if (mprotect(_memory + offset, wanted, PROT_READ | PROT_WRITE) != 0)
        return std::nullopt;

    _buffers.emplace(offset, wanted);
    return offset;
}

void ScreenMemory::Free(std::uint64_t offset)
{
    const auto buffer = _buffers.find(offset);
    if (buffer == _buffers.end())
        return;
    mprotect(_memory + offset, buffer->second, PROT_NONE);
    _buffers.erase(buffer);
}

bool ScreenMemory::Map(std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t memory_offset = WholePages(LayerBlockOffset(screen_layer_count));

    if (ftruncate(_file, static_cast<off_t>(memory_offset + memory_size)) != 0)
        return false;

    void* start = mmap(nullptr, memory_offset, PROT_READ | PROT_WRITE, MAP_SHARED, _file, 0);
    if (start == MAP_FAILED)
        return false;
    _header = static_cast<ScreenHeader*>(start);
    std::memcpy(_header->magic, screen_file_magic, sizeof(_header->magic));
    _header->version = screen_file_version;
    _header->layer_count = screen_layer_count;
    _header->width = width;
    _header->height = height;
    _header->process = static_cast<std::uint32_t>(getpid());
    _header->memory_offset = memory_offset;
    _header->memory_size = memory_size;
    _header->physical_base = physical_base;

    void* memory =
        mmap(nullptr, memory_size, PROT_NONE, MAP_SHARED, _file, static_cast<off_t>(memory_offset));
    if (memory == MAP_FAILED)
        return false;
    _memory = static_cast<std::byte*>(memory);
    return true;
}

std::uint64_t ScreenMemory::WholePages(std::uint64_t bytes) const
{
    return (bytes + _page - 1) / _page * _page;
}

} // namespace kestrin_display
