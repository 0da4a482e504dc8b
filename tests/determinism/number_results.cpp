#include "determinism/results.h"

#include <norvek/foundation/diminishing_functions.h>
#include <norvek/foundation/histogram.h>
#include <norvek/foundation/numerical_methods.h>
#include <norvek/foundation/quadratic.h>
#include <norvek/foundation/quadratic_equation.h>

namespace norvek_test
{

namespace
{

constexpr int kRounds = 500;

struct Quartic : IFunction1D
{
    double c[4];

    explicit Quartic(Numbers& numbers)
    {
        for (double& coefficient : c)
            coefficient = numbers.Next(2.0);
    }
    [[nodiscard]] double Evaluate(double x) const override
    {
        return (((x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
    }
};

} // namespace

std::uint64_t HashNumbersAlongALine(Numbers numbers)
{
    using Methods = MMNumericalMethods;
    Hash hash;
    MHistogram histogram;
    histogram.SetIntervals(-2.0, 2.0, 17);
    for (int i = 0; i < kRounds; ++i) {
        const Quartic f(numbers);
        double a = numbers.Next(3.0);
        double b = numbers.Next(3.0);
        double c = 0.0;
        const double x1 = a;
        const double x2 = b;
        const auto outcome = Methods::BracketExtremumOrRoot(c, a, b, Methods::EXTREMUM::Minimum, &f,
                                                            50.0, i % 2 == 0);
        hash.Add(static_cast<int>(outcome));
        hash.Add(MMPoint3d<double>(a, b, c));
        const auto minimum = Methods::EXTREMUM::Minimum;
        const double lowest = Methods::FindPointOfExtremum(a, b, c, minimum, &f, 1e-9);
        hash.Add(lowest);
        hash.Add(Methods::FindRoot(x1, x2, &f, 1e-12));
        const MMQuadraticEquation equation(f.c[0], f.c[1], f.c[2]);
        hash.Add(int{equation.GetNumRoots()});
        hash.Add(equation.GetRoot(0));
        MM1dQuadratic fit;
        hash.Add(fit.FitThroughMap({{x1, f.c[0]}, {x2, f.c[1]}, {a, f.c[2]}, {c, f.c[3]}}));
        hash.Add(fit(lowest));
        for (const auto type : {DiminishingFunctions::Linear, DiminishingFunctions::Cosine})
            hash.Add(DiminishingFunctions::DoDiminishing(x1, 0.0, 3.0, f.c[0], f.c[1], type));
        histogram.AddValue(x1, 1.0 + x2);
    }
    for (unsigned int i = 0; i < histogram.GetIntervalsCount(); ++i)
        hash.Add(histogram.GetAverageValue(i));
    hash.Add(histogram.GetStandartDeviation());
    return hash.Value();
}

} // namespace norvek_test
