#include "support/text.h"

#include <iomanip>
#include <sstream>

namespace example
{

std::string Fixed(double value, int digits)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

std::string ShortNumber(double value)
{
    const std::string text = Fixed(value, 6);
    const std::size_t last = text.find_last_not_of('0');
    return text.substr(0, text[last] == '.' ? last : last + 1);
}

} // namespace example
