#include <norvek/transform/orientation_codes.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace
{

using Code = std::wstring;

bool IsIn(wchar_t letter, const Code& letters)
{
    return letters.find(letter) != Code::npos;
}

// All strings of three letters of both cases, X and one that is none; and what is left of them
// where a terminator takes the place of a letter.
std::set<Code> AllCodes()
{
    const Code alphabet = Code(L"APLRTBXaplrtbxQ") + L'\0';
    std::set<Code> codes;
    for (std::size_t i = 0; i < 16 * 16 * 16; ++i)
        codes.insert({alphabet[i / 256], alphabet[i / 16 % 16], alphabet[i % 16]});
    return codes;
}

bool IsShort(const Code& code)
{
    return IsIn(L'\0', code);
}

TEST(OrientationCodes, ValidityCompletenessAndAxialityOverAllCodes)
{
    // Which earlier letter excludes which later ones.
    std::set<Code> clashes;
    for (const Code g : {L"APap", L"PApa", L"LRlr", L"RLrl", L"TBtb", L"BTbt"})
        clashes.insert({{g[0], g[0]}, {g[0], g[1]}, {g[0], g[3]}, {g[2], g[2]}});
    for (const Code& c : AllCodes()) {
        const bool valid = !IsIn(L'Q', c) && !IsShort(c) && !clashes.contains({c[0], c[1]}) &&
                           !clashes.contains({c[0], c[2]}) && !clashes.contains({c[1], c[2]});
        const bool complete = c.find_first_of(L"XxQ") == Code::npos && !IsShort(c) &&
                              std::set<wchar_t>(c.begin(), c.end()).size() == 3;
        const bool across = IsIn(c[2], L"TBtb") ||
                            (IsIn(c[2], L"Xx") && !IsIn(c[0], L"TBtb") && !IsIn(c[1], L"TBtb"));
        EXPECT_EQ(IsOrientationValid(c.c_str()), valid) << c;
        EXPECT_EQ(IsOrientationComplete(c.c_str()), complete) << c;
        EXPECT_EQ(IsOrientationAxial(c.c_str()), valid && across) << c;
    }
    EXPECT_FALSE(IsOrientationValid(nullptr) || IsOrientationComplete(nullptr) ||
                 IsOrientationAxial(nullptr));
}

TEST(OrientationCodes, HandednessIsTheDeterminantAndRepairReachesIt)
{
    for (const Code& c : AllCodes()) {
        // The directions in the frame of R, B and P, as far as they are capital letters.
        const auto axes = Eigen::Matrix3d::NullaryExpr([&](auto axis, auto i) {
            const wchar_t letter = c[static_cast<std::size_t>(i)];
            return letter == L"RBP"[axis] ? 1.0 : letter == L"LTA"[axis] ? -1.0 : 0.0;
        });
        const double determinant = axes.determinant();
        const bool rightHanded = IsOrientationRightHanded(c.c_str());
        EXPECT_TRUE(determinant == 0.0 || rightHanded == (determinant > 0.0)) << c;
        EXPECT_FALSE(IsShort(c) && (rightHanded || IsOrientationRightHandedValid(c.c_str())));
        Code code = c;
        const bool repaired = MAAK_RECHTSHANDIG(code.data());
        const bool isUpper = c.find_first_of(L"aplrtbx") == Code::npos;
        EXPECT_TRUE(!isUpper || repaired == (determinant != 0.0)) << c;
        EXPECT_TRUE(!repaired || code == (rightHanded ? c : Code{c[0], GetOpposite(c[1]), c[2]}));
        EXPECT_TRUE(!IsShort(c) || code == c);
    }
    EXPECT_FALSE(IsOrientationRightHanded(nullptr) || MAAK_RECHTSHANDIG(nullptr));
    // What is no capital direction is off its home axis and positive.
    for (const Code code : {L"XXX", L"rbp", L"RBP and more", L"LXX", L"RXX", L"RBX"}) {
        EXPECT_EQ(IsOrientationRightHandedValid(code.c_str()), code != L"RBX") << code;
        EXPECT_EQ(IsOrientationRightHanded(code.c_str()), code != L"RBX" && code != L"RXX") << code;
    }
    const Code rows[][2] = {{L"LBP", L"LTP"}, {L"RRP", L"RXP"}, {L"QRQ", L"XRQ"}, {L"RAP", L"RAX"},
                            {L"lRL", L"lXL"}, {L"RBp", L"RTp"}, {L"rRp", L"rRp"}, {L"xBx", L"XBx"}};
    for (const auto& [before, after] : rows) {
        Code code = before;
        EXPECT_EQ(MAAK_RECHTSHANDIG(code.data()), after.find_first_of(L"Xx") == Code::npos) << code;
        EXPECT_EQ(code, after);
    }
}

TEST(OrientationCodes, OppositesArePairsInAsciiOnly)
{
    const Code letters = L"APLRTBaplrtb";
    for (int c = -1; c < 0x3000; ++c) {
        const auto given = static_cast<wchar_t>(c);
        const auto at = letters.find(given);
        wchar_t letter = given;
        wchar_t out = 0;
        GetOpposite(out, letter);
        EXPECT_EQ(out, at == Code::npos ? L'X' : letters[at % 6 ^ 1]) << c;
        EXPECT_EQ(letter, at == Code::npos ? L'X' : given);
    }
}

TEST(OrientationCodes, MirrorsInPlaceAndToEitherSide)
{
    wchar_t text[] = L"?RBP and more";
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text + 1, text + 1, 0), 1);
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text, text + 1, 2), 0);
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text + 1, text, 0), 0);
    EXPECT_EQ(text, Code(L"RRTP and more"));
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text, L"Q", 1), 0);
    EXPECT_EQ(text, Code(L"Q"));
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text, L"RR", 1), 0);
    EXPECT_EQ(text, Code(L"RL"));
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(text, nullptr, 1), 0);
    EXPECT_EQ(text, Code());
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(nullptr, L"RBP", 1), 0);
}

} // namespace
