#include "curve/curve_support.h"

#include <norvek/curve/nurbs.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace
{

using norvek_test::kEpsilon;
using norvek_test::Random;
using norvek_test::RandomCurve;
using Vector = std::vector<double>;

TEST(NurbsStatus, TheHighestTextWins)
{
    const std::pair<std::int32_t, const wchar_t*> cases[] = {
        {0, L"before"},
        {1, L"Memory Error"},
        {3, L"Unknown Error"},
        {5, L"Measurment Point Error"},
        {6, L"Parametrisation Error"},
        {7, L"Close Status Error in u direction"},
        {8, L"Close Status Error in v direction"},
        {9, L"u - order Error"},
        {10, L"v - order Error"},
        {11, L"Number of Control Points Error in u-direction"},
        {12, L"Number of Control Points Error in v-direction"},
        {16, L"Least Square Fit Error"},
        {0x40, L"Curve Parametrisation Warning"},
        {0xC0, L"Close status in u-direction Warning"},
        {0x1C0, L"Close status in v-direction Warning"},
        {0x245, L"Order in u-direction Warning"},
        {0x400 | 3, L"Order in v-direction Warning"},
        {0x800, L"Number of Control Points in u-direction Warning"},
        {0x1FC0, L"Number of Control Points in v-direction Warning"},
        {0x2000, L"before"},
    };
    for (const auto& [status, text] : cases) {
        std::wstring message = L"before";
        EXPECT_EQ(NURBS_ERROR_HANDLING(message, status), (status & 63) != 0) << status;
        EXPECT_EQ(message, text) << status;
    }
}

// The recursion as it is written down, a table row for each order: values, first and second
// derivatives.
std::array<Vector, 3> PlainBasis(double t, int order, const double* knots, int span)
{
    std::array<Vector, 3> rows{Vector{1.0}, Vector{0.0}, Vector{0.0}};
    for (int j = 1; j < order; ++j) {
        const auto size = static_cast<std::size_t>(j);
        // Quotients 1 to j, between zeros.
        Vector q(size + 2), q1(size + 2);
        for (std::size_t r = 0; r < size; ++r) {
            const double difference =
                knots[span + static_cast<int>(r)] - knots[span - j + static_cast<int>(r)];
            q[r + 1] = std::abs(difference) > 1e-11 ? rows[0][r] / difference : 0.0;
            q1[r + 1] = std::abs(difference) > 1e-11 ? rows[1][r] / difference : 0.0;
        }
        for (Vector& row : rows)
            row.resize(size + 1);
        for (int r = 0; r <= j; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const double down = r > 0 ? (t - knots[span - j + r - 1]) * q[i] : 0.0;
            rows[0][i] = down + (r < j ? (knots[span + r] - t) * q[i + 1] : 0.0);
            rows[1][i] = j * (q[i] - q[i + 1]);
            rows[2][i] = j * (q1[i] - q1[i + 1]);
        }
    }
    return rows;
}

// The search and the quotient rule as they are written down.
std::array<Nurbs::Point, 3> PlainCurve(const NURBSCurv& c, double t)
{
    int span = c.order;
    while (span < c.numControlPoints && !(t < c.knots[span]))
        ++span;
    const auto basis = PlainBasis(t, c.order, c.knots, span);
    double a[3][4]{};
    std::array<Nurbs::Point, 3> p;
    for (std::size_t d = 0; d < 3; ++d) {
        for (int r = 0; r < c.order; ++r) {
            for (int i = 0; i < 4; ++i)
                a[d][i] += basis[d][static_cast<std::size_t>(r)] *
                           c.controlPoints[span - c.order + r].coordinates[i];
        }
    }
    const double w = a[0][3];
    for (int i = 0; i < 3; ++i) {
        const double c0 = a[0][i] / w;
        const double c1 = (a[1][i] - a[1][3] * c0) / w;
        p[0].coordinates[i] = c0;
        p[1].coordinates[i] = c1;
        p[2].coordinates[i] = (a[2][i] - 2 * a[1][3] * c1 - a[2][3] * c0) / w;
    }
    return p;
}

// The same number, or both NaN.
bool AreSame(double a, double b)
{
    return a == b || (a != a && b != b);
}

TEST(NurbsCurve, HasTheBitsOfTheRecursionWrittenDown)
{
    Random random(901);
    int evaluated = 0;
    for (int i = 0; i < 3000; ++i) {
        const int order = i % 2 == 0 ? 3 + i / 2 % 2 : random.Integer(1, 24);
        const RandomCurve c(random, order, order + random.Integer(0, 60));
        const double end = c.record.endParameter;
        for (const double t : {random.Uniform(c.record.startParameter, end), end, end + 1.0, -1.0,
                               c.knots[static_cast<std::size_t>(order)], double{NAN}})
        {
            const auto expected = PlainCurve(c.record, t);
            for (int derivatives = 0; derivatives < 3; ++derivatives) {
                Nurbs::Point p[3];
                // A span as short as the guard has no basis, and hence no weight.
                if (nurbs_curv_eval(derivatives, c.record, t, p) != 0)
                    continue;
                ++evaluated;
                for (std::size_t v = 0; v < 3 * static_cast<std::size_t>(derivatives + 1); ++v)
                    ASSERT_TRUE(
                        AreSame(p[v / 3].coordinates[v % 3], expected[v / 3].coordinates[v % 3]))
                        << order << ' ' << t << ' ' << v;
            }
        }
    }
    EXPECT_GT(evaluated, 30000);
}

TEST(NurbsBasis, SumsToOneAndIsTheOneOfCurves)
{
    Random random(902);
    for (int order = 1; order <= 40; ++order) {
        RandomCurve c(random, order, order + 5);
        std::iota(c.knots.begin(), c.knots.end(), 0.0);
        const double t = order + random.Uniform(0.0, 1.0);
        const auto plain = PlainBasis(t, order, c.knots.data(), order + 1);
        Vector n(plain[0].size()), n1(n), n2(n);
        bc_eval_b_code_sub(t, order, c.knots.data(), order + 1, n.data(), nullptr, n2.data());
        EXPECT_TRUE(n == plain[0] && n2 == plain[2]);
        bc_eval_b_code_sub(t, order, c.knots.data(), order + 1, n.data(), n1.data(), nullptr);
        EXPECT_TRUE(n == plain[0] && n1 == plain[1]);
        EXPECT_NEAR(std::accumulate(n.begin(), n.end(), 0.0), 1.0, order * kEpsilon);
    }
}

// (1 - t^2, 2 t) / (1 + t^2), whose derivatives are known, also beyond its ends.
TEST(NurbsCurve, ARationalQuarterCircleHasItsRadiusAndItsDerivatives)
{
    double knots[] = {0, 0, 0, 1, 1, 1};
    Point4D points[] = {{{1, 0, 5, 1}}, {{1, 1, 5, 1}}, {{0, 2, 10, 2}}};
    for (int i = -500; i <= 1500; ++i) {
        const double t = i / 1000.0;
        const double s = 1.0 + t * t;
        Nurbs::Point p[3];
        ASSERT_EQ(nurbs_curv_eval(2, 3, 3, knots, points, t, p), 0);
        EXPECT_NEAR(std::hypot(p[0].x, p[0].y), 1.0, 8 * kEpsilon) << t;
        EXPECT_NEAR(p[1].x, -4 * t / (s * s), 40 * kEpsilon);
        EXPECT_NEAR(p[1].y, 2 * (1 - t * t) / (s * s), 40 * kEpsilon);
        EXPECT_NEAR(p[2].x, (12 * t * t - 4) / (s * s * s), 200 * kEpsilon);
        EXPECT_NEAR(p[2].y, 4 * t * (t * t - 3) / (s * s * s), 200 * kEpsilon);
    }
}

// Half a sphere: a quarter circle in u, turned through two quarters in v. Whatever its parameters,
// the derivatives of |S|^2 = 1 vanish.
TEST(NurbsSurface, AHalfSphereHasItsRadiusAndItsDerivatives)
{
    const double s = std::sqrt(0.5);
    const double profile[3][3] = {{1, 0, 1}, {1, 1, 1}, {0, 1, 2}};
    const double turn[5][3] = {{1, 0, 1}, {1, 1, s}, {0, 1, 1}, {-1, 1, s}, {-1, 0, 1}};
    std::vector<Point4D> grid;
    for (const auto& [r, z, wu] : profile) {
        for (const auto& [x, y, wv] : turn)
            grid.push_back({{r * x * wu * wv, r * y * wu * wv, z * wu * wv, wu * wv}});
    }
    double knotsU[] = {0, 0, 0, 1, 1, 1};
    double knotsV[] = {0, 0, 0, 2, 2, 4, 4, 4};
    NURBSSurf surface{3, 3, knotsU, 0, 1, 3, 5, knotsV, 0, 4, grid.data()};
    Random random(903);
    for (int i = 0; i < 1000; ++i) {
        const Point2D at{{random.Uniform(0.0, 1.0), random.Uniform(0.0, 4.0)}};
        Nurbs::Point p[6];
        ASSERT_EQ(nurbs_surf_eval(2, &surface, at, p), 0);
        const auto dot = [&p](int a, int b) {
            return p[a].x * p[b].x + p[a].y * p[b].y + p[a].z * p[b].z;
        };
        EXPECT_NEAR(dot(0, 0), 1.0, 8 * kEpsilon);
        // Neither parameter stands still, but for parallels towards the pole.
        EXPECT_GE(dot(1, 1), 0.9);
        EXPECT_GE(dot(2, 2), 0.2 * (1.0 - p[0].z * p[0].z));
        EXPECT_NEAR(dot(0, 1), 0.0, 60 * kEpsilon);
        EXPECT_NEAR(dot(0, 2), 0.0, 60 * kEpsilon);
        EXPECT_NEAR(dot(0, 3) + dot(1, 1), 0.0, 300 * kEpsilon);
        EXPECT_NEAR(dot(0, 4) + dot(1, 2), 0.0, 300 * kEpsilon);
        EXPECT_NEAR(dot(0, 5) + dot(2, 2), 0.0, 300 * kEpsilon);
    }
}

TEST(NurbsCurve, RefusesWithoutWritingAndReadsOnlyTheSpan)
{
    double knots[] = {0, 0, 0, 0, 0.25, 0.5, 0.75, 1, 1, 1, 1};
    Point4D points[7];
    std::fill_n(points, 7, Point4D{{NAN, NAN, NAN, NAN}});
    std::fill_n(points + 2, 4, Point4D{{3, 4, 5, 1}});
    Nurbs::Point p{{7, 8, 9}};
    const auto curve = [&](int derivatives, int order, int count, double* k, Point4D* c) {
        return nurbs_curv_eval(derivatives, order, count, k, c, 0.6, &p);
    };
    const auto surface = [&](int orderU, int countU, int orderV, double* knotsV, Point4D* c) {
        NURBSSurf s{orderU, countU, knots, 0, 1, orderV, 7, knotsV, 0, 1, c};
        return nurbs_surf_eval(0, &s, {{0.6, 0.6}}, &p);
    };
    EXPECT_EQ(curve(0, 4, 7, knots, points), 0);
    p = {{7, 8, 9}};
    for (int i = 2; i < 6; ++i)
        points[i].w = 1e-12 * i;
    EXPECT_EQ(curve(2, 4, 7, knots, points), 16);
    EXPECT_EQ(surface(1, 1, 4, knots, points), 16);
    EXPECT_EQ(curve(0, 0, 7, knots, points), 9);
    EXPECT_EQ(surface(0, 7, 4, knots, points), 9);
    EXPECT_EQ(surface(1, 1, -4, knots, points), 10);
    EXPECT_EQ(curve(0, 4, 3, knots, points), 11);
    EXPECT_EQ(curve(0, 4, 7, nullptr, points), 11);
    EXPECT_EQ(surface(1, 1, 4, knots, nullptr), 11);
    EXPECT_EQ(nurbs_surf_eval(0, nullptr, {{0.0, 0.0}}, &p), 11);
    EXPECT_EQ(surface(1, 1, 8, knots, points), 12);
    EXPECT_EQ(curve(3, 4, 7, knots, points), 2);
    EXPECT_EQ(bc_eval_b_code_sub(0.0, 4, knots, 3, &p.x, nullptr, nullptr), 11);
    EXPECT_TRUE(p.x == 7 && p.y == 8 && p.z == 9);
}

// Knots in any order and values of any kind: no read out of bounds, and an answer.
TEST(Nurbs, AnswersToAnything)
{
    Random random(904);
    const double values[] = {0, 1, -2, NAN, INFINITY, -INFINITY, 1e308, -1e-310, 0.3};
    for (int i = 0; i < 20000; ++i) {
        RandomCurve c(random, random.Integer(1, 30), 30);
        for (int change = 0; change < i % 40; ++change) {
            c.knots[static_cast<std::size_t>(random.Integer(0, 30))] = values[random.Integer(0, 8)];
            c.points[static_cast<std::size_t>(i % 30)].w = values[random.Integer(0, 8)];
        }
        const double t = values[random.Integer(0, 8)];
        NURBSSurf surface{
            c.record.order,        30, c.record.knots, 0, 1, 1, 1, c.record.knots, 0, 1,
            c.record.controlPoints};
        Nurbs::Point p[6];
        EXPECT_EQ(nurbs_curv_eval(2, c.record, t, p) & ~16, 0);
        EXPECT_EQ(nurbs_surf_eval(2, &surface, {{t, 0.5}}, p) & ~16, 0);
    }
}

} // namespace
