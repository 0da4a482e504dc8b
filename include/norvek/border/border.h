#pragma once

#include <norvek/border/border_contour.h>
#include <norvek/border/intersection_value.h>

#include <boost/range/iterator_range.hpp>

#include <functional>
#include <memory>
#include <vector>

/// A border: a planar outline or cross-section made of contours, outer ones and holes.
///
/// Invariant: the contours form a linear list from the first to the last, `GetNumContours()` of
/// them. Contours that the border creates share one pool: that of its first contour, or a new one
/// in an empty border. The border owns its contours; a contour handed in must come from `new` and
/// stand in no border. Arguments named as contours of this border are not checked.
///
/// An empty border has no contours, points or edges, no area, and every point lies outside it.
template <class Coord, class Payload, class Contour = M3dBorderContour<Coord, Payload>>
class NORVEK_MATH_API M3dBorder
{
public:
    /// The type of x and y.
    using CoordinateType = Coord;
    /// The type of the payload.
    using PayloadType = Payload;
    /// The class of the contours.
    using ContourType = Contour;
    /// The record of a point.
    using PointType = typename Contour::PointType;
    /// Shared ownership of a pool of points.
    using PoolPointer = typename Contour::PoolPointer;
    /// Walks the contours from the first to the last.
    using iterator = BaseM3dBorderIterator<M3dBorder, Contour>;
    /// The same over a const border.
    using const_iterator = BaseM3dBorderIterator<const M3dBorder, const Contour>;

    /// An empty border.
    M3dBorder() = default;

    /// Copies all contours, in order, into a pool of its own: points, flags, order and status, not
    /// the info. The contours are of the class `Contour`.
    M3dBorder(const M3dBorder& other);

    /// Destroys the contours.
    virtual ~M3dBorder();

    /// Replaces the contours by copies, as copying does, but created by `_CreateNewContour()`.
    /// Assigning a border to itself does nothing.
    M3dBorder& operator=(const M3dBorder& other);

    /// Exchanges the contours; they keep their addresses and pools.
    void Swap(M3dBorder& other) noexcept;

    /// Creates an empty contour on the border's pool, puts it at the end and returns it.
    Contour* AddContourAtEnd();

    /// The same in front.
    Contour* AddContourAtFront();

    /// The same behind `after`, a contour of this border; at the end when `after` is null.
    Contour* AddContourAfter(Contour* after);

    /// Puts a given contour at the end and returns it; the border owns it from then on. Null gives
    /// null. The contour keeps its pool.
    Contour* AddContourAtEnd(Contour* contour);

    /// The same in front.
    Contour* AddContourAtFront(Contour* contour);

    /// The same behind `after`, a contour of this border; at the end when `after` is null.
    Contour* AddContourAfter(Contour* contour, Contour* after);

    /// Takes the first contour out of the border and hands it over; it is destroyed unless the
    /// caller keeps the result. Null from an empty border.
    std::unique_ptr<Contour> RemoveFirstContour();

    /// Takes a contour of this border out and hands it over; it is destroyed unless the caller
    /// keeps the result. Null gives null.
    std::unique_ptr<Contour> RemoveContour(Contour* contour);

    /// Destroys the contours that have no points.
    void RemoveEmptyContours();

    /// Destroys all contours.
    void MakeEmpty();

    /// Numbers all points 0, 1, 2, ... in contour order, then ring order.
    void SetIndices();

    /// Sets all indices to 0.
    void ResetIndices();

    /// Removes repeated points from every contour, see there.
    void RemoveDoublePoints();

    /// Reverses every contour.
    void Invert();

    /// Sets every contour's outer flag to whether its signed area is 0 or more.
    void AdjustOuterContourParameterToTurningSense();

    /// Inverts the non-empty contours whose turning sense contradicts their outer flag: an outer
    /// one of negative area, an inner one of an area of 0 or more. The asymmetry at 0 is meant: a
    /// degenerate inner contour is inverted, a degenerate outer one is not.
    void AdjustTurningSenseToOuterContourParameter();

    /// Sets every contour's order: the number of contours that it lies in. A contour lies in
    /// another one when the region within it does (even-odd, as for positions); contours that
    /// merely touch, at points or along edges, do not lie in each other. Of two contours around the
    /// same region the later lies in the earlier. Contours whose edges cross do not lie in each
    /// other, nor do those that overlap in part, passing through each other at vertices.
    /// From 254 on only even (254) and odd (255) are told apart. Contours with coordinates that are
    /// not finite lie in nothing.
    ///
    /// O(n log n) in the points; where contours cross or overlap in part, up to the pairs of
    /// contours whose boxes meet times their points.
    void CalculateOrderOfContours();

    /// Calculates the orders and makes outer contours of those whose order is even. Turning senses
    /// stay as they are, see `AdjustTurningSenseToOuterContourParameter`.
    void DetermineOuterContours();

    /// Joins every hole to the outer contour around it by a bridge that is walked there and back,
    /// between vertices whose connection meets nothing else, so that only outer contours are left.
    /// The bridges are short: of the diagonals of a triangulation those that make the shortest
    /// tree. The sum of the signed areas stays. Outer flags and orders are determined first; the
    /// outer contours come in descending order of area. Where contours cross, overlap in part or
    /// have no area, and no such vertices are found, the bridge crosses edges.
    ///
    /// Holes that turn against their outer contour, see
    /// `AdjustTurningSenseToOuterContourParameter`, leave outlines that touch themselves but do not
    /// pass through themselves, as long as no contour does.
    ///
    /// O(n log n) in the points; where contours cross, overlap in part or have no area, up to the
    /// number of holes times the points.
    void MergeToOnlyOuterContours();

