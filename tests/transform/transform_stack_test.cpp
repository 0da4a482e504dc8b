#include "support/probe_transform.h"
#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/concat.h>
#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace
{

using norvek_test::Load;
using Probe = norvek_test::ProbeTransform;
using Point = MMPoint3d<double>;
using Points = std::vector<Point>;
using Ids = Probe::Ids;

MMTransformMatrix Affine(double scale, double x)
{
    return Load({scale, 0, 0, x, 0, scale, 0, 0, 0, 0, scale, 0});
}

const MMTransformMatrix kShift = Affine(1.0, 1.0);
const MMTransformMatrix kBack = Affine(1.0, -1.0);
const MMTransformMatrix kDouble = Affine(2.0, 0.0);
const MMTransformMatrix kHalf = Affine(0.5, 0.0);
const MMTransformMatrix kFlat = Load({1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 2, 0});
const MMTransformMatrix kEye = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1});

// A kind of its own, though it has the matrix of the identity.
struct Derived : MMTransformMatrix
{
    [[nodiscard]] Derived* Clone() const override
    {
        return new Derived(*this);
    }
};

template <class... Transforms>
MMTransformStack Stack(const Transforms&... transforms)
{
    MMTransformStack stack;
    (stack.PostMultiply(transforms), ...);
    return stack;
}

// One of each kind, in random order, some nested.
MMTransformStack Mixed(norvek_test::Random& random, int depth, bool hasEye)
{
    const Probe probe(1);
    MMTransformStack stack;
    for (int count = random.Integer(0, 5); count > 0; --count) {
        MMTransformMatrix turn;
        turn.MakeRotationXYZ(random.Point(1.0), 10.0 * count, 20.0, 30.0);
        const MMTransformStack nested = depth > 0 ? Mixed(random, depth - 1, hasEye) : Stack(kBack);
        const MMTransform* const kinds[] = {&turn, &kShift, &kDouble, &probe, &nested, &kEye};
        stack.PostMultiply(*kinds[random.Integer(0, hasEye ? 5 : 4)]);
    }
    return stack;
}

TEST(TransformStack, AppliesTheLastElementFirstAndInvertsTheOtherWayRound)
{
    MMTransformStack stack;
    EXPECT_TRUE(stack(Point(1, 1, 1), false) == Point(1, 1, 1) && stack.IsIdentity());
    stack.PostMultiply(kShift);
    stack.PostMultiplyUseTransformation(kDouble.Clone());
    stack.PreMultiplyUseTransformation(kDouble.Clone());
    stack.PreMultiply(kShift);
    EXPECT_TRUE(stack._Equal(Stack(kShift, kDouble, kShift, kDouble)) && !stack.IsIdentity());
    Point p(1, 1, 1);
    EXPECT_TRUE(stack(p, false) == Point(7, 4, 4) && stack(p, true) == Point(4, 4, 4));
    EXPECT_TRUE(stack.InverseTransform(p, Point(7, 4, 4), false) && p == Point(1, 1, 1));
    float matrix[16];
    EXPECT_FALSE(stack.ConvertToFloat16(matrix));

    // Before and after; the last three cannot be inverted.
    const MMTransformStack cases[][2] = {
        {Stack(), Stack()},
        {Stack(kShift, kDouble), Stack(kHalf, kBack)},
        {Stack(kShift, kDouble, kBack), Stack(kShift, kHalf, kBack)},
        {Stack(kFlat, kShift), Stack(kFlat, kShift)},
        {Stack(kShift, kFlat), Stack(kBack, kFlat)},
        {Stack(kShift, kFlat, kDouble), Stack(kHalf, kFlat, kBack)},
    };
    for (int i = 0; i < 6; ++i) {
        MMTransformStack inverted(cases[i][0]);
        EXPECT_TRUE(inverted.Invert() == (i < 3) && inverted._Equal(cases[i][1])) << i;
    }
    // Elements shared by an assignment are inverted for both, the order changes in one only.
    MMTransformStack other;
    other = stack;
    EXPECT_TRUE(stack.Invert() && stack._Equal(Stack(kHalf, kBack, kHalf, kBack)));
    EXPECT_TRUE(other._Equal(Stack(kBack, kHalf, kBack, kHalf)));
}

