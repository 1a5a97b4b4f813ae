/// @file
/// Tables that hold whatever a table can hold, and their comparison.
#pragma once

#include "tests/support/testing.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel::test {

/// Up to so many bytes: printable ones, some that forms write in another way, or any.
inline std::string randomText(std::mt19937_64& random, std::size_t most) {
  constexpr std::string_view kOften[] = {
      "a0", " ", "% <&]]>", "\xC3\xA4\xF0\x9F\x98\x80", ";=", "\"", "\\", "\t", "\r\n"};
  const auto kind = random() % 3;
  std::string text;
  for (auto k = random() % (most + 1); k > 0; --k) {
    text += kind == 2 && random() % 2 ? std::string(1, static_cast<char>(random() % 256))
                                      : kOften[random() % (kind == 0 ? 5 : 9)];
  }
  return text.substr(0, most);
}

inline void makeRandom(TDataTable& T, std::mt19937_64& random) {
  using Limits = std::numeric_limits<double>;
  const double values[] = {
      0,   -0.0, Limits::denorm_min(), -Limits::max(),     Limits::infinity(), 0.1,
      2.5, 0,    -Limits::infinity(),  Limits::quiet_NaN()};
  const std::uint8_t states[] = {0, 0, 2, 64, 34, static_cast<std::uint8_t>(random())};
  const std::string comments[] = {"", "a \"comment\"; ", "Exported by ZEL TDataTable component: x",
                                  randomText(random, 90)};
  T.Resize(static_cast<int>(random() % 5) + 1, static_cast<int>(random() % 9) + 1);
  T.SetFComment(comments[random() % 4]);
  const bool isPlain = random() % 4 == 0;
  for (int c = 1; c <= T.NrOfColumns(); ++c) {
    if (random() % 2) T.SetColAttrib(c, static_cast<int>(random()));
    if (!isPlain) T.SetColName(c, randomText(random, 50));
    T.SetMScaleType(c, stOrdinal);
    for (auto k = random() % 9; k > 0; --k) {
      T.SetNominalID(c, static_cast<int>(random() % 150) + 1, randomText(random, 10));
    }
    T.SetMScaleType(c, static_cast<TMScaleType>(random() % 5));
    for (int r = 1; r <= T.NrOfRows(); ++r) {
      T.SetElem(c, r, random() % 3 == 0 ? std::bit_cast<double>(random()) : values[random() % 10]);
      T.SetCellState(c, r, states[random() % 6]);
    }
  }
  for (int r = 1; r <= T.NrOfRows(); ++r) {
    if (!isPlain) T.SetRowName(r, randomText(random, 50));
    if (random() % 2) T.SetRowAttrib(r, static_cast<int>(random()));
  }
}

/// Sizes, names, attributes, scales, slots of identifiers, states and the bits of values are the
/// same, where one not-a-number is like another.
inline void expectIdentical(TDataTable& A, TDataTable& B) {
  ASSERT_EQ(A.NumericData->NrOfColumns(), B.NumericData->NrOfColumns());
  ASSERT_EQ(A.NumericData->NrOfRows(), B.NumericData->NrOfRows());
  EXPECT_EQ(A.CRCofNamesAndAttributes(), B.CRCofNamesAndAttributes());
  EXPECT_EQ(A.CRCofCellStates(), B.CRCofCellStates());
  for (int c = 1; c <= A.NrOfColumns(); ++c) {
    EXPECT_EQ(A.GetColAttrib(c), B.GetColAttrib(c));
    for (int r = 1; r <= A.NrOfRows(); ++r) {
      EXPECT_EQ(A.GetRowAttrib(r), B.GetRowAttrib(r));
      const double a = A.NumericData->GetVal(c, r), b = B.NumericData->GetVal(c, r);
      EXPECT_TRUE(std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
                  (a != a && b != b))
          << c << ' ' << r << ": " << a << ' ' << b;
    }
    const TMScaleType scale = A.GetMScaleType(c);
    for (TDataTable* T : {&A, &B}) T->SetMScaleType(c, stNominal);
    for (int k = 1; k <= 150; ++k) EXPECT_EQ(A.GetNominalID(c, k), B.GetNominalID(c, k));
    for (TDataTable* T : {&A, &B}) T->SetMScaleType(c, scale);
  }
}

}  // namespace zel::test
