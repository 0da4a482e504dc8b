#include "border/border_support.h"

#include <limits>
#include <ranges>

namespace
{

using norvek_test::Append;
using norvek_test::CheckedPlaces;

using Contour = M3dBorderContour<float, float>;
using Points = std::vector<norvek_test::Place<Contour>>;

static_assert(std::bidirectional_iterator<Contour::iterator>);
static_assert(std::bidirectional_iterator<Contour::const_iterator>);
static_assert(std::ranges::sized_range<Contour>);
static_assert(std::convertible_to<Contour::iterator, Contour::const_iterator>);

// Points named by numbers, at places of their own.
Points Named(const std::vector<int>& names)
{
    Points places;
    for (const int name : names)
        places.emplace_back(static_cast<float>(name), static_cast<float>(name % 3), 0.5F);
    return places;
}

Contour Ring(const std::vector<int>& names, bool isClosed = true)
{
    Contour contour;
    Append(contour, Named(names));
    contour.SetIsClosed(isClosed);
    return contour;
}

// A contour beside a vector that does the same; the vector's front is the first point.
struct Pair
{
    explicit Pair(Contour::PoolPointer pool) : contour(std::move(pool))
    {}

    Contour::PointType* Point(std::size_t index)
    {
        return &*std::next(contour.begin(), static_cast<std::ptrdiff_t>(index));
    }

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

class Editor
{
public:
    explicit Editor(norvek_test::Random& random) : _random(random)
    {}

    void Edit(Pair& a, Pair& b)
    {
        const auto count = static_cast<int>(a.model.size());
        const auto at = static_cast<std::size_t>(count > 0 ? _random.Integer(0, count - 1) : 0);
        const auto position = a.model.begin() + static_cast<std::ptrdiff_t>(at);
        const auto x = static_cast<float>(_random.Integer(0, 2));
        const norvek_test::Place<Contour> place(x, 1.0F, _random.Integer(0, 9));
        const auto [px, py, payload] = place;
        const int choice = _random.Integer(0, 12);
        if (choice == 0) {
            EXPECT_EQ(a.contour.InsertAtEnd(px, py, payload)->payload, payload);
            a.model.push_back(place);
        } else if (choice == 1) {
            auto* const inserted = a.contour.InsertAtFront(px, py, payload);
            EXPECT_EQ(inserted, a.contour.GetFirstPoint());
            a.model.insert(a.model.begin(), place);
        } else if (choice == 2 && count > 0) {
            a.contour.InsertAtPoint(px, py, payload, a.Point(at));
            a.model.insert(position + 1, place);
        } else if (choice <= 4 && count > 0) {
            a.contour.RemovePoint(a.Point(at));
            a.model.erase(position);
        } else if (choice == 5) {
            a.contour.SetIsClosed(_random.Integer(0, 1) == 1);
            a.contour.Invert();
            std::reverse(a.model.begin(), a.model.end());
            if (a.contour.GetIsClosed() && count > 0)
                std::rotate(a.model.begin(), a.model.end() - 1, a.model.end());
        } else if (choice == 6 && count > 0) {
            a.contour.SetFirstPointAt(a.Point(at));
            std::rotate(a.model.begin(), position, a.model.end());
        } else if (choice == 7) {
            a.contour.RemoveDoublePoints();
            RemoveDoubles(a.model);
        } else {
            EditBoth(choice, a, b, at);
        }
    }

private:
    void EditBoth(int choice, Pair& a, Pair& b, std::size_t at)
    {
        const bool isSame = &a == &b;
        if (choice == 8 && !a.model.empty() && a.model.size() + b.model.size() < 300) {
            a.contour.ConnectWith(a.Point(at), &b.contour);
            Points bridge = b.model;
            if (!bridge.empty()) {
                bridge.push_back(b.model.front());
                bridge.push_back(a.model[at]);
            }
            a.model.insert(a.model.begin() + static_cast<std::ptrdiff_t>(at) + 1, bridge.begin(),
                           bridge.end());
        } else if (choice == 9) {
            a.contour = b.contour;
            a.model = Points(b.model);
        } else if (choice == 10 || choice == 11) {
            const bool atEnd = choice == 10;
            auto* const inserted =
                atEnd ? a.contour.InsertAtEnd(b.contour) : a.contour.InsertAtFront(b.contour);
            EXPECT_EQ(inserted == nullptr, isSame || b.model.empty());
            if (!isSame) {
                a.model.insert(atEnd ? a.model.end() : a.model.begin(), b.model.begin(),
                               b.model.end());
                b.model.clear();
            }
        } else if (choice == 12 && _random.Integer(0, 5) == 0) {
            a.contour.MakeEmpty();
            a.model.clear();
        }
    }

