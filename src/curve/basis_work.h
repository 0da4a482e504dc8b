#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace Norvek::Math::Core
{

/// Work memory of one call of the kernel: on the stack up to order 20, which fits do not exceed,
/// and from the C heap above.
class BasisWork
{
public:
    /// Room for three arrays of `order` values each; not initialised on the stack.
    explicit BasisWork(std::size_t order) : _order(order)
    {
        if (order > kStackOrder)
            _heap.reset(static_cast<double*>(std::calloc(order, 3 * sizeof(double))));
    }

    /// False without memory.
    [[nodiscard]] bool IsReady() const
    {
        return _order <= kStackOrder || _heap != nullptr;
    }

    /// Array 0, 1 or 2.
    [[nodiscard]] double* Array(std::size_t index)
    {
        return (_heap != nullptr ? _heap.get() : _stack) + index * _order;
    }

private:
    static constexpr std::size_t kStackOrder = 20;

    struct _Free
    {
        void operator()(double* values) const
        {
            std::free(values);
        }
    };

    std::size_t _order;
    std::unique_ptr<double[], _Free> _heap;
    double _stack[3 * kStackOrder];
};

} // namespace Norvek::Math::Core
