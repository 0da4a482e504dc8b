#include <norvek/transform/orientation_codes.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace
{

using Code = std::wstring;

bool IsIn(wchar_t letter, const Code& letters)
{
    return letters.find(letter) != Code::npos;
}

// All strings of three letters of both cases, X and one that is none.
std::set<Code> AllCodes()
{
    const Code alphabet = L"APLRTBXaplrtbxQ";
    std::set<Code> codes;
    for (std::size_t i = 0; i < 15 * 15 * 15; ++i)
        codes.insert({alphabet[i / 225], alphabet[i / 15 % 15], alphabet[i % 15]});
    return codes;
}

// Of the directions in the frame of R, B and P; 0 where one of the letters is no capital direction.
double Determinant(const Code& code)
{
    Eigen::Matrix3d axes = Eigen::Matrix3d::Zero();
    for (std::size_t i = 0; i < 9; ++i)
        axes.data()[i] =
            (code[i / 3] == L"RBP"[i % 3] ? 1 : 0) - (code[i / 3] == L"LTA"[i % 3] ? 1 : 0);
    return axes.determinant();
}

TEST(OrientationCodes, ValidityCompletenessAndAxialityOverAllCodes)
{
    // Which earlier letter excludes which later ones.
    std::set<Code> clashes;
    for (const Code g : {L"APap", L"PApa", L"LRlr", L"RLrl", L"TBtb", L"BTbt"})
        clashes.insert({{g[0], g[0]}, {g[0], g[1]}, {g[0], g[3]}, {g[2], g[2]}});
    for (const Code& c : AllCodes()) {
        const bool valid = !IsIn(L'Q', c) && !clashes.contains({c[0], c[1]}) &&
                           !clashes.contains({c[0], c[2]}) && !clashes.contains({c[1], c[2]});
        const bool complete = c.find_first_of(L"XxQ") == Code::npos &&
                              std::set<wchar_t>(c.begin(), c.end()).size() == 3;
        const bool across = IsIn(c[2], L"TBtb") ||
                            (IsIn(c[2], L"Xx") && !IsIn(c[0], L"TBtb") && !IsIn(c[1], L"TBtb"));
        EXPECT_EQ(IsOrientationValid(c.c_str()), valid) << c;
        EXPECT_EQ(IsOrientationComplete(c.c_str()), complete) << c;
        EXPECT_EQ(IsOrientationAxial(c.c_str()), valid && across) << c;
    }
}

TEST(OrientationCodes, HandednessIsTheDeterminantAndRepairReachesIt)
{
    for (const Code& c : AllCodes()) {
        const double determinant = Determinant(c);
        const bool rightHanded = IsOrientationRightHanded(c.c_str());
        EXPECT_TRUE(determinant == 0.0 || rightHanded == (determinant > 0.0)) << c;
        Code code = c;
        const bool repaired = MAAK_RECHTSHANDIG(code.data());
        const bool isUpper = c.find_first_of(L"aplrtbx") == Code::npos;
        EXPECT_TRUE(!isUpper || repaired == (determinant != 0.0)) << c;
        EXPECT_TRUE(!repaired || code == (rightHanded ? c : Code{c[0], GetOpposite(c[1]), c[2]}));
    }
    // What is no capital direction is off its home axis and positive.
    for (const Code code : {L"XXX", L"rbp", L"qQ ", L"RBP and more", L"LXX", L"RXX", L"RBX"}) {
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
        auto letter = static_cast<wchar_t>(c);
        const auto at = letters.find(letter);
        const wchar_t expected = at == Code::npos ? L'X' : letters[at % 6 ^ 1];
        wchar_t out = 0;
        GetOpposite(out, letter);
        EXPECT_EQ(out, expected) << c;
        EXPECT_EQ(letter, at == Code::npos ? L'X' : static_cast<wchar_t>(c));
        GetOpposite(letter, letter);
        EXPECT_EQ(letter, expected);
    }
}

TEST(OrientationCodes, ShortStringsAndNullAreNoCodes)
{
    const auto expectNoCode = [](wchar_t* code) {
        EXPECT_FALSE(IsOrientationValid(code) || IsOrientationComplete(code) ||
                     IsOrientationAxial(code) || IsOrientationRightHanded(code) ||
                     IsOrientationRightHandedValid(code) || MAAK_RECHTSHANDIG(code));
    };
    expectNoCode(nullptr);
    for (const Code text : {L"", L"Q", L"RR"}) {
        // Storage that ends with the string, so that a sanitizer sees what reads past it.
        const auto code = std::make_unique<wchar_t[]>(text.size() + 1);
        text.copy(code.get(), text.size());
        expectNoCode(code.get());
        EXPECT_EQ(code.get(), text);
        EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(code.get(), code.get(), 1), 0);
        EXPECT_EQ(code.get(), text == L"RR" ? L"RL" : text);
    }
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(nullptr, L"RBP", 1), 0);
    wchar_t longer[] = L"?RBP and more";
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(longer + 1, longer + 1, 0), 1);
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(longer, longer + 1, 2), 0);
    EXPECT_EQ(longer, Code(L"RTP and more"));
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(longer + 1, longer, 0), 0);
    EXPECT_EQ(longer, Code(L"RRTP and more"));
    EXPECT_EQ(ORIENTATIE_MET_SPIEGEL(longer, nullptr, 1), 0);
    EXPECT_EQ(longer, Code());
}

} // namespace