TEST(TransformStack, ElementsAreDestroyedOnceByTheirLastHolder)
{
    {
        MMTransformStack first = Stack(Probe(1), Probe(2), Probe(3));
        MMTransformStack second = Stack(Probe(4), Probe(5));
        Probe::destroyed.clear();
        EXPECT_TRUE(first.Invert());
        second = first;
        EXPECT_TRUE(Probe::destroyed == (Ids{4, 5}) && second._Equal(first));
        const MMTransformStack& same = second;
        second = same;
        second.SetFirst(new Probe(6));
        second.SetLast(*second.GetFirst());
        second.SetLast(*second.GetLast());
        second.SetLast(second.GetLast());
        EXPECT_TRUE(Probe::destroyed == (Ids{4, 5, 6}) && first[2] != second[2]);
        first.MakeIdentity();
        EXPECT_EQ(Probe::destroyed, (Ids{4, 5, 6, 3, 1}));
        second.SetFirst(second[1]);
        second.PreMultiplyUseTransformation(second[1]);
        EXPECT_TRUE(second[0] == second[2] && second[1] == second[2] && Probe::live == 2);
    }
    EXPECT_EQ(Probe::destroyed, (Ids{4, 5, 6, 3, 1, 6, 2, 6}));
}

TEST(TransformStack, AddsItselfAndStacksThatHoldIt)
{
    {
        MMTransformStack stack = Stack(Probe(1), Probe(2));
        stack.PostAddStackTakeOverTransformations(stack);
        stack.PostAddStack(stack);
        MMTransformStack donor = Stack(Probe(3));
        stack.PostAddStackTakeOverTransformations(donor);
        EXPECT_TRUE(stack.GetNrTransforms() == 5 && donor._GetTransforms().empty());

        MMTransformStack outer = Stack(Probe(7));
        outer.PreMultiplyUseTransformation(new MMTransformStack(Stack(Probe(8))));
        auto& inner = static_cast<MMTransformStack&>(*outer.GetFirst());
        inner.PostAddStackTakeOverTransformations(outer);
        inner = outer;
        EXPECT_TRUE(inner[0] != &inner && inner[1] == outer[1]);
        EXPECT_EQ(outer(Point(), false), Point(7, 8, 7));
        outer = inner;
        EXPECT_EQ(outer(Point(), false), Point(7, 8, 0));

        // Clones that throw change nothing and leave nothing.
        const auto transforms = stack._GetTransforms();
        const int before = Probe::live;
        Probe::clonesLeft = 2;
        EXPECT_THROW(stack.PostAddStack(stack), Ids);
        EXPECT_THROW(stack.PreMultiply(stack), Ids);
        EXPECT_THROW(static_cast<MMTransformStack&>(*outer.GetFirst()) = outer, Ids);
        EXPECT_THROW(static_cast<void>(Concat(stack, outer)), Ids);
        EXPECT_TRUE(stack._GetTransforms() == transforms && Probe::live == before);
        Probe::clonesLeft = 1000000;
    }
    EXPECT_EQ(Probe::live, 0);
    MMTransformStack many = Stack(kShift);
    for (int i = 0; i < 16; ++i)
        many.PostAddStack(many);
    EXPECT_TRUE(many.GetNrTransforms() == 0 && many(Point(), false).x == 65536.0);
}

// A class of its own has the vector forms of the base, point by point.
struct OneByOne : MMTransformStack
{
    explicit OneByOne(const MMTransformStack& stack) : MMTransformStack(stack)
    {}
};

// What a vector form returns, 2 when it throws: into other points, into its own, in place.
int Apply(const MMTransformStack& stack, int form, Points& points, const Points& in)
{
    try {
        return form == 2 ? stack.Transform(points)
                         : stack.Transform(points, form == 0 ? in : points);
    } catch (...) {
        return 2;
    }
}

TEST(TransformStack, VectorsGetTheBitsAndTheFailuresOfSinglePoints)
{
    norvek_test::Random random(512);
    int seen[3] = {};
    for (int round = 0; round < 1800; ++round) {
        const MMTransformStack stack = Mixed(random, 2, true);
        const std::size_t sizes[] = {0, 1, 511, 512, 513, 1300};
        Points in(sizes[round % 6]);
        std::generate(in.begin(), in.end(), [&] { return random.Point(10.0); });
        // Fails or throws in a probe, or is at infinity for the eye.
        const double bad[] = {13.0, 17.0, -1.0};
        if (!in.empty())
            in[in.size() * 2 / 3] = Point(1, 1, 1) * bad[random.Integer(0, 2)];
        const int form = round / 6 % 3;
        Points points = form == 0 ? Points(2, {7, 7, 7}) : in;
        Points expected = points;
        const int verdict = Apply(OneByOne(stack), form, expected, in);
        EXPECT_EQ(Apply(stack, form, points, in), verdict);
        EXPECT_EQ(points, expected);
        ++seen[verdict];
    }
    for (const int count : seen)
        EXPECT_GT(count, 40);
    // What a failure leaves is the point half-way.
    Point p(12, 1, 1);
    EXPECT_FALSE(Stack(Probe(1), kShift).Transform(p, false) || p != Point(13, 1, 1));
}

