#include "border/border_support.h"

#include <cmath>
#include <limits>
#include <ranges>
#include <string>

namespace
{

using norvek_test::Append;
using norvek_test::CheckedContours;

using Border = M3dBorder<double, void*>;
using Contour = Border::ContourType;
using Names = std::vector<int>;

static_assert(std::bidirectional_iterator<Border::iterator>);
static_assert(std::bidirectional_iterator<Border::const_iterator>);
static_assert(std::ranges::bidirectional_range<decltype(Border().Contours())>);

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The status bytes of the contours in list order, read forwards and backwards.
Names Statuses(const Border& border)
{
    CheckedContours(border);
    Names names;
    for (const Contour& contour : border)
        names.push_back(contour.GetStatus());
    Names backwards;
    for (const Contour& contour : border.Contours() | std::views::reverse)
        backwards.insert(backwards.begin(), contour.GetStatus());
    EXPECT_EQ(names, backwards);
    return names;
}

TEST(Border, KeepsItsListLikeAVector)
{
    norvek_test::Random random(721);
    Border border;
    Names model;
    for (int step = 0; step < 3000; ++step) {
        const auto count = static_cast<int>(model.size());
        const int at = count > 0 ? random.Integer(0, count - 1) : 0;
        Contour* const here = count > 0 ? &*std::next(border.begin(), at) : nullptr;
        const auto name = static_cast<unsigned char>(step % 200);
        const int choice = random.Integer(0, 7);
        const bool makes = random.Integer(0, 1) == 0;
        Contour* const given = makes || choice > 2 ? nullptr : new Contour();
        Contour* added = nullptr;
        if (choice == 0) {
            added = makes ? border.AddContourAtEnd() : border.AddContourAtEnd(given);
            model.push_back(name);
        } else if (choice == 1) {
            added = makes ? border.AddContourAtFront() : border.AddContourAtFront(given);
            model.insert(model.begin(), name);
        } else if (choice == 2) {
            added = makes ? border.AddContourAfter(here) : border.AddContourAfter(given, here);
            model.insert(count > 0 ? model.begin() + at + 1 : model.end(), name);
        } else if (choice <= 4 && count > 0) {
            const auto removed = border.RemoveContour(here);
            EXPECT_EQ(removed->GetNextContour(), nullptr);
            model.erase(model.begin() + at);
        } else if (choice == 5 && count > 0) {
            EXPECT_EQ(border.RemoveFirstContour()->GetStatus(), model.front());
            model.erase(model.begin());
        } else if (choice == 6 && random.Integer(0, 20) == 0) {
            border.RemoveEmptyContours();
            std::erase_if(model, [](int n) { return n % 2 == 1; });
        }
        if (added != nullptr) {
            added->SetStatus(name);
            if (name % 2 == 0)
                added->InsertAtEnd(name, 0.0, nullptr);
        }
        ASSERT_EQ(Statuses(border), model) << choice;
    }
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
    EXPECT_EQ(source.GetFirstContour()->GetPool(), source.GetLastContour()->GetPool());
    source.GetLastContour()->SetIsClosed(false);
    Border copy(source);
    CountingBorder assigned;
    assigned.AddContourAtEnd();
    static_cast<Border&>(assigned) = source;
    EXPECT_EQ(assigned.created, 4);
    for (const Border* const other : {&copy, static_cast<Border*>(&assigned)}) {
        EXPECT_EQ(CheckedContours(*other), CheckedContours(source));
        EXPECT_FALSE(other->GetLastContour()->GetIsClosed());
        EXPECT_EQ(other->GetFirstContour()->GetPool(), other->GetLastContour()->GetPool());
        EXPECT_NE(other->GetFirstContour()->GetPool(), source.GetFirstContour()->GetPool());
    }
    Border& itself = copy;
    copy = itself;
    EXPECT_EQ(CheckedContours(copy), CheckedContours(source));
    Border empty;
    empty.Swap(copy);
    EXPECT_EQ(empty.GetNumPoints(), 6U);
    EXPECT_EQ(copy.GetNumContours() + copy.GetNumPoints() + copy.GetNumEdges(), 0U);
    empty.SetIndices();
    EXPECT_EQ(empty.GetLastContour()->GetFirstPoint()->index, 4U);
}

// The rules of one edge, read as they are described; the library walks over silent edges.
template <class Border>
char PlainPosition(const Border& border, double x, double y)
{
    int count = 0;
    for (const auto& contour : border) {
        for (const auto& p : contour) {
            const auto& q = *p.next;
            const auto px = static_cast<double>(p.x);
            const auto py = static_cast<double>(p.y);
            const auto qx = static_cast<double>(q.x);
            const auto qy = static_cast<double>(q.y);
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
        const auto last = static_cast<std::int32_t>(awkward.size()) - 1;
        return random.Integer(0, 3) == 0
                   ? awkward[static_cast<std::size_t>(random.Integer(0, last))]
                   : random.Integer(-3, 3);
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
            ASSERT_EQ(border.CalculatePosition(x, y), PlainPosition(border, x, y));
            if (border.GetNumContours() == 1) {
                ASSERT_EQ(border.GetFirstContour()->CalculatePositionXY(x, y),
                          PlainPosition(border, x, y));
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

// Small integers are exact, so the position follows from integer cross products.
TEST(BorderPosition, AgreesWithExactArithmetic)
{
    norvek_test::Random random(725);
    for (int scene = 0; scene < 2000; ++scene) {
        M3dBorderContour<std::int32_t, void*> ring;
        for (int points = random.Integer(1, 9); points > 0; --points)
            ring.InsertAtEnd(random.Integer(-4, 4), random.Integer(-4, 4), nullptr);
        const int x = random.Integer(-4, 4);
        const int y = random.Integer(-4, 4);
        bool touches = false;
        bool isInside = false;
        for (const auto& p : ring) {
            const auto& q = *p.next;
            const int cross = (q.x - p.x) * (y - p.y) - (q.y - p.y) * (x - p.x);
            const int dot = (x - p.x) * (x - q.x) + (y - p.y) * (y - q.y);
            touches = touches || (cross == 0 && dot <= 0);
            if ((p.y > y) != (q.y > y) && (q.y > p.y ? cross < 0 : cross > 0))
                isInside = !isInside;
        }
        ASSERT_EQ(ring.CalculatePositionXY(x, y), touches ? 0 : isInside ? 1 : 2) << scene;
    }
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
