/// @file
/// Arrays of any rank as blocks of cells: what all families of array routines share. Internal.
#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/errors.h"
#include "zel/base/guard_impl.h"
#include "zel/kernels/dense.h"

namespace zel::detail {

/// Status codes.
inline constexpr int kDone = 0;
inline constexpr int kEmpty = -1;
inline constexpr int kInvalid = -2;

template <int Rank>
using TExtents = std::array<std::size_t, static_cast<std::size_t>(Rank)>;
/// One index for each dimension, as a caller gives them.
template <int Rank>
using TCorner = std::array<int, static_cast<std::size_t>(Rank)>;

template <int Rank>
[[nodiscard]] std::size_t CountOf(const TExtents<Rank>& extents) {
  std::size_t n = 1;
  for (const std::size_t extent : extents) n *= extent;
  return n;
}

/// The cells of an array, last index fastest.
template <class T, int Rank>
struct TBlock {
  T* data = nullptr;
  TExtents<Rank> extents{};

  [[nodiscard]] std::size_t size() const { return CountOf<Rank>(extents); }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] std::span<T> cells() const { return {data, size()}; }
  operator TBlock<const T, Rank>() const requires(!std::is_const_v<T>) { return {data, extents}; }
};

template <class T>
[[nodiscard]] TBlock<T, 1> BlockOf(std::span<T> a) {
  return {a.data(), {a.size()}};
}
template <class T>
[[nodiscard]] TBlock<T, 1> BlockOf(std::vector<T>& a) {
  return {a.data(), {a.size()}};
}
template <int Rank, class T>
[[nodiscard]] TExtents<Rank> ExtentsOf(const TDynArray<T, Rank>& a) {
  TExtents<Rank> extents;
  for (int d = 0; d < Rank; ++d) extents[static_cast<std::size_t>(d)] = a.Length(d);
  return extents;
}
template <class T, int Rank>
[[nodiscard]] TBlock<T, Rank> BlockOf(TDynArray<T, Rank>& a) {
  return {a.data(), ExtentsOf<Rank>(a)};
}
template <class T, int Rank>
[[nodiscard]] TBlock<const T, Rank> BlockOf(const TDynArray<T, Rank>& a) {
  return {a.data(), ExtentsOf<Rank>(a)};
}

/// The view of a two-dimensional array [column][row] as a matrix.
template <class T>
[[nodiscard]] kernels::MatrixSpan<T> MatrixOf(const TBlock<T, 2>& a) {
  return {a.data, a.extents[1], a.extents[0], a.extents[1]};
}
template <class T>
[[nodiscard]] kernels::MatrixSpan<T> MatrixOf(TDynArray<T, 2>& a) {
  return MatrixOf(BlockOf(a));
}
template <class T>
[[nodiscard]] kernels::MatrixSpan<const T> MatrixOf(const TDynArray<T, 2>& a) {
  return MatrixOf(BlockOf(a));
}

/// Runs an operation; an allocation that fails in it raises EZELError with "<routine>: not enough
/// memory".
template <class Operation>
decltype(auto) GuardArrays(const char* routine, Operation&& operation) {
  return GuardMemory(std::forward<Operation>(operation),
                     [&] { return EZELError(std::string(routine) + ": not enough memory"); });
}

/// A range of cells: its low corner and how many indices it has in each dimension.
template <int Rank>
struct TBox {
  TExtents<Rank> low{};
  TExtents<Rank> counts{};
};

/// Checks the corners of a range and makes it the box.
/// @return a status code
template <class T, int Rank>
[[nodiscard]] int TakeBox(const TBlock<T, Rank>& a, const TCorner<Rank>& low,
                          const TCorner<Rank>& high, TBox<Rank>& box) {
  if (a.empty()) return kEmpty;
  for (std::size_t d = 0; d < Rank; ++d) {
    if (low[d] < 0 || low[d] > high[d] || static_cast<std::size_t>(high[d]) >= a.extents[d]) {
      return kInvalid;
    }
    box.low[d] = static_cast<std::size_t>(low[d]);
    box.counts[d] = static_cast<std::size_t>(high[d]) - box.low[d] + 1;
  }
  return kDone;
}

