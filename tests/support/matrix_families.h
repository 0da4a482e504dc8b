#pragma once

#include "support/random.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace norvek_test
{

/// A kind of symmetric matrix that solvers find hard, each in its own way.
struct MatrixFamily
{
    const char* name;

    /// order x order values, symmetric to the last bit.
    std::vector<double> (*make)(Random& random, unsigned int order);

    /// The only order in which it exists; 0 for any.
    unsigned int onlyOrder = 0;
};

namespace MatrixFamilyDetail
{

/// Fills a symmetric matrix from a function of row and column, called on and below the diagonal.
template <class Element>
std::vector<double> Symmetric(unsigned int order, Element element)
{
    std::vector<double> values(std::size_t{order} * order);
    for (unsigned int i = 0; i < order; ++i) {
        for (unsigned int j = 0; j <= i; ++j)
            values[i * order + j] = values[j * order + i] = element(i, j);
    }
    return values;
}

inline std::vector<double> Uniform(Random& random, unsigned int order)
{
    return Symmetric(order, [&](unsigned int, unsigned int) { return random.Uniform(-1.0, 1.0); });
}

/// Rows and columns fall off by twelve orders of magnitude.
inline std::vector<double> Graded(Random& random, unsigned int order)
{
    return Symmetric(order, [&](unsigned int i, unsigned int j) {
        return random.Uniform(0.5, 1.0) * std::pow(10.0, -6.0 * (i + j) / order);
    });
}

/// Eigenvalues 1 + 1e-10 k, and a third of them -0.5: reflections of a diagonal matrix.
inline std::vector<double> Clustered(Random& random, unsigned int order)
{
    std::vector<double> a = Symmetric(order, [](unsigned int i, unsigned int j) {
        return i != j ? 0.0 : i % 3 == 2 ? -0.5 : 1.0 + 1e-10 * i;
    });
    std::vector<double> v(order);
    std::vector<double> w(order);
    for (int reflection = 0; reflection < 3; ++reflection) {
        double square = 0.0;
        for (double& value : v) {
            value = random.Uniform(-1.0, 1.0);
            square += value * value;
        }
        // A - v w' - w v', with w = 2 (A v - (v' A v / v' v) v) / v' v.
        double inner = 0.0;
        for (unsigned int i = 0; i < order; ++i) {
            w[i] = 0.0;
            for (unsigned int j = 0; j < order; ++j)
                w[i] += 2.0 / square * a[i * order + j] * v[j];
            inner += w[i] * v[i];
        }
        for (unsigned int i = 0; i < order; ++i)
            w[i] -= inner / square * v[i];
        a = Symmetric(order, [&](unsigned int i, unsigned int j) {
            return a[i * order + j] - v[i] * w[j] - w[i] * v[j];
        });
    }
    return a;
}

/// Nearly singular from order 12 on.
inline std::vector<double> Hilbert(Random& /*random*/, unsigned int order)
{
    return Symmetric(order, [](unsigned int i, unsigned int j) { return 1.0 / (i + j + 1.0); });
}

/// Pairs of eigenvalues that agree to more and more digits.
inline std::vector<double> Wilkinson(Random& /*random*/, unsigned int order)
{
    return Symmetric(order, [=](unsigned int i, unsigned int j) {
        return i == j ? std::abs(i - (order - 1) / 2.0) : i == j + 1 ? 1.0 : 0.0;
    });
}

/// Eigenvalues 0, a double 1000, 1020 beside 1019.9, and +-1020.049: J. B. Rosser et al., 1951.
inline std::vector<double> Rosser(Random& /*random*/, unsigned int /*order*/)
{
    return {611,  196, -192, 407, -8,  -52,  -49, 29,   196, 899,  113, -192, -71,  -43, -8,   -44,
            -192, 113, 899,  196, 61,  49,   8,   52,   407, -192, 196, 611,  8,    44,  59,   -23,
            -8,   -71, 61,   8,   411, -599, 208, 208,  -52, -43,  49,  44,   -599, 411, 208,  208,
            -49,  -8,  8,    59,  208, 208,  99,  -911, 29,  -44,  52,  -23,  208,  208, -911, 99};
}

} // namespace MatrixFamilyDetail

/// All families, and the orders in which those of any order are to be tried.
inline constexpr MatrixFamily kMatrixFamilies[] = {
    {"random", MatrixFamilyDetail::Uniform},      {"graded", MatrixFamilyDetail::Graded},
    {"clustered", MatrixFamilyDetail::Clustered}, {"Hilbert", MatrixFamilyDetail::Hilbert},
    {"Wilkinson", MatrixFamilyDetail::Wilkinson}, {"Rosser", MatrixFamilyDetail::Rosser, 8},
};
inline constexpr unsigned int kMatrixOrders[] = {1, 2, 3, 5, 10, 50};

/// Calls `check(name, order, values)` for every family in every order.
template <class Check>
void ForEachMatrix(Random& random, Check check)
{
    for (const MatrixFamily& family : kMatrixFamilies) {
        if (family.onlyOrder != 0)
            check(family.name, family.onlyOrder, family.make(random, family.onlyOrder));
        for (const unsigned int order : kMatrixOrders) {
            if (family.onlyOrder == 0)
                check(family.name, order, family.make(random, order));
        }
    }
}

} // namespace norvek_test
