#pragma once

#include <norvek/foundation/point3d.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

namespace norvek_test
{

/// Random numbers with a fixed seed that a failing test prints. The draws are made from the raw
/// bits of a Mersenne twister, not from the standard's distributions, whose numbers differ from
/// one standard library to another.
class Random
{
public:
    explicit Random(std::uint32_t seed)
        : _seed(seed),
          _engine(seed),
          _trace(__FILE__, __LINE__, ::testing::Message() << "seed " << seed)
    {}

    /// Uniform in [low, high).
    double Uniform(double low, double high)
    {
        return low + (high - low) * static_cast<double>(_engine() >> 11) * 0x1p-53;
    }

    /// A magnitude that is uniform in its logarithm, with a random sign.
    double LogUniform(double low, double high)
    {
        const double magnitude = std::exp(Uniform(std::log(low), std::log(high)));
        return (_engine() & 1) != 0 ? -magnitude : magnitude;
    }

    /// Uniform in [low, high], both included.
    std::int32_t Integer(std::int32_t low, std::int32_t high)
    {
        const auto span = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
        return static_cast<std::int32_t>(low + static_cast<std::int64_t>(_engine() % span));
    }

    /// Uniform in a cube around the origin.
    MMPoint3d<double> Point(double halfSize)
    {
        const double x = Uniform(-halfSize, halfSize);
        const double y = Uniform(-halfSize, halfSize);
        const double z = Uniform(-halfSize, halfSize);
        return {x, y, z};
    }

    [[nodiscard]] std::uint32_t Seed() const
    {
        return _seed;
    }

private:
    std::uint32_t _seed;
    std::mt19937_64 _engine;
    ::testing::ScopedTrace _trace;
};

} // namespace norvek_test
