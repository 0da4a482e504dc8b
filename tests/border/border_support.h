#pragma once

#include "support/random.h"

#include <norvek/border/border.h>

#include <gtest/gtest.h>

#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace norvek_test
{

/// What callers see of one point.
template <class Contour>
using Place = std::tuple<typename Contour::CoordinateType, typename Contour::CoordinateType,
                         typename Contour::PayloadType>;

/// The points in ring order, read through the links, with every ring invariant checked on the way.
template <class Contour>
std::vector<Place<Contour>> CheckedPlaces(const Contour& contour)
{
    std::vector<Place<Contour>> places;
    EXPECT_TRUE(contour.GetPool() != nullptr);
    EXPECT_EQ(contour.GetFirstPoint() == nullptr, contour.GetNumPoints() == 0);
    EXPECT_EQ(contour.size(), contour.GetNumPoints());
    EXPECT_LE(contour.GetNumPoints(), contour.GetPool()->GetLiveCount());
    const auto* point = contour.GetFirstPoint();
    for (std::uint32_t i = 0; i < contour.GetNumPoints(); ++i) {
        EXPECT_EQ(point->freeFlag, 0U);
        EXPECT_EQ(point->next->previous, point);
        EXPECT_EQ(point->previous->next, point);
        places.emplace_back(point->x, point->y, point->payload);
        point = point->next;
    }
    EXPECT_EQ(point, contour.GetFirstPoint());
    EXPECT_EQ(std::distance(contour.begin(), contour.end()), contour.GetNumPoints());
    return places;
}

/// All contours of a border, with the list invariants checked on the way, and the counts of the
/// pools: no record is live that stands in no ring.
template <class Border>
auto CheckedContours(const Border& border)
{
    using Contour = typename Border::ContourType;
    std::vector<std::vector<Place<Contour>>> all;
    std::map<const void*, std::pair<std::uint32_t, std::uint32_t>> pools;
    const Contour* previous = nullptr;
    std::uint32_t numPoints = 0;
    for (const Contour& contour : border.Contours()) {
        EXPECT_EQ(contour.GetPreviousContour(), previous);
        all.push_back(CheckedPlaces(contour));
        auto& [live, counted] = pools[contour.GetPool().get()];
        live = contour.GetPool()->GetLiveCount();
        counted += contour.GetNumPoints();
        numPoints += contour.GetNumPoints();
        previous = &contour;
    }
    for (const auto& [pool, counts] : pools)
        EXPECT_EQ(counts.first, counts.second);
    EXPECT_EQ(border.GetLastContour(), previous);
    EXPECT_EQ(border.GetNumContours(), all.size());
    EXPECT_EQ(border.GetNumPoints(), numPoints);
    EXPECT_EQ(border.GetNumEdges(), numPoints);
    return all;
}

/// Appends points of the given places.
template <class Contour>
void Append(Contour& contour, const std::vector<Place<Contour>>& places)
{
    for (const auto& [x, y, payload] : places)
        contour.InsertAtEnd(x, y, payload);
}

} // namespace norvek_test
