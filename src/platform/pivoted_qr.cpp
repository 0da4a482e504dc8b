// Eigen under a name of its own: a program that links the static library and uses Eigen with other
// settings has functions of the same names, and the linker would keep only one of each.
#define Eigen NorvekEigen
// Plain arithmetic in the order of the loops. Eigen's explicit vectors follow the instruction set
// that the compiler's options name, and with it the bits would.
#define EIGEN_DONT_VECTORIZE
#include "platform/pivoted_qr.h"

#include <Eigen/QR>

namespace Norvek::Math::Core
{

namespace
{

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

// `values` with its columns multiplied by `factors`.
Eigen::MatrixXd Scaled(const double* values, std::size_t rows, const std::vector<double>& factors)
{
    const auto columns = static_cast<Eigen::Index>(factors.size());
    const Eigen::Map<const RowMajor> matrix(values, static_cast<Eigen::Index>(rows), columns);
    const Eigen::Map<const Eigen::VectorXd> diagonal(factors.data(), columns);
    return matrix * diagonal.asDiagonal();
}

} // namespace

PivotedQR FactorisePivoted(const ConstMatrixView& system, const ConstMatrixView& rightHandSides,
                           const std::vector<double>& factors,
                           const std::vector<double>& rightFactors)
{
    const auto n = static_cast<Eigen::Index>(system.columns);
    Eigen::MatrixXd a = Scaled(system.values, system.rows, factors);
    const Eigen::ColPivHouseholderQR<Eigen::Ref<Eigen::MatrixXd>> qr(a);
    Eigen::MatrixXd b = Scaled(rightHandSides.values, system.rows, rightFactors);

    PivotedQR result;
    result.r.resize(system.columns * system.columns);
    Eigen::Map<RowMajor>(result.r.data(), n, n) = qr.matrixQR().topRows(n);
    for (Eigen::Index c = 0; c < b.cols(); ++c) {
        // One by one: several columns at once are taken through blocks whose size, and with it the
        // order of the sums, depends on the processor's caches.
        Eigen::VectorXd column = b.col(c);
        column.applyOnTheLeft(qr.householderQ().setLength(n).adjoint());
        result.projected.insert(result.projected.end(), column.data(), column.data() + n);
    }
    for (Eigen::Index k = 0; k < n; ++k)
        result.order.push_back(static_cast<std::size_t>(qr.colsPermutation().indices()[k]));
    return result;
}

} // namespace Norvek::Math::Core
