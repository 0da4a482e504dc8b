#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/concat.h>
#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_exception.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{

using norvek_test::Load;
using Point = MMPoint3d<double>;
using Points = std::vector<Point>;
using Ids = std::vector<int>;
using List = std::vector<MMTransform*>;

const MMTransformMatrix kShift = Load({1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0});
const MMTransformMatrix kBack = Load({1, 0, 0, -1, 0, 1, 0, 0, 0, 0, 1, 0});
const MMTransformMatrix kDouble = Load({2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0});
const MMTransformMatrix kHalf = Load({0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0});
const MMTransformMatrix kFlat = Load({1, 1, 0, 0, 1, 1, 0, 0, 0, 0, 2, 0});
const MMTransformMatrix kEye = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1});

// The destroyed probes, those alive, and how often they can still be cloned.
Ids destroyed;
int live = 0;
int clonesLeft = 1000000;

// Has no matrix, and maps otherwise than the identity from which it derives:
// (x, y, z) becomes (y, z + id, x). Fails for x = 13, throws for x = 17.
struct Probe : MMTransformIdentity
{
    explicit Probe(int id) : _id(id)
    {
        ++live;
    }
    Probe(const Probe& other) : Probe(other._id)
    {}
    ~Probe() override
    {
        --live;
        destroyed.push_back(_id);
    }
    [[nodiscard]] Probe* Clone() const override
    {
        return --clonesLeft < 0 ? throw Ids() : new Probe(*this);
    }
    bool ConvertToDouble16(double* /*matrix*/) const override
    {
        return false;
    }
    bool _Transform(Point& out, const Point& in, bool /*isDirection*/) const override
    {
        if (in.x != 13.0)
            out = in.x == 17.0 ? throw Ids() : Point(in.y, in.z + _id, in.x);
        return in.x != 13.0;
    }
    int _id;
};

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
MMTransformStack Mixed(norvek_test::Random& random, int depth)
{
    const Probe probe(1);
    MMTransformStack stack;
    for (int count = random.Integer(0, 5); count > 0; --count) {
        MMTransformMatrix turn;
        turn.MakeRotationXYZ(random.Point(1.0), 10.0 * count, 20.0, 30.0);
        const MMTransformStack nested = depth > 0 ? Mixed(random, depth - 1) : Stack(kBack);
        const MMTransform* const kinds[] = {&turn, &kShift, &kDouble, &kEye, &probe, &nested};
        stack.PostMultiply(*kinds[random.Integer(0, 5)]);
    }
    return stack;
}

TEST(TransformStack, AppliesTheLastElementFirstAndInvertsTheOtherWayRound)
{
    MMTransformStack stack;
    Point p(1, 1, 1);
    EXPECT_TRUE(stack.Transform(p, false) && p == Point(1, 1, 1) && stack.IsIdentity());
    EXPECT_TRUE(Stack(stack, MMTransformMatrix()).IsIdentity());
    stack.PostMultiply(kShift);
    stack.PostMultiplyUseTransformation(kDouble.Clone());
    EXPECT_TRUE(stack(p, false) == Point(3, 2, 2) && stack(p, true) == Point(2, 2, 2));
    stack.PreMultiplyUseTransformation(kDouble.Clone());
    stack.PreMultiply(kShift);
    EXPECT_TRUE(stack(p, false) == Point(7, 4, 4) && !stack.IsIdentity() && stack[2] != nullptr);
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
    // Elements shared by an assignment are inverted for both, the order changes
    // in one only.
    MMTransformStack other;
    other = stack;
    EXPECT_TRUE(stack.Invert() && stack._Equal(Stack(kHalf, kBack, kHalf, kBack)) &&
                other._Equal(Stack(kBack, kHalf, kBack, kHalf)));
}

