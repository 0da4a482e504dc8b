#pragma once

#include <norvek/foundation/point3d.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <ranges>
#include <type_traits>

namespace norvek_test
{

/// A hash over the bits of results (FNV-1a). All NaN count as one: their sign and payload are the
/// processor's affair.
class Hash
{
public:
    /// Takes in a number, an enumerator, a point, a matrix of a transform, or a range of these.
    /// An operator, because a chain of shifts is evaluated from the left, while the arguments of a
    /// call may be evaluated in any order.
    template <class Value>
    Hash& operator<<(const Value& value)
    {
        if constexpr (std::is_floating_point_v<Value>)
            _Add(std::isnan(value) ? ~std::uint64_t{0}
                                   : std::bit_cast<std::uint64_t>(double{value}));
        else if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>)
            _Add(static_cast<std::uint64_t>(value));
        else if constexpr (std::ranges::range<Value>)
            for (const auto& element : value)
                *this << element;
        else if constexpr (requires { value.GetElement(0, 0, true); })
            for (unsigned short i = 0; i < 16; ++i)
                *this << value.GetElement(i / 4, i % 4, false)
                      << value.GetElement(i / 4, i % 4, true);
        else if constexpr (requires { value.GetElement(0, 0); })
            for (unsigned short i = 0; i < 12; ++i)
                *this << value.GetElement(i / 4, i % 4);
        else if constexpr (requires { value.z; })
            *this << value.x << value.y << value.z;
        else
            *this << value.x << value.y;
        return *this;
    }

    [[nodiscard]] std::uint64_t Value() const
    {
        return _value;
    }

private:
    void _Add(std::uint64_t bits)
    {
        for (int byte = 0; byte < 8; ++byte) {
            _value = (_value ^ (bits & 255)) * 1099511628211U;
            bits >>= 8;
        }
    }

    std::uint64_t _value = 14695981039346656037U;
};

/// Numbers from a linear congruence (Knuth's MMIX constants), exact on every machine, that the
/// optimiser cannot compute ahead. No two draws within the arguments of one call: their order would
/// differ between compilers.
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

    /// Fills numbers or points, one after the other, and returns them.
    template <class Range>
    Range Fill(Range values, double size)
    {
        for (auto& value : values) {
            if constexpr (std::is_same_v<decltype(value), double&>)
                value = Next(size);
            else
                value = {Next(size), Next(size), Next(size)}; // braces go from the left
        }
        return values;
    }

    template <std::size_t N>
    std::array<MMPoint3d<double>, N> Points(double size)
    {
        return Fill(std::array<MMPoint3d<double>, N>(), size);
    }

    MMPoint3d<double> Point(double size)
    {
        return Points<1>(size)[0];
    }

private:
    std::uint64_t _state;
};

/// Takes in the results of one round of operations of a family.
using Family = void(Hash& hash, Numbers& numbers, int round);

Family HashPoints, HashNumbersAlongALine, HashTransforms, HashMotionsAndFrames, HashOlderRotations,
    HashStacks, HashPlanesAndLines, HashBoxes, HashLocators, HashRegistrations, HashBorders,
    HashPolyPlanes, HashGeneralMatrices, HashSymmetricMatrices, HashFixedMatrices, HashLeastSquares,
    HashFits, HashNurbs, HashCurveObjects;

} // namespace norvek_test
