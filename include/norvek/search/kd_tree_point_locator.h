#pragma once

#include <norvek/search/point_locator.h>

#include <cstddef>
#include <vector>

/// One of several found points: its index among the points that the locator was built from, and its
/// distance to the query point.
struct MFoundPoint
{
    /// From 0, in the order in which the points were handed over.
    std::uint32_t index;
    /// The true distance, not its square.
    double distance;

    /// The same index and, exactly, the same distance.
    [[nodiscard]] bool operator==(const MFoundPoint& other) const = default;
};

/// A k-d tree over a fixed cloud of points, with a bucket of points in each leaf.
///
/// **The tree.** A node of more points than a bucket holds is split across the axis of its largest
/// extent (ties: the lower axis) at the median, moved so that equal coordinates stay together:
/// every point at or above the split value goes right. A node whose points are all equal stays a
/// leaf, however many they are. The depth is at most 4 log2 n + 8, whatever the points are, and
/// seldom more than log2 n.
///
/// **Answers.** The nearest point is exact: its distance is the one that comparing with every point
/// gives, bit for bit. Distances are compared by their squares, strictly, so that a point on the
/// sphere of the radius is not found, and of points equally near the one wins that the search meets
/// first: the lowest index within a leaf, and the side of the query first between leaves (a query
/// on a split goes right first). Squares beyond the range of a double (distances above 1e154)
/// are not found, and below 1e-162 they are 0.
///
/// Points with a coordinate that is not finite are never found and do not disturb the others. A
/// query that is not finite, a radius that is negative, zero or NaN, and a locator that has not
/// been built find nothing.
///
/// Building takes n log n, a nearest point about log n. Queries allocate nothing and keep nothing:
/// any number of threads may search one tree. Copies are independent. The memory is about 45 bytes
/// a point, and 72 more while building. J. L. Bentley, 1975; J. H. Friedman, J. L. Bentley
/// and R. A. Finkel, 1977.
class NORVEK_MATH_API MKDTreePointLocator : public MPointLocator
{
public:
    /// Without points.
    MKDTreePointLocator() = default;

    /// Discards what was there, copies the points and builds the tree. At most 2^32 - 1 points,
    /// asserted only.
    void BuildLocator(const std::vector<MMPoint3d<double>>& points);

    /// Discards points and tree; the bucket size is 10 again.
    void SetDefaults();

    /// How many points a leaf holds without being split, from the next build on; 10 by default.
    void SetBucketSize(std::uint32_t size)
    {
        _bucketSize = size;
    }

    /// The bucket size of the next build.
    [[nodiscard]] std::uint32_t GetBucketSize() const
    {
        return _bucketSize;
    }

    /// The number of points that the tree was built from, those included that are never found.
    [[nodiscard]] std::uint32_t GetNumPoints() const
    {
        return _numPoints;
    }

    /// The bytes that points and tree take.
    [[nodiscard]] std::size_t GetMemory() const;

    bool FindClosestPoint(MClosestPointInfo& info) const override;

    bool FindClosestPointWithinRadius(MClosestPointInfo& info) const override;

    /// The `count` points nearest to `query`, or all when there are fewer, in ascending order of
    /// squared distance; equal ones in ascending order of index, also as to which of them belong to
    /// the nearest. `found` is replaced; its capacity is used. False when nothing was found.
    bool FindClosestPoints(const MMPoint3d<double>& query, std::uint32_t count,
                           std::vector<MFoundPoint>& found) const;

    /// All points at a distance of at most `radius`, the sphere itself included, in no
    /// particular order. A radius of 0 finds the points that coincide with the query. `found` is
    /// replaced; its capacity is used. False when nothing was found.
    bool FindPointsWithinRadius(const MMPoint3d<double>& query, double radius,
                                std::vector<MFoundPoint>& found) const;

private:
    // Nodes stand in the order of a walk from the root, left subtree first: the left child of a
    // node is the next one. Four of them share a line of the cache.
    struct _Node
    {
        // The split value; not a number in a leaf.
        double split;
        // Of a leaf the first of its points, otherwise the right child.
        std::uint32_t firstOrRight;
        // Of a leaf the number of its points, otherwise the axis.
        std::uint32_t countOrAxis;

        [[nodiscard]] bool IsLeaf() const
        {
            return split != split;
        }
    };

    // The corners of the box of a node's points.
    struct _Box
    {
        double lower[3];
        double upper[3];
    };

    class _Builder;
    template <class Visitor>
    class _Search;
    struct _Nearest;

    [[nodiscard]] bool _ComesFirst(const double (&query)[3], std::uint32_t place,
                                   std::uint32_t other) const;

    std::uint32_t _bucketSize = 10;
    std::uint32_t _numPoints = 0;
    std::vector<_Node> _nodes;
    std::vector<_Box> _boxes;
    // In the order of the leaves, ascending by index within each.
    std::vector<MMPoint3d<double>> _points;
    std::vector<std::uint32_t> _indices;
};
