#include <norvek/transform/orientation_codes.h>

#include <cwchar>

namespace
{

constexpr int kNumAxes = 3;

// No further character is looked at behind a zero.
bool HasThreeLetters(const wchar_t* code)
{
    return code != nullptr && code[0] != 0 && code[1] != 0 && code[2] != 0;
}

// Only a to z, where all letters of the alphabet are: towupper() follows the locale, which any
// thread of the program can change, and a code must mean the same everywhere.
wchar_t ToUpper(wchar_t letter)
{
    return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
}

// In either case.
bool IsDirection(wchar_t letter)
{
    return GetOpposite(letter) != L'X';
}

bool IsTopOrBottom(wchar_t letter)
{
    const wchar_t upper = ToUpper(letter);
    return upper == L'B' || upper == L'T';
}

// The letters as written: a small letter is on no home axis, and positive.
int CountOffHome(const wchar_t* code)
{
    const bool xIsHome = code[0] == L'R' || code[0] == L'L';
    const bool yIsHome = code[1] == L'B' || code[1] == L'T';
    const bool zIsHome = code[2] == L'P' || code[2] == L'A';
    return (xIsHome ? 0 : 1) + (yIsHome ? 0 : 1) + (zIsHome ? 0 : 1);
}

int CountNegative(const wchar_t* code)
{
    int count = 0;
    for (int i = 0; i < kNumAxes; ++i)
        count += code[i] == L'L' || code[i] == L'T' || code[i] == L'A' ? 1 : 0;
    return count;
}

// A letter without an opposite becomes X before it is compared: another of its kind stays (QRQ
// becomes XRQ).
void ClearConflicts(wchar_t* code, int axis)
{
    wchar_t opposite = 0;
    GetOpposite(opposite, code[axis]);
    for (int other = 0; other < kNumAxes; ++other)
        if (other != axis && (code[other] == code[axis] || code[other] == opposite))
            code[other] = L'X';
}

} // namespace

wchar_t GetOpposite(wchar_t letter)
{
    switch (ToUpper(letter)) {
    case L'A':
        return L'P';
    case L'P':
        return L'A';
    case L'L':
        return L'R';
    case L'R':
        return L'L';
    case L'T':
        return L'B';
    case L'B':
        return L'T';
    default:
        return L'X';
    }
}

void GetOpposite(wchar_t& out, wchar_t& in)
{
    const wchar_t opposite = GetOpposite(in);
    out = opposite;
    if (opposite == L'X')
        in = L'X';
}

// The opposite in upper case is compared with the letter as written: an opposite is found only
// behind a capital letter, and the same letter in the other case is no repeat. This is meant;
// callers keep codes in mixed case that were valid before.
bool IsOrientationValid(const wchar_t* code)
{
    if (!HasThreeLetters(code))
        return false;
    for (int i = 0; i < kNumAxes; ++i) {
        if (ToUpper(code[i]) == L'X')
            continue;
        if (!IsDirection(code[i]))
            return false;
        for (int later = i + 1; later < kNumAxes; ++later)
            if (code[later] == code[i] || GetOpposite(code[later]) == code[i])
                return false;
    }
    return true;
}

// Opposites are left to the test of validity.
bool IsOrientationComplete(const wchar_t* code)
{
    if (!HasThreeLetters(code))
        return false;
    return IsDirection(code[0]) && IsDirection(code[1]) && IsDirection(code[2]) &&
           code[0] != code[1] && code[0] != code[2] && code[1] != code[2];
}

bool IsOrientationAxial(const wchar_t* code)
{
    if (!IsOrientationValid(code))
        return false;
    if (IsTopOrBottom(code[2]))
        return true;
    return ToUpper(code[2]) == L'X' && !IsTopOrBottom(code[0]) && !IsTopOrBottom(code[1]);
}

// The home frame is right-handed. Each axis that is turned round changes that, and so does the
// exchange of two; three letters off home are a cyclic permutation, which does not.
bool IsOrientationRightHanded(const wchar_t* code)
{
    if (!IsOrientationRightHandedValid(code))
        return false;
    const int numExchanges = CountOffHome(code) == 2 ? 1 : 0;
    return (CountNegative(code) + numExchanges) % 2 == 0;
}

// One letter alone cannot be away from home: no permutation moves a single axis.
bool IsOrientationRightHandedValid(const wchar_t* code)
{
    return HasThreeLetters(code) && CountOffHome(code) != 1;
}

bool MAAK_RECHTSHANDIG(wchar_t* code)
{
    if (!HasThreeLetters(code))
        return false;
    ClearConflicts(code, 0);
    ClearConflicts(code, 1);
    if (!IsDirection(code[0]) || !IsDirection(code[1]) || !IsDirection(code[2]))
        return false;
    // Turned round once and not tested again: in mixed case the code may still not be right-handed,
    // and counts as repaired (RBp becomes RTp).
    if (!IsOrientationRightHanded(code))
        code[1] = GetOpposite(code[1]);
    return true;
}

// Moved, not copied: the strings may overlap, and a copy from the front would then run over the
// terminating zero and never find it. That zero is not a y letter to be turned round.
unsigned char ORIENTATIE_MET_SPIEGEL(wchar_t* out, const wchar_t* in, unsigned char mirror)
{
    if (out == nullptr)
        return 0;
    const wchar_t* const source = in == nullptr ? L"" : in;
    std::wmemmove(out, source, std::wcslen(source) + 1);
    if (mirror != 0 && out[0] != 0 && out[1] != 0)
        out[1] = GetOpposite(out[1]);
    return IsOrientationRightHanded(out) ? 1 : 0;
}
