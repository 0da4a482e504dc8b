#include <norvek/transform/transform_exception.h>

MMTransformException::MMTransformException(Kinds kind) noexcept : _kind(kind)
{}

MMTransformException::~MMTransformException() = default;

const char* MMTransformException::what() const noexcept
{
    switch (_kind) {
    case HomogeneousDivideByZero:
        return "The homogeneous coordinate of a transformed point is zero.";
    case SingularMatrix:
        return "The matrix is singular.";
    case TransformFailed:
        return "The point could not be transformed.";
    case NotScale1D:
        return "The matrix is not a uniform scale.";
    case InvalidPerspective:
        return "The parameters of the perspective are degenerate.";
    }
    return "A transform failed.";
}
