#include <norvek/foundation/quadratic_equation.h>

#include <cassert>
#include <cmath>

MMQuadraticEquation::MMQuadraticEquation(double a, double b, double c) : _a(a), _b(b), _c(c)
{
    Solve();
}

void MMQuadraticEquation::Set(double a, double b, double c)
{
    *this = MMQuadraticEquation(a, b, c);
}

void MMQuadraticEquation::SetA(double a)
{
    Set(a, _b, _c);
}

void MMQuadraticEquation::SetB(double b)
{
    Set(_a, b, _c);
}

void MMQuadraticEquation::SetC(double c)
{
    Set(_a, _b, c);
}

bool MMQuadraticEquation::Solve()
{
    _root1 = 0.0;
    _root2 = 0.0;
    _numRoots = 0;
    _discriminant = _b * _b - 4.0 * _a * _c;
    if (_discriminant < 0.0)
        return false;
    // A discriminant that is not a number counts as one root, which is not a number either.
    _numRoots = _discriminant > 0.0 ? 2 : 1;
    const double root = std::sqrt(_discriminant);
    _root1 = (-_b - root) / (2.0 * _a);
    _root2 = (root - _b) / (2.0 * _a);
    return true;
}

double MMQuadraticEquation::GetRoot(unsigned char index) const
{
    assert(index < 2);
    return index == 0 ? _root1 : _root2;
}
