// Prints a hash over the results of each family. The hashes of different compilers and optimisation
// levels must agree; run on its own, the program checks that a second pass gives the same bits.

#include "determinism/results.h"

#include <cstdio>

int main(int argc, char**)
{
    using namespace norvek_test;
    struct Family
    {
        const char* name;
        std::uint64_t (*hash)(Numbers);
    };
    constexpr Family families[] = {
        {"points", HashPoints},
        {"numbers", HashNumbersAlongALine},
        {"transforms", HashTransforms},
        {"motions and frames", HashMotionsAndFrames},
        {"older rotations", HashOlderRotations},
        {"stacks", HashStacks},
        {"planes and lines", HashPlanesAndLines},
        {"boxes", HashBoxes},
        {"locators", HashLocators},
        {"registrations", HashRegistrations},
        {"borders", HashBorders},
        {"poly-planes", HashPolyPlanes},
        {"general matrices", HashGeneralMatrices},
        {"symmetric matrices", HashSymmetricMatrices},
        {"fixed matrices", HashFixedMatrices},
        {"least squares", HashLeastSquares},
        {"fits", HashFits},
        {"curves and surfaces", HashNurbs},
        {"curve objects", HashCurveObjects},
    };
    bool agrees = true;
    for (const Family& family : families) {
        // The seed depends on the command line so that nothing is folded at compile time.
        const auto seed = static_cast<std::uint64_t>(argc) * 20261121U;
        const std::uint64_t hash = family.hash(Numbers(seed));
        agrees = agrees && hash == family.hash(Numbers(seed));
        std::printf("hash %-18s %016llx\n", family.name, static_cast<unsigned long long>(hash));
    }
    return agrees ? 0 : 1;
}
