#include "transform/matrix4.h"

#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <typeinfo>

using namespace Norvek::Math::Core;

namespace
{

// The exact classes, not those derived from them, which may map as they like.
bool IsPlainMatrix(const MMTransform& transform)
{
    return typeid(transform) == typeid(MMTransformMatrix) ||
           typeid(transform) == typeid(MMTransformIdentity);
}

} // namespace

bool AreEqual(const MMTransform& a, const MMTransform& b)
{
    if (typeid(a) != typeid(b) && !(IsPlainMatrix(a) && IsPlainMatrix(b)))
        return false;
    if (typeid(a) == typeid(MMTransformStack)) {
        return static_cast<const MMTransformStack&>(a)._Equal(
            static_cast<const MMTransformStack&>(b));
    }
    Matrix4 elementsOfA;
    Matrix4 elementsOfB;
    if (a.ConvertToDouble16(elementsOfA[0]) && b.ConvertToDouble16(elementsOfB[0]))
        return AreEqualMatrix4(elementsOfA, elementsOfB);
    return &a == &b;
}
