#include <norvek/polyplane/poly_plane_prism.h>

// A prism is a poly-plane in name and slot; the outline is the inner one's. Only what is overridden
// here reaches it. Everything else finds the empty outline of the base and answers from there,
// which callers of lengths and positions have to know and the header says.

MPolyPlanePrism::MPolyPlanePrism() : _inner(std::make_shared<MPolyPlane>())
{}

// The shared pointer is made from the type at hand; the destructor is virtual, so that a derived
// poly-plane ends as what it is.
MPolyPlanePrism::MPolyPlanePrism(MPolyPlane* polyPlane)
    : _inner(polyPlane != nullptr ? std::shared_ptr<MPolyPlane>(polyPlane)
                                  : std::make_shared<MPolyPlane>())
{}

MPolyPlanePrism::~MPolyPlanePrism() = default;

MMPoint3d<double> MPolyPlanePrism::GetDirection()
{
    return _inner->GetDirection();
}

void MPolyPlanePrism::AddPoint(const MMPoint3d<double>& point)
{
    _inner->AddPoint(point);
}

MMPoint3d<double> MPolyPlanePrism::GetPoint(unsigned short index)
{
    return _inner->GetPoint(index);
}

MMPoint3d<double> MPolyPlanePrism::GetNormal(unsigned short index)
{
    return _inner->GetNormal(index);
}

MMPlaneEq<double> MPolyPlanePrism::GetPlane(unsigned short index)
{
    return _inner->GetPlane(index);
}

MMPoint3d<double> MPolyPlanePrism::GetPolylineSegmentUnitVector(unsigned short index)
{
    return _inner->GetPolylineSegmentUnitVector(index);
}

void MPolyPlanePrism::Clear()
{
    _inner->Clear();
}

int MPolyPlanePrism::GetNumPoints() const
{
    return _inner->GetNumPoints();
}

// The levels are added to the inner range, not put in its place: meant.
void MPolyPlanePrism::GetMinMaxZ(double& min, double& max)
{
    _inner->GetMinMaxZ(min, max);
    const double dz = GetDirection().z;
    min += (dz > 0.0 ? _bottom : _top) * dz;
    max += (dz > 0.0 ? _top : _bottom) * dz;
}

// Both levels belong to the prism; written as two exclusions, which NaN passes.
bool MPolyPlanePrism::IsInside(MMPoint3d<double> point) const
{
    const double level = _inner->GetDirection().Dot(point);
    if (level > _top || level < _bottom)
        return false;
    return _inner->IsInside(point);
}

// The four tests against the surface answer nothing for a prism: meant.
bool MPolyPlanePrism::TriangleIntersectRejection(MMPoint3d<double> /*a*/, MMPoint3d<double> /*b*/,
                                                 MMPoint3d<double> /*c*/) const
{
    return false;
}

bool MPolyPlanePrism::TriangleIntersects(MMPoint3d<double> /*a*/, MMPoint3d<double> /*b*/,
                                         MMPoint3d<double> /*c*/) const
{
    return false;
}

bool MPolyPlanePrism::LineIntersects(MMPoint3d<double> /*a*/, MMPoint3d<double> /*b*/) const
{
    return false;
}

double MPolyPlanePrism::DistanceToPlaneSegment(MMPoint3d<double> /*point*/,
                                               unsigned short /*index*/, bool& inside) const
{
    inside = false;
    return 0.0;
}

// The origin is that of coordinates, from which levels are counted.
void MPolyPlanePrism::SetDirection(MMPoint3d<double> direction)
{
    _inner->SetZeroPlane(direction, {});
}

// Not ordered, unlike the levels of two points: meant.
void MPolyPlanePrism::SetTopBottomPlanes(double top, double bottom)
{
    _top = top;
    _bottom = bottom;
}

void MPolyPlanePrism::SetTopBottomPlanes(MMPoint3d<double> a, MMPoint3d<double> b)
{
    const MMPoint3d<double> direction = GetDirection();
    const double levelA = direction.Dot(a);
    const double levelB = direction.Dot(b);
    _top = levelA > levelB ? levelA : levelB;
    _bottom = levelA > levelB ? levelB : levelA;
}
