#include "border/border_support.h"

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

TEST(Border, LinksContoursWhereItIsTold)
{
    Border border;
    const auto order = [&] {
        std::vector<const Contour*> contours;
        for (const Contour& contour : border.Contours())
            contours.push_back(&contour);
        EXPECT_EQ(CheckedContours(border).size(), contours.size());
        return contours;
    };
    Contour* const c = border.AddContourAfter(new Contour(), nullptr);
    Contour* const b = border.AddContourAtFront();
    Contour* const d = border.AddContourAfter(c);
    Contour* const a = border.AddContourAtFront(new Contour());
    Contour* const f = border.AddContourAtEnd();
    Contour* const e = border.AddContourAfter(new Contour(), d);
    EXPECT_EQ(order(), (std::vector<const Contour*>{a, b, c, d, e, f}));
    EXPECT_EQ(border.RemoveFirstContour().get(), a);
    EXPECT_EQ(border.RemoveContour(d).get(), d);
    EXPECT_EQ(border.RemoveContour(f).get(), f);
    EXPECT_EQ(order(), (std::vector<const Contour*>{b, c, e}));
    c->InsertAtEnd(1.0, 2.0, nullptr);
    border.RemoveEmptyContours();
    EXPECT_EQ(order(), (std::vector<const Contour*>{c}));
    EXPECT_EQ(border.AddContourAtEnd(nullptr), nullptr);
    EXPECT_EQ(border.RemoveContour(nullptr), nullptr);
    border.MakeEmpty();
    EXPECT_TRUE(order().empty());
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
    for (const double y : {1.0, 2.0, 3.0})
        Append(*source.AddContourAtEnd(), {{y, 2.0, nullptr}, {3.0, y, nullptr}});
    source.GetLastContour()->SetIsClosed(false);
    const Border copy(source);
    CountingBorder assigned;
    assigned.AddContourAtEnd();
    Border& base = assigned;
    base = source;
    base = assigned;
    EXPECT_EQ(assigned.created, 4);
    Border swapped(source);
    Border().Swap(swapped);
    EXPECT_EQ(swapped.GetNumContours() + swapped.GetNumPoints() + swapped.GetNumEdges(), 0U);
    base.Swap(swapped);
    swapped.SetIndices();
    EXPECT_EQ(swapped.GetLastContour()->GetFirstPoint()->index, 4U);
    for (const Border* const border : {&copy, &std::as_const(swapped)}) {
        EXPECT_EQ(CheckedContours(*border), CheckedContours(source));
        EXPECT_EQ(border->GetNumEdges(), 6U);
        EXPECT_FALSE(border->GetLastContour()->GetIsClosed());
        EXPECT_EQ(border->GetFirstContour()->GetPool(), border->GetLastContour()->GetPool());
        EXPECT_NE(border->GetFirstContour()->GetPool(), source.GetFirstContour()->GetPool());
    }
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
                double dx = qx - px;
                double dy = qy - py;
                if constexpr (std::integral<decltype(q.x)>) {
                    dx = Norvek::Math::Core::WrappingSubtract(q.x, p.x);
                    dy = Norvek::Math::Core::WrappingSubtract(q.y, p.y);
                }
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
            auto& contour = *border.AddContourAtEnd();
            for (int points = random.Integer(0, 8); points > 0; --points)
                contour.InsertAtEnd(static_cast<Coord>(coordinate()),
                                    static_cast<Coord>(coordinate()), Payload{});
        }
        for (int query = 0; query < 20; ++query) {
            const double x = coordinate();
            const double y = coordinate();
            const char expected = PlainPosition(border, x, y);
            ASSERT_EQ(border.CalculatePosition(x, y), expected);
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
    EXPECT_EQ(border.SurfaceAreaWithSignXY(), -100.0);
    EXPECT_EQ(border.GetFirstContour()->CalculatePositionXY(5.0, 5.0), 1);
    border.AddContourAtEnd(Square(4.0, 6.0).RemoveFirstContour().release())->SetIsClosed(false);
    // On the lower and the upper rim, in the ring, left of it, in the hole.
    const std::tuple<double, double, int> places[] = {
        {5.0, 0.0, 0}, {5.0, 10.0, 0}, {2.0, 5.0, 1}, {-1.0, 5.0, 2}, {5.0, 5.0, 2}};
    for (const auto& [x, y, code] : places)
        EXPECT_EQ(border.CalculatePosition(x, y), code);
    EXPECT_EQ(border.CircumferenceXY(), 46.0);
    border.AdjustOuterContourParameterToTurningSense();
    EXPECT_FALSE(border.GetFirstContour()->GetIsOuterContour());
    border.GetFirstContour()->SetIsOuterContour(true);
    border.AdjustTurningSenseToOuterContourParameter();
    EXPECT_EQ(border.SurfaceAreaWithSignXY(), 100.0 - 4.0);
}

TEST(BorderMeasures, TurnsOnlyInnerContoursOfNoArea)
{
    for (const bool isOuter : {true, false}) {
        Border border = Square(1.0, 1.0);
        Contour& contour = *border.GetFirstContour();
        contour.SetIsOuterContour(isOuter);
        const auto* const second = contour.GetFirstPoint()->next;
        border.AddContourAtEnd()->SetIsOuterContour(isOuter);
        border.AdjustTurningSenseToOuterContourParameter();
        EXPECT_EQ(contour.GetFirstPoint()->next == second, isOuter);
        border.AdjustOuterContourParameterToTurningSense();
        EXPECT_TRUE(contour.GetIsOuterContour() && border.GetLastContour()->GetIsOuterContour());
    }
}

TEST(BorderMeasures, IntegersWrapAndVerticalEdgesAreSkipped)
{
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    M3dBorderContour<std::int32_t, void*> wide;
    wide.InsertAtEnd(-highest, highest, nullptr);
    wide.InsertAtEnd(highest, highest, nullptr);
    // The sum of the y wraps to -2, the differences of the x to -2 and 2.
    EXPECT_EQ(wide.SurfaceAreaWithSignXY(), 2.0 - 2.0);
    wide.InsertAtEnd(0, 0, nullptr);
    EXPECT_EQ(wide.SurfaceAreaWithSignXY(), 2.0 + highest * 0.5 * -highest * 2.0);
    EXPECT_NEAR(wide.CircumferenceXY(), (2.0 + 2.0 * std::sqrt(2.0)) * highest, 1.0);

    Contour tall;
    Append(tall, {{0.0, kInfinity, nullptr}, {0.0, 1.0, nullptr}});
    EXPECT_EQ(tall.SurfaceAreaWithSignXY(), 0.0);
    EXPECT_EQ(tall.CircumferenceXY(), kInfinity);
    tall.MakeEmpty();
    EXPECT_EQ(tall.CircumferenceXY() + tall.SurfaceAreaWithSignXY(), 0.0);
    EXPECT_EQ(tall.CalculatePositionXY(0.0, 0.0), 2);
}

} // namespace
