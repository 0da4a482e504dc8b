#pragma once

#include <norvek/foundation/export.h>

#include <cstdint>
#include <exception>

/// What a transform throws where it has no result in which to report a failure. Thrown by value;
/// it holds its kind and nothing else.
class NORVEK_MATH_API MMTransformException : public std::exception
{
public:
    /// What went wrong. The numbers are fixed; 1 and 2 are reserved and never thrown.
    enum Kinds : std::int32_t
    {
        /// The homogeneous coordinate w of a transformed point is exactly 0.
        HomogeneousDivideByZero = 0,
        /// A pivot of the general inversion is exactly 0. Does not leave the library: the inversion
        /// catches it and reports failure.
        SingularMatrix = 3,
        /// A point could not be transformed, in an operator that returns the point.
        TransformFailed = 4,
        /// The scale of a matrix that is no uniform scale was asked for.
        NotScale1D = 5,
        /// The parameters of a line-perspective transform are degenerate.
        InvalidPerspective = 6
    };

    /// An exception of one kind.
    explicit MMTransformException(Kinds kind) noexcept;
    /// Copies the kind.
    MMTransformException(const MMTransformException&) = default;
    /// Copies the kind.
    MMTransformException& operator=(const MMTransformException&) = default;
    ~MMTransformException() override;

    /// The kind given at construction.
    [[nodiscard]] Kinds GetKind() const noexcept
    {
        return _kind;
    }

    /// The kind as one English sentence, a string with static storage.
    [[nodiscard]] const char* what() const noexcept override;

private:
    Kinds _kind;
};
