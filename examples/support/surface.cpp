#include "support/surface.h"

#include "support/failure.h"
#include "support/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <string_view>

namespace example
{

namespace
{

constexpr std::size_t kMegabyte = 1000000;

// The words of a text, line by line, with the line number for complaints.
class Lines
{
public:
    Lines(std::string_view text, std::string_view name, Progress& progress)
        : _rest(text),
          _name(name),
          _size(text.size()),
          _progress(progress)
    {}

    bool Next()
    {
        if (_rest.empty())
            return false;
        const std::size_t end = _rest.find('\n');
        _line = _rest.substr(0, end);
        _rest = end == std::string_view::npos ? std::string_view() : _rest.substr(end + 1);
        ++_number;
        if (const std::size_t megabytes = (_size - _rest.size()) / kMegabyte; megabytes > _shown) {
            _shown = megabytes;
            _progress.Show(megabytes, _size / kMegabyte, " MB");
        }
        return true;
    }

    std::string_view Word()
    {
        constexpr std::string_view blanks = " \t\r";
        const std::size_t start = std::min(_line.find_first_not_of(blanks), _line.size());
        const std::size_t end = std::min(_line.find_first_of(blanks, start), _line.size());
        const std::string_view word = _line.substr(start, end - start);
        _line = _line.substr(end);
        return word;
    }

    double Number(std::string_view word) const
    {
        double value = 0.0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error == std::errc::invalid_argument || end != word.data() + word.size() ||
            std::isnan(value))
            Complain("'" + std::string(word) + "' is not a number");
        if (error != std::errc() || std::abs(value) > kLargestNumber)
            Complain("'" + std::string(word) + "' is out of range");
        return value;
    }

    double Number()
    {
        const std::string_view word = Word();
        if (word.empty())
            Complain("a number is missing");
        return Number(word);
    }

