#include <norvek/foundation/quadratic.h>
#include <norvek/linalg/lower_triangular_matrix.h>
#include <norvek/linalg/symmetric_matrix.h>

#include <cmath>

MM1dQuadratic::MM1dQuadratic(double a, double b, double c) : _a(a), _b(b), _c(c)
{}

void MM1dQuadratic::Set(double a, double b, double c)
{
    _a = a;
    _b = b;
    _c = c;
}

bool MM1dQuadratic::FitThroughMap(const std::map<double, double>& points)
{
    if (points.size() < 3)
        return false;
    // Sums of x^0 to x^4, and of y, x y, x^2 y.
    double powers[5]{};
    double moments[3]{};
    for (const auto& [x, y] : points) {
        const double square = x * x;
        powers[0] += 1.0;
        powers[1] += x;
        powers[2] += square;
        powers[3] += square * x;
        powers[4] += square * square;
        moments[0] += y;
        moments[1] += x * y;
        moments[2] += square * y;
    }
    MSymmetricMatrix normal;
    if (!normal.SetDimensions(3, 3))
        return false;
    double solution[3];
    for (unsigned int i = 0; i < 3; ++i) {
        solution[i] = moments[2 - i];
        for (unsigned int j = 0; j <= i; ++j)
            normal.Element(i, j) = powers[4 - i - j];
    }
    MLowerTriangularMatrix factor;
    if (!normal.FACTORISE_CHOLESKY(factor) || !factor.SOLVE_G_TG_X_B(solution))
        return false;
    Set(solution[0], solution[1], solution[2]);
    return true;
}

bool MM1dQuadratic::GetCoefficients(double& a, double& b, double& c) const
{
    const MM1dQuadratic self = *this;
    a = 0.0;
    b = 0.0;
    c = 0.0;
    if (self._a == 0.0 || std::isnan(self._a))
        return false;
    a = self._a;
    b = self._b;
    c = self._c;
    return true;
}

bool MM1dQuadratic::GetTopOfQuadratic(double& x, double& y) const
{
    if (_a == 0.0 || std::isnan(_a))
        return false;
    x = -_b / (2.0 * _a);
    y = _c - _b * _b / (4.0 * _a);
    return true;
}
