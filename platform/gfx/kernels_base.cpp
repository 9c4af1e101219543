// SSE2 on x86-64, NEON on ARM, the compiler's own devices elsewhere.
namespace {
constexpr int VectorBytes = 16;
}
#define KESTRIN_GFX_KERNELS base_kernels
#include "kernels_p.h"

namespace kestrin_gfx {

const Kernels& BestKernels()
{
#ifdef KESTRIN_GFX_AVX2
    if (__builtin_cpu_supports("avx2"))
        return avx2_kernels;
#endif
    return base_kernels;
}

} // namespace kestrin_gfx
