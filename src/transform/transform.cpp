#include <norvek/bounds/bounding_box.h>
#include <norvek/foundation/coordinate.h>
#include <norvek/transform/transform.h>
#include <norvek/transform/transform_exception.h>

#include <limits>

using Norvek::Math::Core::CoordinateCast;

// The one form behind all that convert. The input comes by value, so that the output may lie on it;
// the result starts at zero and is written whatever the verdict, but not when the operation throws.
template <MMTransform::_Operation operation, class T>
bool MMTransform::_Convert(T& outX, T& outY, T& outZ, T x, T y, T z, bool isDirection) const
{
    const MMPoint3d<double> in(x, y, z);
    MMPoint3d<double> result;
    const bool done = (this->*operation)(result, in, isDirection);
    outX = CoordinateCast<T>(result.x);
    outY = CoordinateCast<T>(result.y);
    outZ = CoordinateCast<T>(result.z);
    return done;
}

bool MMTransform::Transform(float& x, float& y, float& z, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(x, y, z, x, y, z, isDirection);
}

bool MMTransform::Transform(double& x, double& y, double& z, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(x, y, z, x, y, z, isDirection);
}

bool MMTransform::Transform(MMPoint3d<float>& out, const MMPoint3d<float>& in,
                            bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(out.x, out.y, out.z, in.x, in.y, in.z, isDirection);
}

bool MMTransform::Transform(MMPoint3d<float>& point, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(point.x, point.y, point.z, point.x, point.y, point.z,
                                              isDirection);
}

bool MMTransform::Transform(float* out, float x, float y, float z, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(out[0], out[1], out[2], x, y, z, isDirection);
}

bool MMTransform::Transform(float* out, const float* in, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(out[0], out[1], out[2], in[0], in[1], in[2],
                                              isDirection);
}

bool MMTransform::Transform(float* point, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(point[0], point[1], point[2], point[0], point[1],
                                              point[2], isDirection);
}

bool MMTransform::Transform(double* out, double x, double y, double z, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(out[0], out[1], out[2], x, y, z, isDirection);
}

bool MMTransform::Transform(double* out, const double* in, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(out[0], out[1], out[2], in[0], in[1], in[2],
                                              isDirection);
}

bool MMTransform::Transform(double* point, bool isDirection) const
{
    return _Convert<&MMTransform::_Transform>(point[0], point[1], point[2], point[0], point[1],
                                              point[2], isDirection);
}

bool MMTransform::InverseTransform(float& x, float& y, float& z, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(x, y, z, x, y, z, isDirection);
}

bool MMTransform::InverseTransform(double& x, double& y, double& z, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(x, y, z, x, y, z, isDirection);
}

bool MMTransform::InverseTransform(MMPoint3d<float>& out, const MMPoint3d<float>& in,
                                   bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(out.x, out.y, out.z, in.x, in.y, in.z,
                                                     isDirection);
}

bool MMTransform::InverseTransform(MMPoint3d<float>& point, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(point.x, point.y, point.z, point.x, point.y,
                                                     point.z, isDirection);
}

bool MMTransform::InverseTransform(float* out, float x, float y, float z, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(out[0], out[1], out[2], x, y, z, isDirection);
}

bool MMTransform::InverseTransform(float* out, const float* in, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(out[0], out[1], out[2], in[0], in[1], in[2],
                                                     isDirection);
}

bool MMTransform::InverseTransform(float* point, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(point[0], point[1], point[2], point[0],
                                                     point[1], point[2], isDirection);
}

bool MMTransform::InverseTransform(double* out, double x, double y, double z,
                                   bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(out[0], out[1], out[2], x, y, z, isDirection);
}

bool MMTransform::InverseTransform(double* out, const double* in, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(out[0], out[1], out[2], in[0], in[1], in[2],
                                                     isDirection);
}

bool MMTransform::InverseTransform(double* point, bool isDirection) const
{
    return _Convert<&MMTransform::_InverseTransform>(point[0], point[1], point[2], point[0],
                                                     point[1], point[2], isDirection);
}

// The array starts at zero, so that a kind without a matrix does not hand out what was on the
// stack.
bool MMTransform::ConvertToDouble16(double* matrix) const
{
    float narrow[16] = {};
    const bool done = ConvertToFloat16(narrow);
    for (int i = 0; i < 16; ++i)
        matrix[i] = narrow[i];
    return done;
}

bool MMTransform::Transform(std::vector<MMPoint3d<double>>& out,
                            const std::vector<MMPoint3d<double>>& in) const
{
    out.resize(in.size());
    for (std::size_t i = 0; i < in.size(); ++i) {
        if (!_Transform(out[i], in[i], false))
            return false;
    }
    return true;
}

// Always true: a point without an image stays where it is, and the others still count.
bool MMTransform::Transform(std::vector<MMPoint3d<double>>& points) const
{
    for (MMPoint3d<double>& point : points)
        _Transform(point, point, false);
    return true;
}

// Not through the virtual form in double, which a derived class may have replaced.
MMPoint3d<float> MMTransform::operator()(const MMPoint3d<float>& point, bool isDirection)
{
    return MMPoint3d<float>(MMTransform::operator()(MMPoint3d<double>(point), isDirection));
}

MMPoint3d<double> MMTransform::operator()(const MMPoint3d<double>& point, bool isDirection)
{
    MMPoint3d<double> result;
    if (!_Transform(result, point, isDirection))
        throw MMTransformException(MMTransformException::TransformFailed);
    return result;
}

// Nothing is written before the last corner is through, so the outputs may be the inputs. The
// strict comparisons let a NaN pass by, and keep the extreme floats where nothing else came.
bool MMTransform::TransformBoundingBox(float& outMinX, float& outMaxX, float& outMinY,
                                       float& outMaxY, float& outMinZ, float& outMaxZ, float minX,
                                       float maxX, float minY, float maxY, float minZ,
                                       float maxZ) const
{
    constexpr float highest = std::numeric_limits<float>::max();
    MMPoint3d<float> lower(highest, highest, highest);
    MMPoint3d<float> upper(-highest, -highest, -highest);
    const auto fold = [](float value, float& low, float& high) {
        if (value < low)
            low = value;
        if (value > high)
            high = value;
    };
    for (int i = 0; i < 8; ++i) {
        const MMPoint3d<double> in((i & 1) != 0 ? maxX : minX, (i & 2) != 0 ? maxY : minY,
                                   (i & 4) != 0 ? maxZ : minZ);
        MMPoint3d<double> out;
        if (!_Transform(out, in, false))
            return false;
        const MMPoint3d<float> corner(out);
        fold(corner.x, lower.x, upper.x);
        fold(corner.y, lower.y, upper.y);
        fold(corner.z, lower.z, upper.z);
    }
    outMinX = lower.x;
    outMaxX = upper.x;
    outMinY = lower.y;
    outMaxY = upper.y;
    outMinZ = lower.z;
    outMaxZ = upper.z;
    return true;
}

bool MMTransform::TransformBoundingBox(M3DBoundingBox<float>& box) const
{
    return TransformBoundingBox(box.minX, box.maxX, box.minY, box.maxY, box.minZ, box.maxZ,
                                box.minX, box.maxX, box.minY, box.maxY, box.minZ, box.maxZ);
}
