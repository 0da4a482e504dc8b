#include <norvek/foundation/constants.h>
#include <norvek/linalg/general_matrix.h>
#include <norvek/linalg/matrix3x3.h>
#include <norvek/primitives/sphere.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using Norvek::Math::Core::kMomentDeterminantLimit;
using Norvek::Math::Core::kTenEpsilons;

namespace
{

using Point = MMPoint3d<double>;

// A step of the search replaces the points that hold the sphere by a set with a larger one, which
// ends after some ten steps; the bound only stops rounding from going round in circles.
constexpr int kSearchSteps = 200;

// A point counts as held up to this share of the radius outside.
constexpr double kHeldShare = 1e-14;

using Row = std::array<double, 4>;

// The determinant whose row i is what `row` makes of point i.
template <class MakeRow>
double RowDeterminant(const std::array<Point, 4>& points, MakeRow row)
{
    MGeneralMatrix matrix(4, 4);
    for (unsigned int i = 0; i < 4; ++i) {
        const Row values = row(points[i]);
        for (unsigned int j = 0; j < 4; ++j)
            matrix(i, j) = values[j];
    }
    return matrix.Determinant(4);
}

// The centre of the circle through the origin, a and b; false when they are collinear but for
// rounding.
bool CircleCentre(const Point& a, const Point& b, Point& centre)
{
    const Point normal = a.Cross(b);
    const double square = normal.LengthSquared();
    const double lengths = a.LengthSquared() * b.LengthSquared();
    if (!(square > kTenEpsilons * kTenEpsilons * lengths))
        return false;
    centre = (a.LengthSquared() * b - b.LengthSquared() * a).Cross(normal) / (2.0 * square);
    return true;
}

// The smallest sphere through one to four points, its centre in the line, plane or space that they
// span. False when they span less.
bool SphereThrough(const Point* points, std::size_t count, MMSphere& sphere)
{
    Point offset;
    if (count == 2) {
        offset = 0.5 * (points[1] - points[0]);
    } else if (count == 3) {
        if (!CircleCentre(points[1] - points[0], points[2] - points[0], offset))
            return false;
    } else if (count == 4) {
        // 2 e . c = e . e for the three edges e from the first point.
        MMatrix3x3 edges;
        double rest[3];
        for (unsigned short i = 0; i < 3; ++i) {
            const Point edge = points[i + 1] - points[0];
            edges.SetRow(i, edge);
            rest[i] = 0.5 * edge.LengthSquared();
        }
        if (!edges.Solve(rest))
            return false;
        offset = {rest[0], rest[1], rest[2]};
    }
    const double radius = offset.Length();
    if (!(radius <= std::numeric_limits<double>::max()))
        return false;
    sphere = MMSphere(points[0] + offset, radius);
    return true;
}

bool IsFinite(const Point& p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

std::size_t Farthest(const std::vector<Point>& points, const Point& centre)
{
    std::size_t farthest = 0;
    double largest = -1.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double square = (points[i] - centre).LengthSquared();
        if (square > largest) {
            largest = square;
            farthest = i;
        }
    }
    return farthest;
}

MMSphere HoldingSphere(const std::vector<Point>& points, const Point& centre)
{
    return {centre, (points[Farthest(points, centre)] - centre).Length()};
}

// The points that hold a sphere: at most four, and one more while the next four are being chosen.
struct Support
{
    std::array<Point, 5> points;
    std::size_t count = 0;
};

// The smallest sphere around the (at most five) points of the support, of which the last is on it;
// the support becomes the points that hold it.
bool Reduce(Support& support, MMSphere& sphere)
{
    const std::size_t last = support.count - 1;
    bool found = false;
    Support best;
    for (unsigned int subset = 0; subset < (1U << last); ++subset) {
        Support trial;
        for (std::size_t i = 0; i < last; ++i) {
            if ((subset >> i & 1U) != 0)
                trial.points[trial.count++] = support.points[i];
        }
        trial.points[trial.count++] = support.points[last];
        MMSphere candidate;
        if (trial.count > 4 || !SphereThrough(trial.points.data(), trial.count, candidate) ||
            (found && !(candidate < sphere)))
            continue;
        const double limit = candidate.GetRadius() * (1.0 + kHeldShare);
        const bool holds = std::all_of(
            support.points.begin(), support.points.begin() + static_cast<std::ptrdiff_t>(last),
            [&](const Point& p) { return (p - candidate.GetCentre()).Length() <= limit; });
        if (!holds)
            continue;
        sphere = candidate;
        best = trial;
        found = true;
    }
    support = best;
    return found;
}

} // namespace

