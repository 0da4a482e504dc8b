#include "support/probe_transform.h"
#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <bit>
#include <optional>

namespace
{

using norvek_test::Distance;
using norvek_test::Load;
using norvek_test::Probe;
using norvek_test::ProbeLog;
using Point = MMPoint3d<double>;
using Points = std::vector<Point>;
using Ids = std::vector<int>;

const MMTransformMatrix kShift = Load({1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0});
const MMTransformMatrix kDouble = Load({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0});
const MMTransformMatrix kSingular = Load({0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0});

MMTransformMatrix Random(norvek_test::Random& random)
{
    MMTransformMatrix matrix;
    matrix.MakeTransformation(random.Point(1.0), random.Point(2.0), random.Point(2.0),
                              random.Point(2.0));
    return matrix;
}

MMTransformMatrix Inverse(MMTransformMatrix matrix)
{
    matrix.Invert();
    return matrix;
}

MMTransformStack Stack(const std::vector<MMTransformMatrix>& matrices)
{
    MMTransformStack stack;
    for (const MMTransformMatrix& matrix : matrices)
        stack.PostMultiply(matrix);
    return stack;
}

// A stack of probes with the given numbers.
MMTransformStack Probes(ProbeLog& log, const Ids& ids)
{
    MMTransformStack stack;
    for (const int id : ids)
        stack.PostMultiplyUseTransformation(new Probe(log, id));
    return stack;
}

TEST(TransformStack, AppliesTheLastElementFirstAndInvertsTheOtherWayRound)
{
    MMTransformStack stack;
    Point p(1, 1, 1);
    EXPECT_TRUE(stack.Transform(p, false) && p == Point(1, 1, 1) && stack.IsIdentity());
    stack.PostMultiply(kShift);
    stack.PostMultiply(kDouble);
    EXPECT_EQ(stack(p, false), Point(3, 2, 2));
    EXPECT_EQ(stack(p, true), Point(2, 2, 2));
    stack.PreMultiply(kDouble);
    stack.PostMultiplyUseTransformation(kShift.Clone());
    stack.PreMultiplyUseTransformation(new MMTransformIdentity);
    EXPECT_EQ(stack(p, false), Point(10, 4, 4));
    EXPECT_TRUE(stack.InverseTransform(p, Point(10, 4, 4), false) && p == Point(1, 1, 1));
    EXPECT_TRUE(stack.GetNrTransforms() == 5 && !stack.IsIdentity() && stack[4]->Transform(p, 0));
    float matrix[16];
    EXPECT_FALSE(stack.ConvertToFloat16(matrix));

    norvek_test::Random random(2026);
    for (int n = 0; n <= 5; ++n) {
        std::vector<MMTransformMatrix> matrices;
        std::vector<MMTransformMatrix> inverses;
        for (int i = 0; i < n; ++i) {
            matrices.push_back(Random(random));
            inverses.insert(inverses.begin(), Inverse(matrices.back()));
        }
        const MMTransformStack forward = Stack(matrices);
        MMTransformStack backward(forward);
        EXPECT_TRUE(backward.Invert() && backward._Equal(Stack(inverses)));
        const Point from = random.Point(3.0);
        Point there;
        Point andBack;
        EXPECT_TRUE(forward.Transform(there, from, false) &&
                    backward.InverseTransform(andBack, from, false) && andBack == there);
        EXPECT_TRUE(backward.Transform(andBack, there, false));
        EXPECT_LT(Distance(andBack, from), 1e-9);
    }
}

TEST(TransformStack, InversionStopsHalfWay)
{
    MMTransformMatrix turn;
    turn.MakeRotationXYZ(10, 20, 30);
    struct Case
    {
        std::vector<MMTransformMatrix> before;
        std::vector<MMTransformMatrix> after;
    };
    const Case cases[] = {
        {{kSingular}, {kSingular}},
        {{kSingular, kShift}, {kSingular, kShift}},
        {{kShift, kSingular}, {Inverse(kShift), kSingular}},
        {{kShift, kSingular, turn}, {Inverse(turn), kSingular, Inverse(kShift)}},
        {{kShift, turn, kSingular, kDouble},
         {Inverse(kDouble), Inverse(turn), kSingular, Inverse(kShift)}},
    };
    for (const Case& c : cases) {
        MMTransformStack stack = Stack(c.before);
        EXPECT_FALSE(stack.Invert());
        EXPECT_TRUE(stack._Equal(Stack(c.after)));
    }
    // Elements shared by an assignment are inverted for both, the order changes in one only.
    MMTransformStack stack = Stack({kShift, kDouble});
    MMTransformStack other;
    other = stack;
    EXPECT_TRUE(stack.Invert() && stack._Equal(Stack({Inverse(kDouble), Inverse(kShift)})));
    EXPECT_TRUE(other._Equal(Stack({Inverse(kShift), Inverse(kDouble)})));
}

TEST(TransformStack, SharedElementsAreDestroyedOnceByTheirLastHolder)
{
    ProbeLog log;
    {
        MMTransformStack first = Probes(log, {1, 2, 3});
        MMTransformStack second = Probes(log, {4, 5});
        second = first;
        EXPECT_EQ(log.destroyed, (Ids{4, 5}));
        EXPECT_EQ(second._GetTransforms(), first._GetTransforms());
        const MMTransformStack& same = second;
        second = same;
        second.SetFirst(new Probe(log, 6));
        second.SetLast(*second.GetFirst());
        second.SetLast(*second.GetLast());
        second.SetLast(second.GetLast());
        EXPECT_EQ(log.destroyed, (Ids{4, 5, 6}));
        Point p;
        EXPECT_TRUE(first.Transform(p, false) && first[2] != second[2] && first[1] == second[1]);
        first.MakeIdentity();
        EXPECT_EQ(log.destroyed, (Ids{4, 5, 6, 1, 3}));
        second.SetFirst(second[1]);
        EXPECT_TRUE(second[0] == second[1] && log.live == 2);
        second.PreMultiplyUseTransformation(second.GetLast());
        EXPECT_TRUE(second[0] == second[3] && log.live == 2);
        log.destroyed.clear();
    }
    EXPECT_EQ(log.destroyed, (Ids{2, 6}));
}

TEST(TransformStack, AddsItselfAndStacksThatHoldEachOther)
{
    ProbeLog log;
    {
        MMTransformStack stack = Probes(log, {1, 2});
        stack.PostAddStackTakeOverTransformations(stack);
        EXPECT_TRUE(stack.GetNrTransforms() == 2 && log.live == 2);
        stack.PostAddStack(stack);
        EXPECT_TRUE(stack.GetNrTransforms() == 4 && log.live == 4);

        MMTransformStack donor = Probes(log, {3});
        stack.PostAddStackTakeOverTransformations(donor);
        EXPECT_TRUE(donor._GetTransforms().empty() && stack.GetNrTransforms() == 5);

        // An element that is assigned the stack around it gets a clone of itself.
        MMTransformStack outer = Probes(log, {7});
        outer.PreMultiplyUseTransformation(new MMTransformStack(Probes(log, {8})));
        auto& inner = static_cast<MMTransformStack&>(*outer.GetFirst());
        inner.PostAddStackTakeOverTransformations(outer);
        EXPECT_EQ(outer.GetNrTransforms(), 2);
        inner = outer;
        EXPECT_TRUE(inner[0] != &inner && inner[1] == outer[1]);
        EXPECT_EQ(outer(Point(0, 0, 0), false), Point(7, 8, 7));
        // And a stack takes the place of the stack around it.
        outer = inner;
        EXPECT_EQ(outer(Point(0, 0, 0), false), Point(7, 8, 0));
    }
    EXPECT_EQ(log.live, 0);

    MMTransformStack many;
    many.PostMultiply(MMTransformIdentity());
    for (int i = 0; i < 16; ++i)
        many.PostAddStack(many);
    many.PostMultiply(kShift);
    EXPECT_TRUE(many.GetNrTransforms() == 1 && many(Point(), false).x == 1.0);
}

TEST(TransformStack, ThrowingClonesChangeNothing)
{
    ProbeLog log;
    {
        MMTransformStack stack = Probes(log, {1, 2, 3});
        MMTransformStack outer = Probes(log, {4});
        outer.PostMultiplyUseTransformation(new MMTransformStack(Probes(log, {5})));
        const auto before = stack._GetTransforms();
        log.clonesLeft = 2;
        EXPECT_THROW(stack.PostAddStack(stack), std::runtime_error);
        log.clonesLeft = 2;
        EXPECT_THROW(static_cast<void>(stack.Clone()), std::runtime_error);
        EXPECT_THROW(stack.SetFirst(*stack.GetLast()), std::runtime_error);
        EXPECT_THROW(stack.PreMultiply(*stack.GetLast()), std::runtime_error);
        EXPECT_THROW(static_cast<MMTransformStack&>(*outer.GetLast()) = outer, std::runtime_error);
        EXPECT_TRUE(stack._GetTransforms() == before && log.live == 5);
    }
    EXPECT_EQ(log.live, 0);
}

// One of each kind, some nested. Projective matrices throw in the plane z = 3.
MMTransformStack Mixed(norvek_test::Random& random, ProbeLog& log, int depth)
{
    MMTransformStack stack;
    for (int count = random.Integer(0, 4); count > 0; --count) {
        const int kind = random.Integer(0, depth > 0 ? 4 : 3);
        if (kind == 0)
            stack.PostMultiplyUseTransformation(new Probe(log, random.Integer(0, 5)));
        else if (kind == 1)
            stack.PreMultiply(Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, -3}));
        else if (kind == 4)
            stack.PostMultiply(Mixed(random, log, depth - 1));
        else
            stack.PostMultiply(kind == 2 ? Random(random) : kShift);
    }
    return stack;
}

