#pragma once

#include "foundation/safe_length.h"

#include <algorithm>

namespace Norvek::Math::Core
{

/// How far points are from a chord.
class Chord
{
public:
    /// The segment between two points.
    Chord(const MMPoint3d<double>& start, const MMPoint3d<double>& end)
        : _start(start),
          _along(end - start),
          _square(_along.LengthSquared())
    {}

    /// The largest distance so far, NaN after a point that is none.
    [[nodiscard]] double Deviation() const
    {
        return _deviation;
    }

    /// Takes a point into account.
    void Add(const MMPoint3d<double>& point)
    {
        const MMPoint3d<double> away = point - _start;
        const double share = _square > 0.0 ? std::clamp(away.Dot(_along) / _square, 0.0, 1.0) : 0.0;
        const double distance = SafeLength(away - share * _along);
        // Asked this way round, NaN is not passed over.
        _deviation = distance <= _deviation ? _deviation : distance;
    }

private:
    MMPoint3d<double> _start;
    MMPoint3d<double> _along;
    double _square;
    double _deviation = 0.0;
};

} // namespace Norvek::Math::Core
