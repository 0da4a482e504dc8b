#include <norvek/foundation/coordinate.h>
#include <norvek/transform/legacy_rotation.h>

#include <algorithm>
#include <cassert>
#include <cmath>

// Notation: c and s are the cosine and sine of a turn; i and j the two coordinates that it changes,
// those after its axis in the cycle x, y, z. One formula then serves Rx, Ry and Rz alike:
//
//     i' = c i - s j,    j' = c j + s i
//
// Each product, sum and difference is rounded to float: contraction is off, and the registers of
// the supported machines hold no more digits than the type.

using Norvek::Math::Core::CoordinateCast;

namespace
{

// Pi as these routines have always rounded it, and the factor of FILL_TRANSFORM. Stored angles were
// computed with them: neither is replaced by the library's own conversion.
constexpr double kOlderPi = 3.14159265359;
constexpr float kRadiansPerDegree = 0.017453292F;

float OlderRadians(float degrees)
{
    return static_cast<float>(static_cast<double>(degrees) * kOlderPi / 180.0);
}

struct Turn
{
    float c;
    float s;
};

// The angle is rounded to float before its cosine is taken: the cosine of 90 degrees is -4.4e-8
// with either conversion, where an angle in double would give -1.0e-13 and 1.2e-8. The functions
// are those of double precision: their last bit, which differs from one C library to the next, is
// lost in the rounding to float; the last bit of cosf() and sinf() would be seen.
Turn MakeTurn(float radians)
{
    const auto angle = static_cast<double>(radians);
    return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
}

Turn TurnByDegrees(float degrees)
{
    return MakeTurn(OlderRadians(degrees));
}

// The two coordinates that a turn about the axis changes, the first turning towards the second.
struct Plane
{
    std::int32_t i;
    std::int32_t j;
};

Plane PlaneOfTurn(std::int32_t axis)
{
    assert(axis >= 0 && axis <= 2);
    return {(axis + 1) % 3, (axis + 2) % 3};
}

void ApplyTurn(const Turn& turn, float& i, float& j)
{
    const float oldI = i;
    const float oldJ = j;
    i = oldI * turn.c - oldJ * turn.s;
    j = oldJ * turn.c + oldI * turn.s;
}

void TurnRows(float (*m)[3], std::int32_t axis, const Turn& turn)
{
    const Plane rows = PlaneOfTurn(axis);
    for (int column = 0; column < 3; ++column)
        ApplyTurn(turn, m[rows.i][column], m[rows.j][column]);
}

// 0.5 is added in double: in float the sum itself would round, 0.49999997 up to 1 and 8388609 to
// the even neighbour.
template <class Integer>
Integer RoundHalfAway(float value)
{
    const auto wide = static_cast<double>(value);
    return CoordinateCast<Integer>(value < 0.0F ? wide - 0.5 : wide + 0.5);
}

template <class Integer>
void RotateGridPoint(Integer& x, Integer& y, Integer& z, float ax, float ay, float az)
{
    auto turnedX = static_cast<float>(x);
    auto turnedY = static_cast<float>(y);
    auto turnedZ = static_cast<float>(z);
    ROTEER_3D(turnedX, turnedY, turnedZ, ax, ay, az);
    x = RoundHalfAway<Integer>(turnedX);
    y = RoundHalfAway<Integer>(turnedY);
    z = RoundHalfAway<Integer>(turnedZ);
}

// Sine and cosine are measured together: an arc cosine alone would keep only half the digits near
// 0 and 180 degrees, and no sign. Adding to 0 takes the sign from a zero sine, so that a half turn
// is +180 whichever zero the matrix holds.
float AlignAngle(float i, float j, bool targetIsI)
{
    const double cosine = targetIsI ? i : j;
    const double sine = targetIsI ? 0.0 - j : 0.0 + i;
    if (cosine == 0.0 && sine == 0.0)
        return 0.0F;
    return static_cast<float>(std::atan2(sine, cosine) * 180.0 / kOlderPi);
}

} // namespace

void ANGLES_TO_MATRIX(float (*m)[3], float* angles)
{
    const Turn x = TurnByDegrees(angles[0]);
    const Turn y = TurnByDegrees(angles[1]);
    const Turn z = TurnByDegrees(angles[2]);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m[row][column] = row == column ? 1.0F : 0.0F;
    TurnRows(m, 2, z);
    TurnRows(m, 1, y);
    TurnRows(m, 0, x);
}

// -s of angle 0 is -0, and stays so: the matrix is filled, not computed.
void FILL_TRANSFORM(float (*m)[3], std::int32_t axis, float degrees)
{
    const Plane plane = PlaneOfTurn(axis);
    const Turn turn = MakeTurn(degrees * kRadiansPerDegree);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m[row][column] = row == column ? 1.0F : 0.0F;
    m[plane.i][plane.i] = turn.c;
    m[plane.j][plane.j] = turn.c;
    m[plane.i][plane.j] = -turn.s;
    m[plane.j][plane.i] = turn.s;
}

