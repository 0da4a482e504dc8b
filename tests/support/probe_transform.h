#pragma once

#include <norvek/transform/transform_identity.h>

#include <vector>

namespace norvek_test
{

/// A transform that has no matrix, counts its copies and can be made to fail. It maps otherwise
/// than the identity from which it derives: (x, y, z) becomes (y, z + id, x), a direction (y, z,
/// x). Fails for x = 13, untouched forwards and with its result written backwards; throws for x
/// = 17.
struct ProbeTransform : MMTransformIdentity
{
    using Ids = std::vector<int>;
    using Point = MMPoint3d<double>;

    /// The destroyed probes, those alive, and how often they can still be cloned before one throws.
    static inline Ids destroyed;
    static inline int live = 0;
    static inline int clonesLeft = 1000000;

    explicit ProbeTransform(int number) : id(number)
    {
        ++live;
    }

    ProbeTransform(const ProbeTransform& other) : ProbeTransform(other.id)
    {}

    ~ProbeTransform() override
    {
        --live;
        destroyed.push_back(id);
    }

    ProbeTransform& operator=(const ProbeTransform&) = delete;

    [[nodiscard]] ProbeTransform* Clone() const override
    {
        return --clonesLeft < 0 ? throw Ids() : new ProbeTransform(*this);
    }

    bool ConvertToDouble16(double* /*matrix*/) const override
    {
        return false;
    }

    bool _Transform(Point& out, const Point& in, bool isDirection) const override
    {
        if (in.x != 13.0)
            out = in.x == 17.0 ? throw Ids() : Point(in.y, in.z + (isDirection ? 0 : id), in.x);
        return in.x != 13.0;
    }

    bool _InverseTransform(Point& out, const Point& in, bool isDirection) const override
    {
        const bool done = in.x != 13.0;
        out = Point(in.z, in.x, in.y - (isDirection ? 0 : id));
        return done;
    }

    int id;
};

} // namespace norvek_test
