#include "memory_pool.h"

#include "surface_pool.h"

#include <cstdio>
#include <cstdlib>

namespace kestrin_gfx {
namespace {

constexpr std::size_t cache_line = 64;
constexpr int pitch_alignment = 8; // as in DirectFB's own memory: clients see the pitch

struct Buffer
{
    void* address;
    int pitch; // in bytes
};

DFBResult InitPool(CoreDFB*, CoreSurfacePool*, void*, void*, void*,
                   CoreSurfacePoolDescription* description)
{
    constexpr auto all = static_cast<CoreSurfaceAccessFlags>(CSAF_READ | CSAF_WRITE | CSAF_SHARED);
    unsigned types =
        CSTF_LAYER | CSTF_WINDOW | CSTF_CURSOR | CSTF_FONT | CSTF_SHARED | CSTF_INTERNAL;
    if ((dfb_system_caps() & CSCAPS_SYSMEM_EXTERNAL) != 0)
        types |= CSTF_EXTERNAL;

    description->caps = CSPCAPS_VIRTUAL;
    description->access[CSAID_CPU] = all;
    description->access[CSAID_GPU] = all;
    description->types = static_cast<CoreSurfaceTypeFlags>(types);
    description->priority = CSPP_PREFERED;
    std::snprintf(description->name, DFB_SURFACE_POOL_DESC_NAME_LENGTH, "Kestrin Memory");
    return DFB_OK;
}

/**
 * Pixels never move here from elsewhere: they would go to and fro with every access. So surfaces in
 * a client's memory or another pool's stay there, and DirectFB draws on them unless that pool lets
 * the driver in. What a layer shows belongs to the system that shows it, at once.
 */
DFBResult TestConfig(CoreSurfacePool*, void*, void*, CoreSurfaceBuffer* buffer,
                     const CoreSurfaceConfig*)
{
    const bool elsewhere =
        (buffer->type & CSTF_PREALLOCATED) != 0 || fusion_vector_size(&buffer->allocs) > 0;
    const bool shown =
        (buffer->surface->type & CSTF_LAYER) != 0 && buffer->policy != CSP_SYSTEMONLY;
    return elsewhere || shown ? DFB_UNSUPPORTED : DFB_OK;
}

DFBResult AllocateBuffer(CoreSurfacePool*, void*, void*, CoreSurfaceBuffer* buffer,
                         CoreSurfaceAllocation* allocation, void* alloc_data)
{
    auto& taken = *static_cast<Buffer*>(alloc_data);
    int size = 0;
    dfb_surface_calc_buffer_size(buffer->surface, pitch_alignment, 0, &taken.pitch, &size);
    if (posix_memalign(&taken.address, cache_line, static_cast<std::size_t>(size)) != 0)
        return DFB_NOSYSTEMMEMORY;
    allocation->size = size;
    return DFB_OK;
}

DFBResult DeallocateBuffer(CoreSurfacePool*, void*, void*, CoreSurfaceBuffer*,
                           CoreSurfaceAllocation*, void* alloc_data)
{
    std::free(static_cast<Buffer*>(alloc_data)->address);
    return DFB_OK;
}

DFBResult Lock(CoreSurfacePool*, void*, void*, CoreSurfaceAllocation*, void* alloc_data,
               CoreSurfaceBufferLock* lock)
{
    const auto& buffer = *static_cast<Buffer*>(alloc_data);
    lock->addr = buffer.address;
    lock->pitch = static_cast<unsigned>(buffer.pitch);
    return DFB_OK;
}

} // namespace

const SurfacePoolFuncs memory_pool_functions = kestrin_modules::PoolFunctions<Buffer>(
    InitPool, TestConfig, AllocateBuffer, DeallocateBuffer, Lock);

} // namespace kestrin_gfx
