#include <norvek/polyplane/poly_plane_exception.h>

MPolyPlaneException::~MPolyPlaneException() = default;

const char* MPolyPlaneException::what() const noexcept
{
    return "The planes of the sector have no single common point.";
}
