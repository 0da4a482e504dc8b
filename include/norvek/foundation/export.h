#pragma once

/// @file
/// The export macro of the library.
///
/// The shared library hides every symbol that does not carry `NORVEK_MATH_API`. A program that
/// links the static library has `NORVEK_MATH_STATIC` defined for it by the CMake package.

/// Marks what the shared library exports.
#if defined(NORVEK_MATH_STATIC)
#define NORVEK_MATH_API
#elif defined(_WIN32) && defined(NORVEK_MATH_BUILDING)
#define NORVEK_MATH_API __declspec(dllexport)
#elif defined(_WIN32)
#define NORVEK_MATH_API __declspec(dllimport)
#else
#define NORVEK_MATH_API __attribute__((visibility("default")))
#endif
