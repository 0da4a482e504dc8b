#include "foundation/angles.h"
#include "foundation/round_to_float.h"
#include "foundation/safe_length.h"
#include "transform/matrix4.h"

#include <norvek/transform/transform_matrix.h>

#include <cmath>

using namespace Norvek::Math::Core;

// All four columns turn, the translation with the rest: the rotation comes after the transform.
void MMTransformMatrix::_Rotate(unsigned short axis, double degrees)
{
    const double angle = DegreesToRadians(degrees);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    double(&rowI)[4] = _matrix[(axis + 1) % 3];
    double(&rowJ)[4] = _matrix[(axis + 2) % 3];
    for (int column = 0; column < 4; ++column) {
        const double i = rowI[column];
        const double j = rowJ[column];
        rowI[column] = c * i - s * j;
        rowJ[column] = c * j + s * i;
    }
}

// The arguments keep the order x, y, z in both; the names give the order of the turns.
bool MMTransformMatrix::DoRotationXYZ(double ax, double ay, double az)
{
    _Rotate(0, ax);
    _Rotate(1, ay);
    _Rotate(2, az);
    return _Close();
}

bool MMTransformMatrix::DoRotationZYX(double ax, double ay, double az)
{
    _Rotate(2, az);
    _Rotate(1, ay);
    _Rotate(0, ax);
    return _Close();
}

bool MMTransformMatrix::MakeRotationXYZ(double ax, double ay, double az)
{
    MakeIdentity();
    return DoRotationXYZ(ax, ay, az);
}

bool MMTransformMatrix::MakeRotationZYX(double ax, double ay, double az)
{
    MakeIdentity();
    return DoRotationZYX(ax, ay, az);
}

// The rotation is in the 3x3 part and classified. The centre goes through it as a direction, so
// that the old translation takes no part; the difference becomes the new translation.
bool MMTransformMatrix::_RotateAbout(const MMPoint3d<double>& center)
{
    MMPoint3d<double> turned;
    _Transform(turned, center, true);
    const MMPoint3d<double> translation = center - turned;
    _matrix[0][3] = translation.x;
    _matrix[1][3] = translation.y;
    _matrix[2][3] = translation.z;
    return _Close();
}

bool MMTransformMatrix::MakeRotationXYZ(const MMPoint3d<double>& center, double ax, double ay,
                                        double az)
{
    const MMPoint3d<double> fixed = center;
    MakeRotationXYZ(ax, ay, az);
    return _RotateAbout(fixed);
}

bool MMTransformMatrix::MakeRotationZYX(const MMPoint3d<double>& center, double ax, double ay,
                                        double az)
{
    const MMPoint3d<double> fixed = center;
    MakeRotationZYX(ax, ay, az);
    return _RotateAbout(fixed);
}

// Rodrigues' formula. The bottom row is not written; where it is projective the centre, a direction
// here, can lie at infinity: the exception then finds the matrix as it was.
bool MMTransformMatrix::MakeRotation(const MMPoint3d<double>& center, const MMPoint3d<double>& axis,
                                     double angle)
{
    const double length = SafeLength(axis);
    if (length == 0.0)
        return false;
    const double x = axis.x / length;
    const double y = axis.y / length;
    const double z = axis.z / length;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    const MMPoint3d<double> fixed = center;
    const MMTransformMatrixData old = *this;
    SetRow4(_matrix[0], x * x * t + c, x * y * t - z * s, x * z * t + y * s, old._matrix[0][3]);
    SetRow4(_matrix[1], x * y * t + z * s, y * y * t + c, y * z * t - x * s, old._matrix[1][3]);
    SetRow4(_matrix[2], x * z * t - y * s, y * z * t + x * s, z * z * t + c, old._matrix[2][3]);
    VerifyAndSetClass();
    try {
        return _RotateAbout(fixed);
    } catch (...) {
        MMTransformMatrixData::operator=(old);
        throw;
    }
}

// Kind and flags stay those of the copied matrix, and so does the inverse's translation column.
bool MMTransformMatrix::MakeRotation(const MMTransformMatrix& other)
{
    Copy(other);
    for (int i = 0; i < 3; ++i) {
        double(&row)[4] = _matrix[i];
        // The rounding to single precision is part of the behaviour.
        const double length =
            RoundToFloat(std::sqrt(row[0] * row[0] + row[1] * row[1] + row[2] * row[2]));
        SetRow4(row, row[0] / length, row[1] / length, row[2] / length, 0.0);
        for (int j = 0; j < 3; ++j)
            _inverse[j][i] *= length;
    }
    SetRow4(_matrix[3], 0.0, 0.0, 0.0, 1.0);
    SetRow4(_inverse[3], 0.0, 0.0, 0.0, 1.0);
    return true;
}