bool MMSphere::Fit4Points(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                          const MMPoint3d<double>& p3, const MMPoint3d<double>& p4)
{
    const std::array<Point, 4> points{p1, p2, p3, p4};
    const double m11 = RowDeterminant(points, [](const Point& p) {
        return Row{p.x, p.y, p.z, 1.0};
    });
    if (std::abs(m11) < kMomentDeterminantLimit)
        return false;
    const auto square = [](const Point& p) {
        return p.LengthSquared();
    };
    const double m12 = RowDeterminant(points, [&](const Point& p) {
        return Row{square(p), p.y, p.z, 1.0};
    });
    const double m13 = RowDeterminant(points, [&](const Point& p) {
        return Row{square(p), p.x, p.z, 1.0};
    });
    const double m14 = RowDeterminant(points, [&](const Point& p) {
        return Row{square(p), p.x, p.y, 1.0};
    });
    const double m15 = RowDeterminant(points, [&](const Point& p) {
        return Row{square(p), p.x, p.y, p.z};
    });
    const Point centre(0.5 * m12 / m11, -0.5 * m13 / m11, 0.5 * m14 / m11);
    const double radiusSquared =
        centre.x * centre.x + centre.y * centre.y + centre.z * centre.z - m15 / m11;
    if (radiusSquared < kMomentDeterminantLimit)
        return false;
    _centre = centre;
    _radius = std::sqrt(radiusSquared);
    return true;
}

bool MMSphere::Fit(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                   const MMPoint3d<double>& p3)
{
    const Point points[3]{p1, p2, p3};
    return Fit(points);
}

bool MMSphere::Fit(const MMPoint3d<double>* points)
{
    return SphereThrough(points, 3, *this);
}

bool MMSphere::Compute(const MMPoint3d<double>& p1, const MMPoint3d<double>& p2,
                       const MMPoint3d<double>& p3, const MMPoint3d<double>& p4)
{
    return Fit4Points(p1, p2, p3, p4);
}

// The farthest point outside must lie on the smallest sphere around what holds the present one and
// that point. So the sphere grows from a point, each time to the next larger one that is the
// smallest of at most five points, until nothing is outside.
bool MMSphere::Compute(const std::vector<MMPoint3d<double>>& points, const MMPoint3d<double>& start)
{
    if (points.empty() || !IsFinite(start) || !std::all_of(points.begin(), points.end(), IsFinite))
        return false;
    MMSphere best = HoldingSphere(points, start);
    Support support;
    MMSphere grown(start, -1.0);
    for (int step = 0; step < kSearchSteps; ++step) {
        const Point& outside = points[Farthest(points, grown._centre)];
        if (step > 0 && (outside - grown._centre).Length() <= grown._radius * (1.0 + kHeldShare))
            break;
        support.points[support.count++] = outside;
        if (!Reduce(support, grown))
            break;
    }
    const MMSphere shrunk = HoldingSphere(points, grown._centre);
    if (shrunk < best)
        best = shrunk;
    if (!IsFinite(best._centre) || !std::isfinite(best._radius))
        return false;
    *this = best;
    return true;
}

bool MMSphere::CapturePoints(const std::vector<MMPoint3d<double>>& points)
{
    Point sum;
    for (const Point& p : points)
        sum += p;
    return Compute(points, sum / static_cast<double>(points.size()));
}
