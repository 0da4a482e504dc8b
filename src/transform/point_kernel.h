#pragma once

#include "transform/matrix4.h"

#include <norvek/foundation/point3d.h>

#include <cstddef>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Positions through an affine 4x4 matrix, many at a time.
///
/// Every form gives each coordinate as ((m0 x + m1 y) + m2 z) + m3, so that all give the same bits.
/// The compiler's own vectorisation keeps the stride of three doubles in the way; taking two points
/// at a time, transposed into the pairs (x, x'), (y, y'), (z, z'), costs six shuffles and halves
/// the arithmetic.
namespace Norvek::Math::Core
{

/// `out` and `in` are the same array or do not overlap.
inline void TransformPointsOneByOne(MMPoint3d<double>* out, const MMPoint3d<double>* in,
                                    std::size_t count, const Matrix4& m)
{
    for (std::size_t i = 0; i < count; ++i) {
        const MMPoint3d<double> p = in[i];
        out[i] = {RowTimesPoint(m[0], p.x, p.y, p.z, false),
                  RowTimesPoint(m[1], p.x, p.y, p.z, false),
                  RowTimesPoint(m[2], p.x, p.y, p.z, false)};
    }
}

#if defined(__SSE2__)

/// Results of this many points and more leave the caches by themselves before anyone reads them:
/// they are written past the caches, which spares reading the target first. 2 MiB, the second-level
/// cache of a current processor.
inline constexpr std::size_t kStreamingCount = (std::size_t{2} << 20) / sizeof(MMPoint3d<double>);

/// Points in one run of a streamed block: three pages of 4096 bytes.
inline constexpr std::size_t kRunCount = 512;

/// The rows of the matrix, each element in both lanes.
using WideRows = __m128d[3][4];

/// Three coordinates of two points: the results for one row of the matrix.
inline __m128d RowTimesTwoPoints(const __m128d (&row)[4], __m128d x, __m128d y, __m128d z)
{
    const __m128d sum = _mm_add_pd(_mm_mul_pd(row[0], x), _mm_mul_pd(row[1], y));
    return _mm_add_pd(_mm_add_pd(sum, _mm_mul_pd(row[2], z)), row[3]);
}

/// Transforms eight points, 192 bytes, which are three lines of the cache where `out` starts one.
/// With `streaming` the writes pass the caches, and `out` is aligned to 16 bytes.
template <bool streaming>
inline void TransformEightPoints(double* out, const double* in, const WideRows& rows)
{
    const auto store = [](double* to, __m128d value) {
        if constexpr (streaming)
            _mm_stream_pd(to, value);
        else
            _mm_storeu_pd(to, value);
    };
    for (int i = 0; i < 24; i += 6) {
        const __m128d a = _mm_loadu_pd(in + i);
        const __m128d b = _mm_loadu_pd(in + i + 2);
        const __m128d c = _mm_loadu_pd(in + i + 4);
        const __m128d x = _mm_shuffle_pd(a, b, 2);
        const __m128d y = _mm_shuffle_pd(a, c, 1);
        const __m128d z = _mm_shuffle_pd(b, c, 2);
        const __m128d outX = RowTimesTwoPoints(rows[0], x, y, z);
        const __m128d outY = RowTimesTwoPoints(rows[1], x, y, z);
        const __m128d outZ = RowTimesTwoPoints(rows[2], x, y, z);
        store(out + i, _mm_unpacklo_pd(outX, outY));
        store(out + i + 2, _mm_shuffle_pd(outZ, outX, 2));
        store(out + i + 4, _mm_unpackhi_pd(outY, outZ));
    }
}

inline void WidenRows(WideRows& rows, const Matrix4& m)
{
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j)
            rows[i][j] = _mm_set1_pd(m[i][j]);
    }
}

/// Transforms the whole eights of `count` points and returns how many that are.
inline std::size_t TransformEights(MMPoint3d<double>* out, const MMPoint3d<double>* in,
                                   std::size_t count, const WideRows& rows)
{
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8)
        TransformEightPoints<false>(&out[i].x, &in[i].x, rows);
    return i;
}

/// Streams whole blocks of two runs and returns how many points that are. The runs of a block are
/// read and written by turns, so that two pages at a time are on their way from and to memory, and
/// the next block is asked for meanwhile: the processor's own prefetcher stops at the end of a
/// page. One run after the other takes a quarter longer.
inline std::size_t StreamBlocks(MMPoint3d<double>* out, const MMPoint3d<double>* in,
                                std::size_t count, const WideRows& rows)
{
    constexpr std::size_t block = 2 * kRunCount;
    std::size_t done = 0;
    // A block without a successor is left to the caller, so that nothing is asked for past the end.
    for (; done + 2 * block <= count; done += block) {
        for (std::size_t i = done; i < done + kRunCount; i += 8) {
            for (std::size_t k = i; k < done + block; k += kRunCount) {
                const char* const next = reinterpret_cast<const char*>(in + k + block);
                _mm_prefetch(next, _MM_HINT_T0);
                _mm_prefetch(next + 64, _MM_HINT_T0);
                _mm_prefetch(next + 128, _MM_HINT_T0);
                TransformEightPoints<true>(&out[k].x, &in[k].x, rows);
            }
        }
    }
    _mm_sfence();
    return done;
}

/// The points before the first one of `out` that starts a line of the cache; at most 7.
inline std::size_t PointsBeforeLine(const MMPoint3d<double>* out)
{
    std::size_t count = 0;
    while (reinterpret_cast<std::uintptr_t>(out + count) % 64 != 0 && count < 8)
        ++count;
    return count;
}

/// `out` and `in` are the same array or do not overlap.
inline void TransformPoints(MMPoint3d<double>* out, const MMPoint3d<double>* in, std::size_t count,
                            const Matrix4& m)
{
    WideRows rows;
    WidenRows(rows, m);
    std::size_t done = 0;
    if (out != in && count >= kStreamingCount) {
        // Lines written only in part would be merged one by one; so start at a line.
        done = PointsBeforeLine(out);
        TransformPointsOneByOne(out, in, done, m);
        done += StreamBlocks(out + done, in + done, count - done, rows);
    }
    done += TransformEights(out + done, in + done, count - done, rows);
    TransformPointsOneByOne(out + done, in + done, count - done, m);
}

#else

/// `out` and `in` are the same array or do not overlap.
inline void TransformPoints(MMPoint3d<double>* out, const MMPoint3d<double>* in, std::size_t count,
                            const Matrix4& m)
{
    TransformPointsOneByOne(out, in, count, m);
}

#endif

} // namespace Norvek::Math::Core
