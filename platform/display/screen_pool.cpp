#include "screen_pool.h"

#include "screen_layer.h"
#include "screen_memory.h"

#include <cstdio>

namespace kestrin_display {
namespace {

// Panels want rows to start at multiples of the bus width.
constexpr std::uint32_t pitch_alignment = 16;

struct PoolLocal
{
    ScreenMemory* memory;
};

struct Buffer
{
    std::uint64_t offset; // in the video memory
    std::uint32_t pitch;  // in bytes
};

ScreenMemory& MemoryOf(void* pool_local)
{
    return *static_cast<PoolLocal*>(pool_local)->memory;
}

int PoolLocalDataSize()
{
    return sizeof(PoolLocal);
}

int AllocationDataSize()
{
    return sizeof(Buffer);
}

DFBResult InitPool(CoreDFB*, CoreSurfacePool*, void*, void* pool_local, void* system_data,
                   CoreSurfacePoolDescription* description)
{
    auto* memory = static_cast<ScreenMemory*>(system_data);
    static_cast<PoolLocal*>(pool_local)->memory = memory;

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
    description->size = memory->Size();
    std::snprintf(description->name, DFB_SURFACE_POOL_DESC_NAME_LENGTH, "Screen file");
    return DFB_OK;
}

DFBResult TestConfig(CoreSurfacePool*, void*, void*, CoreSurfaceBuffer* buffer,
                     const CoreSurfaceConfig* config)
{
    if ((buffer->surface->type & CSTF_LAYER) == 0 || FormatOf(config->format) == PixelFormat::None)
        return DFB_UNSUPPORTED;
    return DFB_OK;
}

DFBResult AllocateBuffer(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceBuffer*,
                         CoreSurfaceAllocation* allocation, void* alloc_data)
{
    const CoreSurfaceConfig& config = allocation->config;
    const std::uint32_t row =
        static_cast<std::uint32_t>(config.size.w) * BytesPerPixel(FormatOf(config.format));
    const std::uint32_t pitch = (row + pitch_alignment - 1) / pitch_alignment * pitch_alignment;
    const std::uint64_t size = std::uint64_t{pitch} * static_cast<std::uint32_t>(config.size.h);

    const auto offset = MemoryOf(pool_local).Allocate(size);
    if (!offset)
        return DFB_NOVIDEOMEMORY;

    auto& buffer = *static_cast<Buffer*>(alloc_data);
    buffer.offset = *offset;
    buffer.pitch = pitch;
    allocation->offset = *offset;
    allocation->size = static_cast<int>(size);
    return DFB_OK;
}

DFBResult DeallocateBuffer(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceBuffer*,
                           CoreSurfaceAllocation*, void* alloc_data)
{
    MemoryOf(pool_local).Free(static_cast<Buffer*>(alloc_data)->offset);
    return DFB_OK;
}

DFBResult Lock(CoreSurfacePool*, void*, void* pool_local, CoreSurfaceAllocation*, void* alloc_data,
               CoreSurfaceBufferLock* lock)
{
    const ScreenMemory& memory = MemoryOf(pool_local);
    const auto& buffer = *static_cast<Buffer*>(alloc_data);

    lock->offset = buffer.offset;
    lock->pitch = buffer.pitch;
    lock->addr = memory.Address(buffer.offset);
    lock->phys = memory.Physical(buffer.offset);
    return DFB_OK;
}

DFBResult Unlock(CoreSurfacePool*, void*, void*, CoreSurfaceAllocation*, void*,
                 CoreSurfaceBufferLock*)
{
    return DFB_OK;
}

SurfacePoolFuncs MakeFunctions()
{
    SurfacePoolFuncs functions = {};
    functions.PoolLocalDataSize = PoolLocalDataSize;
    functions.AllocationDataSize = AllocationDataSize;
    functions.InitPool = InitPool;
    functions.TestConfig = TestConfig;
    functions.AllocateBuffer = AllocateBuffer;
    functions.DeallocateBuffer = DeallocateBuffer;
    functions.Lock = Lock;
    functions.Unlock = Unlock;
    return functions;
}

} // namespace

const SurfacePoolFuncs screen_pool_functions = MakeFunctions();

} // namespace kestrin_display
