#pragma once

#include <norvek/foundation/export.h>

#include <exception>

/// What `MPolyPlaneSectors::GetFocalPoint` throws when its planes have no single common point.
/// Thrown by value; it holds nothing. No other operation on poly-planes throws it.
class NORVEK_MATH_API MPolyPlaneException : public std::exception
{
public:
    /// An exception.
    MPolyPlaneException() = default;
    /// There is nothing to copy.
    MPolyPlaneException(const MPolyPlaneException&) = default;
    /// There is nothing to copy.
    MPolyPlaneException& operator=(const MPolyPlaneException&) = default;
    ~MPolyPlaneException() override;

    /// One English sentence, a string with static storage.
    [[nodiscard]] const char* what() const noexcept override;
};
