/**
 * The loops of kernels.h for vectors of VectorBytes bytes.
 *
 * Written in the vector types of GCC and Clang, which become whatever the processor has and plain
 * arithmetic where it has nothing. Included by one source file for each set of instructions, which
 * names it with KESTRIN_GFX_KERNELS and VectorBytes; all is local to that file, so that nothing
 * compiled for one processor is ever run on another.
 *
 * Channels are worked on in pairs. A pixel is two lanes of 16 bits, and each lane holds two
 * channels: the lower byte of one pair (blue and red), the upper byte of the other (green and
 * alpha). No product of a channel and a factor up to 256 leaves its 16 bits.
 */
#include "kernels.h"

#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

#define KESTRIN_INLINE __attribute__((always_inline)) inline

namespace kestrin_gfx {
namespace {

template <int Bytes>
struct Vector
{
    static constexpr int pixels = Bytes / 4;
    typedef std::uint8_t U8 __attribute__((vector_size(Bytes)));
    typedef std::uint16_t U16 __attribute__((vector_size(Bytes)));
    typedef std::uint32_t U32 __attribute__((vector_size(Bytes)));
    typedef std::int32_t I32 __attribute__((vector_size(Bytes)));
    typedef float F32 __attribute__((vector_size(Bytes)));
};

constexpr int small_bytes = 16;
using Small = Vector<small_bytes>;
using Large = Vector<VectorBytes>;

template <class V>
KESTRIN_INLINE typename V::U32 Load(const std::uint8_t* from)
{
    typename V::U32 pixels;
    std::memcpy(&pixels, from, sizeof pixels);
    return pixels;
}

template <class V>
KESTRIN_INLINE void Store(std::uint8_t* to, typename V::U32 pixels)
{
    std::memcpy(to, &pixels, sizeof pixels);
}

/** One factor for both lanes of each pixel. */
template <class V>
KESTRIN_INLINE typename V::U16 Both(typename V::U32 factor)
{
    return (typename V::U16)(factor | factor << 16);
}

/** Every channel times a factor from 0 to 256, divided by 256 and rounded down. */
template <class V>
KESTRIN_INLINE typename V::U32 Scale(typename V::U32 pixels, typename V::U16 factor)
{
    const auto lanes = (typename V::U16)pixels;
    return (typename V::U32)(((lanes & 0xff) * factor) >> 8 | (((lanes >> 8) * factor) & 0xff00));
}

/** Colours multiplied with their alpha, as (alpha + 1) / 256; alpha stays. */
template <class V>
KESTRIN_INLINE typename V::U32 Premultiply(typename V::U32 pixels)
{
    const auto lanes = (typename V::U16)pixels;
    const typename V::U32 factor = (pixels >> 24) + 1;
    const auto blue_red = (lanes & 0xff) * Both<V>(factor) >> 8;
    const auto green_alpha = (lanes >> 8) * (typename V::U16)(factor | 256U << 16);
    return (typename V::U32)(blue_red | (green_alpha & 0xff00));
}

/** One channel of each word times a factor, rounded down. */
template <class V>
KESTRIN_INLINE typename V::I32 ScaleChannel(typename V::I32 words, int shift,
                                            typename V::F32 factor)
{
    const auto value = __builtin_convertvector(words >> shift & 0xff, typename V::F32);
    return __builtin_convertvector(value * factor, typename V::I32) << shift;
}

/**
 * Colours times 256 / (alpha + 1), rounded down. They are at most their alpha, so that floats tell
 * all quotients apart; the factor is a little above the true one, so that whole quotients do not
 * fall short.
 */
template <class V>
KESTRIN_INLINE typename V::U32 Demultiply(typename V::U32 pixels)
{
    const auto words = (typename V::I32)pixels;
    const auto alpha = (typename V::I32)(pixels >> 24);
    const auto factor = 256.001F / __builtin_convertvector(alpha + 1, typename V::F32);
    return (pixels & 0xff000000U) |
           (typename V::U32)(ScaleChannel<V>(words, 0, factor) | ScaleChannel<V>(words, 8, factor) |
                             ScaleChannel<V>(words, 16, factor));
}

/** Sums of channels, at most 255. */
template <class V>
KESTRIN_INLINE typename V::U32 AddClamped(typename V::U32 a, typename V::U32 b)
{
#if defined(__AVX2__)
    if constexpr (sizeof a == 32)
        return (typename V::U32)_mm256_adds_epu8((__m256i)a, (__m256i)b);
#endif
#if defined(__SSE2__)
    if constexpr (sizeof a == 16)
        return (typename V::U32)_mm_adds_epu8((__m128i)a, (__m128i)b);
#elif defined(__ARM_NEON)
    if constexpr (sizeof a == 16)
        return (typename V::U32)vqaddq_u8((uint8x16_t)a, (uint8x16_t)b);
#endif
    const auto sum = (typename V::U8)a + (typename V::U8)b;
    return (typename V::U32)(sum | (typename V::U8)(sum < (typename V::U8)a));
}

/** Whether no pixel lets anything through. */
template <class V>
KESTRIN_INLINE bool AreOpaque(typename V::U32 pixels)
{
#if defined(__AVX2__)
    if constexpr (sizeof pixels == 32)
        return _mm256_testc_si256((__m256i)pixels, _mm256_set1_epi32(-0x1000000)) != 0;
#endif
#if defined(__SSE2__)
    if constexpr (sizeof pixels == 16)
        return (_mm_movemask_epi8(_mm_cmpeq_epi8((__m128i)pixels, _mm_set1_epi8(-1))) & 0x8888) ==
               0x8888;
#endif
    std::uint64_t pairs[sizeof pixels / 8];
    std::memcpy(pairs, &pixels, sizeof pixels);
    std::uint64_t all = ~std::uint64_t{0};
    for (const std::uint64_t pair : pairs)
        all &= pair;
    return (all | 0x00ffffff00ffffffU) == ~std::uint64_t{0};
}

// What is done to pixels: `to` are those of the target, `from` those of the source.

struct Fill
{
    static constexpr int source_bytes = 0;
    std::uint32_t pixel;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32, typename V::U32) const
    {
        return typename V::U32{} + pixel;
    }
};

struct FillOver
{
    static constexpr int source_bytes = 0;
    std::uint32_t added;
    std::uint16_t keep;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32) const
    {
        return AddClamped<V>(Scale<V>(to, typename V::U16{} + keep), typename V::U32{} + added);
    }
};

