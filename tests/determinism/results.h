#pragma once

#include <norvek/foundation/point2d.h>
#include <norvek/foundation/point3d.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace norvek_test
{

/// A hash over the bits of results (FNV-1a). All NaN count as one: their sign and payload are the
/// processor's affair.
class Hash
{
public:
    void Add(std::uint64_t bits)
    {
        for (int byte = 0; byte < 8; ++byte) {
            _value = (_value ^ (bits & 255)) * 1099511628211U;
            bits >>= 8;
        }
    }

    void Add(bool value)
    {
        Add(std::uint64_t{value});
    }

    void Add(int value)
    {
        Add(static_cast<std::uint64_t>(value));
    }

    void Add(double value)
    {
        Add(std::isnan(value) ? ~std::uint64_t{0} : std::bit_cast<std::uint64_t>(value));
    }

    void Add(const MMPoint3d<double>& point)
    {
        Add(point.x);
        Add(point.y);
        Add(point.z);
    }

    void Add(const MMPoint2d<double>& point)
    {
        Add(point.x);
        Add(point.y);
    }

    [[nodiscard]] std::uint64_t Value() const
    {
        return _value;
    }

private:
    std::uint64_t _value = 14695981039346656037U;
};

/// Numbers from a linear congruence (Knuth's MMIX constants), exact on every machine, that the
/// optimiser cannot compute ahead.
class Numbers
{
public:
    explicit Numbers(std::uint64_t seed) : _state(seed)
    {}

    /// Uniform in [-size, size).
    double Next(double size)
    {
        _state = _state * 6364136223846793005U + 1442695040888963407U;
        return (static_cast<double>(_state >> 11) * 0x1p-52 - 1.0) * size;
    }

    MMPoint3d<double> Point(double size)
    {
        // Braces, which are evaluated from the left; the arguments of a call are not.
        return {Next(size), Next(size), Next(size)};
    }

    /// So many points or numbers, one after the other: the arguments of a call may be evaluated in
    /// any order, so that draws within one would differ between compilers.
    template <std::size_t N>
    std::array<MMPoint3d<double>, N> Points(double size)
    {
        std::array<MMPoint3d<double>, N> points;
        for (MMPoint3d<double>& point : points)
            point = Point(size);
        return points;
    }

private:
    std::uint64_t _state;
};

/// @name The results of a few thousand operations of each family
/// @{
std::uint64_t HashPoints(Numbers numbers);
std::uint64_t HashNumbersAlongALine(Numbers numbers);
std::uint64_t HashTransforms(Numbers numbers);
std::uint64_t HashMotionsAndFrames(Numbers numbers);
std::uint64_t HashOlderRotations(Numbers numbers);
std::uint64_t HashStacks(Numbers numbers);
std::uint64_t HashPlanesAndLines(Numbers numbers);
std::uint64_t HashBoxes(Numbers numbers);
std::uint64_t HashLocators(Numbers numbers);
std::uint64_t HashRegistrations(Numbers numbers);
std::uint64_t HashBorders(Numbers numbers);
std::uint64_t HashPolyPlanes(Numbers numbers);
std::uint64_t HashGeneralMatrices(Numbers numbers);
std::uint64_t HashSymmetricMatrices(Numbers numbers);
std::uint64_t HashFixedMatrices(Numbers numbers);
std::uint64_t HashLeastSquares(Numbers numbers);
std::uint64_t HashFits(Numbers numbers);
std::uint64_t HashNurbs(Numbers numbers);
std::uint64_t HashCurveObjects(Numbers numbers);
/// @}

} // namespace norvek_test
