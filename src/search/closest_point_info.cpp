#include <norvek/search/closest_point_info.h>

namespace
{

const MMPoint3d<double> kNoPoint(-1.0, -1.0, -1.0);

} // namespace

MClosestPointInfo::MClosestPointInfo() : _closestStorage(kNoPoint), _queryStorage(kNoPoint)
{}

MClosestPointInfo::MClosestPointInfo(const MClosestPointInfo& other)
{
    MClosestPointInfo::Copy(other);
}

MClosestPointInfo::~MClosestPointInfo() = default;

void MClosestPointInfo::Assign(const MClosestPointInfo& other)
{
    AssignInput(other);
    AssignOutput(other);
}

// Coordinates are read before the pointer moves: it may be the other record's, or this one's.
void MClosestPointInfo::AssignInput(const MClosestPointInfo& other)
{
    _queryStorage = *other._queryPoint;
    _queryPoint = &_queryStorage;
    _inputIndex = other._inputIndex;
}

void MClosestPointInfo::AssignOutput(const MClosestPointInfo& other)
{
    _closestStorage = *other._closestPoint;
    _closestPoint = &_closestStorage;
    _foundIndex = other._foundIndex;
    _distance = other._distance;
}

bool MClosestPointInfo::operator<(const MClosestPointInfo& other) const
{
    return _distance < other._distance;
}

bool MClosestPointInfo::operator==(const MClosestPointInfo& other) const
{
    return _distance == other._distance;
}

bool MClosestPointInfo::operator>(const MClosestPointInfo& other) const
{
    return _distance > other._distance;
}

MClosestPointInfo& MClosestPointInfo::operator=(const MClosestPointInfo& other)
{
    if (this != &other)
        Assign(other);
    return *this;
}

// Both points are read before either is written: the answer of the other record may lie in the
// query storage of this one.
void MClosestPointInfo::Copy(const MClosestPointInfo& other)
{
    const MMPoint3d<double> query = *other._queryPoint;
    const MMPoint3d<double> closest = *other._closestPoint;
    _queryStorage = query;
    _closestStorage = closest;
    _queryPoint = &_queryStorage;
    _closestPoint = &_closestStorage;
    _inputIndex = other._inputIndex;
    _foundIndex = other._foundIndex;
    _distance = other._distance;
}

void MClosestPointInfo::SetDefaultsOutput()
{
    _distance = kInfiniteDistance;
    _foundIndex = kNoIndex;
    *_closestPoint = kNoPoint;
}

void MClosestPointInfo::SetDefaultsInput()
{
    _inputIndex = kNoIndex;
    *_queryPoint = kNoPoint;
}

void MClosestPointInfo::UpdateResidues()
{
    _distance = (*_queryPoint - *_closestPoint).Length();
}