/// Calls use(aRun, bRun) for the runs of contiguous cells of two boxes of the same shape, in order.
template <class A, class B, int Rank, class Use>
void ForEachRunPair(const TBlock<A, Rank>& a, const TExtents<Rank>& aLow, const TBlock<B, Rank>& b,
                    const TExtents<Rank>& bLow, const TExtents<Rank>& counts, Use&& use) {
  constexpr std::size_t kLast = Rank - 1;
  TExtents<Rank> aStrides;
  TExtents<Rank> bStrides;
  aStrides[kLast] = bStrides[kLast] = 1;
  for (std::size_t d = kLast; d > 0; --d) {
    aStrides[d - 1] = aStrides[d] * a.extents[d];
    bStrides[d - 1] = bStrides[d] * b.extents[d];
  }
  // Trailing dimensions that both boxes have whole belong to the runs.
  std::size_t outer = kLast;
  while (outer > 0 && counts[outer] == a.extents[outer] && counts[outer] == b.extents[outer]) {
    --outer;
  }
  const std::size_t length = counts[outer] * aStrides[outer];
  std::size_t aOffset = 0;
  std::size_t bOffset = 0;
  for (std::size_t d = 0; d < Rank; ++d) {
    aOffset += aLow[d] * aStrides[d];
    bOffset += bLow[d] * bStrides[d];
  }
  TExtents<Rank> index{};
  for (;;) {
    use(std::span<A>(a.data + aOffset, length), std::span<B>(b.data + bOffset, length));
    std::size_t d = outer;
    for (; d > 0; --d) {
      aOffset += aStrides[d - 1];
      bOffset += bStrides[d - 1];
      if (++index[d - 1] < counts[d - 1]) break;
      aOffset -= counts[d - 1] * aStrides[d - 1];
      bOffset -= counts[d - 1] * bStrides[d - 1];
      index[d - 1] = 0;
    }
    if (d == 0) return;
  }
}

/// Calls use(run) for each run of contiguous cells of a box, in order.
template <class T, int Rank, class Use>
void ForEachRun(const TBlock<T, Rank>& a, const TBox<Rank>& box, Use&& use) {
  ForEachRunPair(a, box.low, a, box.low, box.counts,
                 [&](std::span<T> run, std::span<T>) { use(run); });
}

/// A copy of the cells of a box in order.
template <class T, int Rank>
TDynArray<T, 1> CopyOfCells(const char* routine, const TBlock<const T, Rank>& a,
                            const TBox<Rank>& box) {
  TDynArray<T, 1> copy;
  GuardArrays(routine, [&] { copy.resize(CountOf<Rank>(box.counts)); });
  T* next = copy.data();
  ForEachRun(a, box, [&](std::span<const T> run) { next = std::ranges::copy(run, next).out; });
  return copy;
}

/// Calls use(cells) with the cells of a box in order, copied if they are not contiguous.
template <class T, int Rank, class Use>
decltype(auto) WithCells(const char* routine, const TBlock<const T, Rank>& a, const TBox<Rank>& box,
                         Use&& use) {
  // Contiguous are any indices of one dimension, of one index in each before and all in each after
  // it.
  std::size_t d = 0;
  while (d + 1 < Rank && box.counts[d] == 1) ++d;
  while (d + 1 < Rank && box.counts[d + 1] == a.extents[d + 1]) ++d;
  if (d + 1 == Rank) {
    std::span<const T> cells;
    ForEachRun(a, box, [&](std::span<const T> run) { cells = run; });
    return use(cells);
  }
  const auto copy = CopyOfCells(routine, a, box);
  return use(std::span<const T>(copy));
}

template <class T>
void SetExtents(std::vector<T>& a, const TExtents<1>& extents) {
  a.resize(extents[0]);
}
template <class T, int Rank>
void SetExtents(TDynArray<T, Rank>& a, const TExtents<Rank>& extents) {
  std::apply([&](auto... n) { a.SetLength(n...); }, extents);
}

/// Gives a result its extents and calls fill(data) to write each of its cells. A result that has
/// the extents already is written in place, so it may be an operand of an operation cell by cell;
/// any other is replaced when it is complete, and may be any operand.
template <class Result, class Extents, class Fill>
int StoreResult(const char* routine, const Extents& extents, Result& result, Fill&& fill) {
  if (BlockOf(result).extents == extents) {
    fill(result.data());
    return kDone;
  }
  Result fresh;
  GuardArrays(routine, [&] { SetExtents(fresh, extents); });
  fill(fresh.data());
  result = std::move(fresh);
  return kDone;
}

/// True if two ranges of cells share storage.
template <class A, class B>
[[nodiscard]] bool Overlap(std::span<A> a, std::span<B> b) {
  const void* const aEnd = a.data() + a.size();
  const void* const bEnd = b.data() + b.size();
  const std::less<const void*> before;
  return !a.empty() && !b.empty() && before(a.data(), bEnd) && before(b.data(), aEnd);
}

}  // namespace zel::detail
