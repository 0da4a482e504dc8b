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

    M3dBorder<float, float> pieces;
    for (int i = 0; i < 2; ++i) {
        auto* const piece = pieces.AddContourAtEnd();
        piece->SetIsClosed(false);
        piece->InsertAtEnd(static_cast<float>(i), 0.0F, 0.0F);
        piece->InsertAtEnd(static_cast<float>(i + 1), 0.0F, 0.0F);
    }
    M3dBorder<float, float> joined;
    MergeBorder(joined, pieces);

    const bool isRight = std::abs(height - 1.0) < 1e-12 && std::abs(turned.z - 1.0) < 1e-12 &&
                         joined.GetNumContours() == 1 && joined.GetNumPoints() == 3;
    std::cout << "height " << height << ", turned " << turned << ", joined to "
              << joined.GetNumContours() << " contour\n";
    return isRight ? 0 : 1;
}
