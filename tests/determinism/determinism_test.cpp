// Prints a hash over the results of each family. The hashes of different compilers and optimisation
// levels must agree; run on its own, the program checks that a second pass gives the same bits.

#include "determinism/results.h"

#include <cstdio>

namespace
{

using namespace norvek_test;

struct NamedFamily
{
    const char* name;
    Family* hashRound;
    int rounds;
};

constexpr NamedFamily kFamilies[] = {
    {"points", HashPoints, 2000},
    {"numbers", HashNumbersAlongALine, 500},
    {"transforms", HashTransforms, 2000},
    {"motions and frames", HashMotionsAndFrames, 2000},
    {"older rotations", HashOlderRotations, 2000},
    {"stacks", HashStacks, 500},
    {"planes and lines", HashPlanesAndLines, 2000},
    {"boxes", HashBoxes, 2000},
    {"locators", HashLocators, 20},
    {"registrations", HashRegistrations, 3600},
    {"borders", HashBorders, 200},
    {"poly-planes", HashPolyPlanes, 200},
    {"general matrices", HashGeneralMatrices, 100},
    {"symmetric matrices", HashSymmetricMatrices, 100},
    {"fixed matrices", HashFixedMatrices, 2000},
    {"least squares", HashLeastSquares, 100},
    {"fits", HashFits, 500},
    {"curves and surfaces", HashNurbs, 60},
    {"curve objects", HashCurveObjects, 40},
};

std::uint64_t HashAll(const NamedFamily& family, std::uint64_t seed)
{
    Hash hash;
    Numbers numbers(seed);
    for (int round = 0; round < family.rounds; ++round)
        family.hashRound(hash, numbers, round);
    return hash.Value();
}

} // namespace

int main(int argc, char**)
{
    bool agrees = true;
    for (const NamedFamily& family : kFamilies) {
        // The seed depends on the command line so that nothing is folded at compile time.
        const auto seed = static_cast<std::uint64_t>(argc) * 20261121U;
        const std::uint64_t hash = HashAll(family, seed);
        agrees = agrees && hash == HashAll(family, seed);
        std::printf("hash %-18s %016llx\n", family.name, static_cast<unsigned long long>(hash));
    }
    return agrees ? 0 : 1;
}
