#include "section.h"

#include "support/failure.h"

#include <norvek/border/border_algorithms.h>
#include <norvek/primitives/least_squares_plane.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace section
{

using example::Failure;

namespace
{

// Pieces are joined where their ends agree to 0.0035 units. On a surface of this extent that is one
// or two steps of a float, so that only ends meet that came from the same edge.
constexpr double kFrameExtent = 65536.0;

// A cut that comes this close to a corner of a triangle goes through the corner. It is a few times
// the joining distance: no piece may be so short that both its ends match the same end of another.
constexpr double kSnapDistance = 0.01;

// How far from the surface, in units of the frame, a slab may begin or end: single precision
// overflows well beyond.
constexpr double kFarthestClip = 1e15;

struct CutPoint
{
    float x;
    float y;

    friend bool operator==(const CutPoint&, const CutPoint&) = default;
};

CutPoint AtCorner(const MMPoint3d<double>& corner)
{
    return {static_cast<float>(corner.x), static_cast<float>(corner.y)};
}

// Where the edge between two corners on different sides passes the plane z = 0. The same corners in
// either order give the same bits, so that the triangles on both sides of the edge agree.
CutPoint CutEdge(const MMPoint3d<double>& below, const MMPoint3d<double>& above)
{
    const double t = below.z / (below.z - above.z);
    const MMPoint3d<double> cut = below + (above - below) * t;
    for (const MMPoint3d<double>* corner : {&below, &above})
        if ((cut - *corner).LengthSquared() < kSnapDistance * kSnapDistance)
            return AtCorner(*corner);
    return AtCorner(cut);
}

// A triangle that is cut gives one piece, from the edge that rises through the plane to the edge
// that falls, so that what lies above is on its right. A corner on the plane counts as above.
std::optional<std::pair<CutPoint, CutPoint>> CutTriangle(const MMPoint3d<double>* const corners[3])
{
    std::optional<CutPoint> rising;
    std::optional<CutPoint> falling;
    for (int i = 0; i < 3; ++i) {
        const MMPoint3d<double>& a = *corners[i];
        const MMPoint3d<double>& b = *corners[(i + 1) % 3];
        if (a.z < 0.0 && b.z >= 0.0)
            rising = CutEdge(a, b);
        else if (a.z >= 0.0 && b.z < 0.0)
            falling = CutEdge(b, a);
    }
    if (!rising || !falling || *rising == *falling)
        return std::nullopt;
    return std::pair(*rising, *falling);
}

// Every triangle that is cut adds an open contour of two points.
void CollectPieces(SectionBorder& pieces, const Surface& surface,
                   const std::vector<MMPoint3d<double>>& points)
{
    for (const Surface::Triangle& triangle : surface.triangles) {
        const MMPoint3d<double>* const corners[3] = {&points[triangle[0]], &points[triangle[1]],
                                                     &points[triangle[2]]};
        if (const auto piece = CutTriangle(corners)) {
            SectionContour* const contour = pieces.AddContourAtEnd();
            contour->SetIsClosed(false);
            contour->InsertAtEnd(piece->first.x, piece->first.y, 0.0F);
            contour->InsertAtEnd(piece->second.x, piece->second.y, 0.0F);
        }
    }
}

// One pass joins all pieces that run the same way. A surface whose triangles are turned both ways
// leaves contours that meet front to front; they find each other in another pass.
void JoinPieces(SectionBorder& pieces)
{
    std::uint32_t before = 0;
    do {
        before = pieces.GetNumContours();
        SectionBorder joined;
        MergeBorder(joined, pieces);
        pieces.Swap(joined);
    } while (pieces.GetNumContours() < before);
    pieces.RemoveDoublePoints();
}

// Keeps the slab between two points: a frame at the first one whose first axis ends at the second.
void Clip(Section& section, const Surface& surface, const Options& options)
{
    MMPoint3d<double> ends[2] = {options.clip->first - surface.centre,
                                 options.clip->second - surface.centre};
    for (MMPoint3d<double>& end : ends) {
        section.frame.InverseTransform(end, false);
        end.z = 0.0;
    }
    const MMPoint3d<double> along = ends[1] - ends[0];
    if (along.LengthSquared() == 0.0)
        throw Failure("--clip: the two points have the same foot on the plane of " + section.name);
    for (const MMPoint3d<double>& end : ends)
        if (end.Length() > kFarthestClip)
            throw Failure("--clip: the points are too far from the surface");
    const MMPoint3d<double> up(0.0, 0.0, 1.0);
    MFrame<float> frame;
    frame.origin = MMPoint3d<float>(ends[0]);
    frame.xAxis = MMPoint3d<float>(along);
    frame.yAxis = MMPoint3d<float>(up.Cross(along));
    frame.zAxis = MMPoint3d<float>(up);
    ClipBorderInFrame(section.border, frame);
}

// Areas and positions hold for closed contours; an open one ends at the rim of the surface.
void Measure(Section& section, const Surface& surface, const Options& options)
{
    section.border.AdjustOuterContourParameterToTurningSense();
    SectionBorder closed;
    for (const SectionContour& contour : section.border.Contours()) {
        ContourMeasures measures;
        measures.isClosed = contour.GetIsClosed();
        measures.isOuter = contour.GetIsOuterContour();
        measures.area = contour.SurfaceAreaWithSignXY() * section.unit * section.unit;
        measures.circumference = contour.CircumferenceXY() * section.unit;
        measures.numPoints = contour.GetNumPoints();
        section.contours.push_back(measures);
        if (measures.isClosed)
            *closed.AddContourAtEnd() = contour;
    }
    for (const MMPoint3d<double>& asked : options.points) {
        MMPoint3d<double> point = asked - surface.centre;
        section.frame.InverseTransform(point, false);
        section.positions.push_back(closed.CalculatePosition(point.x, point.y));
    }
}

} // namespace

PlaneFit FitPlane(const Surface& surface)
{
    //! [fit]
    MMLeastSquarePlane fit;
    fit.Calculate(surface.points);
    if (fit.GetIsLine())
        throw Failure("the points lie on a line: no plane fits them");
    fit._InitDeviation();
    for (const MMPoint3d<double>& point : surface.points)
        fit._UpdateDeviation(point);
    fit._UpdateDeviation(static_cast<unsigned int>(surface.points.size()));
    //! [fit]
    PlaneFit result{fit.GetPlane(), fit.GetStandardDeviation(), fit.GetMaxDeviation()};
    if (result.plane.C() < 0.0)
        result.plane.Invert();
    return result;
}

Section MakeSection(const Surface& surface, const std::string& name, SectionKind kind,
                    const MMPlaneEq<double>& plane)
{
    Section section;
    section.name = name;
    section.kind = kind;
    section.plane = plane;
    const MMPoint3d<double> size = surface.box.GetCornerMax() - surface.box.GetCornerMin();
    section.unit = std::max({size.x, size.y, size.z}) / kFrameExtent;

    const MMPoint3d<double> normal = section.plane.GetNormal();
    MMPoint3d<double> origin;
    section.plane.Project(origin, MMPoint3d<double>());
    // East in the plane; north where the plane faces east.
    const bool facesEast = std::abs(normal.x) > 0.9;
    MMPoint3d<double> xAxis = facesEast ? MMPoint3d<double>(0, 1, 0) : MMPoint3d<double>(1, 0, 0);
    xAxis -= normal * normal.Dot(xAxis);
    xAxis.Normalise();
    section.frame.MakeTransformation(origin, xAxis * section.unit,
                                     normal.Cross(xAxis) * section.unit, normal * section.unit);
    return section;
}

bool CutSurface(Section& section, const Surface& surface, const Options& options,
                Progress& progress)
{
    progress.Begin("bring into the frame");
    std::vector<MMPoint3d<double>> points;
    MMTransformMatrix intoFrame = section.frame;
    if (!intoFrame.Invert())
        throw Failure("the surface has no extent");
    intoFrame.Transform(points, surface.points);

    progress.Begin("cut");
    CollectPieces(section.border, surface, points);
    progress.Begin("join");
    JoinPieces(section.border);
    if (options.clip) {
        progress.Begin("clip");
        Clip(section, surface, options);
    }
    progress.Begin("measure");
    Measure(section, surface, options);
    progress.Begin("turn back");
    TransformBorder(section.border, section.frame);
    progress.End();
    return section.border.GetNumContours() != 0;
}

} // namespace section
