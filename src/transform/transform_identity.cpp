#include <norvek/transform/transform_identity.h>

namespace
{

template <class T>
void WriteUnitMatrix(T* matrix)
{
    for (int i = 0; i < 16; ++i)
        matrix[i] = i % 5 == 0 ? T{1} : T{0};
}

} // namespace

MMTransformIdentity* MMTransformIdentity::Clone() const
{
    return new MMTransformIdentity(*this);
}

bool MMTransformIdentity::ConvertToFloat16(float* matrix) const
{
    WriteUnitMatrix(matrix);
    return true;
}

bool MMTransformIdentity::ConvertToDouble16(double* matrix) const
{
    WriteUnitMatrix(matrix);
    return true;
}

bool MMTransformIdentity::Invert()
{
    return true;
}

bool MMTransformIdentity::IsIdentity() const
{
    return true;
}

bool MMTransformIdentity::_Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                     bool /*isDirection*/) const
{
    out = in;
    return true;
}

bool MMTransformIdentity::_InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                                            bool isDirection) const
{
    return MMTransformIdentity::_Transform(out, in, isDirection);
}
