#include "support/numbers.h"

#include "support/failure.h"

#include <charconv>
#include <cmath>

namespace example
{

std::vector<double> Numbers(const std::string& option, const std::string& text, std::size_t count)
{
    std::vector<double> numbers;
    const char* next = text.data();
    const char* const end = next + text.size();
    bool isWhole = false;
    while (true) {
        double value = 0.0;
        const auto [stop, error] = std::from_chars(next, end, value);
        if (error != std::errc() || !(std::abs(value) <= kLargestNumber))
            break;
        numbers.push_back(value);
        isWhole = stop == end;
        if (isWhole || *stop != ',')
            break;
        next = stop + 1;
    }
    if (!isWhole || numbers.size() != count)
        throw Failure(option + " takes " + std::to_string(count) +
                      (count == 1 ? " number" : " numbers with commas between") + ", not '" + text +
                      "'");
    return numbers;
}

} // namespace example
