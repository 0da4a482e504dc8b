// Finds the motion between two overlapping crops of a surface by nearest points, then joins five
// crops into one map through their best pairs.

#include "alignment.h"
#include "crops.h"
#include "options.h"
#include "picture.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/progress.h"
#include "support/surface.h"
#include "support/text.h"

#include <norvek/search/registered_points_tree.h>

#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>

namespace registration
{

using example::Fixed;

namespace
{

// A pair of crops counts as registered when so many of the points have a partner.
constexpr double kLeastOverlap = 0.15;

// The motions of the crops of the map, and their windows: four corners around the middle.
constexpr std::size_t kNumCrops = 5;
constexpr Window kWindows[kNumCrops]{{0.25, 0.75, 0.25, 0.75},
                                     {0.0, 0.53, 0.0, 0.53},
                                     {0.47, 1.0, 0.0, 0.53},
                                     {0.47, 1.0, 0.47, 1.0},
                                     {0.0, 0.53, 0.47, 1.0}};
constexpr double kTurns[kNumCrops]{0.0, 1.5, -1.5, 1.0, -2.0};
const MMPoint3d<double> kShifts[kNumCrops]{
    {0, 0, 0}, {-60, -50, 90}, {70, -60, -80}, {60, 70, 110}, {-60, 60, -100}};

// The root of the mean square of the distance between places and where they belong.
double RootMeanSquare(const Cloud& places, const Cloud& truth)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < places.size(); ++i)
        sum += (places[i] - truth[i]).LengthSquared();
    return std::sqrt(sum / static_cast<double>(places.size()));
}

Pair RegisterPair(const example::Surface& surface, const Options& options, double spacing,
                  std::mt19937& engine)
{
    Pair pair;
    pair.fixed = CutCrop(surface, {0.0, 0.65, 0.0, 1.0}, 4, engine);
    pair.moved = CutCrop(surface, {0.35, 1.0, 0.0, 1.0}, 1, engine);
    MoveCrop(pair.moved, options.turn, {0.2, 0.1, 1.0}, options.shift, options.noise, engine);
    MKDTreePointLocator locator;
    locator.BuildLocator(pair.fixed.points);
    std::cout << "Pair of crops\n  iteration     pairs    median\n";
    pair.alignment = Align(locator, pair.moved.points, spacing, [](const Alignment& state) {
        std::cout << std::setw(11) << state.numIterations << std::setw(10) << state.numPairs
                  << std::setw(10) << Fixed(state.median, 3) << '\n';
    });
    if (pair.alignment.numIterations == 0)
        throw example::Failure("no point of one crop comes near the other");
    pair.before = ResidualsOf(locator, pair.moved.points, {});
    pair.after = ResidualsOf(locator, pair.moved.points, pair.alignment.motion);
    // The true motion and the way back: what is left of both is the error.
    MMOrthoTransform left = pair.moved.motion;
    left.Concatenate(pair.alignment.motion);
    Cloud returned;
    left.Transform(returned, pair.moved.truth);
    std::cout << "Recovered: " << Fixed(AngleOf(left), 4) << " degrees and "
              << Fixed(RootMeanSquare(returned, pair.moved.truth), 3)
              << " (root mean square) from the true motion\n\n";
    return pair;
}

Map JoinMap(const example::Surface& surface, const Options& options, double spacing,
            std::mt19937& engine)
{
    Map map;
    std::array<MKDTreePointLocator, kNumCrops> locators;
    for (std::size_t i = 0; i < kNumCrops; ++i) {
        map.crops.push_back(CutCrop(surface, kWindows[i], 2, engine));
        MoveCrop(map.crops[i], kTurns[i], {0.1, 0.2, 1.0}, kShifts[i], options.noise, engine);
        locators[i].BuildLocator(map.crops[i].points);
    }
    // [tree]
    MDataArray2D<MRegistrationCostInfo> costs(kNumCrops, kNumCrops);
    MDataArray2D<MMTransformMatrix> pairwise(kNumCrops, kNumCrops);
    for (std::size_t i = 0; i < kNumCrops; ++i) {
        for (std::size_t j = 0; j < kNumCrops; ++j) {
            if (i == j)
                continue;
            const Alignment found =
                Align(locators[i], map.crops[j].points, spacing, [](const Alignment&) {});
            if (found.numPairs < kLeastOverlap * found.numPoints)
                continue;
            costs(i, j).SetInfoInliers(found.numPairs, found.numPoints, found.median);
            pairwise(i, j).Make(found.motion);
        }
    }
    MRegistered3DPointsTree tree;
    tree.Build(costs, pairwise, std::vector<MMTransformMatrix>(kNumCrops));
    tree.UpdateWcsTransforms();
    // [tree]
    std::cout << "Map of " << kNumCrops
              << " crops\n  crop  hangs on   partners     before      after\n";
    for (std::size_t i = 0; i < kNumCrops; ++i) {
        const MRegistered3DPointsTree::Node& node = tree.GetNode(i);
        Cloud joined;
        node.worldTransform.Transform(joined, map.crops[i].points);
        const bool isRoot = node.parent == MRegistered3DPointsTree::kNoIndex;
        std::cout << std::setw(6) << i << std::setw(10)
                  << (isRoot ? "-" : std::to_string(node.parent)) << std::setw(9)
                  << (isRoot ? "-" : Fixed(100.0 * node.cost.GetOverlapPercentage(), 1)) << " %"
                  << std::setw(11)
                  << Fixed(RootMeanSquare(map.crops[i].points, map.crops[i].truth), 3)
                  << std::setw(11) << Fixed(RootMeanSquare(joined, map.crops[i].truth), 3) << '\n';
        map.joined.push_back(std::move(joined));
    }
    return map;
}

void Run(const Options& options)
{
    example::Progress progress;
    const example::Surface surface = example::ReadSurface(options.surface, progress);
    progress.Wipe();
    std::mt19937 engine(2026);
    const double spacing = SpacingOf(surface.points);
    const Pair pair = RegisterPair(surface, options, spacing, engine);
    const Map map = JoinMap(surface, options, spacing, engine);
    if (!options.picture.empty())
        WritePicture(options, surface, pair, map);
}

} // namespace

} // namespace registration

int main(int argc, char** argv)
{
    return example::RunProgram("registration", registration::kHelp, registration::ReadOptions,
                               registration::Run, argc, argv);
}
