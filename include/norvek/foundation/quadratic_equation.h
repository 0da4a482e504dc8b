#pragma once

#include <norvek/foundation/export.h>

/// The real roots of a x^2 + b x + c = 0.
///
/// Always solved: the constructor and every setter solve at once, so that the roots belong to the
/// coefficients. The discriminant D = b^2 - 4 a c decides by exact comparison: below 0 there are no
/// roots, at 0 (and when it is not a number) there is one, otherwise two.
///
/// There is no test of a = 0: a linear equation gives infinities and NaN. Where b^2 is much larger
/// than 4 a c, the root of smaller magnitude loses digits to cancellation.
class NORVEK_MATH_API MMQuadraticEquation
{
public:
    /// Solves the equation with these coefficients.
    MMQuadraticEquation(double a, double b, double c);

    /// Replaces all coefficients and solves.
    void Set(double a, double b, double c);

    /// Replaces a and solves.
    void SetA(double a);

    /// Replaces b and solves.
    void SetB(double b);

    /// Replaces c and solves.
    void SetC(double c);

    /// Computes discriminant and roots anew. False, with both roots 0, when there are none.
    bool Solve();

    /// The number of real roots: 0, 1 or 2.
    [[nodiscard]] unsigned char GetNumRoots() const
    {
        return _numRoots;
    }

    /// Root 0 is (-b - sqrt(D)) / 2a, root 1 is (-b + sqrt(D)) / 2a; for a > 0 they ascend. Equal
    /// when there is one root, both 0 when there is none. The index is 0 or 1, asserted only; any
    /// other counts as 1.
    [[nodiscard]] double GetRoot(unsigned char index) const;

private:
    double _a;
    double _b;
    double _c;
    double _discriminant = 0.0;
    double _root1 = 0.0;
    double _root2 = 0.0;
    unsigned char _numRoots = 0;
};
