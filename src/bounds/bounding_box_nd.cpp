#include <norvek/bounds/bounding_box_nd.h>

#include <cmath>

namespace
{

// A thousand at a time: the units of length go metre, millimetre, micrometre.
constexpr double kScaleStep = 1000.0;
constexpr int kMostScaleSteps = 100;

double RoundHalfAway(double value)
{
    return value > 0.0 ? std::floor(value + 0.5) : std::ceil(value - 0.5);
}

// What one limit, already multiplied by the first scale, makes of the scale found so far.
double ReduceScale(double product, double limit, double scale)
{
    double trial = scale;
    for (int step = 0; std::abs(product) > limit && step < kMostScaleSteps; ++step) {
        product /= kScaleStep;
        trial /= kScaleStep;
    }
    return trial < scale ? trial : scale;
}

} // namespace

template <class T, std::size_t N>
MMVector<T, N> MBoundingBoxND<T, N>::GetCenter() const
{
    Vector center;
    for (std::size_t axis = 0; axis < N; ++axis)
        center[axis] = (_min[axis] + _max[axis]) * 0.5;
    return center;
}

template <class T, std::size_t N>
MMVector<T, N> MBoundingBoxND<T, N>::GetDiagonal() const
{
    Vector diagonal;
    for (std::size_t axis = 0; axis < N; ++axis)
        diagonal[axis] = _max[axis] - _min[axis];
    return diagonal;
}

template <class T, std::size_t N>
double MBoundingBoxND<T, N>::GetDiagonalLength() const
{
    const Vector diagonal = GetDiagonal();
    double sum = diagonal[0] * diagonal[0];
    for (std::size_t axis = 1; axis < N; ++axis)
        sum += diagonal[axis] * diagonal[axis];
    return std::sqrt(sum);
}

template <class T, std::size_t N>
double MBoundingBoxND<T, N>::GetArea() const
{
    const Vector d = GetDiagonal();
    return 2.0 * (d[0] * d[1] + d[1] * d[2] + d[2] * d[0]);
}

template <class T, std::size_t N>
short int MBoundingBoxND<T, N>::GetMaximumAxis() const
{
    short int result = 0;
    for (short int axis = 1; axis < GetEndAxisForLoop(); ++axis)
        if (GetLength(axis) > GetLength(result))
            result = axis;
    return result;
}

template <class T, std::size_t N>
short int MBoundingBoxND<T, N>::GetMinimumAxis() const
{
    short int result = 0;
    for (short int axis = 1; axis < GetEndAxisForLoop(); ++axis)
        if (GetLength(axis) < GetLength(result))
            result = axis;
    return result;
}

template <class T, std::size_t N>
double MBoundingBoxND<T, N>::GetMaximumLength() const
{
    double result = -1.0;
    for (short int axis = 0; axis < GetEndAxisForLoop(); ++axis)
        if (GetLength(axis) > result)
            result = GetLength(axis);
    return result;
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::GetHasPoint(const Vector& point) const
{
    for (std::size_t axis = 0; axis < GetEndAxisForLoop(); ++axis)
        if (!(_min[axis] <= point[axis] && point[axis] <= _max[axis]))
            return false;
    return true;
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::GetHasPointWithTolerance(const Vector& point, T tolerance) const
{
    for (std::size_t axis = 0; axis < GetEndAxisForLoop(); ++axis)
        if (_min[axis] > point[axis] + tolerance || point[axis] - tolerance > _max[axis])
            return false;
    return true;
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::GetIsCloseToBoundary(short int& axis, eBoundingBoxLimitType& type,
                                                const Vector& point, T tolerance) const
{
    if (!GetHasPoint(point))
        return false;
    for (short int candidate = 0; candidate < GetEndAxisForLoop(); ++candidate) {
        const T coordinate = point[_Index(candidate)];
        const bool isLow = tolerance > coordinate - GetMin(candidate);
        if (isLow || tolerance > GetMax(candidate) - coordinate) {
            axis = candidate;
            type = isLow ? eBoundingBoxLimitType::LowerLimit : eBoundingBoxLimitType::UpperLimit;
            return true;
        }
    }
    return false;
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::GetIsCloseToBoundary(const Vector& point, T tolerance) const
{
    short int axis = 0;
    auto type = eBoundingBoxLimitType::LowerLimit;
    return GetIsCloseToBoundary(axis, type, point, tolerance);
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::GetIsCloseToSpecificBoundary(short int axis, eBoundingBoxLimitType type,
                                                        const Vector& point, T tolerance) const
{
    const T limit = type == eBoundingBoxLimitType::LowerLimit ? GetMin(axis) : GetMax(axis);
    return std::abs(point[_Index(axis)] - limit) < tolerance;
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::CheckIntersection(const MBoundingBoxND& other) const
{
    for (std::size_t axis = 0; axis < GetEndAxisForLoop(); ++axis)
        if (!(_min[axis] <= other._max[axis] && other._min[axis] <= _max[axis]))
            return false;
    return true;
}

template <class T, std::size_t N>
void MBoundingBoxND<T, N>::Scale(const double& factor, const bool& aboutCentre)
{
    const double by = factor;
    if (!aboutCentre) {
        for (std::size_t axis = 0; axis < N; ++axis) {
            _min[axis] *= by;
            _max[axis] *= by;
        }
        return;
    }
    const Vector center = GetCenter();
    for (std::size_t axis = 0; axis < N; ++axis) {
        _min[axis] = (_min[axis] - center[axis]) * by + center[axis];
        _max[axis] = (_max[axis] - center[axis]) * by + center[axis];
    }
}

template <class T, std::size_t N>
bool MBoundingBoxND<T, N>::CheckLongOverflow() const
{
    for (std::size_t axis = 0; axis < GetEndAxisForLoop(); ++axis)
        if (!(std::abs(_min[axis]) <= kLongLimit && std::abs(_max[axis]) <= kLongLimit))
            return false;
    return true;
}

template <class T, std::size_t N>
double MBoundingBoxND<T, N>::CheckLongOverflow(const double& scale, const double& limit) const
{
    double result = scale;
    for (const Vector* corner : {&_min, &_max})
        for (const T value : *corner)
            result = ReduceScale(value * scale, limit, result);
    return result;
}

template class MBoundingBoxND<double, 3>;
template class MBoundingBox3D<double>;

bool MBoundingBox3DDouble::FitInLong(MMPoint3d<double>& offset, double& scale,
                                     const double& initialScale) const
{
    const double first = initialScale;
    offset = {};
    scale = first;
    MBoundingBox3DDouble scaled = *this;
    scaled.Scale(first, false);
    bool isTooLarge = false;
    for (short int axis = 0; axis < 3; ++axis)
        isTooLarge = isTooLarge || std::abs(scaled.GetMin(axis)) > kLongLimit ||
                     std::abs(scaled.GetMax(axis)) > kLongLimit;
    if (!isTooLarge)
        return false;
    if (scaled.GetMaximumLength() < kLongLimit) {
        const MMVector<double, 3> center = GetCenter();
        offset = {RoundHalfAway(-center[0]), RoundHalfAway(-center[1]), RoundHalfAway(-center[2])};
    } else {
        scale = CheckLongOverflow(first, kLongLimit);
    }
    return true;
}
