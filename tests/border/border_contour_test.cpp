#include "border/border_support.h"

#include <algorithm>

namespace
{

using norvek_test::CheckedPlaces;

using Contour = M3dBorderContour<float, float>;
using Points = std::vector<norvek_test::Place<Contour>>;

static_assert(std::bidirectional_iterator<Contour::iterator>);
static_assert(std::bidirectional_iterator<Contour::const_iterator>);
static_assert(std::convertible_to<Contour::iterator, Contour::const_iterator>);

// Points (x, y) given as 10 y + x.
Contour Ring(const std::vector<int>& points)
{
    Contour contour;
    for (const int point : points) {
        const int y = point / 10;
        contour.InsertAtEnd(static_cast<float>(point - 10 * y), static_cast<float>(y), 0.0F);
    }
    return contour;
}

// A contour beside a vector that is edited likewise; the vector's front is the first point.
struct Pair
{
    Contour contour;
    Points model;
};

bool AreDoubles(const Points::value_type& a, const Points::value_type& b)
{
    return std::get<0>(a) == std::get<0>(b) && std::get<1>(a) == std::get<1>(b);
}

// Edits one contour, with a second one where the edit needs it, which may be the same.
void Edit(norvek_test::Random& random, Pair& a, Pair& b)
{
    const auto count = static_cast<int>(a.model.size());
    const int rank = count > 0 ? random.Integer(0, count - 1) : 0;
    auto* const at = count > 0 ? &*std::next(a.contour.begin(), rank) : nullptr;
    const auto position = a.model.begin() + rank;
    const norvek_test::Place<Contour> place(random.Integer(0, 2), 1, random.Integer(0, 9));
    const auto [x, y, payload] = place;
    const int choice = random.Integer(0, count > 0 ? 11 : 5);
    if (choice == 0) {
        a.contour.InsertAtEnd(x, y, payload);
        a.model.push_back(place);
    } else if (choice == 1) {
        a.contour.InsertAtFront(x, y, payload);
        a.model.insert(a.model.begin(), place);
    } else if (choice == 2) {
        a.contour.RemoveDoublePoints();
        a.model.erase(std::unique(a.model.begin(), a.model.end(), AreDoubles), a.model.end());
        // At the seam the record in front goes, the last one stays.
        while (a.model.size() > 1 && AreDoubles(a.model.front(), a.model.back()))
            a.model.erase(a.model.begin());
    } else if (choice == 3) {
        a.contour = b.contour;
        a.model = Points(b.model);
    } else if (choice == 4) {
        const bool atEnd = random.Integer(0, 1) == 0;
        auto* const before = &a == &b ? nullptr : b.contour.GetFirstPoint();
        auto* const in =
            atEnd ? a.contour.InsertAtEnd(b.contour) : a.contour.InsertAtFront(b.contour);
        // Within one pool the records move, between pools they are copied.
        EXPECT_EQ(in == before, before == nullptr || a.contour.GetPool() == b.contour.GetPool());
        const Points moved = before == nullptr ? Points() : std::exchange(b.model, {});
        a.model.insert(atEnd ? a.model.end() : a.model.begin(), moved.begin(), moved.end());
    } else if (choice == 5) {
        a.contour.SetIsClosed(random.Integer(0, 1) == 1);
        a.contour.Invert();
        std::reverse(a.model.begin(), a.model.end());
        if (a.contour.GetIsClosed() && count > 0)
            std::rotate(a.model.begin(), a.model.end() - 1, a.model.end());
    } else if (choice == 6) {
        a.contour.InsertAtPoint(x, y, payload, at);
        a.model.insert(position + 1, place);
    } else if (choice == 7) {
        a.contour.SetFirstPointAt(at);
        std::rotate(a.model.begin(), position, a.model.end());
    } else if (choice == 8 && a.model.size() + b.model.size() < 200 && !b.model.empty()) {
        a.contour.ConnectWith(at, &b.contour);
        Points bridge = b.model;
        bridge.insert(bridge.end(), {b.model.front(), *position});
        a.model.insert(position + 1, bridge.begin(), bridge.end());
    } else if (choice >= 9) {
        a.contour.RemovePoint(at);
        a.model.erase(position);
    }
}

TEST(Contour, EditsLikeAVectorAndKeepsItsRing)
{
    norvek_test::Random random(711);
    // Two contours on one pool and two on pools of their own.
    std::vector<Pair> pairs;
    const auto shared = boost::make_shared<Contour::PoolType>();
    pairs.reserve(4);
    for (int i = 0; i < 4; ++i)
        pairs.push_back({Contour(i < 2 ? shared : Contour::PoolPointer()), {}});
    for (int step = 0; step < 12000; ++step) {
        Pair& a = pairs[static_cast<std::size_t>(random.Integer(0, 3))];
        Pair& b = pairs[static_cast<std::size_t>(random.Integer(0, 3))];
        Edit(random, a, b);
        for (const Pair& pair : pairs) {
            ASSERT_EQ(CheckedPlaces(pair.contour), pair.model) << step;
        }
        ASSERT_EQ(shared->GetLiveCount(), pairs[0].model.size() + pairs[1].model.size());
        ASSERT_EQ(pairs[3].contour.GetPool()->GetLiveCount(), pairs[3].model.size());
    }
}

TEST(Contour, FindsTheLowestLeftmostPoint)
{
    EXPECT_EQ(Contour().LowestLeftmostPoint(), nullptr);
    for (const auto& [points, rank] : std::vector<std::pair<std::vector<int>, int>>{
             {{25, 12, 30, 11, 11}, 3}, {{0, 4, 3, 0, 0}, 3}, {{3, 3, 3}, 1}, {{13, 13, 23}, 0}})
    {
        Contour contour = Ring(points);
        EXPECT_EQ(contour.LowestLeftmostPoint(), &*std::next(contour.begin(), rank));
    }
}

TEST(Contour, CopiesFlagsButNeitherInfoNorPlace)
{
    M3dBorder<float, float> border;
    border.AddContourAtEnd();
    Contour& source = *border.AddContourAtEnd();
    source.InsertAtEnd(1.0F, 2.0F, 3.0F);
    source.SetIsOuterContour(false);
    source.SetOrder(3);
    source.SetInfo(&source);
    Contour assigned;
    assigned = source;
    Contour apart(source, Contour::PoolPointer());
    Contour beside(source);
    for (const Contour* const copy : {&assigned, &apart, &beside}) {
        EXPECT_EQ(CheckedPlaces(*copy), CheckedPlaces(source));
        EXPECT_TRUE(!copy->GetIsOuterContour() && copy->GetOrder() == 3);
        EXPECT_TRUE(copy->GetInfo() == nullptr && copy->GetPreviousContour() == nullptr);
        EXPECT_EQ(copy->GetPool() == source.GetPool(), copy == &beside);
    }
    source = Contour();
    EXPECT_TRUE(source.GetPreviousContour() == border.GetFirstContour() &&
                source.GetInfo() == &source);
}

TEST(Contour, WalksBothWaysAndSurvivesRemovalOfThePointJustLeft)
{
    Contour contour = Ring({1, 2, 3, 4, 5, 6});
    std::uint32_t counter = 7;
    contour.SetIndices(counter);
    for (auto it = contour.end(); it != contour.begin();)
        EXPECT_EQ((--it)->index, --counter);
    for (auto it = contour.begin(); it != contour.end();) {
        auto* const point = &*it++;
        if (point->x != 4.0F)
            contour.RemovePoint(point);
    }
    EXPECT_EQ(CheckedPlaces(contour), CheckedPlaces(Ring({4})));
}

} // namespace