TEST(TransformStack, ElementsAreDestroyedOnceByTheirLastHolder)
{
    {
        MMTransformStack first = Stack(Probe(1), Probe(2), Probe(3));
        MMTransformStack second = Stack(Probe(4), Probe(5));
        destroyed.clear();
        EXPECT_TRUE(first.Invert());
        second = first;
        EXPECT_TRUE(destroyed == (Ids{4, 5}) && second._Equal(first));
        const MMTransformStack& same = second;
        second = same;
        second.SetFirst(new Probe(6));
        second.SetLast(*second.GetFirst());
        second.SetLast(*second.GetLast());
        second.SetLast(second.GetLast());
        EXPECT_TRUE(destroyed == (Ids{4, 5, 6}) && first[2] != second[2]);
        first.MakeIdentity();
        EXPECT_EQ(destroyed, (Ids{4, 5, 6, 3, 1}));
        second.SetFirst(second[1]);
        second.PreMultiplyUseTransformation(second[1]);
        EXPECT_TRUE(second[0] == second[2] && second[1] == second[2] && live == 2);
    }
    EXPECT_EQ(destroyed, (Ids{4, 5, 6, 3, 1, 6, 2, 6}));
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
        const int before = live;
        clonesLeft = 2;
        EXPECT_THROW(stack.PostAddStack(stack), Ids);
        EXPECT_THROW(stack.PreMultiply(stack), Ids);
        EXPECT_THROW(static_cast<MMTransformStack&>(*outer.GetFirst()) = outer, Ids);
        EXPECT_THROW(static_cast<void>(Concat(stack, outer)), Ids);
        EXPECT_TRUE(stack._GetTransforms() == transforms && live == before);
        clonesLeft = 1000000;
    }
    EXPECT_EQ(live, 0);

    MMTransformStack many = Stack(kShift);
    for (int i = 0; i < 16; ++i)
        many.PostAddStack(many);
    EXPECT_TRUE(many.GetNrTransforms() == 0 && many(Point(), false).x == 65536.0);
}

// What a vector form returns, 2 when it throws: into other points, into its
// own, in place. With `base` it is the loop of the base.
int Apply(const MMTransformStack& stack, int form, bool base, Points& points, const Points& in)
{
    const Points& from = form == 0 ? in : points;
    try {
        if (form == 2)
            return base ? stack.MMTransform::Transform(points) : stack.Transform(points);
        return base ? stack.MMTransform::Transform(points, from) : stack.Transform(points, from);
    } catch (...) {
        return 2;
    }
}

TEST(TransformStack, VectorsGetTheBitsAndTheFailuresOfSinglePoints)
{
    norvek_test::Random random(512);
    int seen[3] = {};
    for (int round = 0; round < 600; ++round) {
        const MMTransformStack stack = Mixed(random, 2);
        const int sizes[] = {0, 1, 511, 512, 513, 1300};
        Points in(static_cast<std::size_t>(sizes[round % 6]));
        for (Point& point : in)
            point = random.Point(10.0);
        // Fails or throws in a probe, or is at infinity for the eye.
        const double bad[] = {13.0, 17.0, -1.0};
        if (!in.empty())
            in[in.size() * 2 / 3] = Point(1, 1, 1) * bad[random.Integer(0, 2)];
        for (int form = 0; form < 3; ++form) {
            Points points = form == 0 ? Points(2, {7, 7, 7}) : in;
            Points expected = points;
            const int verdict = Apply(stack, form, true, expected, in);
            EXPECT_EQ(Apply(stack, form, false, points, in), verdict);
            EXPECT_EQ(points, expected);
            ++seen[verdict];
        }
    }
    for (const int count : seen)
        EXPECT_GT(count, 40);
    // What a failure leaves is the point half-way.
    MMTransformStack stack = Stack(Probe(1), kShift);
    Point p(12, 1, 1);
    EXPECT_FALSE(stack.Transform(p, false) || p != Point(13, 1, 1));
}