    /// The contours from the first to the last.
    boost::iterator_range<iterator> Contours()
    {
        return {begin(), end()};
    }

    /// As above.
    boost::iterator_range<const_iterator> Contours() const
    {
        return {begin(), end()};
    }

    /// The first contour, or the end.
    iterator begin()
    {
        return {_firstContour, this};
    }

    /// As above.
    const_iterator begin() const
    {
        return {_firstContour, this};
    }

    /// Behind the last contour.
    iterator end()
    {
        return {nullptr, this};
    }

    /// As above.
    const_iterator end() const
    {
        return {nullptr, this};
    }

    /// The first contour, null in an empty border.
    Contour* GetFirstContour()
    {
        return _firstContour;
    }

    /// As above.
    const Contour* GetFirstContour() const
    {
        return _firstContour;
    }

    /// The last contour, null in an empty border.
    Contour* GetLastContour()
    {
        return _lastContour;
    }

    /// As above.
    const Contour* GetLastContour() const
    {
        return _lastContour;
    }

    /// The number of contours, empty ones included.
    [[nodiscard]] std::uint32_t GetNumContours() const
    {
        return _numContours;
    }

    /// The sum of the contours' numbers of points, at most the largest 32-bit number. Linear in the
    /// contours.
    [[nodiscard]] std::uint32_t GetNumPoints() const;

    /// The same number: an open contour counts its closing edge too.
    [[nodiscard]] std::uint32_t GetNumEdges() const;

    /// Where (x, y) lies relative to all contours together: 0 on a vertex or an edge of any, 1
    /// inside, 2 outside. A point in a hole lies inside two contours and is outside.
    [[nodiscard]] char CalculatePosition(double x, double y) const;

    /// The sum of the contours' signed areas.
    [[nodiscard]] double SurfaceAreaWithSignXY() const;

    /// The sum of the contours' circumferences.
    [[nodiscard]] double CircumferenceXY() const;

    /// Triangulates the region: what lies in an odd number of contours. `payloads` is replaced by
    /// three payloads for each of `count` triangles, counter-clockwise with y upwards. Contours may
    /// touch themselves and each other, at points and along edges; points may repeat and lie in
    /// rows; turning senses and flags do not matter. Of points at one place the payload of the
    /// first is taken.
    ///
    /// True when the triangles cover the region exactly: decisions are exact for coordinates from
    /// 1e-120 to 1e120 in size. False when edges cross: no triangles between the points cover that
    /// region, and those given are cut off the merged contours one by one, so that their areas add
    /// up to that of the outer contours less the holes as long as the crossings are small. A
    /// contour that crosses another one is a hole in it when most of its points lie inside. An
    /// empty region gives true and no triangles; contours with coordinates that are not finite are
    /// left out. O(n log n) in the points, up to quadratic when edges cross.
    bool FillWithTriangles(std::int32_t& count, std::vector<Payload>& payloads) const;

    /// Whether the connection from `p` to `q` meets an edge of any contour: whether the open
    /// segment between them has a place in common with an edge. Its own ends do not count, wherever
    /// on the border they lie. The edge that closes an open contour does not count. Null gives
    /// false. Linear in the points.
    bool IntersectsWithConnection(const PointType* p, const PointType* q) const;

    /// Lists for every contour, in the order of the border, where it meets the other contours and
    /// where it meets itself, as asked, in running order. `values` is replaced. Each meeting stands
    /// in the lists of both contours, of a contour with itself twice in its list. Crossings of
    /// edges count, and vertices on other edges or vertices, once each; along edges that coincide
    /// these are the ends of what they share. Neighbouring edges do not meet at the vertex between
    /// them. The edge that closes an open contour does not count; contours with coordinates that
    /// are not finite meet nothing.
    void DetermineIntersectionValues(bool withOthers, bool withItself,
                                     std::vector<std::vector<MIntersectionValue>>& values) const;

protected:
    /// Puts the contours in order: outer ones by descending area, each followed by the holes in it
    /// by descending area; equal ones stay as they stand. What is outer is found out anew.
    void _SortContours();

    /// Joins `hole` to `outer` at the leftmost point of `hole` and the nearest point of `outer`,
    /// the first of several, so that the connection meets no edge of this border, closing edges
    /// included, see `ConnectWith`; `hole` stays. Where there is none, the connection may run along
    /// an edge; then the other points of `hole` are tried from left to right, until a thousand
    /// connections have failed. False, with nothing changed, when none is found.
    bool _TryToConnectContours(Contour* outer, Contour* hole);

    /// A new empty contour that shares the border's pool; the caller owns it. A derived border may
    /// create contours of a derived class here.
    virtual Contour* _CreateNewContour();

    /// The pool for a new contour: that of the first contour, empty in an empty border.
    [[nodiscard]] PoolPointer _GetPool() const;

private:
    // Puts the contours in the order of the positions; each stands there once.
    void _PutInOrder(const std::vector<std::size_t>& positions);

    // Whether a bridge between two points may be built.
    using BridgeTest = std::function<bool(const PointType& p, const PointType& q)>;

    // Makes every hole part of the outer contour that stands before it.
    void _JoinHoles(const BridgeTest& isFree);

    Contour* _firstContour = nullptr;
    Contour* _lastContour = nullptr;
    std::uint32_t _numContours = 0;
};

extern template class NORVEK_MATH_API M3dBorder<std::int32_t, void*>;
extern template class NORVEK_MATH_API M3dBorder<float, float>;
extern template class NORVEK_MATH_API M3dBorder<double, void*>;
extern template class NORVEK_MATH_API M3dBorder<double, MStlPoint*>;
