#pragma once

#include <norvek/foundation/export.h>

#include <map>

/// The function y = a x^2 + b x + c; with a = 0 a straight line, which the functions about the
/// parabola refuse.
class NORVEK_MATH_API MM1dQuadratic
{
public:
    /// y = 0.
    MM1dQuadratic() = default;

    /// y = a x^2 + b x + c.
    MM1dQuadratic(double a, double b, double c);

    /// Replaces the coefficients.
    void Set(double a, double b, double c);

    /// The least-squares parabola through the points (key, value).
    ///
    /// By the normal equations, whose condition is the square of the problem's: abscissae that span
    /// [-1, 1] keep all digits but the last two, abscissae from 1e6 to 1e6 + 1 none. Shift and
    /// scale them first. On the certified NIST data set Pontius, abscissae up to 3e6, 11 digits
    /// agree.
    ///
    /// False, and unchanged, for fewer than three points, when the normal matrix is not positive
    /// definite to rounding, or without memory. Linear in the number of points.
    bool FitThroughMap(const std::map<double, double>& points);

    /// The coefficients. False, and all three 0, when a is exactly 0 or not a number.
    bool GetCoefficients(double& a, double& b, double& c) const;

    /// The vertex of the parabola. False, nothing written, when a is exactly 0 or not a number.
    bool GetTopOfQuadratic(double& x, double& y) const;

    /// y at `x`, the terms added from the left.
    [[nodiscard]] double operator()(double x) const
    {
        return _a * x * x + _b * x + _c;
    }

    /// Equal coefficients, exactly; NaN equals nothing.
    [[nodiscard]] bool operator==(const MM1dQuadratic& other) const = default;

private:
    double _a = 0.0;
    double _b = 0.0;
    double _c = 0.0;
};
