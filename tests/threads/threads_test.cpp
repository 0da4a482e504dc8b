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

// A fixed job that touches transforms, fits and borders.
std::vector<double> DoJob(const MMTransformMatrix& shared)
{
    std::vector<double> results;
    for (int round = 1; round <= 40; ++round) {
        const std::unique_ptr<MMTransform> clone(shared.Clone());
        MMTransformMatrix turn;
        turn.MakeRotationXYZ(round, 2.0 * round, 3.0 * round);
        turn *= shared;
        const MMPoint3d<double> moved = turn((*clone)(MMPoint3d<double>(3, 2, 1), false), false);

        float angles[] = {10.0F * static_cast<float>(round), 80.0F, 3.0F};
        ROTEER_INVERSE(angles[0], angles[1], angles[2]);

        MMLeastSquarePlane fit;
        for (int i = 0; i < 100; ++i)
            fit.AddPoint(i % 10, i % 7, round + 0.01 * (i % 3));

        M3dBorder<float, float> pieces;
        for (int i = 0; i < 400; ++i) {
            auto* const contour = pieces.AddContourAtEnd();
            contour->SetIsClosed(false);
            contour->InsertAtEnd(static_cast<float>(i), 0.0F, 0.0F);
            contour->InsertAtEnd(static_cast<float>(i + 1), 0.0F, 0.0F);
        }
        M3dBorder<float, float> joined;
        MergeBorder(joined, pieces);
        EXPECT_EQ(joined.GetNumContours(), 1U);
        TransformBorder(joined, shared);
        results.insert(results.end(), {moved.x, moved.y, moved.z, angles[0], angles[1], angles[2],
                                       fit.GetPlane().D(), joined.CircumferenceXY()});
    }
    return results;
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

TEST(Threads, OneTreeAndOneListOfPairsServeAll)
{
    std::vector<MMPoint3d<double>> points;
    points.reserve(3000);
    for (int i = 0; i < 3000; ++i)
        points.emplace_back(i * 37 % 101, i * 53 % 97, i * 71 % 89);
    MBasePointMapper::PairList pairs;
    for (std::size_t i = 0; i < 1000; ++i)
        pairs.emplace_back(&points[i], &points[2999 - i]);
    MKDTreePointLocator locator;
    locator.BuildLocator(points);
    ExpectSameOnEightThreads([&locator, &pairs] {
        std::vector<double> distances;
        std::vector<MFoundPoint> found;
        for (int i = 0; i < 500; ++i) {
            MClosestPointInfo info;
            info.SetQueryPoint({i * 0.21, i * 0.13, i * 0.17});
            locator.FindClosestPoint(info);
            distances.push_back(info.GetDistance());
            locator.FindClosestPoints(info.GetQueryPoint(), 3, found);
            distances.push_back(found.back().distance);
        }
        for (unsigned short i = 0; i < 12; ++i) {
            MMOrthoTransform motion;
            MMapper3DPoints::MapPoints(motion, pairs);
            distances.push_back(motion.GetElement(i / 4, i % 4));
        }
        return distances;
    });
}

} // namespace
