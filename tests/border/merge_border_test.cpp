#include "border/border_support.h"

#include <norvek/border/border_algorithms.h>

#include <cmath>
#include <limits>

namespace
{

using norvek_test::Append;
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

// Both joins, and the merge that tries one contour after another, read as they are described.
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

// Scenes of few places, so that ends meet, tie and crowd.
class Scene
{
public:
    Scene(norvek_test::Random& random, int places, double jitter)
        : _random(random),
          _places(places),
          _jitter(jitter)
    {}

    Border Make(int contours)
    {
        Border border;
        for (; contours > 0; --contours) {
            // Some contours bring a pool of their own.
            Contour& contour = _random.Integer(0, 4) == 0 ? *border.AddContourAtEnd(new Contour())
                                                          : *border.AddContourAtEnd();
            contour.SetIsClosed(_random.Integer(0, 9) == 0);
            for (int points = _random.Integer(0, 9) == 0 ? 0 : _random.Integer(1, 4); points > 0;
                 --points)
                contour.InsertAtEnd(_Coordinate(), _Coordinate(), _Flat());
        }
        return border;
    }

private:
    float _Coordinate()
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        const int choice = _random.Integer(0, 60);
        if (choice < 4)
            return choice < 2 ? infinity : std::numeric_limits<float>::quiet_NaN();
        if (choice < 6)
            return choice == 4 ? 3e38F : -3e38F;
        const auto base = static_cast<double>(_random.Integer(0, _places - 1));
        return static_cast<float>(base * kScales[_random.Integer(0, 2)] +
                                  _random.Uniform(-_jitter, _jitter));
    }

    float _Flat()
    {
        return _random.Integer(0, 3) == 0 ? _Coordinate() : 0.0F;
    }

    // Beyond 65,536 neighbouring floats lie further apart than the tolerance.
    static constexpr double kScales[] = {1.0, -0.1, 65536.0};

    norvek_test::Random& _random;
    int _places;
    double _jitter;
};

TEST(MergeBorder, JoinsExactlyAsTryingOneByOneDoes)
{
    norvek_test::Random random(741);
    for (int scene = 0; scene < 4000; ++scene) {
        const double jitters[] = {0.0, 0.001, 0.004, 0.05};
        Scene maker(random, random.Integer(1, 4), jitters[random.Integer(0, 3)]);
        Border target = maker.Make(random.Integer(0, 12));
        Border source = maker.Make(random.Integer(0, 40));
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

// Rings cut into pieces, shuffled and half of them reversed: the long joins.
TEST(MergeBorder, PutsManyPiecesTogetherAsTryingOneByOneDoes)
{
    norvek_test::Random random(742);
    for (int scene = 0; scene < 20; ++scene) {
        std::vector<std::pair<int, int>> order;
        for (int i = 0; i < 400; ++i)
            order.emplace_back(random.Integer(0, 1 << 30), i);
        std::sort(order.begin(), order.end());
        Border source;
        for (const auto& [key, i] : order) {
            Contour& contour = *source.AddContourAtEnd();
            contour.SetIsClosed(false);
            for (const int step : {i, i + 1})
                contour.InsertAtEnd(
                    static_cast<float>(i / 100),
                    static_cast<float>(step == (i / 100 + 1) * 100 ? step - 100 : step), 0.0F);
            if (key % 2 == 0 && scene % 2 == 0)
                contour.Invert();
        }
        Border plainSource(source);
        Border target;
        Border plainTarget;
        MergeBorder<float, float>(target, source);
        PlainMerge(plainTarget, plainSource);
        EXPECT_EQ(Result(target), Result(plainTarget));
        if (scene % 2 == 1) {
            EXPECT_EQ(target.GetNumContours(), 4U);
            EXPECT_EQ(target.GetNumPoints(), 400U);
        }
    }
}

struct MergeCase
{
    const char* name;
    std::vector<Points> target;
    std::vector<Points> source;
    std::vector<std::pair<bool, Points>> result;
};

const MergeCase kMergeCases[] = {
    {"end to front",
     {{{0, 0, 0}, {1, 0, 0}}},
     {{{1, 0.001F, 0}, {2, 0, 0}}},
     {{false, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}}}},
    {"end to end reverses the source",
     {{{0, 0, 0}, {1, 0, 0}}},
     {{{2, 0, 0}, {1, 0.001F, 0}}},
     {{false, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}}}},
    {"in front the source's point stays",
     {{{1, 0, 0}, {2, 0, 0}}},
     {{{0, 0, 0}, {1, 0.001F, 0}}},
     {{false, {{0, 0, 0}, {1, 0.001F, 0}, {2, 0, 0}}}}},
    {"a lone piece stays open",
     {},
     {{{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}},
     {{false, {{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}}}},
    {"the last piece closes the ring",
     {{{0, 0, 0}, {1, 0, 0}}},
     {{{1, 0, 0}, {1, 1, 0}, {0, 0, 0}}},
     {{true, {{1, 0, 0}, {1, 1, 0}, {0, 0, 0}}}}},
    {"the payload keeps pieces apart",
     {{{0, 0, 0}, {1, 0, 0}}},
     {{{1, 0, 0.1F}, {2, 0, 0}}},
     {{false, {{0, 0, 0}, {1, 0, 0}}}, {false, {{1, 0, 0.1F}, {2, 0, 0}}}}},
    {"single points vanish in one another", {{{0, 0, 0}}}, {{{0, 0, 0}}}, {{true, {}}}},
};

TEST(MergeBorder, KeepsThePointsThatTheRulesKeep)
{
    for (const MergeCase& c : kMergeCases) {
        Border target;
        Border source;
        for (const auto& [border, contours] :
             {std::pair(&target, &c.target), std::pair(&source, &c.source)})
        {
            for (const Points& places : *contours) {
                Append(*border->AddContourAtEnd(), places);
                border->GetLastContour()->SetIsClosed(false);
            }
        }
        MergeBorder<float, float>(target, source);
        EXPECT_EQ(Result(target), c.result) << c.name;
        MergeBorder<float, float>(target, target);
        EXPECT_EQ(Result(target), c.result) << c.name;
    }
}

} // namespace
