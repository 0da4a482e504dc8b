#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

namespace
{

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;

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
        const auto back =
            std::ranges::find_if(target, [&](Contour& t) { return JoinEnd(t, *piece); });
        Contour* const c = back != target.end() ? &*back : piece.get();
        const auto front =
            std::ranges::find_if(target, [&](Contour& u) { return JoinFront(u, *c) && &u != c; });
        if (front != target.end() && c != piece.get())
            target.RemoveContour(c);
        else if (front == target.end() && c == piece.get())
            target.AddContourAtEnd(piece.release());
    }
}

// As text, since NaN does not equal itself.
std::string Text(const Border& border)
{
    norvek_test::CheckedContours(border);
    std::ostringstream text;
    text.precision(9);
    for (const Contour& contour : border) {
        text << contour.GetIsClosed() << ':';
        for (const auto& point : contour)
            text << ' ' << point.x << '/' << point.y << '/' << point.payload;
        text << '\n';
    }
    return text.str();
}

// Coordinates from few places, so that ends meet, tie and crowd. Odd multiples of eight tolerances
// part the cells of the search; from 65,536 on neighbouring floats lie further apart than one.
float Coordinate(norvek_test::Random& random, int places, double jitter)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float rare[] = {infinity, -infinity, std::nanf(""), 3e38F, -3e38F};
    constexpr double scales[] = {1.0, -0.1, 65536.0, 8.0 * 0.003452669770922512};
    const int choice = random.Integer(0, 80);
    if (choice < 5)
        return rare[choice];
    const double base = random.Integer(0, places - 1) * scales[choice % 4];
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
        MergeBorder<float, float>(target, target);
        PlainMerge(plainTarget, plainSource);
        ASSERT_EQ(source.GetNumContours(), 0U);
        ASSERT_EQ(Text(target), Text(plainTarget)) << scene;
    }
}

} // namespace
