#pragma once

#include "support/matrix_values.h"

#include <cmath>

namespace norvek_test
{

/// A kind of symmetric matrix that solvers find hard, each in its own way.
struct MatrixFamily
{
    const char* name;

    /// Symmetric to the last bit.
    RowMajor (*make)(Random& random, unsigned int order);

    /// The only order in which it exists; 0 for any.
    unsigned int onlyOrder = 0;
};

namespace MatrixFamilyDetail
{

/// Fills a symmetric matrix from a function of row and column, called on and below the diagonal.
template <class Element>
RowMajor Symmetric(unsigned int order, Element element)
{
    RowMajor values(order, order);
    for (unsigned int i = 0; i < order; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            values(i, j) = values(j, i) = element(i, j);
    }
    return values;
}

inline RowMajor Uniform(Random& random, unsigned int order)
{
    return Symmetric(order, [&](unsigned int, unsigned int) { return random.Uniform(-1.0, 1.0); });
}

/// Rows and columns fall off by twelve orders of magnitude.
inline RowMajor Graded(Random& random, unsigned int order)
{
    return Symmetric(order, [&](unsigned int i, unsigned int j) {
        return random.Uniform(0.5, 1.0) * std::pow(10.0, -6.0 * (i + j) / order);
    });
}

/// Eigenvalues 1 + 1e-10 k, and a third of them -0.5: reflections of a diagonal matrix.
inline RowMajor Clustered(Random& random, unsigned int order)
{
    RowMajor a = Symmetric(order, [](unsigned int i, unsigned int j) {
        return i != j ? 0.0 : i % 3 == 2 ? -0.5 : 1.0 + 1e-10 * i;
    });
    for (int reflection = 0; reflection < 3; ++reflection) {
        // A - v w' - w v', with w = 2 (A v - (v' A v / v' v) v) / v' v.
        const RowMajor v = RandomElements(random, order, 1);
        RowMajor w = 2.0 / Dot(v, v) * PlainProduct(a, v);
        w -= Dot(w, v) / Dot(v, v) * v;
        a = Symmetric(order, [&](unsigned int i, unsigned int j) {
            return a(i, j) - v(i) * w(j) - w(i) * v(j);
        });
    }
    return a;
}

/// Nearly singular from order 12 on.
inline RowMajor Hilbert(Random& /*random*/, unsigned int order)
{
    return Symmetric(order, [](unsigned int i, unsigned int j) { return 1.0 / (i + j + 1.0); });
}

/// Pairs of eigenvalues that agree to more and more digits.
inline RowMajor Wilkinson(Random& /*random*/, unsigned int order)
{
    return Symmetric(order, [=](unsigned int i, unsigned int j) {
        return i == j ? std::abs(i - (order - 1) / 2.0) : i == j + 1 ? 1.0 : 0.0;
    });
}

/// Eigenvalues 0, a double 1000, 1020 beside 1019.9, and +-1020.049: J. B. Rosser et al., 1951.
inline RowMajor Rosser(Random& /*random*/, unsigned int /*order*/)
{
    return RowMajor{
        {611, 196, -192, 407, -8, -52, -49, 29}, {196, 899, 113, -192, -71, -43, -8, -44},
        {-192, 113, 899, 196, 61, 49, 8, 52},    {407, -192, 196, 611, 8, 44, 59, -23},
        {-8, -71, 61, 8, 411, -599, 208, 208},   {-52, -43, 49, 44, -599, 411, 208, 208},
        {-49, -8, 8, 59, 208, 208, 99, -911},    {29, -44, 52, -23, 208, 208, -911, 99}};
}

} // namespace MatrixFamilyDetail

/// All families, and the orders in which they are to be tried.
inline constexpr MatrixFamily kMatrixFamilies[] = {
    {"random", MatrixFamilyDetail::Uniform},      {"graded", MatrixFamilyDetail::Graded},
    {"clustered", MatrixFamilyDetail::Clustered}, {"Hilbert", MatrixFamilyDetail::Hilbert},
    {"Wilkinson", MatrixFamilyDetail::Wilkinson}, {"Rosser", MatrixFamilyDetail::Rosser, 8},
};
inline constexpr unsigned int kMatrixOrders[] = {1, 2, 3, 5, 8, 10, 50};

/// Calls `check(values)`, traced, for every family in every order.
template <class Check>
void ForEachMatrix(Random& random, Check check)
{
    for (const MatrixFamily& family : kMatrixFamilies) {
        for (const unsigned int order : kMatrixOrders) {
            if (family.onlyOrder == 0 || family.onlyOrder == order) {
                SCOPED_TRACE(::testing::Message() << family.name << ' ' << order);
                check(family.make(random, order));
            }
        }
    }
}

} // namespace norvek_test
