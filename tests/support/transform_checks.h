#pragma once

#include <norvek/transform/transform_matrix.h>

#include <Eigen/Core>

namespace norvek_test
{

/// The 3x3 part of a transform matrix.
inline Eigen::Matrix3d Part(const MMTransformMatrix& matrix)
{
    Eigen::Matrix3d m;
    for (unsigned short i = 0; i < 3; ++i) {
        for (unsigned short j = 0; j < 3; ++j)
            m(i, j) = matrix.GetElement(i, j, false);
    }
    return m;
}

/// The largest difference of two elements.
inline double Difference(const Eigen::Matrix3d& a, const Eigen::Matrix3d& b)
{
    return (a - b).cwiseAbs().maxCoeff();
}

inline double Distance(const MMPoint3d<double>& a, const MMPoint3d<double>& b)
{
    return (a - b).Length();
}

} // namespace norvek_test
