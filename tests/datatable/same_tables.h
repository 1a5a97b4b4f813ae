/// @file
/// Comparison of tables.
#pragma once

#include <gtest/gtest.h>

#include <bit>

#include "zel/datatable/Zel_datatable.h"

namespace zel::test {

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
