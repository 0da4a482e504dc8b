#include "determinism/results.h"

#include <norvek/border/border.h>
#include <norvek/border/border_algorithms.h>
#include <norvek/bounds/bounding_box.h>
#include <norvek/bounds/bounding_box_nd.h>
#include <norvek/primitives/line.h>
#include <norvek/primitives/line2d.h>
#include <norvek/primitives/plane_equation.h>
#include <norvek/transform/transform_matrix.h>

namespace norvek_test
{

namespace
{

constexpr int kRounds = 2000;

void AddMatrix(Hash& hash, const MMTransformMatrix& matrix)
{
    for (unsigned short row = 0; row < 4; ++row)
        for (unsigned short col = 0; col < 4; ++col) {
            hash.Add(matrix.GetElement(row, col, false));
            hash.Add(matrix.GetElement(row, col, true));
        }
}

} // namespace

std::uint64_t HashPoints(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        const MMPoint3d<double> a = numbers.Point(10.0);
        const MMPoint3d<double> b = numbers.Point(1e-3);
        hash.Add((a + b * a.x - b / a.y).Cross(b).Normalised());
        hash.Add(a.Dot(b));
        hash.Add(a.Length());
        hash.Add(MMPoint3d<double>(MMPoint3d<float>(a)));
    }
    return hash.Value();
}

std::uint64_t HashTransforms(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        MMTransformMatrix a;
        a.MakeRotationXYZ(numbers.Next(180.0), numbers.Next(180.0), numbers.Next(180.0));
        MMTransformMatrix b;
        b.MakeRotation(numbers.Point(5.0), numbers.Point(1.0), numbers.Next(3.0));
        MMTransformMatrix c;
        c.MakeTransformation(numbers.Point(9.0), numbers.Point(1.0), numbers.Point(1.0),
                             numbers.Point(1.0));
        const MMTransformMatrix product = a * b * c;
        AddMatrix(hash, product);
        MMPoint3d<double> p = numbers.Point(100.0);
        product.Transform(p, false);
        hash.Add(p);
        double angles[3] = {};
        hash.Add((a * b).GetRotationZYX(angles[0], angles[1], angles[2]));
        hash.Add(MMPoint3d<double>(angles[0], angles[1], angles[2]));
        MMTransformMatrix turn;
        hash.Add(turn.MakeRotationInPlane(numbers.Point(1.0), numbers.Point(1.0), {}));
        hash.Add(turn.MakeRotation(product));
        AddMatrix(hash, turn);
        hash.Add(c.MakeOrthoNormal());
        AddMatrix(hash, c);
        c.MakePerspectiveProjection(-1, 1, -1, numbers.Next(9.0), -9, -1, numbers.Next(0.5));
        AddMatrix(hash, c);
    }
    return hash.Value();
}

std::uint64_t HashPlanesAndLines(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        MMPlaneEq<double> plane(numbers.Point(5.0), numbers.Point(5.0), numbers.Point(5.0));
        const MMPlaneEq<double> other(numbers.Point(5.0), numbers.Point(1.0));
        MMPoint3d<double> point;
        MMPoint3d<double> direction;
        hash.Add(static_cast<int>(plane.IntersectWithPlane(point, direction, other, 1e-9)));
        hash.Add(point);
        hash.Add(direction);
        MMTransformMatrix turn;
        turn.MakeRotation(numbers.Point(5.0), numbers.Point(1.0), numbers.Next(3.0));
        plane.Transform(turn);
        hash.Add(plane.Project(point, numbers.Point(9.0)));
        hash.Add(point);

        const MMLine line(numbers.Point(5.0), numbers.Point(5.0));
        MMLine across;
        hash.Add(line.GetCommonPerpendicularLine(MMLine(numbers.Point(5.0), numbers.Point(5.0)),
                                                 across, 1e-9));
        hash.Add(across.GetPointFirst());
        hash.Add(across.GetPointSecond());

        const MMLine2D flat({numbers.Next(5.0), numbers.Next(5.0)},
                            {numbers.Next(5.0), numbers.Next(5.0)});
        hash.Add(flat.GetSignedDistance({numbers.Next(5.0), numbers.Next(5.0)}));
        hash.Add(flat.GetDirection());
    }
    return hash.Value();
}

std::uint64_t HashBoxes(Numbers numbers)
{
    Hash hash;
    for (int i = 0; i < kRounds; ++i) {
        M3DBoundingBox<double> box(numbers.Point(5.0));
        box.AddPoint(numbers.Point(5.0));
        hash.Add(box.GetCenter());
        const MMPoint3d<double> triangle[3] = {numbers.Point(9.0), numbers.Point(9.0),
                                               numbers.Point(9.0)};
        hash.Add(box.DoesIntersectTriangle(triangle));
        hash.Add(box.DoesIntersectPlane(numbers.Point(5.0), numbers.Point(1.0)));
        MBoundingBox3DDouble corners;
        corners.AddPoint(numbers.Point(1e12));
        corners.AddPoint(numbers.Point(1e12));
        MMPoint3d<double> offset;
        double scale = 0.0;
        hash.Add(corners.FitInLong(offset, scale, numbers.Next(1.0)));
        hash.Add(scale);
        hash.Add(corners.GetArea());
        hash.Add(corners.GetDiagonalLength());
    }
    return hash.Value();
}

std::uint64_t HashBorders(Numbers numbers)
{
    using Border = M3dBorder<float, float>;
    const auto next = [&](double size) {
        return static_cast<float>(numbers.Next(size));
    };
    Hash hash;
    for (int i = 0; i < kRounds / 10; ++i) {
        Border border;
        for (int piece = 0; piece < 20; ++piece) {
            auto* const contour = border.AddContourAtEnd();
            contour->SetIsClosed(piece % 4 == 0);
            for (int point = 0; point < 10; ++point)
                contour->InsertAtEnd(next(5.0), next(5.0), next(5.0));
        }
        MMTransformMatrix turn;
        turn.MakeRotation(numbers.Point(5.0), numbers.Point(1.0), numbers.Next(3.0));
        TransformBorder(border, turn);
        MFrame<float> frame;
        frame.origin = {next(2.0), next(2.0), next(2.0)};
        frame.xAxis = {next(9.0), next(9.0), next(1.0)};
        ClipBorderInFrame(border, frame);
        Border merged;
        MergeBorder(merged, border);
        for (const auto& contour : merged.Contours())
            for (const auto& point : contour)
                hash.Add(MMPoint3d<double>(point.x, point.y, point.payload));
        hash.Add(merged.SurfaceAreaWithSignXY());
        hash.Add(merged.CircumferenceXY());
        for (int point = 0; point < 20; ++point) {
            const double x = numbers.Next(5.0);
            hash.Add(int{merged.CalculatePosition(x, numbers.Next(5.0))});
        }
    }
    return hash.Value();
}

} // namespace norvek_test
