#include "border/border_support.h"

#include <algorithm>
#include <limits>

namespace
{

using norvek_test::Append;
using norvek_test::CheckedPlaces;

using Contour = M3dBorderContour<float, float>;
using Points = std::vector<norvek_test::Place<Contour>>;

static_assert(std::bidirectional_iterator<Contour::iterator>);
static_assert(std::bidirectional_iterator<Contour::const_iterator>);
static_assert(std::convertible_to<Contour::iterator, Contour::const_iterator>);

// Points named by numbers, at places of their own.
Points Named(const std::vector<int>& names)
{
    Points places;
    for (const int name : names)
        places.emplace_back(static_cast<float>(name), static_cast<float>(name % 3), 0.5F);
    return places;
}

Contour Ring(const std::vector<int>& names)
{
    Contour contour;
    Append(contour, Named(names));
    return contour;
}

// A contour beside a vector that is edited likewise; the vector's front is the first point.
struct Pair
{
    Contour contour;
    Points model;
};

void RemoveDoubles(Points& ring)
{
    const auto same = [](const auto& a, const auto& b) {
        return std::get<0>(a) == std::get<0>(b) && std::get<1>(a) == std::get<1>(b);
    };
    ring.erase(std::unique(ring.begin(), ring.end(), same), ring.end());
    // The seam: the record in front goes, the last one stays.
    while (ring.size() > 1 && same(ring.front(), ring.back()))
        ring.erase(ring.begin());
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
    const int choice = random.Integer(0, count > 0 ? 12 : 6);
    if (choice == 0) {
        a.contour.InsertAtEnd(x, y, payload);
        a.model.push_back(place);
    } else if (choice == 1) {
        a.contour.InsertAtFront(x, y, payload);
        a.model.insert(a.model.begin(), place);
    } else if (choice == 2) {
        a.contour.RemoveDoublePoints();
        RemoveDoubles(a.model);
    } else if (choice == 3) {
        a.contour = b.contour;
        a.model = Points(b.model);
    } else if (choice == 4 || choice == 5) {
        const bool atEnd = choice == 4;
        auto* const first =
            atEnd ? a.contour.InsertAtEnd(b.contour) : a.contour.InsertAtFront(b.contour);
        EXPECT_EQ(first == nullptr, &a == &b || b.model.empty());
        if (&a != &b) {
            const auto to = atEnd ? a.model.end() : a.model.begin();
            a.model.insert(to, b.model.begin(), b.model.end());
            b.model.clear();
        }
    } else if (choice == 6) {
        a.contour.SetIsClosed(random.Integer(0, 1) == 1);
        a.contour.Invert();
        std::reverse(a.model.begin(), a.model.end());
        if (a.contour.GetIsClosed() && count > 0)
            std::rotate(a.model.begin(), a.model.end() - 1, a.model.end());
    } else if (choice == 7) {
        a.contour.InsertAtPoint(x, y, payload, at);
        a.model.insert(position + 1, place);
    } else if (choice == 8) {
        a.contour.SetFirstPointAt(at);
        std::rotate(a.model.begin(), position, a.model.end());
    } else if (choice == 9 && a.model.size() + b.model.size() < 200 && !b.model.empty()) {
        a.contour.ConnectWith(at, &b.contour);
        Points bridge = b.model;
        bridge.push_back(b.model.front());
        bridge.push_back(a.model[static_cast<std::size_t>(rank)]);
        a.model.insert(a.model.begin() + rank + 1, bridge.begin(), bridge.end());
    } else if (choice >= 10) {
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
    for (int step = 0; step < 30000; ++step) {
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

TEST(Contour, RemovesTheSeamsDoubleInFront)
{
    using Names = std::vector<int>;
    for (const auto& [before, after] : std::vector<std::pair<Names, Names>>{
             {{1, 2, 2, 3, 1}, {2, 3, 1}}, {{1, 1, 1}, {1}}, {{1, 1, 2, 1, 1}, {2, 1}}, {{}, {}}})
    {
        for (const bool isClosed : {true, false}) {
            Contour contour = Ring(before);
            contour.SetIsClosed(isClosed);
            contour.RemoveDoublePoints();
            EXPECT_EQ(CheckedPlaces(contour), Named(after));
        }
    }
    Contour withNan;
    Append(withNan, {{std::numeric_limits<float>::quiet_NaN(), 0, 0}});
    withNan.InsertAtEnd(*withNan.GetFirstPoint());
    withNan.RemoveDoublePoints();
    EXPECT_EQ(withNan.GetNumPoints(), 2U);
}

TEST(Contour, FindsTheLowestLeftmostPoint)
{
    EXPECT_EQ(Contour().LowestLeftmostPoint(), nullptr);
    for (const auto& [names, rank] : std::vector<std::pair<std::vector<int>, int>>{
             {{5, 3, 1, 3}, 1}, {{0, 4, 3, 0, 0}, 3}, {{3, 3, 3}, 1}, {{3}, 0}, {{3, 3, 1}, 0}})
    {
        Contour contour = Ring(names);
        EXPECT_EQ(contour.LowestLeftmostPoint(), &*std::next(contour.begin(), rank));
    }
}

TEST(Contour, CopiesFlagsButNeitherInfoNorPool)
{
    M3dBorder<float, float> border;
    border.AddContourAtEnd();
    Contour& source = *border.AddContourAtEnd();
    Append(source, Named({1, 2}));
    source.SetIsOuterContour(false);
    source.SetOrder(3);
    source.SetInfo(&source);
    Contour assigned;
    const auto ownPool = assigned.GetPool();
    assigned = source;
    EXPECT_EQ(assigned.GetPool(), ownPool);
    EXPECT_EQ(Contour(source).GetPool(), source.GetPool());
    const Contour apart(source, Contour::PoolPointer());
    EXPECT_NE(apart.GetPool(), source.GetPool());
    for (const Contour& copy : {assigned, apart}) {
        EXPECT_EQ(CheckedPlaces(copy), Named({1, 2}));
        EXPECT_TRUE(copy.GetIsClosed() && !copy.GetIsOuterContour() && copy.GetOrder() == 3);
        EXPECT_TRUE(copy.GetInfo() == nullptr && copy.GetPreviousContour() == nullptr);
    }
    source = Contour();
    EXPECT_EQ(source.GetPreviousContour(), border.GetFirstContour());
    EXPECT_EQ(source.GetInfo(), &source);
}

TEST(Contour, KeepsRecordsWithinAPoolAndReturnsThemBetweenPools)
{
    Contour contour = Ring({1});
    Contour near(contour.GetPool());
    auto* const record = near.InsertAtEnd(2.0F, 2.0F, 0.5F);
    EXPECT_EQ(contour.InsertAtEnd(near), record);
    Contour far = Ring({3, 4});
    contour.InsertAtEnd(far);
    EXPECT_EQ(far.GetPool()->GetBlocksAllocated(), 0U);
}

TEST(Contour, WalksBothWaysAndSurvivesRemovalOfThePointJustLeft)
{
    Contour contour = Ring({1, 2, 3, 4, 5, 6});
    std::uint32_t counter = 7;
    contour.SetIndices(counter);
    EXPECT_EQ(counter, 13U);
    for (auto it = contour.end(); it != contour.begin();)
        EXPECT_EQ((--it)->index, --counter);
    for (auto it = contour.begin(); it != contour.end();) {
        auto* const point = &*it++;
        if (point->x != 4.0F)
            contour.RemovePoint(point);
    }
    EXPECT_EQ(CheckedPlaces(contour), Named({4}));
}

} // namespace
