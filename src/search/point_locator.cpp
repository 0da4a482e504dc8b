#include <norvek/search/point_locator.h>

// Here, so that the table of virtual functions has one home.
MPointLocator::~MPointLocator() = default;
