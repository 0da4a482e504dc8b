#pragma once

#include <norvek/foundation/coordinate.h>
#include <norvek/foundation/square_root.h>

#include <ostream>

/// A point or a direction in the plane: `MMPoint3d` less the third coordinate and the cross
/// product. The same rules hold: a plain `constexpr` value, IEEE arithmetic in the order x, y,
/// wrapping integers, exact `==`, scalars by value.
template <class T>
struct MMPoint2d
{
    static_assert(Norvek::Math::Core::kIsCoordinate<T>,
                  "A coordinate is a double, a float or a std::int32_t; a 64-bit long is none.");

    /// The x coordinate.
    T x{};

    /// The y coordinate.
    T y{};

    /// The origin.
    constexpr MMPoint2d() = default;

    /// The point (x, y).
    constexpr MMPoint2d(T xValue, T yValue) : x(xValue), y(yValue)
    {}

    /// Converts coordinate by coordinate, as `MMPoint3d` does.
    template <class U>
        requires(!std::same_as<T, U>)
    constexpr explicit MMPoint2d(const MMPoint2d<U>& other)
        : x(Norvek::Math::Core::CoordinateCast<T>(other.x)),
          y(Norvek::Math::Core::CoordinateCast<T>(other.y))
    {}

    /// Adds component by component.
    constexpr MMPoint2d& operator+=(const MMPoint2d& other)
    {
        return *this = {Norvek::Math::Core::WrappingAdd(x, other.x),
                        Norvek::Math::Core::WrappingAdd(y, other.y)};
    }

    /// Subtracts component by component.
    constexpr MMPoint2d& operator-=(const MMPoint2d& other)
    {
        return *this = {Norvek::Math::Core::WrappingSubtract(x, other.x),
                        Norvek::Math::Core::WrappingSubtract(y, other.y)};
    }

    /// Multiplies every component.
    constexpr MMPoint2d& operator*=(T factor)
    {
        return *this = {Norvek::Math::Core::WrappingMultiply(x, factor),
                        Norvek::Math::Core::WrappingMultiply(y, factor)};
    }

    /// Divides every component.
    constexpr MMPoint2d& operator/=(T divisor)
    {
        return *this = {Norvek::Math::Core::WrappingDivide(x, divisor),
                        Norvek::Math::Core::WrappingDivide(y, divisor)};
    }

    /// The sum, component by component.
    friend constexpr MMPoint2d operator+(MMPoint2d a, const MMPoint2d& b)
    {
        return a += b;
    }

    /// The difference, component by component.
    friend constexpr MMPoint2d operator-(MMPoint2d a, const MMPoint2d& b)
    {
        return a -= b;
    }

    /// The negative, component by component.
    friend constexpr MMPoint2d operator-(const MMPoint2d& a)
    {
        return {Norvek::Math::Core::WrappingNegate(a.x), Norvek::Math::Core::WrappingNegate(a.y)};
    }

    /// The multiple.
    friend constexpr MMPoint2d operator*(MMPoint2d a, T factor)
    {
        return a *= factor;
    }

    /// The multiple.
    friend constexpr MMPoint2d operator*(T factor, MMPoint2d a)
    {
        return a *= factor;
    }

    /// The quotient.
    friend constexpr MMPoint2d operator/(MMPoint2d a, T divisor)
    {
        return a /= divisor;
    }

    /// Exact equality; NaN equals nothing.
    friend constexpr bool operator==(const MMPoint2d&, const MMPoint2d&) = default;

    /// x x' + y y'.
    [[nodiscard]] constexpr T Dot(const MMPoint2d& other) const
    {
        using namespace Norvek::Math::Core;
        return WrappingAdd(WrappingMultiply(x, other.x), WrappingMultiply(y, other.y));
    }

    /// The dot product with itself. Integers wrap.
    [[nodiscard]] constexpr T LengthSquared() const
    {
        return Dot(*this);
    }

    /// The square root of the dot product with itself; `double` for integers.
    [[nodiscard]] constexpr Norvek::Math::Core::LengthType<T> Length() const
    {
        if constexpr (std::integral<T>)
            return MMPoint2d<double>(*this).Length();
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
    [[nodiscard]] constexpr MMPoint2d Normalised() const requires(!std::integral<T>)
    {
        MMPoint2d result = *this;
        result.Normalise();
        return result;
    }

    /// Prints `(x, y)` with the stream's own number format.
    friend std::ostream& operator<<(std::ostream& stream, const MMPoint2d& point)
    {
        return stream << '(' << point.x << ", " << point.y << ')';
    }
};

static_assert(sizeof(MMPoint2d<double>) == 2 * sizeof(double));
static_assert(std::is_trivially_copyable_v<MMPoint2d<double>>);
