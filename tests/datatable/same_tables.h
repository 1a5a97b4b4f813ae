/// @file
/// Comparison of tables.
#pragma once

#include <gtest/gtest.h>

#include "zel/datatable/Zel_datatable.h"

namespace zel::test {

/// Sizes, names, attributes, scales, identifiers, states and values are the same.
inline void expectSame(const TDataTable& A, const TDataTable& B) {
  ASSERT_EQ(A.NrOfColumns(), B.NrOfColumns());
  ASSERT_EQ(A.NrOfRows(), B.NrOfRows());
  EXPECT_EQ(A.CRCofNamesAndAttributes(), B.CRCofNamesAndAttributes());
  EXPECT_EQ(A.CRCofCellStates(), B.CRCofCellStates());
  TDouble2DArray a, b;
  A.CopyDataToArray(a);
  B.CopyDataToArray(b);
  EXPECT_EQ(a, b);
}

}  // namespace zel::test
