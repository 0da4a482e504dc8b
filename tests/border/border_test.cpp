#include "border/border_support.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <ranges>

namespace
{

using norvek_test::Append;
using norvek_test::CheckedContours;

using Border = M3dBorder<double, void*>;
using Contour = Border::ContourType;

static_assert(std::bidirectional_iterator<Border::iterator>);
static_assert(std::bidirectional_iterator<Border::const_iterator>);
static_assert(std::ranges::bidirectional_range<decltype(Border().Contours())>);

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Border, KeepsItsListLikeAVector)
{
    norvek_test::Random random(721);
    Border border;
    std::vector<const Contour*> model;
    for (int step = 0; step < 3000; ++step) {
        const auto count = static_cast<int>(model.size());
        const int rank = count > 0 ? random.Integer(0, count - 1) : 0;
        Contour* const at = count > 0 ? &*std::next(border.begin(), rank) : nullptr;
        Contour* const given = random.Integer(0, 1) == 0 ? nullptr : new Contour();
        const int choice = random.Integer(0, given != nullptr || count == 0 ? 2 : 4);
        if (choice == 0) {
            model.push_back(given ? border.AddContourAtEnd(given) : border.AddContourAtEnd());
        } else if (choice == 1) {
            model.insert(model.begin(),
                         given ? border.AddContourAtFront(given) : border.AddContourAtFront());
        } else if (choice == 2) {
            model.insert(model.begin() + rank + (count > 0 ? 1 : 0),
                         given ? border.AddContourAfter(given, at) : border.AddContourAfter(at));
        } else if (choice == 3) {
            EXPECT_EQ(border.RemoveContour(at).get(), at);
            model.erase(model.begin() + rank);
        } else {
            EXPECT_EQ(border.RemoveFirstContour().get(), model.front());
            model.erase(model.begin());
        }
        CheckedContours(border);
        ASSERT_TRUE(std::ranges::equal(border.Contours(), model, {},
                                       [](const Contour& contour) { return &contour; }));
    }
    border.GetLastContour()->InsertAtEnd(1.0, 2.0, nullptr);
    border.RemoveEmptyContours();
    EXPECT_EQ(CheckedContours(border).size(), 1U);
    EXPECT_EQ(border.AddContourAtEnd(nullptr), nullptr);
    EXPECT_EQ(border.RemoveContour(nullptr), nullptr);
}

class CountingBorder : public Border
{
public:
    int created = 0;

protected:
    Contour* _CreateNewContour() override
    {
        ++created;
        return Border::_CreateNewContour();
    }
};

TEST(Border, CopiesIntoAPoolOfItsOwnAndCreatesThroughTheOverride)
{
    CountingBorder source;
    for (int i = 0; i < 3; ++i)
        Append(*source.AddContourAtEnd(), {{1.0 * i, 2.0, nullptr}, {3.0, 4.0 * i, nullptr}});
    source.GetLastContour()->SetIsClosed(false);
    Border copy(source);
    CountingBorder assigned;
    assigned.AddContourAtEnd();
    Border& base = assigned;
    base = source;
    base = assigned;
    EXPECT_EQ(assigned.created, 4);
    for (const Border* const border : {&copy, &base}) {
        EXPECT_EQ(CheckedContours(*border), CheckedContours(source));
        EXPECT_FALSE(border->GetLastContour()->GetIsClosed());
        EXPECT_EQ(border->GetFirstContour()->GetPool(), border->GetLastContour()->GetPool());
        EXPECT_NE(border->GetFirstContour()->GetPool(), source.GetFirstContour()->GetPool());
    }
    Border other;
    other.Swap(copy);
    EXPECT_EQ(copy.GetNumContours() + copy.GetNumPoints() + copy.GetNumEdges(), 0U);
    EXPECT_EQ(other.GetNumEdges(), 6U);
    other.SetIndices();
    EXPECT_EQ(other.GetLastContour()->GetFirstPoint()->index, 4U);
}

// The rules of one edge as documented; the library walks over silent edges.
template <class Border>
char PlainPosition(const Border& border, double x, double y)
{
    int count = 0;
    for (const auto& contour : border) {
        for (const auto& p : contour) {
            const auto& q = *p.next;
            const auto [px, py] = std::pair<double, double>(p.x, p.y);
            const auto [qx, qy] = std::pair<double, double>(q.x, q.y);
            if (px == x && py == y)
                return 0;
            if (py == y && qy == y) {
                if ((x - qx) * (x - px) <= 0.0)
                    return 0;
            } else if ((py > y && y >= qy) || (py <= y && y < qy)) {
                const double dx = Norvek::Math::Core::WrappingSubtract(q.x, p.x);
                const double dy = Norvek::Math::Core::WrappingSubtract(q.y, p.y);
                const double crossing = px + (y - py) * dx / dy;
                if (crossing == x)
                    return 0;
                count += x > crossing ? 1 : 0;
            }
        }
    }
    return count % 2 == 1 ? 1 : 2;
}

