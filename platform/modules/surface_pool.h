/** What the surface pools of our modules have in common. */
#pragma once

#include "directfb_core.h"

namespace kestrin_modules {

/**
 * The operations of a pool that keeps a Buffer for each allocation and has nothing to undo after an
 * access. Others are null, as DirectFB takes what a pool does not do.
 */
template <class Buffer>
SurfacePoolFuncs PoolFunctions(decltype(SurfacePoolFuncs::InitPool) init_pool,
                               decltype(SurfacePoolFuncs::TestConfig) test_config,
                               decltype(SurfacePoolFuncs::AllocateBuffer) allocate_buffer,
                               decltype(SurfacePoolFuncs::DeallocateBuffer) deallocate_buffer,
                               decltype(SurfacePoolFuncs::Lock) lock)
{
    SurfacePoolFuncs functions = {};
    functions.AllocationDataSize = [] { return static_cast<int>(sizeof(Buffer)); };
    functions.InitPool = init_pool;
    functions.TestConfig = test_config;
    functions.AllocateBuffer = allocate_buffer;
    functions.DeallocateBuffer = deallocate_buffer;
    functions.Lock = lock;
    functions.Unlock = [](CoreSurfacePool*, void*, void*, CoreSurfaceAllocation*, void*,
                          CoreSurfaceBufferLock*) { return DFB_OK; };
    return functions;
}

} // namespace kestrin_modules
