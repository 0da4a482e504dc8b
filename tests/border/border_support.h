#pragma once

#include "support/random.h"

#include <norvek/border/border.h>

#include <gtest/gtest.h>

#include <map>
#include <tuple>
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
    const auto* point = contour.GetFirstPoint();
    EXPECT_EQ(point == nullptr, contour.GetNumPoints() == 0);
    for (std::uint32_t i = 0; i < contour.GetNumPoints(); ++i) {
        EXPECT_EQ(point->freeFlag, 0U);
        EXPECT_TRUE(point->next->previous == point && point->previous->next == point);
        places.emplace_back(point->x, point->y, point->payload);
        point = point->next;
    }
    EXPECT_EQ(point, contour.GetFirstPoint());
    EXPECT_EQ(std::distance(contour.begin(), contour.end()), contour.GetNumPoints());
    return places;
}

/// All contours of a border, with the invariants of list and rings checked on the way; no record of
/// their pools is live that stands in no ring.
template <class Border>
auto CheckedContours(const Border& border)
{
    std::vector<decltype(CheckedPlaces(*border.GetFirstContour()))> all;
    std::map<typename Border::PoolPointer, std::uint32_t> pools;
    const typename Border::ContourType* previous = nullptr;
    for (const auto& contour : border.Contours()) {
        EXPECT_EQ(contour.GetPreviousContour(), previous);
        previous = &contour;
        all.push_back(CheckedPlaces(contour));
        pools[contour.GetPool()] += contour.GetNumPoints();
    }
    EXPECT_EQ(border.GetLastContour(), previous);
    EXPECT_EQ(border.GetNumContours(), all.size());
    for (const auto& [pool, count] : pools)
        EXPECT_EQ(pool->GetLiveCount(), count);
    return all;
}

/// Appends points at the given places.
template <class Contour>
void Append(Contour& contour, const std::vector<Place<Contour>>& places)
{
    for (const auto& [x, y, payload] : places)
        contour.InsertAtEnd(x, y, payload);
}

} // namespace norvek_test