    [[noreturn]] void Complain(const std::string& what) const
    {
        throw Failure(std::string(_name) + ", line " + std::to_string(_number) + ": " + what);
    }

private:
    std::string_view _rest;
    std::string_view _line;
    std::string_view _name;
    std::size_t _number = 0;
    std::size_t _size;
    std::size_t _shown = 0;
    Progress& _progress;
};

std::string LowerCase(std::string_view word)
{
    std::string result(word);
    for (char& c : result)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

struct GridHeader
{
    double columns = 0;
    double rows = 0;
    double dx = 0;
    double dy = 0;
    double x = 0;
    double y = 0;
    double noData = std::numeric_limits<double>::quiet_NaN();

    // False when the word is no header word, that is, when the heights begin.
    bool Take(const std::string& word, Lines& lines)
    {
        if (word == "ncols")
            columns = lines.Number();
        else if (word == "nrows")
            rows = lines.Number();
        else if (word == "cellsize")
            dx = dy = lines.Number();
        else if (word == "dx")
            dx = lines.Number();
        else if (word == "dy")
            dy = lines.Number();
        else if (word == "xllcenter" || word == "xllcorner")
            x = lines.Number();
        else if (word == "yllcenter" || word == "yllcorner")
            y = lines.Number();
        else if (word == "nodata_value")
            noData = lines.Number();
        else
            return false;
        return true;
    }

    void Check(const Lines& lines) const
    {
        const auto isCount = [](double n) {
            return n >= 2 && n <= 65536 && n == std::floor(n);
        };
        if (!isCount(columns) || !isCount(rows))
            lines.Complain("ncols and nrows must be whole numbers from 2 to 65536");
        if (!(dx > 0) || !(dy > 0))
            lines.Complain("cellsize, or dx and dy, must be positive");
    }
};

constexpr std::uint32_t kNoPoint = std::numeric_limits<std::uint32_t>::max();

void AddCells(Surface& surface, const std::vector<std::uint32_t>& numbers, std::size_t columns)
{
    const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        if (a != kNoPoint && b != kNoPoint && c != kNoPoint)
            surface.triangles.push_back({a, b, c});
    };
    for (std::size_t i = columns; i < numbers.size(); ++i) {
        if (i % columns == 0)
            continue;
        const std::uint32_t northWest = numbers[i - columns - 1];
        const std::uint32_t northEast = numbers[i - columns];
        const std::uint32_t southWest = numbers[i - 1];
        const std::uint32_t southEast = numbers[i];
        add(southWest, southEast, northEast);
        add(southWest, northEast, northWest);
    }
}

void ReadGrid(Lines& lines, Surface& surface)
{
    GridHeader header;
    std::string_view word;
    while (true) {
        if (!lines.Next())
            lines.Complain("the grid has no heights");
        word = lines.Word();
        if (!word.empty() && !header.Take(LowerCase(word), lines))
            break;
        if (const std::string_view extra = lines.Word(); !extra.empty())
            lines.Complain("'" + std::string(extra) + "' is one word too many");
    }
    header.Check(lines);
    const auto columns = static_cast<std::size_t>(header.columns);
    const auto count = columns * static_cast<std::size_t>(header.rows);
    std::vector<std::uint32_t> numbers;
    while (true) {
        for (; !word.empty(); word = lines.Word()) {
            if (numbers.size() == count)
                lines.Complain("there are more heights than ncols times nrows");
            const double z = lines.Number(word);
            const std::size_t row = numbers.size() / columns;
            const std::size_t column = numbers.size() % columns;
            const bool isHole = z == header.noData;
            numbers.push_back(isHole ? kNoPoint
                                     : static_cast<std::uint32_t>(surface.points.size()));
            if (!isHole)
                surface.points.emplace_back(
                    header.x + static_cast<double>(column) * header.dx,
                    header.y + (header.rows - 1 - static_cast<double>(row)) * header.dy, z);
        }
        if (!lines.Next())
            break;
        word = lines.Word();
    }
    if (numbers.size() < count)
        lines.Complain("the grid ends after " + std::to_string(numbers.size()) + " of " +
                       std::to_string(count) + " heights");
    surface.isHeightGrid = true;
    AddCells(surface, numbers, columns);
}

// A corner of a face, "7", "7/2" or "7/2/5", counted from 1, or backwards from -1.
std::uint32_t CornerNumber(std::string_view word, const Lines& lines, std::size_t numPoints)
{
    const std::string_view digits = word.substr(0, word.find('/'));
    const double number = lines.Number(digits);
    const auto count = static_cast<double>(numPoints);
    const double index = number < 0 ? count + number : number - 1;
    if (number != std::floor(number) || index < 0 || index >= count)
        lines.Complain("there is no point " + std::string(digits));
    return static_cast<std::uint32_t>(index);
}

void ReadMesh(Lines& lines, Surface& surface)
{
    while (lines.Next()) {
        const std::string_view kind = lines.Word();
        if (kind == "v") {
            const double x = lines.Number();
            const double y = lines.Number();
            const double z = lines.Number();
            surface.points.emplace_back(x, y, z);
        } else if (kind == "f") {
            std::vector<std::uint32_t> corners;
            for (std::string_view word = lines.Word(); !word.empty(); word = lines.Word())
                corners.push_back(CornerNumber(word, lines, surface.points.size()));
            if (corners.size() < 3)
                lines.Complain("a face needs three corners");
            for (std::size_t i = 2; i < corners.size(); ++i)
                surface.triangles.push_back({corners[0], corners[i - 1], corners[i]});
        }
    }
}

void Reduce(Surface& surface)
{
    for (const MMPoint3d<double>& point : surface.points)
        surface.box.AddPoint(point);
    surface.centre = surface.box.GetCenter();
    for (MMPoint3d<double>& point : surface.points)
        point -= surface.centre;
    surface.box.Set(surface.box.GetCornerMin() - surface.centre,
                    surface.box.GetCornerMax() - surface.centre);
}

} // namespace

Surface ReadSurface(const std::string& path, Progress& progress)
{
    std::ifstream file(path, std::ios::binary);
    // A folder opens like a file, and reading it fails.
    file.peek();
    if (!file.is_open() || file.bad())
        throw Failure("cannot read " + path);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (text.empty())
        throw Failure(path + " is empty");
    Lines lines(text, path, progress);
    Surface surface;
    if (path.size() >= 4 && LowerCase(path.substr(path.size() - 4)) == ".obj")
        ReadMesh(lines, surface);
    else
        ReadGrid(lines, surface);
    if (surface.triangles.empty())
        throw Failure(path + " holds no surface: it has no triangle");
    Reduce(surface);
    return surface;
}

} // namespace example
