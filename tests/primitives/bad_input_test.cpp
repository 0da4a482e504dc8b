#include "support/random.h"

#include <norvek/bounds/axes_binded.h>
#include <norvek/bounds/bounding_box.h>
#include <norvek/polyplane/poly_plane_prism.h>
#include <norvek/polyplane/poly_plane_sectors.h>
#include <norvek/primitives/line.h>
#include <norvek/primitives/line2d.h>
#include <norvek/primitives/plane.h>
#include <norvek/search/point_mappers.h>
#include <norvek/search/registered_points_tree.h>
#include <norvek/transform/concat.h>
#include <norvek/transform/legacy_rotation.h>
#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

// Nothing is expected of the results: every call returns, or throws what it may throw.
TEST(BadInput, EveryCallReturns)
{
    const Anything n;
    const auto run = [](const auto&... /*results*/) {
    };
    for (int i = 0; i < 20000; ++i) {
        double rows[16];
        float parts[6][3];
        for (double& element : rows)
            element = n;
        MMTransformMatrix m;
        MMTransformMatrix k;
        Point p;
        M3DBoundingBox<float> box;
        std::vector<Point> points(9, n);
        m.MakeFromDouble16(rows);
        k.MakeFromDouble12(rows);
        k.Transpose();
        m.FillIn3x3(parts, parts + 3);
        k.AddTranslation(n);
        k.FillInTranslation(n);
        k.ScaleTranslation(n);
        run(m *= k, k.PreMultiply(m), m._Equal(k), m.Determinant(), k.MakeRotation(m),
            m.GetRotationXYZ(p.x, p.y, p.z), k.MakeOrthoNormal(), k.GetRotationZYX(p.x, p.y, p.z),
            m.SetRotationCenter(n), m.Invert(), k.DoRotationXYZ(n, n, n));
        try {
            run(m.TransformBoundingBox(box), m.InverseTransform(p, n, true), m.Transform(points),
                m.MakeRotation(n, n, n));
        } catch (const MMTransformException&) {
        }
        run(k.MakeOrthoGraphicProjection(n, n, n, n, n, n), k.MakeNewXAxis(n, n),
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
        run(b.Project(p, n), b.Mirror(p, n), b.Intersect(p.x, p, n, n), b.On(n, n), b.Inverted(),
            a.IntersectWithPlane(p, p, b, n), c.IsParallel(MMPlane(b), n), c.IsParallel(d, n),
            c.GetPlaneEqDouble(), d.Length(), d.IsPointOnLine(n, true, n),
            d.GetIntersectionPoint(e, p, n, true), d.GetCommonPerpendicularLine(e, e, n),
            f.GetSignedDistance(n), f.IsCoincident(g, n), f.IsPointOnLineSegment(n, n),
            g.GetIntersectionSegmentSegment(g.GetFirstPoint(), f, n),
            f.DoesSegmentLieOnRect(n, n, n, n, n));
    }
}

TEST(BadInput, EveryMotionAndFrameReturns)
{
    const Anything n;
    const auto run = [](const auto&... /*results*/) {
    };
    for (int i = 0; i < 20000; ++i) {
        Point p;
        MMTransformMatrix m;
        MMOrthoTransform a;
        MMOrthoTransform b;
        a.MakeTransformation(n, n, n, n);
        b.MakeRotation(n, n, double{n}, i % 2 == 0);
        m.MakeTransformation(n, n, n, n);
        run(m.Make(b), m.Make(a), a.Verify(), a.IsSmall(n, n), a == b, b.Keeps2DOrientation());
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
    }
}

TEST(BadInput, EveryOlderRotationReturns)
{
    const Anything n;
    const auto next = [&n] {
        return static_cast<float>(double{n});
    };
    for (int i = 0; i < 20000; ++i) {
        float a[3] = {next(), next(), next()};
        float m[3][3];
        auto x = static_cast<short>(i);
        auto y = static_cast<short>(-i);
        short z = 32767;
        std::int32_t grid[3] = {i, -2147483647, 2147483647};
        ROTEER_3D(x, y, z, a[0], a[1], next());
        ROTEER_3D(grid[0], grid[1], grid[2], next(), a[1], a[2]);
        ANGLES_TO_MATRIX(m, a);
        FILL_TRANSFORM(m, i % 3, next());
        ROTEER_ENKEL(m, i % 3, next());
        ROTEER_ENKEL(a, i % 3, next(), m[1]);
        MATRIX_MATRIX(m, m, m);
        MATRIX_VECTOR(a, m, a);
        GET_ALIGN_ROTATIONS(m, m[0][0], m[1][1], m[2][2]);
        ROTEER_INVERSE(a[0], a[1], a[2]);
        // Angles come back in one turn, or as NaN.
        for (const float angle : a)
            EXPECT_FALSE(std::abs(angle) > 180.0F);
    }
}

TEST(BadInput, EveryStackReturns)
{
    const Anything n;
    const auto run = [](const auto&... /*results*/) {
    };
    for (int i = 0; i < 5000; ++i) {
        Point p;
        std::vector<Point> points(9, n);
        MMTransformStack stack;
        for (unsigned short element = 0; element < 12; ++element) {
            MMTransformMatrix m;
            m.SetElement(element % 4, static_cast<unsigned short>(i % 4), n, false);
            m.VerifyAndSetClass();
            m.ComputeInverse();
            stack.PostMultiply(m);
        }
        const std::unique_ptr<MMTransform> merged(Concat(stack, stack));
        run(stack.Invert(), AreEqual(stack, *merged), AreEqual(*merged, *merged));
        try {
            run(stack.InverseTransform(p, n, true), merged->InverseTransform(p, n, false),
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
        for (std::size_t k = 0; k < 4; ++k) {
            // Now and then a plain coordinate, so that some fits succeed.
            points[2 * k] = i % 4 == 0 ? n.random.Point(1.0) : Point(n);
            points[2 * k + 1] = i % 3 == 0 ? n.random.Point(1e-5) : Point(n);
            pairs.emplace_back(&points[2 * k], &points[2 * k + 1]);
            segments.push_back({{points[2 * k], points[k]}, {points[k + 1], points[2 * k + 1]}});
        }
        MMOrthoTransform motion;
        Point centre;
        double scale = 0.0;
        EXPECT_TRUE(!MMapper3DPoints::MapPoints(motion, pairs) || motion.Verify());
        EXPECT_TRUE(!MMapper3dSegments::MapSegments(motion, segments) || motion.Verify());
        EXPECT_TRUE(MMapper3DPointsScale::MapPoints(scale, centre, pairs));
        MBasePointMapper::FindTranslation(motion, {n, n});
        MDataArray2D<MRegistrationCostInfo> costs(4, 4);
        for (std::size_t k = 0; k < 16; ++k)
            costs(k / 4, k % 4).SetInfo(static_cast<unsigned int>(k % 3) - 1, 1, n);
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
    const auto run = [](const auto&... /*results*/) {
    };
    for (int i = 0; i < 60000; ++i) {
        auto* const p = new MPolyPlaneSectors;
        const MPolyPlanePrism prism(p);
        const auto k = static_cast<unsigned short>(i % 12);
        bool flag = true;
        bool found = true;
        p->SetZeroPlane(i % 2 == 0 ? Point(0, 0, 1) : Point(n), n);
        for (int added = 0; added < i % 9; ++added)
            p->AddPoint(added % 2 == 0 ? n.random.Point(5.0) : Point(n));
        run(p->GetPlane(k), p->GetPointOnDescribingPolyline(k), prism.IsInside(n),
            p->GetVectorToBottom(k), p->GetVectorToBottom(double{n}), p->GetSubDividingPlane(k),
            p->TriangleIntersects(n, n, n), p->DistanceToPlaneSegment(n, k, flag),
            p->GetLineThroughFocalAtPositionAlongDescribingPolyline(n),
            p->GetPointInPolyPlane(n, n, n, n, k, n), p->DistanceToPolyPlane(n),
            p->DistanceBetweenPointsAlongDerivedPolyline(n, n, n));
        EXPECT_LE(int{p->SeekSector(n, found, flag)}, std::max(0, p->GetLastSegment()));
    }
}

} // namespace
