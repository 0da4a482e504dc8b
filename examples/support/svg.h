#pragma once

#include <array>
#include <fstream>
#include <string>

namespace example
{

/// Red, green and blue, each 0 to 255.
using Colour = std::array<int, 3>;

/// The colour as "#rrggbb".
std::string Hex(const Colour& colour);

/// Text as it may stand between tags.
std::string Escaped(const std::string& text);

/// An SVG file on a white sheet, written from the top. What is drawn goes to `Out`.
class SvgFile
{
public:
    /// Begins a sheet of `width` by `height` units.
    SvgFile(const std::string& path, double width, double height);

    /// Where the drawing goes.
    std::ostream& Out()
    {
        return _out;
    }

    /// Writes one line of text that begins at (x, y) unless `attributes` anchor it elsewhere.
    void Text(double x, double y, const std::string& text, const char* attributes = "");

    /// Ends the sheet; throws `Failure` when it could not be written whole.
    void Close();

private:
    std::string _path;
    std::ofstream _out;
};

} // namespace example