std::vector<std::uint64_t> Bits(const Points& points)
{
    std::vector<std::uint64_t> bits;
    for (const Point& p : points)
        for (const double c : {p.x, p.y, p.z})
            bits.push_back(std::bit_cast<std::uint64_t>(c));
    return bits;
}

// Runs a vector form; its verdict, or nothing when it throws.
template <class Form>
std::optional<bool> Verdict(Form form)
{
    try {
        return form();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

TEST(TransformStack, VectorsGetTheBitsAndTheFailuresOfSinglePoints)
{
    norvek_test::Random random(512);
    ProbeLog log;
    MMTransformStack halfWay = Probes(log, {1});
    halfWay.PostMultiply(kShift);
    Point p(12, 1, 1);
    EXPECT_FALSE(halfWay.Transform(p, false) || p != Point(13, 1, 1));

    int outcomes[3] = {};
    for (int round = 0; round < 600; ++round) {
        const MMTransformStack stack = Mixed(random, log, 2);
        const int sizes[] = {0, 1, 511, 512, 513, 1300};
        Points in(static_cast<std::size_t>(sizes[round % 6]));
        for (Point& point : in)
            point = random.Point(10.0);
        // Now and then a point that fails, throws, or goes to infinity.
        for (int bad = random.Integer(0, 3); bad > 0 && !in.empty(); --bad) {
            const double values[] = {13.0, 17.0, 3.0};
            const double value = values[random.Integer(0, 2)];
            in[static_cast<std::size_t>(random.Integer(0, sizes[round % 6] - 1))] = {value, value,
                                                                                     value};
        }
        Points blocks = {{7, 7, 7}, {8, 8, 8}};
        Points single = blocks;
        const auto verdict = Verdict([&] { return stack.Transform(blocks, in); });
        EXPECT_EQ(verdict, Verdict([&] { return stack.MMTransform::Transform(single, in); }));
        EXPECT_EQ(Bits(blocks), Bits(single));
        ++outcomes[verdict.has_value() ? int{*verdict} : 2];
        // In place, with either form.
        blocks = single = in;
        EXPECT_EQ(Verdict([&] { return stack.Transform(blocks); }),
                  Verdict([&] { return stack.MMTransform::Transform(single); }));
        EXPECT_EQ(Bits(blocks), Bits(single));
        blocks = single = in;
        EXPECT_EQ(Verdict([&] { return stack.Transform(blocks, blocks); }),
                  Verdict([&] { return stack.MMTransform::Transform(single, single); }));
        EXPECT_EQ(Bits(blocks), Bits(single));
    }
    for (const int outcome : outcomes)
        EXPECT_GT(outcome, 30);
}

// Maps otherwise than the identity that it derives from.
class Mirror : public MMTransformIdentity
{
protected:
    bool _Transform(Point& out, const Point& in, bool /*isDirection*/) const override
    {
        out = -in;
        return true;
    }
};

TEST(TransformStack, EqualityComparesKindByKind)
{
    const MMTransformIdentity identity;
    const MMTransformMatrix unit;
    const MMTransformMatrix near = Load({1, 0, 0, 1.000001, 0, 1, 0, 0, 0, 0, 1, 0});
    const MMTransformMatrix off = Load({1, 0, 0, 1.000002, 0, 1, 0, 0, 0, 0, 1, 0});
    const MMTransformMatrix nan = Load({1, 0, 0, NAN, 0, 1, 0, 0, 0, 0, 1, 0});
    ProbeLog log;
    const Probe probe(log, 1);
    const Probe twin(probe);
    const Mirror mirror;
    const MMTransformStack empty;
    const MMTransformStack one = Stack({kShift});
    MMTransformStack nested = Stack({near});
    MMTransformStack nestedToo;
    nestedToo.PostMultiply(one);
    nested.PreMultiply(nested);
    nested.SetLast(Stack({}));
    nestedToo.PostMultiply(empty);
    MMTransformStack shared = Probes(log, {1});
    MMTransformStack copy(shared);
    MMTransformStack sharing;
    sharing = shared;
    const struct
    {
        const MMTransform& a;
        const MMTransform& b;
        bool equal;
    } cases[] = {
        {kShift, near, true},      {kShift, off, false},       {nan, nan, false},
        {identity, unit, true},    {identity, identity, true}, {identity, kShift, false},
        {probe, probe, true},      {probe, twin, false},       {probe, identity, false},
        {mirror, Mirror(), true},  {mirror, identity, false},  {mirror, unit, false},
        {empty, empty, true},      {empty, identity, false},   {one, kShift, false},
        {one, empty, false},       {one, Stack({near}), true}, {one, Stack({off}), false},
        {nested, nestedToo, true}, {nested, one, false},       {shared, sharing, true},
        {shared, copy, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(AreEqual(c.a, c.b), c.equal) << &c - cases;
        EXPECT_EQ(AreEqual(c.b, c.a), c.equal) << &c - cases;
    }
}

} // namespace
