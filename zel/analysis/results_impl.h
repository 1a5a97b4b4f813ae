/// @file
/// Results on their way into vectors and matrices. Internal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <variant>
#include <vector>

#include "zel/base/array.h"
#include "zel/kernels/dense.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel::detail {

using Numbers = std::vector<double>;

/// Results of one routine: their storage is made first, so that a failed allocation leaves all
/// objects alone, then the objects take it over. A missing object (null) takes nothing.
class TResults {
 public:
  /// Storage for a vector, to be filled before the commit; empty for a missing one.
  template <class T>
  std::span<T> Add(TNumVector<T>* to, std::size_t n) {
    if (!to) return {};
    TDynArray<T, 1> contents;
    contents.SetLength(std::max<std::size_t>(n, 1));
    auto& result = FResults.emplace_back(ForVector<T>{to, std::move(contents)});
    return {std::get<ForVector<T>>(result).contents.data(), n};
  }
  /// The same for a matrix.
  kernels::Matrix Add(TMatrix* to, std::size_t rows, std::size_t columns) {
    if (!to) return {};
    TDouble2DArray contents;
    contents.SetLength(std::max<std::size_t>(columns, 1), std::max<std::size_t>(rows, 1));
    auto& result = FResults.emplace_back(ForMatrix{to, std::move(contents), rows, columns});
    return {std::get<ForMatrix>(result).contents.data(), rows, columns, rows};
  }
  /// Copies of what is there.
  void Add(TVector* to, const Numbers& values) {
    if (to) std::ranges::copy(values, Add<double>(to, values.size()).begin());
  }
  void Add(TMatrix* to, kernels::ConstMatrix values) {
    const kernels::Matrix room = Add(to, values.rows, values.columns);
    for (std::size_t c = 0; c < room.columns; ++c) std::ranges::copy(values[c], room.column(c));
  }

  /// The elements of a vector, for results that leave its size alone.
  template <class T>
  static std::span<T> ElementsOf(TNumVector<T>& to) {
    return to.Cells();
  }
  /// Once such results are there.
  template <class T>
  static void Filled(TNumVector<T>& to) {
    to.MarkWritten();
    to.Changed();
  }

  /// Hands the storage over, then fires OnChange of each object in the order of the results.
  void Commit() {
    for (auto& result : FResults) std::visit([](auto& r) { r.Commit(); }, result);
    for (auto& result : FResults) std::visit([](auto& r) { r.to->Changed(); }, result);
  }

 private:
  template <class T>
  struct ForVector {
    TNumVector<T>* to;
    TDynArray<T, 1> contents;
    void Commit() { to->TakeOver(contents); }
  };
  struct ForMatrix {
    TMatrix* to;
    TDouble2DArray contents;
    std::size_t rows, columns;
    void Commit() {
      TNumMatrix<double>& matrix = *to;
      matrix.TakeOver(contents, static_cast<int>(columns), static_cast<int>(rows));
    }
  };

  std::vector<std::variant<ForVector<double>, ForVector<int>, ForMatrix>> FResults;
};

}  // namespace zel::detail
