#include "determinism/results.h"

#include <norvek/border/border.h>
#include <norvek/border/border_algorithms.h>
#include <norvek/bounds/axes_binded.h>
#include <norvek/bounds/bounding_box.h>
#include <norvek/bounds/bounding_box_nd.h>
#include <norvek/polyplane/poly_plane_sectors.h>
#include <norvek/primitives/line.h>
#include <norvek/primitives/line2d.h>
#include <norvek/primitives/plane_equation.h>
#include <norvek/transform/concat.h>
#include <norvek/transform/legacy_rotation.h>
#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <memory>

namespace norvek_test
{

void HashPoints(Hash& hash, Numbers& numbers, int /*round*/)
{
    const auto [a, b] = numbers.Points<2>(10.0);
    hash << (a + b * a.x - b / a.y).Cross(b).Normalised() << a.Dot(b) << a.Length()
         << MMPoint3d<float>(a);
}

void HashTransforms(Hash& hash, Numbers& numbers, int /*round*/)
{
    const auto p = numbers.Points<11>(5.0);
    MMTransformMatrix a;
    a.MakeRotationXYZ(40.0 * p[0].x, 40.0 * p[0].y, 40.0 * p[0].z);
    MMTransformMatrix b;
    b.MakeRotation(p[1], p[2], p[10].x);
    MMTransformMatrix c;
    c.MakeTransformation(p[3], p[4], p[5], p[6]);
    MMTransformMatrix product = a * b * c;
    hash << product << product(p[7], false);
    MMPoint3d<double> angles;
    hash << (a * b).GetRotationZYX(angles.x, angles.y, angles.z) << angles;
    hash << b.MakeRotationInPlane(p[8], p[9], {}) << b << b.MakeRotation(product) << b;
    hash << c.MakeOrthoNormal() << c;
}

void HashMotionsAndFrames(Hash& hash, Numbers& numbers, int /*round*/)
{
    const auto p = numbers.Points<10>(5.0);
    MMOrthoTransform motion;
    motion.MakeRotation(p[0], p[1], p[9].x, true);
    MMOrthoTransform other;
    other.MakeTransformation(p[2], p[3], p[4], p[5]);
    other.SetRotationCenter(p[6]);
    motion.Concatenate(other);
    motion.Translate(p[7]);
    MMPoint3d<double> moved;
    motion.InverseTransform(moved, p[8]);
    hash << moved << motion;
    MMTransformMatrix matrix;
    M3DAxesBinded frame;
    frame.SetCenter(p[0]);
    frame.SetNormal(p[1]);
    frame.GetTransformation(matrix);
    hash << matrix;
    frame.SetXZAxes(p[2], p[3]);
    frame.GetTransformationTo(matrix);
    hash << matrix;
}

void HashOlderRotations(Hash& hash, Numbers& numbers, int round)
{
    const MMPoint3d<float> angles(numbers.Point(400.0));
    MMPoint3d<float> p(numbers.Point(9.0));
    MMPoint3d<std::int32_t> grid(numbers.Point(1e9));
    ROTEER_3D(p.x, p.y, p.z, angles.x, angles.y, angles.z);
    ROTEER_3D(grid.x, grid.y, grid.z, angles.x, angles.y, angles.z);
    float a[3] = {angles.x, angles.y, angles.z};
    float m[3][3];
    float turn[3][3];
    ANGLES_TO_MATRIX(m, a);
    FILL_TRANSFORM(turn, round % 3, angles.z);
    MATRIX_MATRIX(m, turn, m);
    ROTEER_INVERSE(a[0], a[1], a[2]);
    MATRIX_VECTOR(a, m, a);
    ROTEER_ENKEL(a, round % 3, angles.y, m[0]);
    hash << p << grid << a;
}

void HashStacks(Hash& hash, Numbers& numbers, int round)
{
    MMTransformStack stack;
    for (int element = 0; element < 4; ++element) {
        const auto p = numbers.Points<4>(5.0);
        MMTransformMatrix matrix;
        matrix.MakeTransformation(p[0], p[1], p[2], p[3]);
        if (element == round % 4)
            matrix.MakePerspectiveProjection(-1, 1, -1, p[0].x, -9, -1, 10.0 + p[0].y);
        stack.PostMultiply(matrix);
    }
    const std::unique_ptr<MMTransform> merged(Concat(stack, stack));
    auto points = numbers.Fill(std::vector<MMPoint3d<double>>(9), 5.0);
    hash << stack.Invert() << stack.Transform(points) << merged->Transform(points) << points;
}

void HashPlanesAndLines(Hash& hash, Numbers& numbers, int /*round*/)
{
    const auto p = numbers.Points<16>(5.0);
    MMPlaneEq<double> plane(p[0], p[1], p[2]);
    MMPoint3d<double> point;
    MMPoint3d<double> direction;
    hash << plane.IntersectWithPlane(point, direction, {p[3], p[4]}, 1e-9) << point << direction;
    MMTransformMatrix turn;
    turn.MakeRotation(p[5], p[6], p[15].x);
    plane.Transform(turn);
    hash << plane.Project(point, p[7]) << point;
    MMLine across;
    hash << MMLine(p[8], p[9]).GetCommonPerpendicularLine(MMLine(p[10], p[11]), across, 1e-9)
         << across.GetPointFirst() << across.GetPointSecond();
    const MMLine2D flat({p[12].x, p[12].y}, {p[13].x, p[13].y});
    hash << flat.GetSignedDistance({p[14].x, p[14].y}) << flat.GetDirection();
}

void HashBoxes(Hash& hash, Numbers& numbers, int /*round*/)
{
    const auto p = numbers.Points<10>(5.0);
    M3DBoundingBox<double> box(p[0]);
    box.AddPoint(p[1]);
    hash << box.GetCenter() << box.DoesIntersectTriangle(&p[2])
         << box.DoesIntersectPlane(p[5], p[6]);
    MBoundingBox3DDouble corners;
    corners.AddPoint(p[7] * 1e12);
    corners.AddPoint(p[8] * 1e12);
    MMPoint3d<double> offset;
    double scale = 0.0;
    hash << corners.FitInLong(offset, scale, p[9].x) << scale << corners.GetArea()
         << corners.GetDiagonalLength();
}

void HashBorders(Hash& hash, Numbers& numbers, int /*round*/)
{
    using Border = M3dBorder<float, float>;
    Border border;
    for (int piece = 0; piece < 20; ++piece) {
        auto* const contour = border.AddContourAtEnd();
        contour->SetIsClosed(piece % 4 == 0);
        for (const MMPoint3d<double>& point : numbers.Points<10>(5.0)) {
            const MMPoint3d<float> p(point);
            contour->InsertAtEnd(p.x, p.y, p.z);
        }
    }
    const auto p = numbers.Points<24>(5.0);
    MMTransformMatrix turn;
    turn.MakeRotation(p[0], p[1], p[2].x);
    TransformBorder(border, turn);
    MFrame<float> frame;
    frame.origin = MMPoint3d<float>(0.4 * p[2]);
    frame.xAxis = MMPoint3d<float>(p[3]);
    ClipBorderInFrame(border, frame);
    Border merged;
    MergeBorder(merged, border);
    for (const auto& contour : merged.Contours())
        for (const auto& point : contour)
            hash << point.x << point.y << point.payload;
    hash << merged.SurfaceAreaWithSignXY() << merged.CircumferenceXY();
    std::int32_t count = 0;
    std::vector<float> corners;
    hash << merged.FillWithTriangles(count, corners) << corners;
    std::vector<std::vector<MIntersectionValue>> values;
    merged.DetermineIntersectionValues(true, true, values);
    for (const auto& list : values)
        for (const MIntersectionValue& value : list)
            hash << value.parameter << value.point;
    for (const MMPoint3d<double>& point : p)
        hash << merged.CalculatePosition(point.x, point.y);

    // A star with nine holes, of which none cross.
    M3dBorder<double, void*> plate;
    for (int ring = 0; ring < 10; ++ring) {
        auto* const contour = plate.AddContourAtEnd();
        const double sides[] = {4, 3, 0, -3, -4, -3, 0, 3, 4, 3};
        const double x = ring == 0 ? 0 : 8 * (ring % 3 - 1);
        const double y = ring == 0 ? 0 : 8 * ((ring - 1) / 3 - 1);
        const auto radii = numbers.Points<8>(1.0);
        for (std::size_t k = 0; k < 8; ++k) {
            const double radius = (ring == 0 ? 10.0 : 0.3) * (2.0 + radii[k].x);
            contour->InsertAtEnd(x + radius * sides[k], y + radius * sides[k + 2], nullptr);
        }
    }
    plate.MergeToOnlyOuterContours();
    for (const auto& point : *plate.GetFirstContour())
        hash << point.x << point.y;
}

// Outlines that grow, with questions at every point.
void HashPolyPlanes(Hash& hash, Numbers& numbers, int /*round*/)
{
    MPolyPlaneSectors plane;
    const auto base = numbers.Points<2>(3.0);
    plane.SetZeroPlane(base[0], base[1]);
    for (unsigned short k = 0; k < 20; ++k) {
        const auto p = numbers.Points<4>(5.0);
        bool found[2]{};
        double s = 0.0;
        plane.AddPoint(p[0]);
        hash << plane.IsInside(p[1]) << plane.TriangleIntersects(p[1], p[2], p[3])
             << plane.SeekPositionAlongDescribingPolyline(p[1], found[0], found[1], s)
             << plane.GetPointInPolyPlane(p[2].x, p[2].y, 1.0, 2.0, k, s)
             << plane.DistanceBetweenPointsAlongDerivedPolyline(p[2], p[3], s)
             << plane.DistanceToPolyPlane(p[3]) << plane.GetVectorToBottom(p[2].z);
    }
    hash << plane.GetFocalPoint(3);
}

} // namespace norvek_test