TEST(TransformStack, EqualityComparesKindByKind)
{
    const MMTransformIdentity identity;
    const Probe probe(1);
    const MMTransformStack one = Stack(kShift);
    const MMTransformMatrix near = Affine(1.0, 1.000001);
    const MMTransformMatrix far = Affine(1.0, 1.000002);
    EXPECT_TRUE(AreEqual(kShift, near) && AreEqual(identity, MMTransformMatrix()) &&
                AreEqual(MMTransformMatrix(), identity) && AreEqual(probe, probe) &&
                AreEqual(Stack(one, one), Stack(one, Stack(near))));
    EXPECT_FALSE(AreEqual(kShift, far) || AreEqual(identity, kShift) ||
                 AreEqual(identity, Derived()) || AreEqual(probe, Probe(probe)) ||
                 AreEqual(probe, identity) || AreEqual(kShift, probe) || AreEqual(one, kShift) ||
                 AreEqual(Stack(), identity) || AreEqual(one, Stack(far)) ||
                 AreEqual(Affine(1.0, NAN), Affine(1.0, NAN)) || AreEqual(Stack(one, one), one));
}

TEST(Concat, MultipliesNeighbouringMatricesAndKeepsTheRest)
{
    const Probe probe(1);
    // The pieces that come out, 0 for a single matrix.
    const auto pieces = [](const auto& a, const auto& b) {
        const std::unique_ptr<MMTransform> result(Concat(a, b));
        const auto* const stack = dynamic_cast<MMTransformStack*>(result.get());
        return stack != nullptr ? stack->GetNrTransforms() : 0;
    };
    EXPECT_EQ(pieces(Stack(), MMTransformIdentity()), 0);
    EXPECT_EQ(pieces(Stack(kShift, kEye), Stack(kShift, Stack(kFlat))), 0);
    EXPECT_EQ(pieces(Stack(kHalf, kShift, kBack), Stack(kDouble, probe)), 1);
    EXPECT_EQ(pieces(Stack(kShift, probe), Stack(kDouble, kShift)), 3);
    EXPECT_EQ(pieces(Derived(), kDouble), 2);
    MMTransformStack one;
    MMTransform* created = &one;
    EXPECT_TRUE(Concat({&one}, &created) == &one && created == nullptr);
    const std::unique_ptr<MMTransform> both(Concat({&one, &one}, &created));
    EXPECT_EQ(both.get(), created);
}

TEST(Concat, MapsAsTheChainDoesForwardAndBack)
{
    norvek_test::Random random(34);
    for (int round = 0; round < 2000; ++round) {
        // Only positions where one is projective: directions follow the product's columns there.
        const bool isDirection = round % 2 == 0;
        const MMTransformStack a = Mixed(random, 1, !isDirection);
        MMTransformStack b = Mixed(random, 1, !isDirection);
        // One factor without an inverse is enough.
        const bool isSingular = round % 9 == 0;
        if (isSingular)
            b.PreMultiply(kFlat);
        const MMTransformStack chain = Stack(a, b);
        const std::unique_ptr<MMTransform> result(Concat(a, b));
        const Point in = random.Point(2.0);
        Point expected;
        Point actual;
        EXPECT_TRUE(chain.Transform(expected, in, isDirection));
        EXPECT_TRUE(result->Transform(actual, in, isDirection));
        EXPECT_LE((actual - expected).Length(), 1e-9 * (1.0 + expected.Length()));
        ASSERT_EQ(result->InverseTransform(actual, in, isDirection), !isSingular);
        if (!chain.InverseTransform(expected, in, isDirection))
            continue;
        EXPECT_LE((actual - expected).Length(), 1e-9 * (1.0 + expected.Length()));
    }
}

} // namespace
