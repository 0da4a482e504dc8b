#include <norvek/curve/nurbs.h>

namespace
{

struct Text
{
    std::int32_t code;
    const wchar_t* text;
};

// "Measurment" is spelt so: callers compare the texts.
constexpr Text kErrors[] = {
    {Nurbs::kMemoryError, L"Memory Error"},
    {Nurbs::kMeasurementPointError, L"Measurment Point Error"},
    {Nurbs::kParametrisationError, L"Parametrisation Error"},
    {Nurbs::kCloseStatusErrorU, L"Close Status Error in u direction"},
    {Nurbs::kCloseStatusErrorV, L"Close Status Error in v direction"},
    {Nurbs::kOrderErrorU, L"u - order Error"},
    {Nurbs::kOrderErrorV, L"v - order Error"},
    {Nurbs::kControlPointsErrorU, L"Number of Control Points Error in u-direction"},
    {Nurbs::kControlPointsErrorV, L"Number of Control Points Error in v-direction"},
    {Nurbs::kLeastSquareFitError, L"Least Square Fit Error"},
};

constexpr Text kWarnings[] = {
    {Nurbs::kParametrisationWarning, L"Curve Parametrisation Warning"},
    {Nurbs::kCloseStatusWarningU, L"Close status in u-direction Warning"},
    {Nurbs::kCloseStatusWarningV, L"Close status in v-direction Warning"},
    {Nurbs::kOrderWarningU, L"Order in u-direction Warning"},
    {Nurbs::kOrderWarningV, L"Order in v-direction Warning"},
    {Nurbs::kControlPointsWarningU, L"Number of Control Points in u-direction Warning"},
    {Nurbs::kControlPointsWarningV, L"Number of Control Points in v-direction Warning"},
};

const wchar_t* ErrorText(std::int32_t error)
{
    for (const Text& candidate : kErrors) {
        if (candidate.code == error)
            return candidate.text;
    }
    return L"Unknown Error";
}

} // namespace

bool NURBS_ERROR_HANDLING(std::wstring& message, std::int32_t status)
{
    const std::int32_t error = status & Nurbs::kErrorMask;
    if (error != Nurbs::kNoError)
        message = ErrorText(error);
    // Each text replaces the one before, also the error's: the highest warning is what callers
    // show.
    for (const Text& warning : kWarnings) {
        if ((status & warning.code) != 0)
            message = warning.text;
    }
    return error != Nurbs::kNoError;
}
