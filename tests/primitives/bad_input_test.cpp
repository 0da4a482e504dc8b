#include "support/random.h"

#include <norvek/bounds/axes_binded.h>
#include <norvek/bounds/bounding_box.h>
#include <norvek/polyplane/poly_plane_prism.h>
#include <norvek/polyplane/poly_plane_sectors.h>
#include <norvek/primitives/least_squares_plane.h>
#include <norvek/primitives/line.h>
#include <norvek/primitives/line2d.h>
#include <norvek/primitives/plane.h>
#include <norvek/primitives/sphere.h>
#include <norvek/search/point_mappers.h>
#include <norvek/search/registered_points_tree.h>
#include <norvek/transform/concat.h>
#include <norvek/transform/legacy_rotation.h>
#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace
{

using Point = MMPoint3d<double>;

// Becomes whatever number or point a call asks for, plain or hostile.
struct Anything
{
    mutable norvek_test::Random random{503};

    operator double() const
    {
        const double values[] = {0, 1, -2, NAN, INFINITY, -INFINITY, 1e308, -1e308, 1e-310};
        return values[random.Integer(0, 8)];
    }
    operator Point() const
    {
        return {double{*this}, double{*this}, double{*this}};
    }
    operator MMPoint2d<double>() const
    {
        return {double{*this}, double{*this}};
    }
};

// Nothing is expected of most results: every call returns, or throws what it may throw.
template <class... Results>
void Call(const Results&... /*results*/)
{}

TEST(BadInput, EveryMatrixPlaneAndLineReturns)
{
    const Anything n;
    for (int i = 0; i < 20000; ++i) {
        const std::vector<double> rows = {n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n};
        std::vector<Point> points(9, n);
        float parts[6][3];
        M3DBoundingBox<float> box;
        MMTransformMatrix m;
        MMTransformMatrix k;
        Point p;
        m.MakeFromDouble16(rows.data());
        k.MakeFromDouble12(rows.data());
        k.Transpose();
        m.FillIn3x3(parts, parts + 3);
        k.AddTranslation(n);
        k.FillInTranslation(n);
        k.ScaleTranslation(n);
        Call(m *= k, k.PreMultiply(m), m._Equal(k), m.Determinant(), k.MakeRotation(m),
             m.GetRotationXYZ(p.x, p.y, p.z), k.MakeOrthoNormal(), k.GetRotationZYX(p.x, p.y, p.z),
             m.SetRotationCenter(n), m.Invert(), k.DoRotationXYZ(n, n, n));
        try {
            Call(m.TransformBoundingBox(box), m.InverseTransform(p, n, true), m.Transform(points),
                 m.MakeRotation(n, n, n));
        } catch (const MMTransformException&) {
        }
        Call(k.MakeOrthoGraphicProjection(n, n, n, n, n, n), k.MakeNewXAxis(n, n),
             k.MakePerspectiveProjection(n, n, n, n, n, n, n), k.MakeRotationZYX(n, n, n, n),
             k.MakeRotationInPlane(n, n, n), k.MakeTranslation(n), k.MakeScale1D(n),
             k.MakeScale3D(n));
        k.MakeTransformation(n, n, n, n);
        MMPlaneEq<double> a(n, n, n);
        const MMPlaneEq<double> b(n, n, n, n);
        const MMPlane c(MMPlaneEq<double>(n, n));
        const MMLine d(n, n);
        MMLine e(n, n);
        const MMLine2D f(n, n);
        MMLine2D g(n, n);
        a.Transform(k);
        f.GetLineEquation(p.x, p.y, p.z, n);
        Call(b.Project(p, n), b.Mirror(p, n), b.Intersect(p.x, p, n, n), b.On(n, n), b.Inverted(),
             a.IntersectWithPlane(p, p, b, n), c.IsParallel(MMPlane(b), n), c.IsParallel(d, n),
             c.GetPlaneEqDouble(), d.Length(), d.IsPointOnLine(n, true, n),
             d.GetIntersectionPoint(e, p, n, true), d.GetCommonPerpendicularLine(e, e, n),
             f.GetSignedDistance(n), f.IsCoincident(g, n), f.IsPointOnLineSegment(n, n),
             g.GetIntersectionSegmentSegment(g.GetFirstPoint(), f, n),
             f.DoesSegmentLieOnRect(n, n, n, n, n));
    }
}

TEST(BadInput, EveryMotionFrameAndOlderRotationReturns)
{
    const Anything n;
    for (int i = 0; i < 20000; ++i) {
        Point p;
        MMTransformMatrix m;
        MMOrthoTransform a;
        MMOrthoTransform b;
        a.MakeTransformation(n, n, n, n);
        b.MakeRotation(n, n, double{n}, i % 2 == 0);
        m.MakeTransformation(n, n, n, n);
        Call(m.Make(b), m.Make(a), a.Verify(), a.IsSmall(n, n), a == b, b.Keeps2DOrientation());
        a.Concatenate(b);
        a.Translate(n);
        a.SetRotationCenter(n);
        a.InverseTransform(p, n);
        M3DAxesBinded f;
        f.SetXYAxes(n, n);
        f.SetXZAxes(n, n);
        f.SetYZAxes(n, f.Z_Axis());
        f.GetTransformationTo(m);
        f.SetNormal(n);
        f.SetCenter(n);
        if (i % 2 == 0)
            f.GenerateXYZ();
        f._TransformPointToLocalSystem(p);
        f.GetTransformation(m);
        // A frame with a matrix that can be inverted has axes that are numbers.
        EXPECT_TRUE(!m.IsInversible() || std::isfinite(m.Determinant()));

        const MMPoint3d<float> u{Point(n)};
        const MMPoint3d<float> v{Point(n)};
        float angles[3] = {u.x, u.y, u.z};
        float rotation[3][3];
        short grid[3] = {static_cast<short>(i), static_cast<short>(-i), 32767};
        std::int32_t large[3] = {i, -2147483647, 2147483647};
        ROTEER_3D(grid[0], grid[1], grid[2], u.x, u.y, v.x);
        ROTEER_3D(large[0], large[1], large[2], v.y, u.y, u.z);
        ANGLES_TO_MATRIX(rotation, angles);
        FILL_TRANSFORM(rotation, i % 3, v.x);
        ROTEER_ENKEL(rotation, i % 3, v.y);
        ROTEER_ENKEL(angles, i % 3, v.z, rotation[1]);
        MATRIX_MATRIX(rotation, rotation, rotation);
        MATRIX_VECTOR(angles, rotation, angles);
        GET_ALIGN_ROTATIONS(rotation, rotation[0][0], rotation[1][1], rotation[2][2]);
        ROTEER_INVERSE(angles[0], angles[1], angles[2]);
        // Angles come back in one turn, or as NaN.
        for (const float angle : angles)
            EXPECT_FALSE(std::abs(angle) > 180.0F);
    }
}

TEST(BadInput, EveryStackReturns)
{
    const Anything n;
    for (unsigned short i = 0; i < 5000; ++i) {
        Point p;
        std::vector<Point> points(9, n);
        MMTransformStack stack;
        for (unsigned short element = 0; element < 12; ++element) {
            MMTransformMatrix m;
            m.SetElement(element % 4, i % 4, n, false);
            m.VerifyAndSetClass();
            m.ComputeInverse();
            stack.PostMultiply(m);
        }
        const std::unique_ptr<MMTransform> merged(Concat(stack, stack));
        Call(stack.Invert(), AreEqual(stack, *merged), AreEqual(*merged, *merged));
        try {
            Call(stack.InverseTransform(p, n, true), merged->InverseTransform(p, n, false),
                 merged->Transform(points), stack.Transform(points, points));
        } catch (const MMTransformException&) {
        }
    }
}

TEST(BadInput, EveryFitReturns)
{
    const Anything n;
    for (int i = 0; i < 20000; ++i) {
        std::vector<Point> points(8);
        MBasePointMapper::PairList pairs;
        MMapper3dSegments::SegmentList segments;
        MDataArray2D<MRegistrationCostInfo> costs(4, 4);
        for (std::size_t k = 0; k < 4; ++k) {
            // Now and then a plain coordinate, so that some fits succeed.
            points[2 * k] = i % 4 == 0 ? n.random.Point(1.0) : Point(n);
            points[2 * k + 1] = i % 3 == 0 ? n.random.Point(1e-5) : Point(n);
            pairs.emplace_back(&points[2 * k], &points[2 * k + 1]);
            segments.push_back({{points[2 * k], points[k]}, {points[k + 1], points[2 * k + 1]}});
            for (unsigned int j = 0; j < 4; ++j)
                costs(k, j).SetInfo((static_cast<unsigned int>(k) + j) % 3 - 1, 1, n);
        }
        MMOrthoTransform motion;
        Point centre;
        double scale = 0.0;
        EXPECT_TRUE(!MMapper3DPoints::MapPoints(motion, pairs) || motion.Verify());
        EXPECT_TRUE(!MMapper3dSegments::MapSegments(motion, segments) || motion.Verify());
        EXPECT_TRUE(MMapper3DPointsScale::MapPoints(scale, centre, pairs));
        MBasePointMapper::FindTranslation(motion, {n, n});
        MMLeastSquarePlane plane;
        plane.Calculate(points);
        plane.CalculateThroughOrigin();
        plane.CalculateWeighted({{n, n}, {n, n}, {n, n}});
        MMSphere sphere;
        Call(plane.GetPlane(), sphere.CapturePoints(points), sphere.Fit(points.data()),
             sphere.Compute(n, n, n, n));
        MMTransformMatrix matrix;
        matrix.MakeTransformation(n, n, n, n);
        MRegistered3DPointsTree tree;
        EXPECT_TRUE(tree.Build(costs, {4, 4, matrix}, {4, matrix}));
        tree.UpdateWcsTransforms();
    }
}

TEST(BadInput, EveryPolyPlaneReturns)
{
    const Anything n;
    for (int i = 0; i < 60000; ++i) {
        auto* const p = new MPolyPlaneSectors;
        const MPolyPlanePrism prism(p);
        const auto k = static_cast<unsigned short>(i % 12);
        bool flag = true;
        bool found = true;
        p->SetZeroPlane(i % 2 == 0 ? Point(0, 0, 1) : Point(n), n);
        for (int added = 0; added < i % 9; ++added)
            p->AddPoint(added % 2 == 0 ? n.random.Point(5.0) : Point(n));
        Call(p->GetPlane(k), p->GetPointOnDescribingPolyline(k), prism.IsInside(n),
             p->GetVectorToBottom(k), p->GetVectorToBottom(double{n}), p->GetSubDividingPlane(k),
             p->TriangleIntersects(n, n, n), p->DistanceToPlaneSegment(n, k, flag),
             p->GetLineThroughFocalAtPositionAlongDescribingPolyline(n),
             p->GetPointInPolyPlane(n, n, n, n, k, n), p->DistanceToPolyPlane(n),
             p->DistanceBetweenPointsAlongDerivedPolyline(n, n, n));
        EXPECT_LE(int{p->SeekSector(n, found, flag)}, std::max(0, p->GetLastSegment()));
    }
}

} // namespace
