#include "curve/curve_support.h"
#include "curve/fit_options.h"

#include <norvek/curve/curve_creation.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using norvek_test::Random;

constexpr int kWork = 2097152;

// A fit with storage for any repair.
struct Fitted
{
    std::vector<double> knots;
    std::vector<Point4D> points;
    int options[5]{};
    NURBSCurv curve;
    int status;

    Fitted(std::vector<double> measured, int order, int count, int percentage, int close,
           spd_Comm comm = {0, kWork})
        : knots(4000, -7.0),
          points(2500, Point4D{{-7, -7, -7, -7}}),
          options{3, percentage, 3, 3, close},
          curve{order, count, knots.data(), -7.0, -7.0, points.data()},
          status(spd_create_curve(static_cast<std::int32_t>(measured.size() / 3), measured.data(),
                                  options, &curve, &comm))
    {}
};

std::vector<double> RandomPoints(Random& random, int count)
{
    std::vector<double> points;
    for (int i = 0; i < count; ++i) {
        const MMPoint3d<double> p = random.Point(1.0);
        points.insert(points.end(), {p.x + 0.3 * i, p.y, p.z});
    }
    return points;
}

TEST(CurveCreation, FitsAgreeWithHouseholderOnTheFullSystem)
{
    // Points, order, control points, percentage, close status. Periodic curves of few control
    // points wrap several basis values onto one.
    constexpr int cases[][5] = {{60, 4, 12, 0, 0},   {90, 6, 15, 100, 0}, {40, 1, 9, 0, 0},
                                {30, 2, 30, 0, 0},   {60, 4, 12, 70, 1},  {80, 3, 9, 0, 1},
                                {50, 6, 8, 0, 1},    {50, 4, 4, 0, 1},    {60, 5, 14, 100, 2},
                                {300, 3, 150, 0, 2}, {50, 8, 8, 50, 0}};
    Random random(921);
    for (const auto& [numPoints, order, count, percentage, close] : cases) {
        SCOPED_TRACE(testing::Message() << order << ' ' << count << ' ' << close);
        const std::vector<double> measured = RandomPoints(random, numPoints);
        const Fitted fit(measured, order, count, percentage, close);
        ASSERT_EQ(fit.status, order == 1 ? 0x200 : 0);
        const int free = close == 1 ? count - order + 1 : count;
        using Rows = Eigen::Matrix<double, -1, 3, Eigen::RowMajor>;
        const Eigen::Map<const Rows> rows(measured.data(), numPoints, 3);
        std::vector<double> t{0.0};
        for (int i = 1; i < numPoints; ++i)
            t.push_back(t.back() +
                        std::pow((rows.row(i) - rows.row(i - 1)).norm(), percentage / 100.0));
        Eigen::MatrixXd a = Eigen::MatrixXd::Zero(numPoints, free);
        for (int j = 0; j < count; ++j) {
            // A basis function is the curve whose control points are all 0 but one.
            std::vector<Point4D> unit(static_cast<std::size_t>(count), Point4D{{0, 0, 0, 1}});
            unit[static_cast<std::size_t>(j)].x = 1.0;
            for (int i = 0; i < numPoints; ++i) {
                Nurbs::Point p;
                nurbs_curv_eval(0, fit.curve.order, count, fit.curve.knots, unit.data(),
                                t[static_cast<std::size_t>(i)] / t.back(), &p);
                a(i, j % free) += p.x;
            }
        }
        const Rows x = a.colPivHouseholderQr().solve(rows);
        for (int j = 0; j < count; ++j) {
            const Point4D& point = fit.curve.controlPoints[j];
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(point.coordinates[axis], x(j % free, axis), 1e-10);
            EXPECT_EQ(point.w, 1.0);
        }
        EXPECT_TRUE(fit.curve.startParameter == 0.0 && fit.curve.endParameter == 1.0);
        const int spans = count - fit.curve.order + 1;
        for (int i = 0; i < count + fit.curve.order; ++i) {
            const int j = i - fit.curve.order + 1;
            EXPECT_EQ(fit.curve.knots[i],
                      static_cast<double>(close == 0 ? std::clamp(j, 0, spans) : j) / spans);
        }
    }
}

