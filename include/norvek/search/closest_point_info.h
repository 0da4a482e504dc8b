#pragma once

#include <norvek/foundation/export.h>
#include <norvek/foundation/point3d.h>

#include <cstdint>
#include <limits>

/// A nearest-point query and its answer in one record.
///
/// Input: the query point, the caller's index of it, and the distance, which is the search radius.
/// Output: the closest point, its index in the locator's points, and the distance to it, the
/// *residue*.
///
/// The two points are reached through pointers, which a record sets to its own storage. They may be
/// pointed at points of the caller instead, which must outlive the pointing; both at the same point
/// is allowed. **A copy always points at its own storage**: it copies the coordinates pointed to,
/// so that records can be sorted, and vectors of them can grow.
///
/// Comparison is by distance alone, so `==` does not mean equal records. NaN compares with nothing.
class NORVEK_MATH_API MClosestPointInfo
{
public:
    /// The radius of the whole space, and the distance when nothing has been found: the greatest
    /// double.
    static constexpr double kInfiniteDistance = std::numeric_limits<double>::max();

    /// The index of nothing.
    static constexpr std::int32_t kNoIndex = -1;

    /// Both parts at their defaults.
    MClosestPointInfo();

    /// Copies index, distance and coordinates into storage of its own.
    MClosestPointInfo(const MClosestPointInfo& other);

    virtual ~MClosestPointInfo();

    /// Copies the input part, then the output part.
    virtual void Assign(const MClosestPointInfo& other);

    /// Copies the query point and its index; the query then stands in the record's own storage.
    virtual void AssignInput(const MClosestPointInfo& other);

    /// Copies closest point, found index and distance; the closest point then stands in the
    /// record's own storage.
    virtual void AssignOutput(const MClosestPointInfo& other);

    /// A smaller distance.
    [[nodiscard]] virtual bool operator<(const MClosestPointInfo& other) const;

    /// The same distance, exactly.
    [[nodiscard]] virtual bool operator==(const MClosestPointInfo& other) const;

    /// A greater distance.
    [[nodiscard]] virtual bool operator>(const MClosestPointInfo& other) const;

    /// As `Assign`.
    virtual MClosestPointInfo& operator=(const MClosestPointInfo& other);

    /// Copies both parts at once, with the coordinates pointed to, into the record's own storage.
    virtual void Copy(const MClosestPointInfo& other);

    /// Distance `kInfiniteDistance`, found index -1, closest point (-1, -1, -1), written through
    /// the pointer.
    virtual void SetDefaultsOutput();

    /// Input index -1, query point (-1, -1, -1), written through the pointer.
    virtual void SetDefaultsInput();

    /// Sets the distance to that between query point and closest point.
    virtual void UpdateResidues();

    /// Replaces the coordinates of the query point, through the pointer.
    void SetQueryPoint(const MMPoint3d<double>& point)
    {
        *_queryPoint = point;
    }

    /// Points the query at a point of the caller; null points it back at the own storage, whose
    /// coordinates it takes up.
    void PointQueryAt(MMPoint3d<double>* point)
    {
        _queryPoint = point != nullptr ? point : &_queryStorage;
    }

    /// Replaces the coordinates of the closest point, through the pointer.
    void SetClosestPoint(const MMPoint3d<double>& point)
    {
        *_closestPoint = point;
    }

    /// Points the answer at a point of the caller, where it will be written; null points it back at
    /// the own storage.
    void PointClosestAt(MMPoint3d<double>* point)
    {
        _closestPoint = point != nullptr ? point : &_closestStorage;
    }

    /// Sets the search radius, or the residue.
    void SetDistance(double distance)
    {
        _distance = distance;
    }

    /// Sets the caller's index of the query point.
    void SetInputIndex(std::int32_t index)
    {
        _inputIndex = index;
    }

    /// Sets the index of the found point.
    void SetFoundIndex(std::int32_t index)
    {
        _foundIndex = index;
    }

    /// Where the search starts.
    [[nodiscard]] const MMPoint3d<double>& GetQueryPoint() const
    {
        return *_queryPoint;
    }

    /// The found point.
    [[nodiscard]] const MMPoint3d<double>& GetClosestPoint() const
    {
        return *_closestPoint;
    }

    /// The search radius, or the residue.
    [[nodiscard]] double GetDistance() const
    {
        return _distance;
    }

    /// The caller's index of the query point; -1 for none.
    [[nodiscard]] std::int32_t GetInputIndex() const
    {
        return _inputIndex;
    }

    /// The index of the found point; -1 when nothing was found.
    [[nodiscard]] std::int32_t GetFoundIndex() const
    {
        return _foundIndex;
    }

private:
    MMPoint3d<double> _closestStorage;
    MMPoint3d<double> _queryStorage;
    double _distance = kInfiniteDistance;
    std::int32_t _inputIndex = kNoIndex;
    MMPoint3d<double>* _queryPoint = &_queryStorage;
    std::int32_t _foundIndex = kNoIndex;
    MMPoint3d<double>* _closestPoint = &_closestStorage;
};