TEST(TransformStack, EqualityComparesKindByKind)
{
    const auto moved = [](double x) {
        return Load({1, 0, 0, x, 0, 1, 0, 0, 0, 0, 1, 0});
    };
    const MMTransformIdentity identity;
    const Probe probe(1);
    const MMTransformStack one = Stack(kShift);
    EXPECT_TRUE(AreEqual(kShift, moved(1.000001)) && AreEqual(identity, MMTransformMatrix()) &&
                AreEqual(MMTransformMatrix(), identity) && AreEqual(identity, identity) &&
                AreEqual(probe, probe) && AreEqual(one, Stack(moved(1.000001))) &&
                AreEqual(Stack(one, one), Stack(one, Stack(moved(1.000001)))));
    EXPECT_FALSE(AreEqual(kShift, moved(1.000002)) || AreEqual(moved(NAN), moved(NAN)) ||
                 AreEqual(identity, kShift) || AreEqual(identity, Derived()) ||
                 AreEqual(probe, Probe(probe)) || AreEqual(probe, identity) ||
                 AreEqual(kShift, probe) || AreEqual(one, kShift) || AreEqual(Stack(), identity) ||
                 AreEqual(one, Stack(moved(1.000002))) || AreEqual(Stack(one, one), Stack(one)));
}

TEST(Concat, MultipliesNeighbouringMatricesAndKeepsTheRest)
{
    const Probe probe(1);
    const MMTransformIdentity identity;
    // The chain, and the number of pieces that come out, 0 for a single matrix.
    const std::pair<MMTransformStack, int> cases[] = {
        {Stack(), 0},
        {Stack(identity, kShift, kBack), 0},
        {Stack(kShift, Stack(kFlat, Stack(kShift))), 0},
        {Stack(kHalf, kShift, kBack, kDouble, probe), 1},
        {Stack(kShift, probe, kDouble, kShift), 3},
        {Stack(kDouble, kEye, kHalf), 0},
        {Stack(kShift, kEye, kShift, kEye), 0},
        {Stack(Derived(), kDouble), 2},
    };
    for (const auto& [chain, pieces] : cases) {
        const auto& list = chain._GetTransforms();
        MMTransform* created = nullptr;
        EXPECT_EQ(Concat(List(list.begin(), list.end()), &created), created);
        const std::unique_ptr<MMTransform> result(created);
        const auto* const stack = dynamic_cast<MMTransformStack*>(created);
        EXPECT_EQ(stack != nullptr ? stack->GetNrTransforms() : 0, pieces);
    }
    MMTransformStack one;
    MMTransform* created = &one;
    EXPECT_TRUE(Concat({&one}, &created) == &one && created == nullptr);
    EXPECT_EQ(Concat({&one}, nullptr), &one);
}

bool HasEye(const MMTransformStack& chain)
{
    const auto& list = chain._GetTransforms();
    return std::any_of(list.begin(), list.end(), [](const MMTransform* transform) {
        const auto* const stack = dynamic_cast<const MMTransformStack*>(transform);
        return stack != nullptr ? HasEye(*stack) : AreEqual(*transform, kEye);
    });
}

TEST(Concat, MapsAsTheChainDoesForwardAndBack)
{
    norvek_test::Random random(34);
    for (int round = 0; round < 1000; ++round) {
        const MMTransformStack a = Mixed(random, 1);
        MMTransformStack b = Mixed(random, 1);
        if (round % 9 == 0)
            b.PreMultiply(kFlat);
        const MMTransformStack chain = Stack(a, b);
        const std::unique_ptr<MMTransform> result(Concat(a, b));
        const Point in = random.Point(2.0);
        // Directions follow the product's columns where one is projective.
        for (const bool isDirection : {false, true}) {
            const double tolerance = isDirection && HasEye(chain) ? INFINITY : 1e-9;
            Point expected;
            Point actual;
            EXPECT_TRUE(chain.Transform(expected, in, isDirection) &&
                        result->Transform(actual, in, isDirection));
            EXPECT_LE((actual - expected).Length(), tolerance * (1.0 + expected.Length()));
            // One factor without an inverse is enough.
            ASSERT_EQ(result->InverseTransform(actual, in, isDirection), round % 9 != 0);
            EXPECT_TRUE(!chain.InverseTransform(expected, in, isDirection) ||
                        (actual - expected).Length() <= tolerance * (1.0 + expected.Length()));
        }
    }
}

} // namespace
