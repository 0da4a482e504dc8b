#pragma once

#include <norvek/transform/transform.h>

/// The transform that leaves every point where it is. No state: all objects are alike.
class NORVEK_MATH_API MMTransformIdentity : public MMTransform
{
public:
    /// The identity.
    MMTransformIdentity() = default;
    /// Nothing to copy.
    MMTransformIdentity(const MMTransformIdentity&) = default;
    /// Nothing to copy.
    MMTransformIdentity& operator=(const MMTransformIdentity&) = default;
    ~MMTransformIdentity() override = default;

    /// A new identity, owned by the caller.
    [[nodiscard]] MMTransformIdentity* Clone() const override;

    /// Writes the unit matrix, row by row; true.
    bool ConvertToFloat16(float* matrix) const override;

    /// Writes the unit matrix, row by row; true.
    bool ConvertToDouble16(double* matrix) const override;

    /// True: the identity is its own inverse.
    bool Invert() override;

    /// True.
    [[nodiscard]] bool IsIdentity() const override;

protected:
    /// Copies `in` to `out`; true.
    bool _Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                    bool isDirection) const override;

    /// Copies `in` to `out`; true.
    bool _InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                           bool isDirection) const override;
};
