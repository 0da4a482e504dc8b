#pragma once

#include <norvek/foundation/export.h>

#include <cstddef>
#include <memory>

namespace Norvek::Math::Core
{

/// The values of a dense matrix: an owned array of `double`, or none.
///
/// Having no array is a proper state (a matrix that was never sized, or was cleaned up): it copies
/// and assigns like any other. Values are not initialised. The array comes from array new and goes
/// back with array delete, so that a caller's array can be adopted.
class NORVEK_MATH_API MatrixStorage
{
public:
    /// No array.
    MatrixStorage() = default;

    /// An array of `count` values, not initialised. Throws `std::bad_alloc` when there is no
    /// memory.
    explicit MatrixStorage(std::size_t count);

    /// Takes over `values`, which came from array new and holds `count` values; null is no array.
    MatrixStorage(double* values, std::size_t count);

    /// Copies the values; no array stays no array.
    MatrixStorage(const MatrixStorage& other);

    /// Leaves `other` without an array.
    MatrixStorage(MatrixStorage&& other) noexcept;

    /// Copies the values; allocates only when the counts differ or there is no array yet.
    MatrixStorage& operator=(const MatrixStorage& other);

    /// Leaves `other` without an array.
    MatrixStorage& operator=(MatrixStorage&& other) noexcept;

    /// Frees the array.
    ~MatrixStorage() = default;

    /// Makes room for exactly `count` values. With an equal count the array and its values stay;
    /// otherwise the values are undefined. False when there is no memory: nothing has changed then.
    bool Resize(std::size_t count) noexcept;

    /// Releases the array.
    void Release() noexcept;

    /// The number of values that the array holds; 0 without an array.
    [[nodiscard]] std::size_t Count() const
    {
        return _count;
    }

    /// The first value; null without an array.
    [[nodiscard]] double* Values()
    {
        return _values.get();
    }

    /// The first value; null without an array.
    [[nodiscard]] const double* Values() const
    {
        return _values.get();
    }

private:
    std::unique_ptr<double[]> _values;
    std::size_t _count = 0;
};

} // namespace Norvek::Math::Core
