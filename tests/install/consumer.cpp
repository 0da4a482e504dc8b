// A program outside the tree: fits a plane, moves a point, joins two pieces of a contour.

#include <norvek/border/border.h>
#include <norvek/border/border_algorithms.h>
#include <norvek/primitives/least_squares_plane.h>
#include <norvek/transform/transform_matrix.h>

#include <cmath>
#include <iostream>

int main()
{
    MMLeastSquarePlane fit;
    for (int i = 0; i < 9; ++i)
        fit.AddPoint(i % 3, i / 3, 1.0);
    const double height = std::abs(fit.GetPlane().D());

    MMTransformMatrix turn;
    turn.MakeRotationXYZ(90.0, 0.0, 0.0);
    const MMPoint3d<double> turned = turn(MMPoint3d<double>(0.0, 1.0, 0.0), false);

    const bool isRight = std::abs(height - 1.0) < 1e-12 && std::abs(turned.z - 1.0) < 1e-12;
    std::cout << "height " << height << ", turned " << turned << '\n';
    return isRight ? 0 : 1;
}
