#pragma once

#include <norvek/search/closest_point_info.h>

/// Finds the point of a fixed cloud that is nearest to a query point. Queries are const and may run
/// on one locator from several threads at once, each with a record of its own.
class NORVEK_MATH_API MPointLocator
{
public:
    virtual ~MPointLocator();

    /// Looks for the nearest point in the whole space and writes it, its index and its distance
    /// into the record. False when there is none; the found index then is -1, the distance
    /// `kInfiniteDistance`, and the rest untouched.
    virtual bool FindClosestPoint(MClosestPointInfo& info) const = 0;

    /// The same within the record's distance as the radius, the sphere itself excluded. False when
    /// there is none; the found index then is -1 and the rest untouched.
    virtual bool FindClosestPointWithinRadius(MClosestPointInfo& info) const = 0;

protected:
    /// Nothing to construct.
    MPointLocator() = default;
    /// Nothing to copy.
    MPointLocator(const MPointLocator&) = default;
    /// Nothing to copy.
    MPointLocator& operator=(const MPointLocator&) = default;
};
