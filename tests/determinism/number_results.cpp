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

struct Quartic : IFunction1D
{
    std::array<double, 4> c;

    explicit Quartic(Numbers& numbers) : c(numbers.Fill(std::array<double, 4>(), 2.0))
    {}
    [[nodiscard]] double Evaluate(double x) const override
    {
        return (((x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
    }
};

} // namespace

void HashNumbersAlongALine(Hash& hash, Numbers& numbers, int round)
{
    using Methods = MMNumericalMethods;
    constexpr auto minimum = Methods::EXTREMUM::Minimum;
    const Quartic f(numbers);
    const MMPoint3d<double> p = numbers.Point(3.0);
    MMPoint3d<double> t = p;
    hash << Methods::BracketExtremumOrRoot(t.z, t.x, t.y, minimum, &f, 50.0, round % 2 == 0) << t;
    const double lowest = Methods::FindPointOfExtremum(t.x, t.y, t.z, minimum, &f, 1e-9);
    hash << lowest << Methods::FindRoot(p.x, p.y, &f, 1e-12);
    const MMQuadraticEquation equation(f.c[0], f.c[1], f.c[2]);
    hash << equation.GetNumRoots() << equation.GetRoot(0) << equation.GetRoot(1);
    MM1dQuadratic fit;
    hash << fit.FitThroughMap({{p.x, f.c[0]}, {p.y, f.c[1]}, {p.z, f.c[2]}, {t.x, f.c[3]}});
    hash << fit(lowest);
    for (const auto type : {DiminishingFunctions::Linear, DiminishingFunctions::Cosine})
        hash << DiminishingFunctions::DoDiminishing(p.x, 0.0, 3.0, f.c[0], f.c[1], type);
    MHistogram histogram;
    histogram.SetIntervals(-2.0, 2.0, 3);
    for (const double value : f.c)
        histogram.AddValue(value, 1.0 + p.y);
    hash << histogram.GetAverageValue(1) << histogram.GetStandartDeviation();
}

} // namespace norvek_test
