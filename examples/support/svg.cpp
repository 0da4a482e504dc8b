#include "support/svg.h"

#include "support/failure.h"
#include "support/text.h"

namespace example
{

std::string Hex(const Colour& colour)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "#";
    for (const int part : colour)
        text += {digits[part / 16], digits[part % 16]};
    return text;
}

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
        escaped += c == '<' ? std::string("&lt;") : c == '&' ? "&amp;" : std::string(1, c);
    return escaped;
}

SvgFile::SvgFile(const std::string& path, double width, double height)
    : _path(path),
      _out(path, std::ios::binary)
{
    _out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << Fixed(width, 0) << ' '
         << Fixed(height, 0)
         << "\" font-family=\"Helvetica,Arial,sans-serif\" font-size=\"14\" fill=\"#222\">\n"
         << "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
}

void SvgFile::Text(double x, double y, const std::string& text, const char* attributes)
{
    _out << "<text x=\"" << Fixed(x, 1) << "\" y=\"" << Fixed(y, 1) << "\" " << attributes << '>'
         << Escaped(text) << "</text>\n";
}

void SvgFile::Close()
{
    _out << "</svg>\n";
    if (!_out.flush())
        throw Failure("cannot write " + _path);
}

} // namespace example
