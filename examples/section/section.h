#pragma once

#include "options.h"
#include "support/progress.h"
#include "support/surface.h"

#include <norvek/border/border.h>
#include <norvek/primitives/plane_equation.h>
#include <norvek/transform/transform_matrix.h>

#include <string>
#include <vector>

namespace section
{

using example::Progress;
using example::Surface;

using SectionPoint = M3dBorderPoint<float, float>;
using SectionContour = M3dBorderContour<float, float, SectionPoint>;
using SectionBorder = M3dBorder<float, float, SectionContour>;

/// What a contour measures, in the units of the surface.
struct ContourMeasures
{
    bool isClosed = false;
    /// Around material, not around a hole; of closed contours only.
    bool isOuter = false;
    double area = 0.0;
    double circumference = 0.0;
    std::size_t numPoints = 0;
};

/// Why a section is cut: as a horizontal level (every fifth one stands out), as a plane that was
/// asked for, or as the plane that fits the surface.
enum class SectionKind
{
    Level,
    IndexLevel,
    Plane,
    Fit
};

/// One plane cut through the surface.
struct Section
{
    std::string name;
    SectionKind kind = SectionKind::Plane;
    /// The plane in reduced coordinates.
    MMPlaneEq<double> plane;
    /// A frame on the plane: x and y in the plane, z along its normal, one unit `unit` long.
    MMTransformMatrix frame;
    double unit = 1.0;
    /// The contours, in reduced coordinates once the section is done; the payload is z.
    SectionBorder border;
    std::vector<ContourMeasures> contours;
    /// For each point asked about: 0 on a contour, 1 inside, 2 outside.
    std::vector<char> positions;

    [[nodiscard]] bool IsLevel() const
    {
        return kind == SectionKind::Level || kind == SectionKind::IndexLevel;
    }
};

/// The least-squares plane of a surface's points.
struct PlaneFit
{
    MMPlaneEq<double> plane;
    double rms = 0.0;
    double greatest = 0.0;
};

/// Fits a plane to the points; throws `Failure` when they lie on a line.
PlaneFit FitPlane(const Surface& surface);

/// A frame on a plane, at the foot of the surface's centre, scaled so that the surface is
/// 65536 units large: contours are joined within a fixed distance in those units.
Section MakeSection(const Surface& surface, const std::string& name, SectionKind kind,
                    const MMPlaneEq<double>& plane);

/// Cuts, joins, clips, measures and turns back. False when the plane misses the surface.
bool CutSurface(Section& section, const Surface& surface, const Options& options,
                Progress& progress);

} // namespace section
