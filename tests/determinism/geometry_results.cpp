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

namespace
{

constexpr int kRounds = 2000;

void AddMatrix(Hash& hash, const MMTransformMatrix& matrix)
{
    for (unsigned short row = 0; row < 4; ++row)
        for (unsigned short col = 0; col < 4; ++col) {
            hash.Add(matrix.GetElement(row, col, false));
            hash.Add(matrix.GetElement(row, col, true));
        }
}

} // namespace

std::uint64_t HashPoints(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const MMPoint3d<double> a = numbers.Point(10.0);
        const MMPoint3d<double> b = numbers.Point(1e-3);
        hash.Add((a + b * a.x - b / a.y).Cross(b).Normalised());
        hash.Add(a.Dot(b));
        hash.Add(a.Length());
        hash.Add(MMPoint3d<double>(MMPoint3d<float>(a)));
    }
    return hash.Value();
}

std::uint64_t HashTransforms(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const auto p = numbers.Points<10>(5.0);
        MMTransformMatrix a;
        a.MakeRotationXYZ(40.0 * p[0].x, 40.0 * p[0].y, 40.0 * p[0].z);
        MMTransformMatrix b;
        b.MakeRotation(p[1], p[2], numbers.Next(3.0));
        MMTransformMatrix c;
        c.MakeTransformation(p[3], p[4], p[5], p[6]);
        const MMTransformMatrix product = a * b * c;
        AddMatrix(hash, product);
        MMPoint3d<double> moved = p[7];
        product.Transform(moved, false);
        hash.Add(moved);
        MMPoint3d<double> angles;
        hash.Add((a * b).GetRotationZYX(angles.x, angles.y, angles.z));
        hash.Add(angles);
        MMTransformMatrix turn;
        hash.Add(turn.MakeRotationInPlane(p[8], p[9], {}));
        AddMatrix(hash, turn);
        hash.Add(turn.MakeRotation(product));
        AddMatrix(hash, turn);
        hash.Add(c.MakeOrthoNormal());
        AddMatrix(hash, c);
        c.MakePerspectiveProjection(-1, 1, -1, p[0].x, -9, -1, 0.1 * p[0].y);
        AddMatrix(hash, c);
    }
    return hash.Value();
}

std::uint64_t HashMotionsAndFrames(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const auto p = numbers.Points<9>(5.0);
        MMOrthoTransform motion;
        motion.MakeRotation(p[0], p[1], numbers.Next(3.0), true);
        MMOrthoTransform other;
        other.MakeTransformation(p[2], p[3], p[4], p[5]);
        other.SetRotationCenter(p[6]);
        motion.Concatenate(other);
        motion.Translate(p[7]);
        MMPoint3d<double> moved;
        motion.InverseTransform(moved, p[8]);
        hash.Add(moved);
        motion.Transform(moved, moved);
        hash.Add(moved);
        MMTransformMatrix matrix;
        matrix.Make(motion);
        AddMatrix(hash, matrix);
        M3DAxesBinded frame;
        frame.SetCenter(p[0]);
        frame.SetNormal(p[1]);
        frame.GetTransformation(matrix);
        AddMatrix(hash, matrix);
        frame.SetXZAxes(p[2], p[3]);
        frame.GetTransformationTo(matrix);
        AddMatrix(hash, matrix);
    }
    return hash.Value();
}

std::uint64_t HashOlderRotations(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const MMPoint3d<float> angles(numbers.Point(400.0));
        MMPoint3d<float> p(numbers.Point(9.0));
        MMPoint3d<std::int32_t> grid(numbers.Point(1e9));
        ROTEER_3D(p.x, p.y, p.z, angles.x, angles.y, angles.z);
        ROTEER_3D(grid.x, grid.y, grid.z, angles.x, angles.y, angles.z);
        hash.Add(MMPoint3d<double>(p));
        hash.Add(MMPoint3d<double>(grid));
        float a[3] = {angles.x, angles.y, angles.z};
        float m[3][3];
        float turn[3][3];
        ANGLES_TO_MATRIX(m, a);
        FILL_TRANSFORM(turn, i % 3, angles.z);
        MATRIX_MATRIX(m, turn, m);
        ROTEER_INVERSE(a[0], a[1], a[2]);
        MATRIX_VECTOR(a, m, a);
        ROTEER_ENKEL(a, i % 3, angles.y, m[0]);
        hash.Add(MMPoint3d<double>(a[0], a[1], a[2]));
    }
    return hash.Value();
}

std::uint64_t HashStacks(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds / 4; ++i) {
        MMTransformStack stack;
        for (int element = 0; element < 4; ++element) {
            const auto p = numbers.Points<4>(5.0);
            MMTransformMatrix matrix;
            matrix.MakeTransformation(p[0], p[1], p[2], p[3]);
            if (element == i % 4)
                matrix.MakePerspectiveProjection(-1, 1, -1, p[0].x, -9, -1, 10.0 + p[0].y);
            stack.PostMultiply(matrix);
        }
        const std::unique_ptr<MMTransform> merged(Concat(stack, stack));
        hash.Add(stack.Invert());
        const auto points = numbers.Points<9>(5.0);
        std::vector<MMPoint3d<double>> moved(points.begin(), points.end());
        stack.Transform(moved);
        merged->Transform(moved);
        for (const MMPoint3d<double>& point : moved)
            hash.Add(point);
    }
    return hash.Value();
}

