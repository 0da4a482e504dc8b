#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

using norvek_test::CheckedContours;

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;
using Points = std::vector<norvek_test::Place<Contour>>;

bool Meet(const Contour::PointType& a, const Contour::PointType& b)
{
    const auto near = [](float p, float q) {
        return static_cast<double>(std::abs(p - q)) < 0.003452669770922512;
    };
    return near(a.x, b.x) && near(a.y, b.y) && near(a.payload, b.payload);
}

bool AreOpen(const Contour& a, const Contour& b)
{
    return !a.GetIsClosed() && !b.GetIsClosed() && a.GetNumPoints() > 0 && b.GetNumPoints() > 0;
}

const Contour::PointType& Last(Contour& contour)
{
    return *contour.GetFirstPoint()->previous;
}

// Both joins, and the merge that tries one contour after another, step by step as documented.
bool JoinEnd(Contour& t, Contour& c)
{
    if (!AreOpen(t, c))
        return false;
    if (!Meet(*c.GetFirstPoint(), Last(t))) {
        if (!Meet(Last(c), Last(t)))
            return false;
        c.Invert();
    }
    c.RemovePoint(c.GetFirstPoint());
    t.InsertAtEnd(c);
    return true;
}

bool JoinFront(Contour& t, Contour& c)
{
    if (!AreOpen(t, c))
        return false;
    if (!Meet(Last(c), *t.GetFirstPoint())) {
        if (&c == &t || !Meet(*c.GetFirstPoint(), *t.GetFirstPoint()))
            return false;
        c.Invert();
    }
    t.RemovePoint(t.GetFirstPoint());
    if (&c == &t)
        t.SetIsClosed(true);
    else
        t.InsertAtFront(c);
    return true;
}

void PlainMerge(Border& target, Border& source)
{
    while (std::unique_ptr<Contour> piece = source.RemoveFirstContour()) {
        Contour* c = piece.get();
        bool isJoined = false;
        for (Contour& t : target) {
            if (JoinEnd(t, *c)) {
                c = &t;
                isJoined = true;
                break;
            }
        }
        const bool isInTarget = isJoined;
        for (Contour& u : target) {
            if (JoinFront(u, *c) && &u != c) {
                if (isInTarget)
                    target.RemoveContour(c);
                isJoined = true;
                break;
            }
        }
        if (!isJoined)
            target.AddContourAtEnd(piece.release());
    }
}

std::vector<std::pair<bool, Points>> Result(const Border& border)
{
    const auto contours = CheckedContours(border);
    std::vector<std::pair<bool, Points>> result;
    for (const Contour& contour : border)
        result.emplace_back(contour.GetIsClosed(), contours[result.size()]);
    return result;
}

// Coordinates from few places, so that ends meet, tie and crowd; beyond 65,536 neighbouring floats
// lie further apart than the tolerance.
float Coordinate(norvek_test::Random& random, int places, double jitter)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float rare[] = {infinity, -infinity, std::nanf(""), 3e38F, -3e38F};
    constexpr double scales[] = {1.0, -0.1, 65536.0};
    const int choice = random.Integer(0, 80);
    if (choice < 5)
        return rare[choice];
    const double base = random.Integer(0, places - 1) * scales[choice % 3];
    return static_cast<float>(base + random.Uniform(-jitter, jitter));
}

Border Scene(norvek_test::Random& random, int places, double jitter, int contours)
{
    Border border;
    for (; contours > 0; --contours) {
        // Some contours bring a pool of their own, some are closed, some empty.
        Contour& contour = random.Integer(0, 4) == 0 ? *border.AddContourAtEnd(new Contour())
                                                     : *border.AddContourAtEnd();
        contour.SetIsClosed(random.Integer(0, 9) == 0);
        for (int points = std::max(0, random.Integer(-1, 4)); points > 0; --points)
            contour.InsertAtEnd(
                Coordinate(random, places, jitter), Coordinate(random, places, jitter),
                random.Integer(0, 3) == 0 ? Coordinate(random, places, jitter) : 0.0F);
    }
    return border;
}

TEST(MergeBorder, JoinsExactlyAsTryingOneByOneDoes)
{
    norvek_test::Random random(741);
    for (int scene = 0; scene < 2500; ++scene) {
        const double jitter = scene % 2 * 0.001 + scene % 3 * 0.003;
        // Every hundredth scene is a large one of many places, in which long chains grow.
        const bool isLarge = scene % 100 == 9;
        const int places = isLarge ? 40 : random.Integer(1, 4);
        Border target = Scene(random, places, jitter, random.Integer(0, 12));
        Border source = Scene(random, places, jitter, isLarge ? 600 : random.Integer(0, 40));
        Border plainTarget(target);
        Border plainSource(source);
        MergeBorder<float, float>(target, source);
        PlainMerge(plainTarget, plainSource);
        ASSERT_EQ(source.GetNumContours(), 0U);
        // As text, since NaN does not equal itself.
        ASSERT_EQ(::testing::PrintToString(Result(target)),
                  ::testing::PrintToString(Result(plainTarget)))
            << scene;
    }
}

TEST(MergeBorder, KeepsThePointsThatTheRulesKeep)
{
    using Row = std::vector<float>;
    struct Case
    {
        Row target;
        Row source;
        std::vector<std::pair<bool, Row>> result;
    };
    // Contours along the x axis.
    const Case cases[] = {
        {{0, 1}, {1.001F, 2}, {{false, {0, 1, 2}}}},
        {{0, 1}, {2, 1.001F}, {{false, {0, 1, 2}}}},
        // In front the source's point stays.
        {{1, 2}, {0, 1.001F}, {{false, {0, 1.001F, 2}}}},
        {{1, 2}, {1.001F, 0}, {{false, {0, 1.001F, 2}}}},
        // A lone piece stays open; the last piece closes the ring.
        {{5, 6}, {0, 1, 0}, {{false, {5, 6}}, {false, {0, 1, 0}}}},
        {{0, 1}, {1, 2, 0}, {{true, {1, 2, 0}}}},
        // Single points vanish in one another.
        {{0}, {0}, {{true, {}}}},
        {{0, 1}, {1.0035F, 2}, {{false, {0, 1}}, {false, {1.0035F, 2}}}},
    };
    for (const Case& c : cases) {
        Border target;
        Border source;
        const auto add = [](Border& border, const Row& row) {
            border.AddContourAtEnd()->SetIsClosed(false);
            for (const float x : row)
                border.GetLastContour()->InsertAtEnd(x, 0.0F, 0.0F);
        };
        add(target, c.target);
        add(source, c.source);
        MergeBorder<float, float>(target, source);
        MergeBorder<float, float>(target, target);
        std::vector<std::pair<bool, Row>> result;
        for (const auto& [isClosed, places] : Result(target)) {
            result.emplace_back(isClosed, Row());
            for (const auto& place : places)
                result.back().second.push_back(std::get<0>(place));
        }
        EXPECT_EQ(result, c.result);
    }
}

} // namespace