// The sums begin with 0, which makes a sum of negative zeros a positive one.
void MATRIX_MATRIX(float (*out)[3], const float (*a)[3], const float (*b)[3])
{
    float product[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            product[i][j] = ((0.0F + a[i][0] * b[0][j]) + a[i][1] * b[1][j]) + a[i][2] * b[2][j];
    for (int i = 0; i < 3; ++i)
        std::copy_n(product[i], 3, out[i]);
}

void MATRIX_VECTOR(float* out, const float (*m)[3], const float* v)
{
    float product[3];
    for (int i = 0; i < 3; ++i)
        product[i] = ((0.0F + m[i][0] * v[0]) + m[i][1] * v[1]) + m[i][2] * v[2];
    std::copy_n(product, 3, out);
}

void ROTEER_3D(short& x, short& y, short& z, float ax, float ay, float az)
{
    RotateGridPoint(x, y, z, ax, ay, az);
}

void ROTEER_3D(float& x, float& y, float& z, float ax, float ay, float az)
{
    float turnedX = x;
    float turnedY = y;
    float turnedZ = z;
    ApplyTurn(TurnByDegrees(az), turnedX, turnedY);
    ApplyTurn(TurnByDegrees(ay), turnedZ, turnedX);
    ApplyTurn(TurnByDegrees(ax), turnedY, turnedZ);
    x = turnedX;
    y = turnedY;
    z = turnedZ;
}

void ROTEER_3D(std::int32_t& x, std::int32_t& y, std::int32_t& z, float ax, float ay, float az)
{
    RotateGridPoint(x, y, z, ax, ay, az);
}

// The centre may be the point itself or share storage with it: both coordinates are read first.
void ROTEER_ENKEL(float* p, std::int32_t axis, float degrees, float* centre)
{
    const Plane plane = PlaneOfTurn(axis);
    const float centreI = centre[plane.i];
    const float centreJ = centre[plane.j];
    float i = p[plane.i] - centreI;
    float j = p[plane.j] - centreJ;
    ApplyTurn(TurnByDegrees(degrees), i, j);
    p[plane.i] = centreI + i;
    p[plane.j] = centreJ + j;
}

void ROTEER_ENKEL(float* p, std::int32_t axis, float degrees)
{
    float origin[3] = {0.0F, 0.0F, 0.0F};
    ROTEER_ENKEL(p, axis, degrees, origin);
}

void ROTEER_ENKEL(float (*m)[3], std::int32_t axis, float degrees)
{
    TurnRows(m, axis, TurnByDegrees(degrees));
}

float GET_ALIGN_ROTATION(const float* v, std::int32_t axis, std::int32_t target)
{
    assert(target >= 0 && target <= 2 && target != axis);
    const Plane plane = PlaneOfTurn(axis);
    return AlignAngle(v[plane.i], v[plane.j], target == plane.i);
}

float GET_ALIGN_ROTATION(const float (*m)[3], std::int32_t axis, std::int32_t target)
{
    assert(target >= 0 && target <= 2);
    const float column[3] = {m[0][target], m[1][target], m[2][target]};
    return GET_ALIGN_ROTATION(column, axis, target);
}

// Each angle is measured on the matrix as the rounded angles before it left it, so that their
// errors do not add up. At gimbal lock element (0, 0) and (1, 0) are rounding noise and the z angle
// is arbitrary; the y and x turns make up for it.
void GET_ALIGN_ROTATIONS(const float (*m)[3], float& ax, float& ay, float& az)
{
    float turned[3][3];
    for (int row = 0; row < 3; ++row)
        std::copy_n(m[row], 3, turned[row]);
    const float z = GET_ALIGN_ROTATION(turned, 2, 0);
    ROTEER_ENKEL(turned, 2, z);
    const float y = GET_ALIGN_ROTATION(turned, 1, 0);
    ROTEER_ENKEL(turned, 1, y);
    const float x = GET_ALIGN_ROTATION(turned, 0, 1);
    ax = x;
    ay = y;
    az = z;
}

// The rotation is built as a matrix first: its angles in another order cannot be had from the old
// angles directly. They stay in locals and are written last.
void ROTEER_INVERSE(float& ax, float& ay, float& az)
{
    float m[3][3];
    FILL_TRANSFORM(m, 0, 0.0F);
    ROTEER_ENKEL(m, 2, az);
    ROTEER_ENKEL(m, 1, ay);
    ROTEER_ENKEL(m, 0, ax);
    GET_ALIGN_ROTATIONS(m, ax, ay, az);
}
