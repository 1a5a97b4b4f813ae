/// @file
/// Worker of the threaded square product.
#pragma once

#include "zel/base/thread.h"

namespace zel {

class TMatrix;

/// Computes one column of the square product ResMat = SrcMat^T SrcMat / Norm: the cells (Column, j)
/// and (j, Column) for every j >= Column, without notification. Then it adds 1 to ProcStat. A
/// Column outside the source, a missing matrix, or a ResMat of another size only counts.
///
/// TMatrix::Square creates such workers; each takes further columns until none is left. Nobody may
/// change or destroy the matrices while a worker runs.
class ZEL_API TMatSq1ColThread : public TThread {
 public:
  TMatSq1ColThread() = default;
  ~TMatSq1ColThread() override;
  [[nodiscard]] std::string_view ClassName() const override;

  int Column = 1;
  double Norm = 1;
  const TMatrix* SrcMat = nullptr;
  TMatrix* ResMat = nullptr;

 protected:
  void Execute() override;
};

}  // namespace zel
