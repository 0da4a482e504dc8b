#include "foundation/safe_length.h"
#include "transform/matrix4.h"
#include "transform/point_kernel.h"

#include <norvek/foundation/constants.h>
#include <norvek/transform/ortho_transform.h>

#include <algorithm>
#include <cmath>

using namespace Norvek::Math::Core;

namespace
{

// 5000 machine epsilons: what the dot products of the rows of a rotation may be off by.
constexpr double kVerifyTolerance = 1.1102230246251565e-12;
static_assert(kVerifyTolerance == 5000.0 * kMachineEpsilon);

// Equal rotations: ten square roots of the machine epsilon, a tenth of what equal matrices are
// allowed. Translations are compared as matrices are.
constexpr double kRotationEqualTolerance = 1.4901161193847656e-07;
static_assert(kRotationEqualTolerance == 10.0 * kSqrtMachineEpsilon);

// Strictly, so that NaN is near nothing.
bool AreNear(const double* a, const double* b, int count, double tolerance)
{
    return std::equal(a, a + count, b,
                      [tolerance](double x, double y) { return std::abs(x - y) < tolerance; });
}

} // namespace

// Here, so that the table of virtual functions has one home.
MMOrthoTransform::~MMOrthoTransform() = default;

void MMOrthoTransform::Copy(const MMOrthoTransform& other)
{
    *this = other;
}

// The elements are read first: they may be this very transform.
void MMOrthoTransform::SetFrom12Elements(const double* elements)
{
    double e[12];
    std::copy_n(elements, 12, e);
    MakeTransformation({e[3], e[7], e[11]}, {e[0], e[1], e[2]}, {e[4], e[5], e[6]},
                       {e[8], e[9], e[10]});
}

void MMOrthoTransform::MakeIdentity()
{
    MakeTransformation({}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0});
}

// The rows may have been read from this transform; they are values by now.
void MMOrthoTransform::MakeTransformation(MMPoint3d<double> translation, MMPoint3d<double> row0,
                                          MMPoint3d<double> row1, MMPoint3d<double> row2)
{
    const MMPoint3d<double> rows[3] = {row0, row1, row2};
    for (int i = 0; i < 3; ++i) {
        _rotation[i][0] = rows[i].x;
        _rotation[i][1] = rows[i].y;
        _rotation[i][2] = rows[i].z;
    }
    SetTranslation(translation);
}

// Rodrigues' formula: with the unit axis a, R v = c v + s (a x v) + (1 - c) (a . v) a. The products
// are written out, as their order decides the last bits.
//
// The length is tested for not being above 0, which a NaN axis is not either. Angle and centre may
// be values of the translation, so both are read before anything is written.
void MMOrthoTransform::MakeRotation(const MMPoint3d<double>& center, const MMPoint3d<double>& axis,
                                    const double& angle, const bool& normalise)
{
    MMPoint3d<double> unit = axis;
    if (normalise) {
        const double length = SafeLength(axis);
        if (!(length > 0.0))
            return;
        unit /= length;
    }
    const auto [x, y, z] = unit;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double u = 1.0 - c;
    const MMPoint3d<double> fixed = center;
    MakeTransformation({}, {x * x * u + c, x * y * u - z * s, x * z * u + y * s},
                       {x * y * u + z * s, y * y * u + c, y * z * u - x * s},
                       {x * z * u - y * s, y * z * u + x * s, z * z * u + c});
    SetRotationCenter(fixed);
}

void MMOrthoTransform::SetTranslation(MMPoint3d<double> translation)
{
    _translation[0] = translation.x;
    _translation[1] = translation.y;
    _translation[2] = translation.z;
}

// R c + t = c.
void MMOrthoTransform::SetRotationCenter(MMPoint3d<double> center)
{
    MMPoint3d<double> turned;
    Rotate(turned, center);
    SetTranslation(center - turned);
}

// A full product and no addition to t: its zeros meet infinities, and -0 becomes 0. R is multiplied
// by the unit matrix for the same reason.
void MMOrthoTransform::Translate(MMPoint3d<double> offset)
{
    MMOrthoTransform shift;
    shift.SetTranslation(offset);
    Concatenate(shift);
}

// The new values come in places of their own, as `other` may be this transform.
void MMOrthoTransform::Concatenate(const MMOrthoTransform& other)
{
    MMOrthoTransform product;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            product._rotation[i][j] = other._rotation[i][0] * _rotation[0][j] +
                                      other._rotation[i][1] * _rotation[1][j] +
                                      other._rotation[i][2] * _rotation[2][j];
        }
    }
    MMPoint3d<double> moved;
    other.Transform(moved, {_translation[0], _translation[1], _translation[2]});
    product.SetTranslation(moved);
    *this = product;
}

// At most, where the comparisons below are strict: meant.
bool MMOrthoTransform::Verify() const
{
    for (unsigned short i = 0; i < 3; ++i) {
        MMPoint3d<double> row;
        GetRow(row, i);
        for (int j = i; j < 3; ++j) {
            if (!(std::abs(_TimesRow(j, row) - (i == j ? 1.0 : 0.0)) <= kVerifyTolerance))
                return false;
        }
    }
    return true;
}

bool MMOrthoTransform::IsSmall(double rotationTolerance, double translationTolerance) const
{
    const MMOrthoTransform identity;
    return AreNear(_rotation[0], identity._rotation[0], 9, rotationTolerance) &&
           AreNear(_translation, identity._translation, 3, translationTolerance);
}

bool MMOrthoTransform::Keeps2DOrientation() const
{
    return _rotation[2][2] > 0.0;
}

// Fixed bounds, whatever the unit of length; the exact comparison of kept transforms would fail for
// one that was computed twice in different ways.
bool MMOrthoTransform::operator==(const MMOrthoTransform& other) const
{
    return AreNear(_rotation[0], other._rotation[0], 9, kRotationEqualTolerance) &&
           AreNear(_translation, other._translation, 3, kMatrixEqualTolerance);
}

// The kernel of the matrix transform sums as the form for one point does. Reading the twelve values
// once also spares what a loop over single points has to do: its stores might change them.
void MMOrthoTransform::Transform(std::vector<MMPoint3d<double>>& out,
                                 const std::vector<MMPoint3d<double>>& in) const
{
    Matrix4 m = {};
    for (int i = 0; i < 3; ++i)
        SetRow4(m[i], _rotation[i][0], _rotation[i][1], _rotation[i][2], _translation[i]);
    out.resize(in.size());
    TransformPoints(out.data(), in.data(), in.size(), m);
}

void MMOrthoTransform::Transform(std::vector<MMPoint3d<double>>& points) const
{
    Transform(points, points);
}
