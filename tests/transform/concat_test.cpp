#include "support/probe_transform.h"
#include "support/random.h"
#include "support/transform_checks.h"

#include <norvek/transform/concat.h>
#include <norvek/transform/transform_equality.h>
#include <norvek/transform/transform_identity.h>
#include <norvek/transform/transform_stack.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{

using norvek_test::Distance;
using norvek_test::Elements;
using norvek_test::Load;
using norvek_test::Probe;
using norvek_test::ProbeLog;
using Point = MMPoint3d<double>;
using List = std::vector<MMTransform*>;

// The result of a list, which has to be new.
std::unique_ptr<MMTransform> New(const List& list)
{
    MMTransform* created = nullptr;
    MMTransform* const result = Concat(list, &created);
    EXPECT_EQ(created, result);
    return std::unique_ptr<MMTransform>(created);
}

// 1 for one matrix, minus the number of elements for a stack.
int Shape(const MMTransform& transform)
{
    const auto* const stack = dynamic_cast<const MMTransformStack*>(&transform);
    return stack != nullptr ? -int{stack->GetNrTransforms()} : 1;
}

// A matrix that may map otherwise, for all that is known.
class Derived : public MMTransformMatrix
{
public:
    [[nodiscard]] Derived* Clone() const override
    {
        return new Derived(*this);
    }
};

TEST(Concat, ListsOfOneAndOfNothing)
{
    MMTransformMatrix unit;
    MMTransformIdentity identity;
    MMTransformStack empty;
    MMTransform* created = &unit;
    EXPECT_EQ(Concat({&empty}, &created), &empty);
    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(Concat({&identity}, nullptr), &identity);
    for (const List& list : {List{}, List{&unit, &identity}, List{&empty, &empty}}) {
        const auto result = New(list);
        EXPECT_TRUE(AreEqual(*result, unit) && typeid(*result) == typeid(unit));
    }
}

TEST(Concat, IsTheSameMapAsTheListForwardAndBack)
{
    norvek_test::Random random(34);
    ProbeLog log;
    for (int round = 0; round < 500; ++round) {
        MMTransformStack chain;
        MMTransformStack nested;
        for (int i = random.Integer(2, 6); i > 0; --i) {
            MMTransformMatrix matrix;
            MMTransformIdentity identity;
            Probe probe(log, i);
            matrix.MakeRotationXYZ(random.Point(2.0), 99.0 * i, 20.0, 40.0);
            if (random.Integer(0, 2) == 0)
                matrix = Load({1, 2, 0, 0, 0, 1, 0, 0, 0, 0, 3, 0, 0.01 * i, 0, 0.02, 1});
            MMTransform* const kinds[] = {&matrix, &matrix, &probe, &identity, &nested};
            const MMTransform& next = *kinds[random.Integer(0, 4)];
            chain.PostMultiply(next);
            if (&next != &nested)
                nested.PreMultiply(next);
        }
        const List list(chain._GetTransforms().begin(), chain._GetTransforms().end());
        const MMTransformStack before(chain);
        const auto result = New(list);
        for (const bool isDirection : {false, true}) {
            const Point in = random.Point(2.0);
            Point expected;
            Point actual;
            EXPECT_TRUE(chain.Transform(expected, in, isDirection) &&
                        result->Transform(actual, in, isDirection));
            EXPECT_LT(Distance(actual, expected), 1e-9 * (1.0 + expected.Length()));
            EXPECT_TRUE(chain.InverseTransform(expected, in, isDirection) &&
                        result->InverseTransform(actual, in, isDirection));
            EXPECT_LT(Distance(actual, expected), 1e-9 * (1.0 + expected.Length()));
        }
    }
    EXPECT_EQ(log.live, 0);
}

TEST(Concat, MergesWhatIsTheSameMap)
{
    MMTransformMatrix shift;
    shift.MakeTranslation({1, 2, 3});
    MMTransformMatrix back = shift;
    back.Invert();
    MMTransformMatrix turn;
    turn.MakeRotationXYZ(10, 20, 30);
    MMTransformMatrix eye = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1});
    MMTransformMatrix flat = Load({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0});
    MMTransformMatrix flagged = turn;
    flagged.SetHomogeneous(true);
    Derived derived;
    ProbeLog log;
    Probe probe(log, 1);
    MMTransformStack both;
    both.PostMultiply(shift);
    both.PostMultiply(turn);
    MMTransformStack nested;
    nested.PostMultiply(both);
    const struct
    {
        List list;
        int shape;
    } cases[] = {
        {{&shift, &turn, &shift}, 1},
        {{&nested, &both, &turn}, 1},
        {{&probe, &shift, &back}, -1},
        {{&turn, &shift, &back, &turn}, 1},
        {{&turn, &probe, &both}, -3},
        {{&probe, &nested, &turn, &probe}, -3},
        {{&turn, &derived, &turn}, -3},
        {{&turn, &eye, &turn}, 1},
        {{&shift, &eye, &turn}, -2},
        {{&eye, &shift}, -2},
        {{&eye, &eye}, -2},
        {{&eye, &flat}, -2},
        {{&shift, &flagged, &turn}, -3},
        {{&turn, &flat, &shift}, 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Shape(*New(c.list)), c.shape) << &c - cases;

    const std::unique_ptr<MMTransform> product(Concat(shift, turn));
    EXPECT_EQ(Elements(static_cast<MMTransformMatrix&>(*product)), Elements(shift * turn));
    // One factor without an inverse is enough, on whichever side.
    for (const List& list : {List{&flat, &turn}, List{&turn, &flat}, List{&shift, &flat, &turn}}) {
        const auto result = New(list);
        EXPECT_FALSE(static_cast<MMTransformMatrix&>(*result).IsInversible());
    }
}

TEST(Concat, KeepsNothingWhenACloneThrows)
{
    ProbeLog log;
    Probe probe(log, 1);
    log.clonesLeft = 2;
    MMTransform* created = &probe;
    EXPECT_THROW(static_cast<void>(Concat({&probe, &probe, &probe}, &created)), std::runtime_error);
    EXPECT_TRUE(log.live == 1 && created == &probe);
}

} // namespace