struct Over
{
    static constexpr int source_bytes = 4;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 from) const
    {
        return from + Scale<V>(to, Both<V>(256 - (from >> 24)));
    }
};

struct Faded
{
    static constexpr int source_bytes = 4;
    std::uint16_t opacity;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 from) const
    {
        const auto alpha = (typename V::U32)((typename V::U16)(from >> 24) * opacity >> 8);
        const typename V::U32 faded = (from & 0xffffffU) | alpha << 24;
        return AddClamped<V>(faded, Scale<V>(to, Both<V>(256 - alpha)));
    }
};

struct Straight
{
    static constexpr int source_bytes = 4;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 from) const
    {
        const auto added = Premultiply<V>(from);
        const auto keep = Both<V>(256 - (from >> 24));
        // Opaque pixels stay so, and multiplying and dividing by their alpha change nothing.
        if (AreOpaque<V>(to))
            return added + Scale<V>(to, keep);
        return Demultiply<V>(added + Scale<V>(Premultiply<V>(to), keep));
    }
};

struct Under
{
    static constexpr int source_bytes = 4;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 from) const
    {
        return AddClamped<V>(to, Scale<V>(from, Both<V>(256 - (to >> 24))));
    }
};

struct Keyed
{
    static constexpr int source_bytes = 4;
    std::uint32_t key;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 from) const
    {
        const auto hidden = (typename V::U32)((from & 0xffffffU) == key);
        return (to & hidden) | (from & ~hidden);
    }
};

/** Coverage puts an opaque colour over what is there. */
struct Covered
{
    static constexpr int source_bytes = 1;
    std::uint32_t color;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 coverage) const
    {
        using U16 = typename V::U16;
        using U32 = typename V::U32;
        const auto lanes = (U16)to;
        const U16 kept = Both<V>(256 - coverage);
        const U16 gained = Both<V>(coverage + 1);
        // Both parts are added up before the division, and alpha gains the coverage itself.
        const U16 blue_red = (U16)(U32{} + (color & 0xff00ff)) * gained;
        const U16 green = (U16)(U32{} + (color >> 8 & 0xff)) * gained;
        const auto green_alpha = (U16)((U32)green | coverage << 24);
        return (U32)(((lanes & 0xff) * kept + blue_red) >> 8 |
                     (((lanes >> 8) * kept + green_alpha) & 0xff00));
    }
};

/** Coverage scaled by an opacity puts a colour over what is there. */
struct CoveredFaded
{
    static constexpr int source_bytes = 1;
    std::uint32_t color; // without alpha
    std::uint16_t opacity;

