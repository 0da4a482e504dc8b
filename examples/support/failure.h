#pragma once

#include <stdexcept>

namespace example
{

/// A failure that the user can mend; its text is the one line that the program prints.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace example
