#pragma once

#include <norvek/foundation/point3d.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

/// The clouds and queries that our benchmarks of locators and those of other libraries share.
namespace norvek_benchmark
{

/// How the points of a cloud lie.
enum CloudKind
{
    Uniform = 0,   ///< Evenly in a cube.
    Clustered = 1, ///< Around a hundred centres.
    Surface = 2    ///< On a wavy surface, as a scanner sees it.
};

using Cloud = std::vector<MMPoint3d<double>>;

inline Cloud MakeCloud(CloudKind kind, std::size_t count)
{
    std::mt19937_64 engine(17);
    std::uniform_real_distribution<double> even(-100.0, 100.0);
    std::normal_distribution<double> bell(0.0, 1.0);
    Cloud centres(100);
    for (MMPoint3d<double>& centre : centres)
        centre = {even(engine), even(engine), even(engine)};
    Cloud cloud(count);
    for (std::size_t i = 0; i < count; ++i) {
        MMPoint3d<double>& p = cloud[i];
        if (kind == Clustered)
            p = centres[i % 100] + MMPoint3d<double>{bell(engine), bell(engine), bell(engine)};
        else
            p = {even(engine), even(engine), even(engine)};
        if (kind == Surface)
            p.z = 10.0 * std::sin(p.x / 20.0) * std::cos(p.y / 15.0) + 0.01 * bell(engine);
    }
    return cloud;
}

/// Points of the cloud, moved by a thousandth of its size.
inline Cloud NearQueries(const Cloud& cloud, std::size_t count)
{
    std::mt19937_64 engine(18);
    std::normal_distribution<double> bell(0.0, 0.1);
    Cloud queries(count);
    for (MMPoint3d<double>& query : queries)
        query = cloud[engine() % cloud.size()] +
                MMPoint3d<double>{bell(engine), bell(engine), bell(engine)};
    return queries;
}

/// Anywhere in the cube of the cloud.
inline Cloud RandomQueries(std::size_t count)
{
    std::mt19937_64 engine(19);
    std::uniform_real_distribution<double> even(-100.0, 100.0);
    Cloud queries(count);
    for (MMPoint3d<double>& query : queries)
        query = {even(engine), even(engine), even(engine)};
    return queries;
}

/// A radius within which about eight points of the cloud lie.
inline double TypicalRadius(CloudKind kind, std::size_t count)
{
    const double n = static_cast<double>(count);
    if (kind == Surface)
        return 200.0 * std::sqrt(8.0 / (3.14 * n));
    const double volume = kind == Uniform ? 8e6 : 100.0 * 60.0;
    return std::cbrt(8.0 * volume / (4.19 * n));
}

} // namespace norvek_benchmark
