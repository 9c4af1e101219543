#include "screen_pool.h"

#include "screen_system.h"
#include "surface_pool.h"

#include <cstdio>

namespace kestrin_display {
namespace {

// Panels want rows to start at multiples of the bus width.
constexpr std::uint32_t pitch_alignment = 16;

struct PoolLocal
{
    ScreenSystem* system;
};

struct Buffer
{
    std::uint64_t offset; // in the video memory
    std::uint32_t pitch;  // in bytes
};

ScreenSystem& SystemOf(void* pool_local)
{
    return *static_cast<PoolLocal*>(pool_local)->system;
}

int PoolLocalDataSize()
{
    return sizeof(PoolLocal);
}

DFBResult InitPool(CoreDFB*, CoreSurfacePool*, void*, void* pool_local, void* system_data,
                   CoreSurfacePoolDescription* description)
{
    auto* system = static_cast<ScreenSystem*>(system_data);
    static_cast<PoolLocal*>(pool_local)->system = system;

    constexpr auto all = static_cast<CoreSurfaceAccessFlags>(CSAF_READ | CSAF_WRITE | CSAF_SHARED);
    description->caps =
        static_cast<CoreSurfacePoolCapabilities>(CSPCAPS_PHYSICAL | CSPCAPS_VIRTUAL);
    description->access[CSAID_CPU] = all;
    description->access[CSAID_GPU] = all;
    for (std::uint32_t id = 0; id < screen_layer_count; id++)
        description->access[CSAID_LAYER0 + id] = CSAF_READ;
    description->types =
        static_cast<CoreSurfaceTypeFlags>(CSTF_LAYER | CSTF_SHARED | CSTF_EXTERNAL);
    description->priority = CSPP_ULTIMATE;
    description->size = system->memory->Size();
    std::snprintf(description->name, DFB_SURFACE_POOL_DESC_NAME_LENGTH, "Screen file");
    return DFB_OK;
}

DFBResult TestConfig(CoreSurfacePool*, void*, void*, CoreSurfaceBuffer* buffer,
                     const CoreSurfaceConfig* config)
{
    if ((buffer->surface->type & CSTF_LAYER) == 0 ||
        buffer->surface->resource_id >= screen_layer_count ||
        FormatOf(config->format) == PixelFormat::None)
        return DFB_UNSUPPORTED;
    return DFB_OK;
}

DFBResult AllocateBuffer(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceBuffer* buffer,
                         CoreSurfaceAllocation* allocation, void* alloc_data)
{
    const CoreSurfaceConfig& config = allocation->config;
    const std::uint32_t row =
        static_cast<std::uint32_t>(config.size.w) * BytesPerPixel(FormatOf(config.format));
    const std::uint32_t pitch = (row + pitch_alignment - 1) / pitch_alignment * pitch_alignment;
    const std::uint64_t size = std::uint64_t{pitch} * static_cast<std::uint32_t>(config.size.h);

    // What DirectFB paints when a program leaves its layer must not destroy the program's picture.
    const CoreSurface& surface = *buffer->surface;
    ScreenSystem& system = SystemOf(pool_local);
    const auto area = system.layers[surface.resource_id]->IsDesktop(surface)
                          ? ScreenMemory::Area::Desktops
                          : ScreenMemory::Area::Programs;
    const auto offset = system.memory->Allocate(size, area);
    if (!offset)
        return DFB_NOVIDEOMEMORY;

    auto& taken = *static_cast<Buffer*>(alloc_data);
    taken.offset = *offset;
    taken.pitch = pitch;
    allocation->offset = *offset;
    allocation->size = static_cast<int>(size);
    return DFB_OK;
}

DFBResult DeallocateBuffer(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceBuffer*,
                           CoreSurfaceAllocation*, void* alloc_data)
{
    SystemOf(pool_local).memory->Free(static_cast<Buffer*>(alloc_data)->offset);
    return DFB_OK;
}

DFBResult Lock(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceAllocation*, void* alloc_data,
               CoreSurfaceBufferLock* lock)
{
    const ScreenMemory& memory = *SystemOf(pool_local).memory;
    const auto& buffer = *static_cast<Buffer*>(alloc_data);

    lock->offset = buffer.offset;
    lock->pitch = buffer.pitch;
    lock->addr = memory.Address(buffer.offset);
    lock->phys = memory.Physical(buffer.offset);
    return DFB_OK;
}

SurfacePoolFuncs MakeFunctions()
{
    auto functions = kestrin_modules::PoolFunctions<Buffer>(InitPool, TestConfig, AllocateBuffer,
                                                            DeallocateBuffer, Lock);
    functions.PoolLocalDataSize = PoolLocalDataSize;
    return functions;
}

} // namespace

const SurfacePoolFuncs screen_pool_functions = MakeFunctions();

} // namespace kestrin_display
