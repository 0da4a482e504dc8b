#pragma once

#include <norvek/transform/transform.h>

#include <stdexcept>
#include <vector>

namespace norvek_test
{

/// What the probes of a test have been through.
struct ProbeLog
{
    int live = 0;
    std::vector<int> destroyed;
    int clonesLeft = 1000000;
};

/// A transform without a matrix that logs its life: (x, y, z) becomes (y, z + id, x), for a
/// direction without id. Fails for x = 13, in `out` nothing; throws for x = 17. Its clones run out.
class Probe : public MMTransform
{
public:
    Probe(ProbeLog& log, int id) : _log(log), _id(id)
    {
        ++_log.live;
    }
    Probe(const Probe& other) : MMTransform(other), _log(other._log), _id(other._id)
    {
        ++_log.live;
    }
    Probe& operator=(const Probe&) = delete;
    ~Probe() override
    {
        --_log.live;
        _log.destroyed.push_back(_id);
    }
    [[nodiscard]] MMTransform* Clone() const override
    {
        if (--_log.clonesLeft < 0)
            throw std::runtime_error("no more clones");
        return new Probe(*this);
    }
    bool ConvertToFloat16(float* /*matrix*/) const override
    {
        return false;
    }
    bool Invert() override
    {
        return false;
    }
    [[nodiscard]] bool IsIdentity() const override
    {
        return false;
    }

protected:
    bool _Transform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                    bool isDirection) const override
    {
        if (in.x == 17.0)
            throw std::runtime_error("17");
        if (in.x == 13.0)
            return false;
        out = {in.y, in.z + (isDirection ? 0.0 : _id), in.x};
        return true;
    }
    bool _InverseTransform(MMPoint3d<double>& out, const MMPoint3d<double>& in,
                           bool isDirection) const override
    {
        out = {in.z, in.x, in.y - (isDirection ? 0.0 : _id)};
        return true;
    }

private:
    ProbeLog& _log;
    int _id;
};

} // namespace norvek_test