    norvek_test::Random& _random;
};

TEST(Contour, EditsLikeAVectorAndKeepsItsRing)
{
    norvek_test::Random random(711);
    Editor editor(random);
    const auto shared = Contour().GetPool();
    std::vector<Pair> pairs;
    pairs.reserve(4);
    for (int i = 0; i < 4; ++i)
        pairs.emplace_back(i < 2 ? shared : Contour::PoolPointer());
    for (int step = 0; step < 30000; ++step) {
        auto& a = pairs[static_cast<std::size_t>(random.Integer(0, 3))];
        auto& b = pairs[static_cast<std::size_t>(random.Integer(0, 3))];
        editor.Edit(a, b);
        for (const Pair* const pair : {&a, &b})
            ASSERT_EQ(CheckedPlaces(pair->contour), pair->model) << step;
        ASSERT_EQ(shared->GetLiveCount(), pairs[0].model.size() + pairs[1].model.size());
        ASSERT_EQ(pairs[3].contour.GetPool()->GetLiveCount(), pairs[3].model.size());
    }
}

TEST(Contour, RemovesTheSeamsDoubleInFront)
{
    struct Case
    {
        std::vector<int> before;
        std::vector<int> after;
    };
    for (const Case& c : {Case{{1, 2, 2, 3, 1}, {2, 3, 1}}, Case{{1, 1, 1}, {1}}, Case{{1}, {1}},
                          Case{{}, {}}, Case{{1, 1, 2, 1, 1}, {2, 1}}, Case{{1, 2, 1}, {2, 1}}})
    {
        for (const bool isClosed : {true, false}) {
            Contour contour = Ring(c.before, isClosed);
            contour.RemoveDoublePoints();
            EXPECT_EQ(CheckedPlaces(contour), Named(c.after));
        }
    }
    Contour withNan;
    withNan.InsertAtEnd(std::numeric_limits<float>::quiet_NaN(), 0.0F, 0.0F);
    withNan.InsertAtEnd(*withNan.GetFirstPoint());
    withNan.RemoveDoublePoints();
    EXPECT_EQ(withNan.GetNumPoints(), 2U);
}

TEST(Contour, FindsTheLowestLeftmostPoint)
{
    EXPECT_EQ(Contour().LowestLeftmostPoint(), nullptr);
    // The wanted point by its rank in the ring.
    struct Case
    {
        std::vector<int> names;
        std::ptrdiff_t rank;
    };
    for (const Case& c : {Case{{5, 3, 1, 3}, 1}, Case{{0, 4, 3, 0, 0}, 3}, Case{{3, 3, 3}, 1},
                          Case{{3}, 0}, Case{{3, 3, 1}, 0}, Case{{1, 3, 6, 3}, 1}})
    {
        Contour contour = Ring(c.names);
        EXPECT_EQ(contour.LowestLeftmostPoint(), &*std::next(contour.begin(), c.rank))
            << c.names[0];
    }
}

TEST(Contour, CopiesFlagsButNeitherInfoNorPlaceInABorder)
{
    M3dBorder<float, float> border;
    border.AddContourAtEnd();
    Contour& source = *border.AddContourAtEnd();
    Append(source, Named({1, 2}));
    source.SetIsClosed(false);
    source.SetIsOuterContour(false);
    source.SetOrder(3);
    source.SetStatus(4);
    source.SetInfo(&source);
    Contour assigned;
    const auto ownPool = assigned.GetPool();
    assigned = source;
    const Contour sharing(source);
    const Contour apart(source, Contour::PoolPointer());
    const Contour* const copies[] = {&assigned, &sharing, &apart};
    for (const Contour* const copy : copies) {
        EXPECT_EQ(CheckedPlaces(*copy), Named({1, 2}));
        EXPECT_FALSE(copy->GetIsClosed() || copy->GetIsOuterContour());
        EXPECT_EQ(copy->GetOrder(), 3);
        EXPECT_EQ(copy->GetStatus(), 4);
        EXPECT_EQ(copy->GetInfo(), nullptr);
        EXPECT_EQ(copy->GetPreviousContour(), nullptr);
    }
    EXPECT_EQ(assigned.GetPool(), ownPool);
    EXPECT_EQ(sharing.GetPool(), source.GetPool());
    EXPECT_NE(apart.GetPool(), source.GetPool());
    source = Contour();
    EXPECT_NE(source.GetPreviousContour(), nullptr);
    EXPECT_EQ(source.GetInfo(), &source);
}

TEST(Contour, KeepsRecordsWithinAPoolAndCopiesThemBetweenPools)
{
    Contour contour = Ring({1});
    Contour near(contour.GetPool());
    auto* const record = near.InsertAtEnd(2.0F, 2.0F, 0.5F);
    EXPECT_EQ(contour.InsertAtEnd(near), record);
    Contour far = Ring({3, 4});
    const auto* const foreign = far.GetFirstPoint();
    EXPECT_NE(contour.InsertAtEnd(far), foreign);
    EXPECT_EQ(CheckedPlaces(contour), Named({1, 2, 3, 4}));
    EXPECT_EQ(far.GetPool()->GetBlocksAllocated(), 0U);
}

TEST(Contour, WalksBothWaysAndSurvivesRemovalOfThePointJustLeft)
{
    Contour contour = Ring({1, 2, 3, 4, 5, 6});
    std::vector<float> backwards;
    for (const auto& point : contour | std::views::reverse)
        backwards.push_back(point.x);
    EXPECT_EQ(backwards, (std::vector<float>{6, 5, 4, 3, 2, 1}));
    std::uint32_t counter = 7;
    contour.SetIndices(counter);
    EXPECT_EQ(counter, 13U);
    EXPECT_EQ(std::ranges::max(contour, {}, &Contour::PointType::index).x, 6.0F);
    contour.ResetIndices();
    EXPECT_EQ(std::ranges::count(contour, 0U, &Contour::PointType::index), 6);
    for (auto it = contour.begin(); it != contour.end();) {
        auto* const point = &*it++;
        if (point->x != 4.0F)
            contour.RemovePoint(point);
    }
    EXPECT_EQ(CheckedPlaces(contour), Named({4}));
}

TEST(Contour, DestroysMillionsOfPoints)
{
    Contour contour;
    for (int i = 0; i < 3000000; ++i)
        contour.InsertAtEnd(static_cast<float>(i), 0.0F, 0.0F);
    Contour rest(contour.GetPool());
    rest.InsertAtEnd(0.0F, 0.0F, 0.0F);
    contour.MakeEmpty();
    EXPECT_EQ(rest.GetPool()->GetLiveCount(), 1U);
}

} // namespace
