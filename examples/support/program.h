#pragma once

#include "support/failure.h"

#include <exception>
#include <iostream>

namespace example
{

/// The main function of an example: reads the options (a type with `isHelpWanted`), then prints the
/// help or runs the job. What fails ends in one line on the error stream. Returns the exit status.
template <typename Options>
int RunProgram(const char* name, const char* help, Options (*read)(int, char**),
               void (*run)(const Options&), int argc, char** argv)
{
    try {
        const Options options = read(argc, argv);
        if (options.isHelpWanted)
            std::cout << help;
        else
            run(options);
        if (!std::cout.flush())
            throw Failure("cannot write the report");
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << name << ": " << failure.what() << '\n';
        return 1;
    }
}

} // namespace example
