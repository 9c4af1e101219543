// Compiled for processors with AVX2, and run on those alone.
namespace {
constexpr int VectorBytes = 32;
}
#define KESTRIN_GFX_KERNELS avx2_kernels
#include "kernels_p.h"