std::uint64_t HashPlanesAndLines(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const auto p = numbers.Points<15>(5.0);
        MMPlaneEq<double> plane(p[0], p[1], p[2]);
        MMPoint3d<double> point;
        MMPoint3d<double> direction;
        const MMPlaneEq<double> other(p[3], p[4]);
        hash.Add(static_cast<int>(plane.IntersectWithPlane(point, direction, other, 1e-9)));
        hash.Add(point);
        hash.Add(direction);
        MMTransformMatrix turn;
        turn.MakeRotation(p[5], p[6], numbers.Next(3.0));
        plane.Transform(turn);
        hash.Add(plane.Project(point, p[7]));
        hash.Add(point);

        MMLine across;
        hash.Add(MMLine(p[8], p[9]).GetCommonPerpendicularLine(MMLine(p[10], p[11]), across, 1e-9));
        hash.Add(across.GetPointFirst());
        hash.Add(across.GetPointSecond());

        const MMLine2D flat({p[12].x, p[12].y}, {p[13].x, p[13].y});
        hash.Add(flat.GetSignedDistance({p[14].x, p[14].y}));
        hash.Add(flat.GetDirection());
    }
    return hash.Value();
}

std::uint64_t HashBoxes(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const auto p = numbers.Points<9>(5.0);
        M3DBoundingBox<double> box(p[0]);
        box.AddPoint(p[1]);
        hash.Add(box.GetCenter());
        hash.Add(box.DoesIntersectTriangle(&p[2]));
        hash.Add(box.DoesIntersectPlane(p[5], p[6]));
        MBoundingBox3DDouble corners;
        corners.AddPoint(p[7] * 1e12);
        corners.AddPoint(p[8] * 1e12);
        MMPoint3d<double> offset;
        double scale = 0.0;
        hash.Add(corners.FitInLong(offset, scale, numbers.Next(1.0)));
        hash.Add(scale);
        hash.Add(corners.GetArea());
        hash.Add(corners.GetDiagonalLength());
    }
    return hash.Value();
}

std::uint64_t HashBorders(Numbers numbers)
{
    using Border = M3dBorder<float, float>;
    const auto next = [&](double size) {
        return MMPoint3d<float>(numbers.Point(size));
    };
    Hash hash;
    for (int i = 0; i < kRounds / 10; ++i) {
        Border border;
        for (int piece = 0; piece < 20; ++piece) {
            auto* const contour = border.AddContourAtEnd();
            contour->SetIsClosed(piece % 4 == 0);
            for (int point = 0; point < 10; ++point) {
                const MMPoint3d<float> p = next(5.0);
                contour->InsertAtEnd(p.x, p.y, p.z);
            }
        }
        MMTransformMatrix turn;
        const auto axis = numbers.Points<2>(5.0);
        turn.MakeRotation(axis[0], axis[1], numbers.Next(3.0));
        TransformBorder(border, turn);
        MFrame<float> frame;
        frame.origin = next(2.0);
        frame.xAxis = next(9.0);
        ClipBorderInFrame(border, frame);
        Border merged;
        MergeBorder(merged, border);
        for (const auto& contour : merged.Contours())
            for (const auto& point : contour)
                hash.Add(MMPoint3d<double>(point.x, point.y, point.payload));
        hash.Add(merged.SurfaceAreaWithSignXY());
        hash.Add(merged.CircumferenceXY());
        std::int32_t count = 0;
        std::vector<float> corners;
        hash.Add(merged.FillWithTriangles(count, corners));
        for (const float corner : corners)
            hash.Add(double{corner});
        std::vector<std::vector<MIntersectionValue>> values;
        merged.DetermineIntersectionValues(true, true, values);
        for (const auto& list : values)
            for (const MIntersectionValue& value : list) {
                hash.Add(value.parameter);
                hash.Add(value.point);
            }
        for (int point = 0; point < 20; ++point) {
            const double x = numbers.Next(5.0);
            hash.Add(int{merged.CalculatePosition(x, numbers.Next(5.0))});
        }
    }
    return hash.Value();
}

// Outlines that grow, with questions at every point.
std::uint64_t HashPolyPlanes(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds / 10; ++i) {
        MPolyPlaneSectors plane;
        const auto base = numbers.Points<2>(3.0);
        plane.SetZeroPlane(base[0], base[1]);
        for (unsigned short k = 0; k < 20; ++k) {
            const auto p = numbers.Points<4>(5.0);
            bool found[2]{};
            double s = 0.0;
            plane.AddPoint(p[0]);
            hash.Add(plane.IsInside(p[1]));
            hash.Add(plane.TriangleIntersects(p[1], p[2], p[3]));
            hash.Add(plane.SeekPositionAlongDescribingPolyline(p[1], found[0], found[1], s));
            hash.Add(plane.GetPointInPolyPlane(p[2].x, p[2].y, 1.0, 2.0, k, s));
            hash.Add(plane.DistanceBetweenPointsAlongDerivedPolyline(p[2], p[3], s));
            hash.Add(plane.DistanceToPolyPlane(p[3]));
            hash.Add(plane.GetVectorToBottom(p[2].z));
        }
        hash.Add(plane.GetFocalPoint(3));
    }
    return hash.Value();
}

} // namespace norvek_test
