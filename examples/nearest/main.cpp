// Builds a k-d tree over a scan and asks it for the nearest point, the eight nearest and all within
// a radius.

#include "hall.h"
#include "options.h"
#include "picture.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/text.h"

#include <algorithm>
#include <iostream>

namespace nearest
{

using example::Fixed;

namespace
{

// Every point with its distance, the nearest first: what a tree saves.
std::vector<std::pair<double, std::uint32_t>> CompareWithAll(const Cloud& scan, const Point& query)
{
    std::vector<std::pair<double, std::uint32_t>> all;
    for (std::uint32_t i = 0; i < scan.size(); ++i)
        all.emplace_back((scan[i] - query).Length(), i);
    std::sort(all.begin(), all.end());
    return all;
}

void Compare(const Answers& answers, const Options& options, const Cloud& scan)
{
    const auto all = CompareWithAll(scan, options.query);
    bool isSame = answers.nearest.GetDistance() == all.front().first;
    for (std::size_t i = 0; i < answers.eight.size(); ++i)
        isSame = isSame && answers.eight[i].distance == all[i].first;
    const auto isNear = [&](const auto& entry) {
        return entry.first <= options.radius;
    };
    isSame = isSame && std::count_if(all.begin(), all.end(), isNear) ==
                           static_cast<std::ptrdiff_t>(answers.within.size());
    if (!isSame)
        throw example::Failure("the tree and a comparison with all points disagree");
}

void Run(const Options& options)
{
    const Cloud scan = Scan(options.rays, options.noise);
    // [questions]
    MKDTreePointLocator locator;
    locator.BuildLocator(scan);

    Answers answers;
    answers.nearest.SetQueryPoint(options.query);
    locator.FindClosestPoint(answers.nearest);
    locator.FindClosestPoints(options.query, 8, answers.eight);
    locator.FindPointsWithinRadius(options.query, options.radius, answers.within);
    // [questions]
    Compare(answers, options, scan);
    const std::vector<Cell> cells = CellsOf(scan, locator.GetBucketSize());
    std::cout << "Points             " << scan.size() << "\nCells              "
              << std::count_if(cells.begin(), cells.end(), [](const Cell& c) { return c.isLeaf; })
              << "\nNearest            " << Fixed(answers.nearest.GetDistance(), 3)
              << " m\nEighth             " << Fixed(answers.eight.back().distance, 3)
              << " m\nWithin " << Fixed(options.radius, 2) << " m      " << answers.within.size()
              << "\nEvery answer equals that of a comparison with all points.\n";
    if (!options.picture.empty())
        WritePicture(options, scan, cells, answers);
}

} // namespace

} // namespace nearest

int main(int argc, char** argv)
{
    return example::RunProgram("nearest", nearest::kHelp, nearest::ReadOptions, nearest::Run, argc,
                               argv);
}
