#include "border/end_grid.h"

#include <norvek/border/border_algorithms.h>

#include <algorithm>

namespace Norvek::Math::Core
{

namespace
{

using Border = M3dBorder<float, float>;
using Contour = Border::ContourType;

ContourEnd FirstEnd(const Contour& contour)
{
    return EndAt(*contour.GetFirstPoint());
}

ContourEnd LastEnd(const Contour& contour)
{
    return EndAt(*contour.GetFirstPoint()->previous);
}

// Joins contours into one target, with the very result of trying each contour of the target in
// list order.
//
// The contours of the target carry numbers that rise along the list; a contour that leaves takes
// its number with it. Two grids hold the first and the last points of the open contours, so that
// "the first contour of the list that matches" is the smallest number found at a place.
class Merger
{
public:
    Merger(Border& target, const Border& source)
        : _target(target),
          _ends(std::size_t{target.GetNumContours()} + source.GetNumContours())
    {
        _contours.reserve(std::size_t{target.GetNumContours()} + source.GetNumContours());
        for (Contour& contour : target)
            _Number(contour);
    }

    // Takes one contour of the source in.
    void Take(std::unique_ptr<Contour> piece)
    {
        if (!_CanJoin(*piece)) {
            _Append(std::move(piece));
            return;
        }
        // From the end join on the target contour carries the points of the piece.
        const std::uint32_t back = _JoinAtBack(*piece);
        if (back == EndGrid::kNone) {
            if (!_JoinInFront(*piece, EndGrid::kNone))
                _Append(std::move(piece));
            return;
        }
        Contour& carrier = *_contours[back];
        if (_JoinInFront(carrier, back)) {
            _ends.Remove(Side::Front, back);
            _target.RemoveContour(&carrier);
        } else if (!carrier.GetIsClosed()) {
            _ends.Insert(Side::Back, back, LastEnd(carrier));
        }
    }

private:
    static bool _CanJoin(const Contour& contour)
    {
        return !contour.GetIsClosed() && contour.GetNumPoints() > 0;
    }

    void _Number(Contour& contour)
    {
        const auto number = static_cast<std::uint32_t>(_contours.size());
        _contours.push_back(&contour);
        if (!_CanJoin(contour))
            return;
        _ends.Insert(Side::Front, number, FirstEnd(contour));
        _ends.Insert(Side::Back, number, LastEnd(contour));
    }

    void _Append(std::unique_ptr<Contour> piece)
    {
        _Number(*_target.AddContourAtEnd(piece.release()));
    }

    // Appends the piece to the first contour whose last point it meets and gives that contour's
    // number; its back end is then out of the grid. Of the two matched points the target's stays.
    std::uint32_t _JoinAtBack(Contour& piece)
    {
        const std::uint32_t number =
            std::min(_ends.FindFirst(Side::Back, FirstEnd(piece), EndGrid::kNone),
                     _ends.FindFirst(Side::Back, LastEnd(piece), EndGrid::kNone));
        if (number == EndGrid::kNone)
            return number;
        Contour& contour = *_contours[number];
        if (!DoEndsMeet(FirstEnd(piece), LastEnd(contour)))
            piece.Invert();
        piece.RemovePoint(piece.GetFirstPoint());
        contour.InsertAtEnd(piece);
        _ends.Remove(Side::Back, number);
        return number;
    }

    // Puts the points of the carrier in front of the first contour whose first point it meets; of
    // the two matched points the carrier's stays. `own` is the carrier's number, if it is in the
    // target: meeting itself closes it, which is no join.
    bool _JoinInFront(Contour& carrier, std::uint32_t own)
    {
        const ContourEnd first = FirstEnd(carrier);
        const ContourEnd last = LastEnd(carrier);
        const std::uint32_t number = std::min(_ends.FindFirst(Side::Front, last, own),
                                              _ends.FindFirst(Side::Front, first, own));
        if (own < number && DoEndsMeet(last, first)) {
            carrier.RemovePoint(carrier.GetFirstPoint());
            carrier.SetIsClosed(true);
            _ends.Remove(Side::Front, own);
            return false;
        }
        if (number == EndGrid::kNone)
            return false;
        Contour& contour = *_contours[number];
        if (!DoEndsMeet(last, FirstEnd(contour)))
            carrier.Invert();
        const bool hasOwnBack = contour.GetNumPoints() > 1;
        contour.RemovePoint(contour.GetFirstPoint());
        contour.InsertAtFront(carrier);
        _ends.Remove(Side::Front, number);
        _ends.Insert(Side::Front, number, FirstEnd(contour));
        if (!hasOwnBack) {
            _ends.Remove(Side::Back, number);
            _ends.Insert(Side::Back, number, LastEnd(contour));
        }
        return true;
    }

    Border& _target;
    EndGrid _ends;
    std::vector<Contour*> _contours;
};

} // namespace

} // namespace Norvek::Math::Core

template <class Coord, class Payload>
    requires(std::same_as<Coord, float>&& std::same_as<Payload, float>)
void MergeBorder(M3dBorder<Coord, Payload>& target, M3dBorder<Coord, Payload>& source)
{
    if (&target == &source)
        return;
    Norvek::Math::Core::Merger merger(target, source);
    while (source.GetFirstContour() != nullptr)
        merger.Take(source.RemoveFirstContour());
}

template void MergeBorder<float, float>(M3dBorder<float, float>&, M3dBorder<float, float>&);