template <class Coord, class Payload>
void ComparePositions(const std::vector<double>& awkward, std::uint32_t seed)
{
    norvek_test::Random random(seed);
    const auto coordinate = [&] {
        const auto rank = static_cast<std::size_t>(random.Integer(0, 20));
        return rank < awkward.size() ? awkward[rank] : random.Integer(-3, 3);
    };
    for (int scene = 0; scene < 3000; ++scene) {
        M3dBorder<Coord, Payload> border;
        for (int contours = random.Integer(0, 3); contours > 0; --contours) {
            border.AddContourAtEnd();
            for (int points = random.Integer(0, 8); points > 0; --points)
                border.GetLastContour()->InsertAtEnd(static_cast<Coord>(coordinate()),
                                                     static_cast<Coord>(coordinate()), Payload{});
        }
        for (int query = 0; query < 20; ++query) {
            const double x = coordinate();
            const double y = coordinate();
            const char expected = PlainPosition(border, x, y);
            ASSERT_EQ(border.CalculatePosition(x, y), expected);
            if (border.GetNumContours() == 1) {
                ASSERT_EQ(border.GetFirstContour()->CalculatePositionXY(x, y), expected);
            }
        }
    }
}

TEST(BorderPosition, WalkingOverSilentEdgesChangesNoAnswer)
{
    ComparePositions<double, void*>({0.5, -0.0, 1e300, -1e300, kInfinity, -kInfinity, kNan}, 722);
    ComparePositions<float, float>({0.5, -0.0, 1e38, kInfinity, -kInfinity, kNan}, 723);
    ComparePositions<std::int32_t, void*>({2147483647.0, -2147483648.0, 1e9, -1e9}, 724);
}

Border Square(double low, double high)
{
    Border border;
    Append(
        *border.AddContourAtEnd(),
        {{low, low, nullptr}, {high, low, nullptr}, {high, high, nullptr}, {low, high, nullptr}});
    return border;
}

TEST(BorderMeasures, SquareWithAHole)
{
    Border border = Square(0.0, 10.0);
    EXPECT_EQ(border.CalculatePosition(5.0, 0.0), 0);
    EXPECT_EQ(border.CalculatePosition(5.0, 5.0), 1);
    EXPECT_EQ(border.CalculatePosition(5.0, 10.0), 0);
    EXPECT_EQ(border.CalculatePosition(-1.0, 5.0), 2);
    EXPECT_EQ(border.SurfaceAreaWithSignXY(), -100.0);
    EXPECT_EQ(border.CircumferenceXY(), 40.0);
    border.AddContourAtEnd(Square(4.0, 6.0).RemoveFirstContour().release());
    EXPECT_EQ(border.CalculatePosition(5.0, 5.0), 2);
    border.GetLastContour()->SetIsClosed(false);
    EXPECT_EQ(border.CircumferenceXY(), 46.0);
    border.AdjustOuterContourParameterToTurningSense();
    EXPECT_FALSE(border.GetFirstContour()->GetIsOuterContour());
    border.GetFirstContour()->SetIsOuterContour(true);
    border.AdjustTurningSenseToOuterContourParameter();
    EXPECT_EQ(border.GetFirstContour()->SurfaceAreaWithSignXY(), 100.0);
    EXPECT_EQ(border.GetLastContour()->SurfaceAreaWithSignXY(), -4.0);
}

TEST(BorderMeasures, TurnsOnlyInnerContoursOfNoArea)
{
    for (const bool isOuter : {true, false}) {
        Border border = Square(1.0, 1.0);
        border.GetFirstContour()->SetIsOuterContour(isOuter);
        const auto* const second = border.GetFirstContour()->GetFirstPoint()->next;
        border.AddContourAtEnd()->SetIsOuterContour(isOuter);
        border.AdjustTurningSenseToOuterContourParameter();
        EXPECT_EQ(border.GetFirstContour()->GetFirstPoint()->next == second, isOuter);
        border.AdjustOuterContourParameterToTurningSense();
        EXPECT_TRUE(border.GetFirstContour()->GetIsOuterContour());
    }
}

TEST(BorderMeasures, IntegersWrapAndVerticalEdgesAreSkipped)
{
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    M3dBorderContour<std::int32_t, void*> wide;
    wide.InsertAtEnd(-highest, highest, nullptr);
    wide.InsertAtEnd(highest, highest, nullptr);
    // y + y wraps to -2 and x - x to -2, so both edges give 2.
    EXPECT_EQ(wide.SurfaceAreaWithSignXY(), 2.0 - 2.0);
    wide.InsertAtEnd(0, 0, nullptr);
    EXPECT_EQ(wide.SurfaceAreaWithSignXY(), 2.0 + highest * 0.5 * -highest * 2.0);
    EXPECT_NEAR(wide.CircumferenceXY(), (2.0 + 2.0 * std::sqrt(2.0)) * highest, 1.0);

    Contour tall;
    Append(tall, {{0.0, kInfinity, nullptr}, {0.0, 1.0, nullptr}});
    EXPECT_EQ(tall.SurfaceAreaWithSignXY(), 0.0);
    EXPECT_EQ(tall.CircumferenceXY(), kInfinity);
    EXPECT_EQ(Contour().CircumferenceXY() + Contour().SurfaceAreaWithSignXY(), 0.0);
    EXPECT_EQ(Contour().CalculatePositionXY(0.0, 0.0), 2);
}

} // namespace