TEST(CurveCreation, RepairsOptionsOrderAndCount)
{
    // Points, order, count, percentage, close status, W: status and what is used.
    constexpr int cases[][11] = {{30, 4, 10, 101, 0, kWork, 0x40, 4, 10, 50, 0},
                                 {30, 4, 10, -1, 3, kWork, 0xC0, 4, 10, 50, 0},
                                 {30, 1, 10, 0, 2, kWork, 0x200, 4, 10, 0, 2},
                                 {30, 21, 25, 0, 1, kWork, 0x200, 4, 25, 0, 1},
                                 {30, 20, 25, 0, 0, kWork, 0, 20, 25, 0, 0},
                                 {9, 7, -5, 0, 0, kWork, 0x800, 4, 4, 0, 0},
                                 {3, 4, 0, 0, 0, kWork, 0x800, 3, 3, 0, 0},
                                 {30, 4, 3, 0, 0, kWork, 0x800, 3, 3, 0, 0},
                                 {30, 0, 1, 0, 0, kWork, 0xA00, 1, 1, 0, 0},
                                 {30, 4, 31, 0, 0, kWork, 0x800, 4, 30, 0, 0},
                                 {30, 4, 19, 0, 0, 360, 0x800, 4, 12, 0, 0},
                                 {10, 3, 10, 0, 0, 100, 0, 3, 10, 0, 0},
                                 {11, 2, 11, 0, 0, 120, 0x800, 2, 10, 0, 0}};
    Random random(922);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c[0] << ' ' << c[1] << ' ' << c[2]);
        const Fitted fit(RandomPoints(random, c[0]), c[1], c[2], c[3], c[4], {0, c[5]});
        const int used[] = {fit.status, fit.curve.order, fit.curve.numControlPoints, fit.options[1],
                            fit.options[4]};
        EXPECT_TRUE(std::equal(used, used + 5, c + 6)) << fit.status;
        EXPECT_EQ(fit.options[0] + fit.options[2] + fit.options[3], 9);
        // Nothing beyond the sizes used.
        EXPECT_EQ(fit.knots[static_cast<std::size_t>(used[1] + used[2])], -7.0);
        EXPECT_EQ(fit.points[static_cast<std::size_t>(used[2])].w, -7.0);
    }
    // A count above 2000 is not accepted, but neither is it cut to 2000.
    using Norvek::Math::Core::RepairedFitOptions;
    const auto uncut = RepairedFitOptions({0, 0, 4, 2100}, 2200, 2000000000);
    EXPECT_TRUE(uncut.count == 2100 && uncut.warnings == 0x800);
    // The product with the number of points is beyond 32 bits.
    EXPECT_EQ(RepairedFitOptions({0, 0, 4, 2000}, 1100000, 2000000000).count, 1818);
}

TEST(CurveCreation, RefusesBadInput)
{
    Random random(924);
    const std::vector<double> good = RandomPoints(random, 30);
    const auto with = [&](double value) {
        std::vector<double> points = good;
        points[50] = value;
        return points;
    };
    std::vector<double> tiny;
    for (int i = 0; i < 1000; ++i)
        tiny.insert(tiny.end(), {3e-6 * i, 0.0, 0.0});
    for (const Fitted& fit : {Fitted({}, 4, 6, 50, 7), Fitted(with(NAN), 4, 6, 50, 7),
                              Fitted(good, 4, 6, 50, 7, {0, 299})})
    {
        EXPECT_TRUE(fit.status == 5 && fit.options[4] == 7);
        EXPECT_EQ(fit.knots[0] + fit.points[0].x + fit.curve.startParameter, -21.0);
    }
    for (const int percentage : {0, 50, 100}) {
        EXPECT_EQ(Fitted({1, 2, 3}, 4, 6, percentage, 0).status, 6);
        EXPECT_EQ(Fitted(tiny, 4, 6, percentage, 0).status, 6);
        EXPECT_EQ(Fitted(with(1e200), 4, 6, percentage, 0).status, percentage == 0 ? 0 : 6);
    }
    int options[5]{};
    NURBSCurv bare{4, 6, nullptr, 0.0, 0.0, nullptr};
    spd_Comm comm{0, kWork};
    EXPECT_EQ(spd_create_curve(1000, tiny.data(), options, &bare, &comm), 5);
    // Stated capacities are kept to.
    EXPECT_EQ(Fitted(good, 1, 6, 0, 0, {0, kWork, 9, 6}).knots[0], -7.0);
    EXPECT_EQ(Fitted(good, 1, 6, 0, 0, {0, kWork, 10, 6}).status, 0x200);
    EXPECT_EQ(Fitted(good, 4, 0, 0, 0, {0, kWork, 100, 14}).status, 1);
    // Spans that no parameter falls into.
    std::vector<double> lone(90, 0.0);
    lone[0] = 1.0;
    const Fitted flat(lone, 4, 10, 100, 0);
    EXPECT_TRUE(flat.status == 16 && flat.points[3].x == 0.0 && flat.points[9].w == 1.0);
}

// Even parameters and as many control points make a system that loses all digits as it grows.
TEST(CurveCreation, InterpolationIsAccurateOrRefused)
{
    Random random(925);
    for (const int order : {3, 4, 5, 7, 11, 20}) {
        for (const int count : {20, 24, 32, 40, 60, 100, 150, 188, 300}) {
            const std::vector<double> measured = RandomPoints(random, count);
            const Fitted fit(measured, order, count, 0, 0);
            EXPECT_TRUE(fit.status == 0 || (fit.status == 16 && order > 3 && count > 30));
            for (int i = 0; fit.status == 0 && i < count; ++i) {
                Nurbs::Point p;
                nurbs_curv_eval(0, fit.curve, i / (count - 1.0), &p);
                EXPECT_NEAR(p.y, measured[static_cast<std::size_t>(3 * i + 1)], 1e-6)
                    << order << ' ' << count;
            }
        }
    }
}

} // namespace
