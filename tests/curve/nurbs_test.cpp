#include "curve/curve_support.h"

#include <norvek/curve/nurbs.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
#include <numeric>

namespace
{

using norvek_test::kEpsilon;
using norvek_test::Random;
using norvek_test::RandomCurve;
using Vector = std::vector<double>;

TEST(Nurbs, TheHighestTextOfAStatusWins)
{
    std::wstring texts;
    for (const int status : {0x2000, 1, 3, 5, 6, 7, 8, 9, 10, 11, 12, 16, 0x40, 0xC0, 0x1C0, 0x245,
                             0x423, 0x800, 0x1FC0})
    {
        std::wstring message = L"before";
        EXPECT_EQ(NURBS_ERROR_HANDLING(message, status), (status & 63) != 0) << status;
        texts += message;
        texts += L'|';
    }
    EXPECT_EQ(texts, L"before|Memory Error|Unknown Error|Measurment Point Error|"
                     L"Parametrisation Error|Close Status Error in u direction|"
                     L"Close Status Error in v direction|u - order Error|v - order Error|"
                     L"Number of Control Points Error in u-direction|"
                     L"Number of Control Points Error in v-direction|Least Square Fit Error|"
                     L"Curve Parametrisation Warning|Close status in u-direction Warning|"
                     L"Close status in v-direction Warning|Order in u-direction Warning|"
                     L"Order in v-direction Warning|"
                     L"Number of Control Points in u-direction Warning|"
                     L"Number of Control Points in v-direction Warning|");
}

// Values, first and second derivatives of an order by the recursion as it is written down.
std::array<Vector, 3> PlainBasis(double t, int order, const double* knots, int span)
{
    if (order == 1)
        return {Vector{1.0}, Vector{0.0}, Vector{0.0}};
    const auto lower = PlainBasis(t, order - 1, knots, span);
    const auto size = static_cast<std::size_t>(order);
    std::array<Vector, 3> rows{Vector(size), Vector(size), Vector(size)};
    const double* const to = knots + span;
    const double* const from = to - order + 1;
    const auto quotient = [&](const Vector& row, int r) {
        const bool isZero = r < 0 || r == order - 1 || std::abs(to[r] - from[r]) <= 1e-11;
        return isZero ? 0.0 : row[static_cast<std::size_t>(r)] / (to[r] - from[r]);
    };
    for (int r = 0; r < order; ++r) {
        const auto i = static_cast<std::size_t>(r);
        const double down = r > 0 ? (t - from[r - 1]) * quotient(lower[0], r - 1) : 0.0;
        rows[0][i] = down + (r + 1 < order ? (to[r] - t) * quotient(lower[0], r) : 0.0);
        for (std::size_t d : {1U, 2U})
            rows[d][i] = (order - 1) * (quotient(lower[d - 1], r - 1) - quotient(lower[d - 1], r));
    }
    return rows;
}

// The search and the quotient rule as they are written down, and the weight.
std::array<Nurbs::Point, 3> PlainCurve(const NURBSCurv& c, double t, double& w)
{
    int span = c.order;
    while (span < c.numControlPoints && !(t < c.knots[span]))
        ++span;
    const auto basis = PlainBasis(t, c.order, c.knots, span);
    const auto sum = [&](std::size_t d, int i) {
        double a = 0.0;
        for (int r = 0; r < c.order; ++r)
            a += basis[d][static_cast<std::size_t>(r)] *
                 c.controlPoints[span - c.order + r].coordinates[i];
        return a;
    };
    w = sum(0, 3);
    std::array<Nurbs::Point, 3> p;
    for (int i = 0; i < 3; ++i) {
        const double c0 = sum(0, i) / w;
        const double c1 = (sum(1, i) - sum(1, 3) * c0) / w;
        p[0].coordinates[i] = c0;
        p[1].coordinates[i] = c1;
        p[2].coordinates[i] = (sum(2, i) - 2 * sum(1, 3) * c1 - sum(2, 3) * c0) / w;
    }
    return p;
}

TEST(NurbsCurve, HasTheBitsOfTheRecursionWrittenDown)
{
    Random random(901);
    for (int i = 0; i < 2000; ++i) {
        const int order = i % 2 == 0 ? 3 + i / 2 % 2 : random.Integer(1, 24);
        const RandomCurve c(random, order, order + random.Integer(0, 60));
        const double start = c.record.startParameter;
        const double end = c.record.endParameter;
        const double middle = end - 0.1;
        const auto basis = PlainBasis(middle, order, c.record.knots, c.record.numControlPoints);
        Vector n(basis[0].size()), n1(n), n2(n);
        double* const first = i % 3 == 0 ? nullptr : n1.data();
        double* const second = i % 3 == 1 ? nullptr : n2.data();
        bc_eval_b_code_sub(middle, order, c.record.knots, c.record.numControlPoints, n.data(),
                           first, second);
        EXPECT_TRUE(n == basis[0] && (first == nullptr || n1 == basis[1]) &&
                    (second == nullptr || n2 == basis[2]));
        const double sum = std::accumulate(n.begin(), n.end(), 0.0);
        EXPECT_TRUE(end - c.knots[c.points.size() - 1] < 0.2 ||
                    std::abs(sum - 1.0) <= order * kEpsilon);
        for (const double t : {random.Uniform(start, end), start, end, end + 1.0, -1.0,
                               c.knots[static_cast<std::size_t>(order)], double{NAN}})
        {
            double w = 0.0;
            const auto expected = PlainCurve(c.record, t, w);
            for (int derivatives = 0; derivatives < 3; ++derivatives) {
                Nurbs::Point p[3];
                const int status = nurbs_curv_eval(derivatives, c.record, t, p);
                // A span as short as the guard has no basis, and hence no weight.
                ASSERT_EQ(status, std::abs(w) <= 1e-11 ? 16 : 0) << order;
                for (int v = 0; status == 0 && v < 3 * (derivatives + 1); ++v) {
                    const double want =
                        expected[static_cast<std::size_t>(v / 3)].coordinates[v % 3];
                    const double have = p[v / 3].coordinates[v % 3];
                    ASSERT_TRUE(have == want || (have != have && want != want))
                        << order << ' ' << t;
                }
            }
        }
    }
}

// Half a sphere: a quarter circle in u, turned through two quarters in v. Derivatives are held to
// differences of what they are derivatives of.
TEST(NurbsSurface, AHalfSphereHasItsRadiusAndItsDerivatives)
{
    const double s = std::sqrt(0.5);
    const double profile[3][3] = {{1, 0, -1}, {1, 1, -1}, {0, 1, -2}};
    const double turn[5][3] = {{1, 0, 1}, {1, 1, s}, {0, 1, 1}, {-1, 1, s}, {-1, 0, 1}};
    std::vector<Point4D> grid;
    for (const auto& [r, z, wu] : profile) {
        for (const auto& [x, y, wv] : turn)
            grid.push_back({{r * x * wu * wv, r * y * wu * wv, z * wu * wv, wu * wv}});
    }
    double knotsU[] = {0, 0, 0, 1, 1, 1};
    double knotsV[] = {0, 0, 0, 2, 2, 4, 4, 4};
    NURBSSurf surface{3, 3, knotsU, 0, 1, 3, 5, knotsV, 0, 4, grid.data()};
    for (int k = 0; k < 1000; ++k) {
        const Point2D at{{(k % 37 + 0.5) / 37.0, (k + 0.5) / 250.0}};
        Nurbs::Point p[6];
        ASSERT_EQ(nurbs_surf_eval(2, &surface, at, p), 0);
        EXPECT_NEAR(p[0].x * p[0].x + p[0].y * p[0].y + p[0].z * p[0].z, 1.0, 8 * kEpsilon);
        for (const int d : {0, 1}) {
            Nurbs::Point differences[3]{};
            for (const double side : {-1.0, 1.0}) {
                Point2D beside = at;
                beside.coordinates[d] += side * 1e-5;
                Nurbs::Point q[3];
                nurbs_surf_eval(1, &surface, beside, q);
                for (int i = 0; i < 9; ++i)
                    differences[i / 3].coordinates[i % 3] += side * q[i / 3].coordinates[i % 3];
            }
            for (int i = 0; i < 9; ++i)
                EXPECT_NEAR(differences[i / 3].coordinates[i % 3] / 2e-5,
                            p[i < 3 ? 1 + d : i / 3 + 2 + d].coordinates[i % 3], 1e-6);
        }
    }
}

TEST(Nurbs, RefusesWithoutWritingAndReadsOnlyTheSpan)
{
    double knots[] = {0, 0, 0, 0, 0.25, 0.5, 0.75, 1, 1, 1, 1};
    Point4D points[7];
    std::fill_n(points, 7, Point4D{{NAN, NAN, NAN, NAN}});
    std::fill_n(points + 2, 4, Point4D{{3, 4, 5, 1}});
    Nurbs::Point p{{7, 8, 9}};
    const auto curve = [&](int derivatives, int order, int count, double* k) {
        return nurbs_curv_eval(derivatives, order, count, k, points, 0.6, &p);
    };
    const auto surface = [&](int orderU, int orderV, Point4D* c) {
        NURBSSurf s{orderU, 1, knots, 0, 1, orderV, 7, knots, 0, 1, c};
        return nurbs_surf_eval(0, &s, {{0.6, 0.6}}, &p);
    };
    EXPECT_EQ(curve(0, 4, 7, knots), 0);
    p = {{7, 8, 9}};
    for (int i = 2; i < 6; ++i)
        points[i].w = 2.5e-12 * i;
    EXPECT_TRUE(curve(2, 4, 7, knots) == 16 && surface(1, 4, points) == 16);
    EXPECT_TRUE(curve(0, 0, 7, knots) == 9 && surface(0, 4, points) == 9);
    EXPECT_TRUE(surface(1, -4, points) == 10 && surface(1, 8, points) == 12);
    EXPECT_TRUE(curve(0, 4, 3, knots) == 11 && curve(0, 4, 7, nullptr) == 11);
    EXPECT_TRUE(surface(1, 4, nullptr) == 11 && curve(3, 4, 7, knots) == 2);
    EXPECT_EQ(bc_eval_b_code_sub(0.0, 4, knots, 3, &p.x, nullptr, nullptr), 11);
    EXPECT_TRUE(p.x == 7 && p.y == 8 && p.z == 9);
}

} // namespace