    template <class V>
    KESTRIN_INLINE typename V::U32 Apply(typename V::U32 to, typename V::U32 coverage) const
    {
        const auto alpha = (typename V::U32)((typename V::U16)coverage * opacity >> 8);
        const auto gained = Scale<V>(alpha << 24 | color, Both<V>(alpha + 1));
        return AddClamped<V>(gained, Scale<V>(to, Both<V>(256 - alpha)));
    }
};

/** The source's pixels, bytes widened to words. */
template <class V, int Bytes>
KESTRIN_INLINE typename V::U32 LoadSource(const std::uint8_t* from)
{
    if constexpr (Bytes == 4)
        return Load<V>(from);
    if constexpr (Bytes == 1) {
        typedef std::uint8_t Narrow __attribute__((vector_size(V::pixels)));
        Narrow bytes;
        std::memcpy(&bytes, from, sizeof bytes);
        return __builtin_convertvector(bytes, typename V::U32);
    }
    return typename V::U32{};
}

template <class V, class Operation>
KESTRIN_INLINE typename V::U32 Applied(const std::uint8_t* to, const std::uint8_t* from,
                                       const Operation& operation)
{
    const auto source = LoadSource<V, Operation::source_bytes>(from);
    return operation.template Apply<V>(Load<V>(to), source);
}

/**
 * A row of at least one vector. What the last vector becomes is found out before anything is
 * written, since it may begin inside the last but one.
 */
template <class V, class Operation>
KESTRIN_INLINE void ApplyToRow(std::uint8_t* to, const std::uint8_t* from, int width,
                               const Operation& operation)
{
    constexpr int bytes = Operation::source_bytes;
    const int last = width - V::pixels;
    const auto end = Applied<V>(to + 4 * last, from + bytes * last, operation);
    for (int x = 0; x < last; x += V::pixels)
        Store<V>(to + 4 * x, Applied<V>(to + 4 * x, from + bytes * x, operation));
    Store<V>(to + 4 * last, end);
}

/** Fewer pixels than a small vector has, one by one, as its other lanes are not ours. */
template <int Bytes>
KESTRIN_INLINE Small::U32 LoadFew(const std::uint8_t* from, int pixels)
{
    const auto pixel = [&](int i) {
        std::uint32_t value = 0;
        if (Bytes == 4 && i < pixels)
            std::memcpy(&value, from + 4 * i, 4);
        if (Bytes == 1 && i < pixels)
            value = from[i];
        return value;
    };
    return Small::U32{pixel(0), pixel(1), pixel(2), 0};
}

template <class Operation>
KESTRIN_INLINE void ApplyToFew(std::uint8_t* to, const std::uint8_t* from, int pixels,
                               const Operation& operation)
{
    const auto source = LoadFew<Operation::source_bytes>(from, pixels);
    const auto target = operation.template Apply<Small>(LoadFew<4>(to, pixels), source);
    const std::uint32_t words[] = {target[0], target[1], target[2]};
    for (int i = 0; i < 3 && i < pixels; ++i)
        std::memcpy(to + std::ptrdiff_t{4} * i, &words[i], 4);
}

template <class Operation>
KESTRIN_INLINE void ApplyToAll(Target to, Source from, Size size, const Operation& operation)
{
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        if (size.width >= Large::pixels)
            ApplyToRow<Large>(to.start, from.start, size.width, operation);
        else if (size.width >= Small::pixels)
            ApplyToRow<Small>(to.start, from.start, size.width, operation);
        else
            ApplyToFew(to.start, from.start, size.width, operation);
    }
}

void FillAll(Target to, Size size, std::uint32_t pixel)
{
    ApplyToAll(to, {to.start, 0}, size, Fill{pixel});
}

void FillAllOver(Target to, Size size, std::uint32_t added, unsigned keep)
{
    ApplyToAll(to, {to.start, 0}, size, FillOver{added, static_cast<std::uint16_t>(keep)});
}

void BlitOver(Target to, Source from, Size size)
{
    ApplyToAll(to, from, size, Over{});
}

void BlitFaded(Target to, Source from, Size size, unsigned opacity)
{
    ApplyToAll(to, from, size, Faded{static_cast<std::uint16_t>(opacity)});
}

void BlitStraight(Target to, Source from, Size size)
{
    ApplyToAll(to, from, size, Straight{});
}

void BlitUnder(Target to, Source from, Size size)
{
    ApplyToAll(to, from, size, Under{});
}

void BlitKeyed(Target to, Source from, Size size, std::uint32_t key)
{
    ApplyToAll(to, from, size, Keyed{key});
}

