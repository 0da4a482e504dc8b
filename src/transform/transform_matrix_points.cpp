#include "transform/matrix4.h"
#include "transform/point_kernel.h"

#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>

#include <typeinfo>

using namespace Norvek::Math::Core;

namespace
{

// A direction leaves out the last column, also of the bottom row, so its w can be 0 where that of a
// position cannot. The coordinates are divided, not multiplied by a reciprocal.
MMPoint3d<double> Image(const Matrix4& m, bool homogeneous, const MMPoint3d<double>& p,
                        bool isDirection)
{
    MMPoint3d<double> image(RowTimesPoint(m[0], p.x, p.y, p.z, isDirection),
                            RowTimesPoint(m[1], p.x, p.y, p.z, isDirection),
                            RowTimesPoint(m[2], p.x, p.y, p.z, isDirection));
    if (homogeneous) {
        const double w = RowTimesPoint(m[3], p.x, p.y, p.z, isDirection);
        if (w == 0.0)
            throw MMTransformException(MMTransformException::HomogeneousDivideByZero);
        image /= w;
    }
    return image;
}

} // namespace

bool MMTransformMatrix::_Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                   bool isDirection) const
{
    out = IsIdentity() ? in : Image(_matrix, _homogeneous, in, isDirection);
    return true;
}

// The flag comes first: without an inverse not even the identity answers.
bool MMTransformMatrix::_InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                          bool isDirection) const
{
    if (!_invertible)
        return false;
    out = IsIdentity() ? in : Image(_inverse, _homogeneous, in, isDirection);
    return true;
}

// Single coordinates neither ask for the identity nor divide: they are the bare rows.
double MMTransformMatrix::TransformX(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_matrix[0], x, y, z, isDirection);
}

double MMTransformMatrix::TransformY(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_matrix[1], x, y, z, isDirection);
}

double MMTransformMatrix::TransformZ(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_matrix[2], x, y, z, isDirection);
}

double MMTransformMatrix::InverseTransformX(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_inverse[0], x, y, z, isDirection);
}

double MMTransformMatrix::InverseTransformY(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_inverse[1], x, y, z, isDirection);
}

double MMTransformMatrix::InverseTransformZ(double x, double y, double z, bool isDirection) const
{
    return RowTimesPoint(_inverse[2], x, y, z, isDirection);
}

// The identity and the bottom row are asked for once instead of for every point. A class derived
// from the matrix may answer otherwise from point to point, so it takes the general way.
bool MMTransformMatrix::Transform(std::vector<MMPoint3d<double>>& out,
                                  const std::vector<MMPoint3d<double>>& in) const
{
    if (typeid(*this) != typeid(MMTransformMatrix) || _homogeneous)
        return MMTransform::Transform(out, in);
    if (_class == MMTransformMatrixClass::Identity) {
        out = in;
        return true;
    }
    out.resize(in.size());
    TransformPoints(out.data(), in.data(), in.size(), _matrix);
    return true;
}

bool MMTransformMatrix::Transform(std::vector<MMPoint3d<double>>& points) const
{
    if (typeid(*this) != typeid(MMTransformMatrix) || _homogeneous)
        return MMTransform::Transform(points);
    if (_class != MMTransformMatrixClass::Identity)
        TransformPoints(points.data(), points.data(), points.size(), _matrix);
    return true;
}
