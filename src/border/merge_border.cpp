#include "border/end_grid.h"

#include <norvek/border/border_algorithms.h>

#include <algorithm>
#include <array>

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
        Piece piece;
        for (Contour& contour : target) {
            _LookUp(contour, piece);
            _Number(contour, piece);
        }
    }

    // Takes all contours of the source in, one after another. Those to come are looked up some
    // steps ahead, so that the memory of the grid arrives in time.
    void TakeAll(Border& source)
    {
        std::array<Piece, kLookAhead> pieces;
        std::size_t begin = 0;
        std::size_t end = 0;
        for (; begin < end || source.GetFirstContour() != nullptr; ++begin) {
            for (; end < begin + kLookAhead && source.GetFirstContour() != nullptr; ++end) {
                Piece& piece = pieces[end % kLookAhead];
                piece.contour = source.RemoveFirstContour();
                _LookUp(*piece.contour, piece);
            }
            const Piece& soon = pieces[(begin + kLookAhead / 2) % kLookAhead];
            _ends.Prefetch(soon.first);
            _ends.Prefetch(soon.last);
            _Take(pieces[begin % kLookAhead]);
        }
    }

private:
    // A contour of the source on its way; without one, just the places of two ends.
    struct Piece
    {
        std::unique_ptr<Contour> contour;
        EndGrid::Probe first;
        EndGrid::Probe last;
    };

    static constexpr std::size_t kLookAhead = 8;

    // Prepares the searches for the ends of a contour; one that cannot join is never searched for.
    void _LookUp(const Contour& contour, Piece& piece) const
    {
        if (!_CanJoin(contour))
            return;
        _ends.MakeProbe(FirstEnd(contour), piece.first);
        _ends.MakeProbe(LastEnd(contour), piece.last);
    }

    // Both searches come before the first change: they need the places of the ends only, which the
    // grid has at hand.
    void _Take(Piece& piece)
    {
        if (!_CanJoin(*piece.contour)) {
            _Append(piece);
            return;
        }
        const std::uint32_t back = _FindFirst(Side::Back, piece.first, piece.last, EndGrid::kNone);
        if (back != EndGrid::kNone) {
            _Carry(back, piece);
            return;
        }
        const std::uint32_t front =
            _FindFirst(Side::Front, piece.first, piece.last, EndGrid::kNone);
        if (front != EndGrid::kNone)
            _JoinInFront(front, *piece.contour, piece.first, piece.last);
        else
            _Append(piece);
    }

    // The end join: the target contour `back` carries the points of the piece from here on, and is
    // tried in front of the others.
    void _Carry(std::uint32_t back, Piece& piece)
    {
        const ContourEnd matched = _ends.At(Side::Back, back);
        const bool isReversed = !DoEndsMeet(piece.first.end, matched);
        EndGrid::Probe first;
        _ends.MakeProbe(_ends.At(Side::Front, back), first);
        EndGrid::Probe& last = isReversed ? piece.first : piece.last;
        // A single point goes without a trace: the matched point stays the last one.
        if (piece.contour->GetNumPoints() == 1)
            _ends.MakeProbe(matched, last);
        const std::uint32_t front = _FindFirst(Side::Front, first, last, back);
        Contour& carrier = *_contours[back];
        _JoinAtBack(carrier, *piece.contour, isReversed);
        _ends.Remove(Side::Back, back);
        if (back < front && DoEndsMeet(last.end, first.end)) {
            // Meeting itself before any other: the carrier is closed and joins no more.
            carrier.RemovePoint(carrier.GetFirstPoint());
            carrier.SetIsClosed(true);
            _ends.Remove(Side::Front, back);
        } else if (front != EndGrid::kNone) {
            _ends.Remove(Side::Front, back);
            _JoinInFront(front, carrier, first, last);
            _target.RemoveContour(&carrier);
        } else {
            _ends.Insert(Side::Back, back, last);
        }
    }

    static bool _CanJoin(const Contour& contour)
    {
        return !contour.GetIsClosed() && contour.GetNumPoints() > 0;
    }

    void _Number(Contour& contour, const Piece& piece)
    {
        const auto number = static_cast<std::uint32_t>(_contours.size());
        _contours.push_back(&contour);
        if (!_CanJoin(contour))
            return;
        _ends.Insert(Side::Front, number, piece.first);
        _ends.Insert(Side::Back, number, piece.last);
    }

    void _Append(Piece& piece)
    {
        _Number(*_target.AddContourAtEnd(piece.contour.release()), piece);
    }

    // The first contour of the list, `excluded` left out, whose end on that side meets a or b.
    [[nodiscard]] std::uint32_t _FindFirst(Side side, const EndGrid::Probe& a,
                                           const EndGrid::Probe& b, std::uint32_t excluded) const
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

    // Puts the carrier, whose ends are given, in front of a contour. Of the two matched points that
    // of the carrier stays.
    void _JoinInFront(std::uint32_t number, Contour& carrier, const EndGrid::Probe& first,
                      const EndGrid::Probe& last)
    {
        const bool isReversed = !DoEndsMeet(last.end, _ends.At(Side::Front, number));
        if (isReversed)
            carrier.Invert();
        Contour& contour = *_contours[number];
        const bool hasOwnBack = contour.GetNumPoints() > 1;
        contour.RemovePoint(contour.GetFirstPoint());
        contour.InsertAtFront(carrier);
        _ends.Move(Side::Front, number, isReversed ? last : first);
        if (!hasOwnBack)
            _ends.Move(Side::Back, number, isReversed ? first : last);
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
    Norvek::Math::Core::Merger(target, source).TakeAll(source);
}

template void MergeBorder<float, float>(M3dBorder<float, float>&, M3dBorder<float, float>&);
