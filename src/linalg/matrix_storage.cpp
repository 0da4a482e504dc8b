#include <norvek/linalg/matrix_storage.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace Norvek::Math::Core
{

MatrixStorage::MatrixStorage(std::size_t count)
{
    if (!Resize(count))
        throw std::bad_alloc();
}

MatrixStorage::MatrixStorage(double* values, std::size_t count)
    : _values(values),
      _count(values == nullptr ? 0 : count)
{}

MatrixStorage::MatrixStorage(const MatrixStorage& other)
{
    if (other._values == nullptr)
        return;
    _values.reset(new double[other._count]);
    _count = other._count;
    std::copy_n(other._values.get(), _count, _values.get());
}

MatrixStorage::MatrixStorage(MatrixStorage&& other) noexcept
    : _values(std::move(other._values)),
      _count(std::exchange(other._count, 0))
{}

// No array is copied as no array: a cleaned-up matrix is a proper value.
MatrixStorage& MatrixStorage::operator=(const MatrixStorage& other)
{
    if (this == &other)
        return *this;
    if (other._values == nullptr) {
        Release();
        return *this;
    }
    if (!Resize(other._count))
        throw std::bad_alloc();
    std::copy_n(other._values.get(), _count, _values.get());
    return *this;
}

MatrixStorage& MatrixStorage::operator=(MatrixStorage&& other) noexcept
{
    if (this != &other) {
        _values = std::move(other._values);
        _count = std::exchange(other._count, 0);
    }
    return *this;
}

bool MatrixStorage::Resize(std::size_t count) noexcept
{
    if (_values != nullptr && count == _count)
        return true;
    // The element count of 2^32 by 2^32 would overflow the byte count of the allocation.
    if (count > static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(double))
        return false;
    auto* const values = new (std::nothrow) double[count];
    if (values == nullptr)
        return false;
    _values.reset(values);
    _count = count;
    return true;
}

void MatrixStorage::Release() noexcept
{
    _values.reset();
    _count = 0;
}

} // namespace Norvek::Math::Core
