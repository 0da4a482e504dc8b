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

    // Takes one contour of the source in. Both searches come before the first change: they need the
    // places of the ends only, which the grid has at hand.
    void Take(std::unique_ptr<Contour> piece)
    {
        if (!_CanJoin(*piece)) {
            _Append(std::move(piece));
            return;
        }
        const ContourEnd first = FirstEnd(*piece);
        const ContourEnd last = LastEnd(*piece);
        const std::uint32_t back = _FindFirst(Side::Back, first, last, EndGrid::kNone);
        if (back == EndGrid::kNone) {
            const std::uint32_t front = _FindFirst(Side::Front, first, last, EndGrid::kNone);
            if (front == EndGrid::kNone)
                _Append(std::move(piece));
            else
                _JoinInFront(front, *piece, !DoEndsMeet(last, _ends.At(Side::Front, front)));
            return;
        }
        // From the end join on the target contour carries the points of the piece.
        const ContourEnd carrierFirst = _ends.At(Side::Front, back);
        const ContourEnd matched = _ends.At(Side::Back, back);
        const bool isReversed = !DoEndsMeet(first, matched);
        ContourEnd carrierLast = isReversed ? first : last;
        if (piece->GetNumPoints() == 1)
            carrierLast = matched;
        const std::uint32_t front = _FindFirst(Side::Front, carrierFirst, carrierLast, back);
        Contour& carrier = *_contours[back];
        _JoinAtBack(carrier, *piece, isReversed);
        _ends.Remove(Side::Back, back);
        if (back < front && DoEndsMeet(carrierLast, carrierFirst)) {
            // Meeting itself before any other: the carrier is closed and joins no more.
            carrier.RemovePoint(carrier.GetFirstPoint());
            carrier.SetIsClosed(true);
            _ends.Remove(Side::Front, back);
        } else if (front != EndGrid::kNone) {
            _ends.Remove(Side::Front, back);
            _JoinInFront(front, carrier, !DoEndsMeet(carrierLast, _ends.At(Side::Front, front)));
            _target.RemoveContour(&carrier);
        } else {
            _ends.Insert(Side::Back, back, carrierLast);
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

    // The first contour of the list, `excluded` left out, whose end on that side meets a or b.
    [[nodiscard]] std::uint32_t _FindFirst(Side side, const ContourEnd& a, const ContourEnd& b,
                                           std::uint32_t excluded) const
    {
        return std::min(_ends.FindFirst(side, a, excluded), _ends.FindFirst(side, b, excluded));
    }

    // Of the two matched points that of the contour stays.
    static void _JoinAtBack(Contour& contour, Contour& piece, bool isReversed)
    {
        if (isReversed)
            piece.Invert();
        piece.RemovePoint(piece.GetFirstPoint());
        contour.InsertAtEnd(piece);
    }

    // Of the two matched points that of the carrier stays.
    void _JoinInFront(std::uint32_t number, Contour& carrier, bool isReversed)
    {
        if (isReversed)
            carrier.Invert();
        Contour& contour = *_contours[number];
        const bool hasOwnBack = contour.GetNumPoints() > 1;
        contour.RemovePoint(contour.GetFirstPoint());
        contour.InsertAtFront(carrier);
        _ends.Remove(Side::Front, number);
        _ends.Insert(Side::Front, number, FirstEnd(contour));
        if (!hasOwnBack) {
            _ends.Remove(Side::Back, number);
            _ends.Insert(Side::Back, number, LastEnd(contour));
        }
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