void BlitCovered(Target to, Source from, Size size, std::uint32_t color)
{
    ApplyToAll(to, from, size, Covered{color});
}

void BlitCoveredFaded(Target to, Source from, Size size, std::uint32_t color, unsigned opacity)
{
    const auto factor = static_cast<std::uint16_t>(opacity);
    ApplyToAll(to, from, size, CoveredFaded{color & 0xffffff, factor});
}

/** Rows from this many bytes on are the C library's. */
constexpr int long_row = 512;

/** Two pieces of a size that together cover all bytes, so that none is written one by one. */
template <class Piece>
KESTRIN_INLINE void CopyEnds(std::uint8_t* to, const std::uint8_t* from, int bytes)
{
    Piece first;
    Piece last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + bytes - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + bytes - sizeof last, &last, sizeof last);
}

/** Fewer bytes than a small vector has. */
KESTRIN_INLINE void CopyFew(std::uint8_t* to, const std::uint8_t* from, int bytes)
{
    if (bytes >= 8) {
        CopyEnds<std::uint64_t>(to, from, bytes);
    } else if (bytes >= 4) {
        CopyEnds<std::uint32_t>(to, from, bytes);
    } else {
        for (int i = 0; i < bytes; ++i)
            to[i] = from[i];
    }
}

/** Any number of bytes from a small vector on; the last ones may be written twice. */
KESTRIN_INLINE void CopyMany(std::uint8_t* to, const std::uint8_t* from, int bytes)
{
    int done = 0;
    for (; done + VectorBytes <= bytes; done += VectorBytes)
        Store<Large>(to + done, Load<Large>(from + done));
    for (; done + small_bytes <= bytes; done += small_bytes)
        Store<Small>(to + done, Load<Small>(from + done));
    if (done < bytes)
        Store<Small>(to + bytes - small_bytes, Load<Small>(from + bytes - small_bytes));
}

void Copy(Target to, Source from, Size size)
{
    const int bytes = size.width;
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        if (bytes >= long_row)
            std::memcpy(to.start, from.start, static_cast<std::size_t>(bytes));
        else if (bytes >= small_bytes)
            CopyMany(to.start, from.start, bytes);
        else
            CopyFew(to.start, from.start, bytes);
    }
}

void FillBytes(Target to, Size size, std::uint8_t value)
{
    const int bytes = size.width;
    const auto few = (Small::U32)(Small::U8{} + value);
    const auto many = (Large::U32)(Large::U8{} + value);
    for (int y = 0; y < size.height; ++y, to.start += to.pitch) {
        if (bytes >= long_row) {
            std::memset(to.start, value, static_cast<std::size_t>(bytes));
        } else if (bytes >= small_bytes) {
            int done = 0;
            for (; done + VectorBytes <= bytes; done += VectorBytes)
                Store<Large>(to.start + done, many);
            for (; done + small_bytes <= bytes; done += small_bytes)
                Store<Small>(to.start + done, few);
            if (done < bytes)
                Store<Small>(to.start + bytes - small_bytes, few);
        } else {
            CopyFew(to.start, reinterpret_cast<const std::uint8_t*>(&few), bytes);
        }
    }
}

template <class V>
KESTRIN_INLINE void CopyUnlessKey(std::uint8_t* to, const std::uint8_t* from, std::uint8_t key)
{
    using U8 = typename V::U8;
    const auto source = (U8)Load<V>(from);
    const auto target = (U8)Load<V>(to);
    const auto hidden = (U8)(source == key);
    Store<V>(to, (typename V::U32)((target & hidden) | (source & ~hidden)));
}

void BlitKeyedBytes(Target to, Source from, Size size, std::uint8_t key)
{
    for (int y = 0; y < size.height; ++y, to.start += to.pitch, from.start += from.pitch) {
        int x = 0;
        for (; x + VectorBytes <= size.width; x += VectorBytes)
            CopyUnlessKey<Large>(to.start + x, from.start + x, key);
        for (; x + small_bytes <= size.width; x += small_bytes)
            CopyUnlessKey<Small>(to.start + x, from.start + x, key);
        for (; x < size.width; ++x) {
            if (from.start[x] != key)
                to.start[x] = from.start[x];
        }
    }
}

} // namespace

const Kernels KESTRIN_GFX_KERNELS = {FillAll,   FillBytes,   FillAllOver,      Copy,
                                     BlitOver,  BlitFaded,   BlitStraight,     BlitUnder,
                                     BlitKeyed, BlitCovered, BlitCoveredFaded, BlitKeyedBytes};

} // namespace kestrin_gfx
