#include "search/rotation_fit.h"

#include "linalg/symmetric_jacobi.h"

#include <norvek/foundation/constants.h>
#include <norvek/transform/transform_matrix.h>

#include <algorithm>
#include <cmath>

// Turning R by the small vector w changes the trace of R' M by w . t - w' H w / 2, with the torque
// t = sum q x a (twice the axial vector of P, q = R b) and H = trace(P) 1 - P. The best turn is
// w = H^-1 t. The eigenvalues of H are the sums of two of those of P.

namespace Norvek::Math::Core
{

namespace
{

// A rotation whose elements would change by no more stays as it came: exact pairs give their motion
// back within 1e-14 radians, of which the rounding of the moments takes a part.
constexpr double kSettled = 4e-15;

// det H over trace(P)^3 is 0.30 for round sets, 0.25 for flat ones and s for the spread s across a
// line against that along it, squares both. Below this limit the rounding of the moments, which is
// relative to the largest, costs more than the last digit.
constexpr double kElongated = 0.0625;

// The nearest orthonormal matrix is right within some 1e-12. Where more is to be turned there is no
// best turn to speak of: moments that two rotations fit alike.
constexpr double kLargestTurn = 1e-6;

// P = M R', row by row.
struct Stretch
{
    PairPoint rows[3];

    Stretch(const MMatrix3x3& r, const MMatrix3x3& moments)
    {
        for (int i = 0; i < 3; ++i)
            rows[i] = r * moments.GetRow(i);
    }

    [[nodiscard]] double Trace() const
    {
        return rows[0].x + rows[1].y + rows[2].z;
    }

    // t, which is zero for a symmetric P.
    [[nodiscard]] PairPoint Torque() const
    {
        return {rows[2].y - rows[1].z, rows[0].z - rows[2].x, rows[1].x - rows[0].y};
    }
};

// H = trace(P) 1 - P, with its cofactors.
class Resistance
{
public:
    explicit Resistance(const Stretch& p) : _trace(p.Trace())
    {
        const double xy = -p.rows[0].y;
        const double xz = -p.rows[0].z;
        const double yz = -p.rows[1].z;
        const PairPoint h[3]{{_trace - p.rows[0].x, xy, xz},
                             {xy, _trace - p.rows[1].y, yz},
                             {xz, yz, _trace - p.rows[2].z}};
        for (int i = 0; i < 3; ++i)
            _cofactors[i] = h[(i + 1) % 3].Cross(h[(i + 2) % 3]);
        _determinant = h[0].Dot(_cofactors[0]);
    }

    // det H over trace(P)^3.
    [[nodiscard]] double Roundness() const
    {
        return _determinant / (_trace * _trace * _trace);
    }

    // H^-1 t.
    [[nodiscard]] PairPoint Turn(const PairPoint& t) const
    {
        return (_cofactors[0] * t.x + _cofactors[1] * t.y + _cofactors[2] * t.z) / _determinant;
    }

private:
    double _trace;
    double _determinant = 0.0;
    PairPoint _cofactors[3];
};

MMatrix3x3 FromColumns(const PairPoint (&columns)[3])
{
    MMatrix3x3 result;
    result.SetRow(0, {columns[0].x, columns[1].x, columns[2].x});
    result.SetRow(1, {columns[0].y, columns[1].y, columns[2].y});
    result.SetRow(2, {columns[0].z, columns[1].z, columns[2].z});
    return result;
}

// R turned by |w| radians about w, if that is little.
MMatrix3x3 Turned(const MMatrix3x3& r, const PairPoint& w)
{
    if (!(w.Length() < kLargestTurn))
        return r;
    PairPoint columns[3];
    for (int i = 0; i < 3; ++i)
        columns[i] = r.GetColumn(i) + w.Cross(r.GetColumn(i));
    return Orthonormalised(FromColumns(columns));
}

} // namespace

// One step of Newton's iteration towards the nearest orthonormal matrix, c_j - sum c_k (c_k . c_j -
// d_kj) / 2 on the columns c: errors are squared.
MMatrix3x3 Orthonormalised(const MMatrix3x3& r)
{
    PairPoint columns[3];
    for (int j = 0; j < 3; ++j) {
        PairPoint excess;
        for (int k = 0; k < 3; ++k)
            excess += r.GetColumn(k) * (r.GetColumn(k).Dot(r.GetColumn(j)) - (k == j ? 1.0 : 0.0));
        columns[j] = r.GetColumn(j) - 0.5 * excess;
    }
    return FromColumns(columns);
}

bool IsNear(const MMatrix3x3& a, const MMatrix3x3& b)
{
    double largest = 0.0;
    for (unsigned int k = 0; k < 9; ++k) {
        const double difference = std::abs(a.Value(k / 3, k % 3) - b.Value(k / 3, k % 3));
        largest = std::max(largest, difference);
    }
    return largest <= kSettled;
}

// M = s u v' with v the direction of the second points and u that of the first. The longest row
// has the direction of v nearly; sending it through the matrix and back frees it of what the other
// rows have beside v.
bool TurnDirections(MMatrix3x3& rotation, const MMatrix3x3& moments)
{
    PairPoint v;
    for (int i = 0; i < 3; ++i) {
        if (moments.GetRow(i).LengthSquared() > v.LengthSquared())
            v = moments.GetRow(i);
    }
    const PairPoint u = (moments * v.Normalised()).Normalised();
    v = {moments.GetColumn(0).Dot(u), moments.GetColumn(1).Dot(u), moments.GetColumn(2).Dot(u)};
    MMTransformMatrix turn;
    if (!turn.MakeRotationInPlane(v.Normalised(), u, PairPoint()))
        return false;
    for (unsigned short i = 0; i < 3; ++i) {
        PairPoint row;
        turn.GetRow(row, i);
        rotation.SetRow(i, row);
    }
    return true;
}

// With the best scale, the squared error that a matrix leaves is 1 - c^2 of the whole, where c is
// its correlation: the trace of P over the root of the product of both squares. The best rotation
// differs from the reflection in the direction of the least eigenvalue of P, which it takes with
// the other sign.
MMatrix3x3 ChooseHandedness(const MMatrix3x3& r, const MMatrix3x3& moments,
                            const std::pair<double, double>& squares)
{
    const Stretch p(r, moments);
    MMatrix3x3 matrix;
    for (unsigned short i = 0; i < 3; ++i)
        matrix.SetRow(i, p.rows[i]);
    const SymmetricEigen eigen = SolveSymmetric(matrix);
    const double whole = squares.first * squares.second;
    const double reflected = p.Trace();
    const double rotated = reflected - 2.0 * eigen.values[2];
    if (whole - reflected * reflected < 0.5 * (whole - rotated * rotated))
        return r;
    MMatrix3x3 mirror;
    mirror.PDotQTranspose(eigen.vectors[2], eigen.vectors[2]);
    mirror *= -2.0;
    mirror.SubtractFromDiagonal(-1.0);
    return mirror * r;
}

// Orthonormal first: what R lacks there would pass for a torque.
bool NeedsTurning(const MMatrix3x3& r, const MMatrix3x3& moments)
{
    const MMatrix3x3 straight = Orthonormalised(r);
    const Stretch p(straight, moments);
    const Resistance resistance(p);
    return resistance.Roundness() < kElongated ||
           !IsNear(Turned(straight, resistance.Turn(p.Torque())), r);
}

MMatrix3x3 TurnedByTorque(const MMatrix3x3& r, const MMatrix3x3& moments, const PairPoint& torque)
{
    return Turned(r, Resistance(Stretch(r, moments)).Turn(torque));
}

} // namespace Norvek::Math::Core
