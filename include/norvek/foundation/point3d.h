#pragma once

#include <norvek/foundation/coordinate.h>
#include <norvek/foundation/square_root.h>

#include <ostream>

/// A point or a direction in space: three coordinates and nothing else.
///
/// `T` is `double`, `float` or `std::int32_t`. An array of points is an array of coordinate
/// triples (`sizeof(MMPoint3d<T>) == 3 * sizeof(T)`, trivially copyable). Whether a translation
/// applies to it is the caller's choice at each transform, never a property of the type. All
/// operations are `constexpr`.
///
/// Real arithmetic is plain IEEE arithmetic, component by component, in the order x, y, z.
/// Integer arithmetic wraps modulo 2^32; an integer division truncates towards zero and has a
/// non-zero divisor as its precondition. Scalars are taken by value, so that `p /= p.x` divides
/// all three coordinates by the old x.
///
/// `==` compares exactly; a point with a NaN coordinate does not equal itself.
template <class T>
struct MMPoint3d
{
    static_assert(Norvek::Math::Core::kIsCoordinate<T>,
                  "A coordinate is a double, a float or a std::int32_t; a 64-bit long is none.");

    /// The x coordinate.
    T x{};

    /// The y coordinate.
    T y{};

    /// The z coordinate.
    T z{};

    /// The origin.
    constexpr MMPoint3d() = default;

    /// The point (x, y, z).
    constexpr MMPoint3d(T xValue, T yValue, T zValue) : x(xValue), y(yValue), z(zValue)
    {}

    /// Converts coordinate by coordinate: widening is exact, narrowing rounds to the nearest float,
    /// and a real number becomes an integer by truncation that saturates (NaN gives 0).
    template <class U>
        requires(!std::same_as<T, U>)
    constexpr explicit MMPoint3d(const MMPoint3d<U>& other)
        : x(Norvek::Math::Core::CoordinateCast<T>(other.x)),
          y(Norvek::Math::Core::CoordinateCast<T>(other.y)),
          z(Norvek::Math::Core::CoordinateCast<T>(other.z))
    {}

    /// Adds component by component.
    constexpr MMPoint3d& operator+=(const MMPoint3d& other)
    {
        return *this = {Norvek::Math::Core::WrappingAdd(x, other.x),
                        Norvek::Math::Core::WrappingAdd(y, other.y),
                        Norvek::Math::Core::WrappingAdd(z, other.z)};
    }

    /// Subtracts component by component.
    constexpr MMPoint3d& operator-=(const MMPoint3d& other)
    {
        return *this = {Norvek::Math::Core::WrappingSubtract(x, other.x),
                        Norvek::Math::Core::WrappingSubtract(y, other.y),
                        Norvek::Math::Core::WrappingSubtract(z, other.z)};
    }

    /// Multiplies every component.
    constexpr MMPoint3d& operator*=(T factor)
    {
        return *this = {Norvek::Math::Core::WrappingMultiply(x, factor),
                        Norvek::Math::Core::WrappingMultiply(y, factor),
                        Norvek::Math::Core::WrappingMultiply(z, factor)};
    }

    /// Divides every component.
    constexpr MMPoint3d& operator/=(T divisor)
    {
        return *this = {Norvek::Math::Core::WrappingDivide(x, divisor),
                        Norvek::Math::Core::WrappingDivide(y, divisor),
                        Norvek::Math::Core::WrappingDivide(z, divisor)};
    }

    /// The sum, component by component.
    friend constexpr MMPoint3d operator+(MMPoint3d a, const MMPoint3d& b)
    {
        return a += b;
    }

    /// The difference, component by component.
    friend constexpr MMPoint3d operator-(MMPoint3d a, const MMPoint3d& b)
    {
        return a -= b;
    }

    /// The negative, component by component.
    friend constexpr MMPoint3d operator-(const MMPoint3d& a)
    {
        return {Norvek::Math::Core::WrappingNegate(a.x), Norvek::Math::Core::WrappingNegate(a.y),
                Norvek::Math::Core::WrappingNegate(a.z)};
    }

    /// The multiple.
    friend constexpr MMPoint3d operator*(MMPoint3d a, T factor)
    {
        return a *= factor;
    }

    /// The multiple.
    friend constexpr MMPoint3d operator*(T factor, MMPoint3d a)
    {
        return a *= factor;
    }

    /// The quotient.
    friend constexpr MMPoint3d operator/(MMPoint3d a, T divisor)
    {
        return a /= divisor;
    }

    /// Exact equality; NaN equals nothing.
    friend constexpr bool operator==(const MMPoint3d&, const MMPoint3d&) = default;

    /// x x' + y y' + z z', added from the left.
    [[nodiscard]] constexpr T Dot(const MMPoint3d& other) const
    {
        using namespace Norvek::Math::Core;
        return WrappingAdd(WrappingAdd(WrappingMultiply(x, other.x), WrappingMultiply(y, other.y)),
                           WrappingMultiply(z, other.z));
    }

    /// The cross product `*this` x `other`, right-handed.
    [[nodiscard]] constexpr MMPoint3d Cross(const MMPoint3d& other) const
    {
        using namespace Norvek::Math::Core;
        return {WrappingSubtract(WrappingMultiply(y, other.z), WrappingMultiply(z, other.y)),
                WrappingSubtract(WrappingMultiply(z, other.x), WrappingMultiply(x, other.z)),
                WrappingSubtract(WrappingMultiply(x, other.y), WrappingMultiply(y, other.x))};
    }

    /// The dot product with itself. Integers wrap.
    [[nodiscard]] constexpr T LengthSquared() const
    {
        return Dot(*this);
    }

    /// The square root of the dot product with itself: `T` for real coordinates, `double` (and no
    /// wrapping) for integers. Coordinates beyond about 1e154 overflow to infinity.
    [[nodiscard]] constexpr Norvek::Math::Core::LengthType<T> Length() const
    {
        if constexpr (std::integral<T>)
            return MMPoint3d<double>(*this).Length();
        else
            return Norvek::Math::Core::SquareRoot(LengthSquared());
    }

    /// Divides by the length, in place. A zero vector stays zero.
    constexpr void Normalise() requires(!std::integral<T>)
    {
        const T length = Length();
        if (length != T{0})
            *this /= length;
    }

    /// The vector divided by its length; a zero vector gives zero.
    [[nodiscard]] constexpr MMPoint3d Normalised() const requires(!std::integral<T>)
    {
        MMPoint3d result = *this;
        result.Normalise();
        return result;
    }

    /// Prints `(x, y, z)` with the stream's own number format.
    friend std::ostream& operator<<(std::ostream& stream, const MMPoint3d& point)
    {
        return stream << '(' << point.x << ", " << point.y << ", " << point.z << ')';
    }
};

/// The corner and argument type of `M3DBoundingBox<T>`: the same type as `MMPoint3d<T>`, under the
/// name by which the box interface spells it for integer as well as real coordinates.
template <class T>
using MMPoint3dIntegerTypes = MMPoint3d<T>;

static_assert(sizeof(MMPoint3d<double>) == 3 * sizeof(double));
static_assert(sizeof(MMPoint3d<float>) == 3 * sizeof(float));
static_assert(std::is_trivially_copyable_v<MMPoint3d<double>>);
