// Distinct objects on distinct threads: the block service, the pools and the transform allocator
// are all that the threads share. Run under the thread sanitizer as well.

#include <norvek/border/border.h>
#include <norvek/border/border_algorithms.h>
#include <norvek/bounds/axes_binded.h>
#include <norvek/primitives/least_squares_plane.h>
#include <norvek/search/kd_tree_point_locator.h>
#include <norvek/search/point_mappers.h>
#include <norvek/transform/legacy_rotation.h>
#include <norvek/transform/ortho_transform.h>
#include <norvek/transform/transform_matrix.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace
{

struct Outcome
{
    MMPoint3d<double> moved;
    double offset = 0.0;
    std::uint32_t numContours = 0;
    double length = 0.0;

    bool operator==(const Outcome&) const = default;
};

// A fixed job that touches transforms, fits and borders.
Outcome DoJob(const MMTransformMatrix& shared)
{
    Outcome outcome;
    for (int round = 1; round <= 40; ++round) {
        const std::unique_ptr<MMTransform> clone(shared.Clone());
        MMTransformMatrix turn;
        turn.MakeRotationXYZ(round, 2.0 * round, 3.0 * round);
        turn *= shared;
        outcome.moved += turn(MMPoint3d<double>(1, 2, 3), false);
        outcome.moved += (*clone)(MMPoint3d<double>(3, 2, 1), false);

        float angles[] = {10.0F * static_cast<float>(round), 80.0F, 3.0F};
        ROTEER_INVERSE(angles[0], angles[1], angles[2]);
        outcome.moved += MMPoint3d<double>(angles[0], angles[1], angles[2]);

        MMLeastSquarePlane fit;
        for (int i = 0; i < 100; ++i)
            fit.AddPoint(i % 10, i % 7, round + 0.01 * (i % 3));
        outcome.offset += fit.GetPlane().D();

        M3dBorder<float, float> pieces;
        for (int i = 0; i < 400; ++i) {
            auto* const contour = pieces.AddContourAtEnd();
            contour->SetIsClosed(false);
            contour->InsertAtEnd(static_cast<float>(i), 0.0F, 0.0F);
            contour->InsertAtEnd(static_cast<float>(i + 1), 0.0F, 0.0F);
        }
        M3dBorder<float, float> joined;
        MergeBorder(joined, pieces);
        TransformBorder(joined, shared);
        outcome.numContours += joined.GetNumContours();
        outcome.length += joined.CircumferenceXY();
    }
    return outcome;
}

// What the job returns on eight threads at once is what it returns alone.
template <class Job>
void ExpectSameOnEightThreads(const Job& job)
{
    const auto alone = job();
    std::vector<decltype(job())> outcomes(8);
    std::vector<std::thread> threads;
    threads.reserve(outcomes.size());
    for (auto& outcome : outcomes)
        threads.emplace_back([&outcome, &job] { outcome = job(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& outcome : outcomes)
        EXPECT_EQ(outcome, alone);
}

TEST(Threads, DistinctObjectsWorkAtOnce)
{
    MMTransformMatrix shared;
    shared.MakeRotation({1, 2, 3}, {0, 0, 1}, 0.5);
    EXPECT_EQ(DoJob(shared).numContours, 40U);
    ExpectSameOnEightThreads([&shared] { return DoJob(shared); });
}

TEST(Threads, OneMotionOneFrameAndOneStackServeAll)
{
    MMOrthoTransform motion;
    motion.MakeRotation({1, 2, 3}, {1, 0, 1}, 0.5, true);
    M3DAxesBinded frame;
    frame.SetNormal({1, 2, 3});
    MMTransformStack stack;
    stack.PostMultiply(MMTransformMatrix());
    stack.PostMultiply(stack);
    ExpectSameOnEightThreads([&motion, &frame, &stack] {
        std::vector<MMPoint3d<double>> points(100, {1, 2, 3});
        for (int round = 0; round < 40; ++round) {
            motion.Transform(points);
            MMTransformMatrix toWorld;
            frame.GetTransformationTo(toWorld);
            toWorld.Transform(points);
            MMTransformStack sharing;
            sharing = stack;
            sharing.PreMultiply(toWorld);
            sharing.Transform(points, points);
        }
        return points;
    });
}

TEST(Threads, OneTreeServesAll)
{
    std::vector<MMPoint3d<double>> points;
    points.reserve(3000);
    for (int i = 0; i < 3000; ++i)
        points.emplace_back(i * 37 % 101, i * 53 % 97, i * 71 % 89);
    MKDTreePointLocator locator;
    locator.BuildLocator(points);
    ExpectSameOnEightThreads([&locator] {
        std::vector<MFoundPoint> answers;
        std::vector<MFoundPoint> found;
        for (int i = 0; i < 500; ++i) {
            MClosestPointInfo info;
            info.SetQueryPoint({i * 0.21, i * 0.13, i * 0.17});
            locator.FindClosestPoint(info);
            answers.push_back(
                {static_cast<std::uint32_t>(info.GetFoundIndex()), info.GetDistance()});
            locator.FindClosestPoints(info.GetQueryPoint(), 3, found);
            answers.insert(answers.end(), found.begin(), found.end());
        }
        return answers;
    });
}

TEST(Threads, OneListOfPairsServesAll)
{
    std::vector<MMPoint3d<double>> points;
    points.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        points.emplace_back(i * 37 % 101, i * 53 % 97, i * 71 % 89);
    MBasePointMapper::PairList pairs;
    for (std::size_t i = 0; i < 1000; ++i)
        pairs.emplace_back(&points[i], &points[999 - i]);
    ExpectSameOnEightThreads([&pairs] {
        MMPoint3d<double> image;
        for (int i = 0; i < 20; ++i) {
            MMOrthoTransform motion;
            MMapper3DPoints::MapPoints(motion, pairs);
            motion.Transform(image, image);
        }
        return image;
    });
}

} // namespace
