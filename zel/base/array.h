/// @file
/// Dynamic arrays. One dimension: std::vector, or TDynArray<T, 1> where addressable bytes or
/// aligned storage matter. Two to four dimensions: TDynArray<T, Rank>, rectangular, one contiguous
/// block.
#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "zel/base/errors.h"
#include "zel/base/storage.h"
#include "zel/base/types.h"

namespace zel {

namespace detail {

template <class T, int Rank>
struct NestedList {
  using type = std::initializer_list<typename NestedList<T, Rank - 1>::type>;
};
template <class T>
struct NestedList<T, 1> {
  using type = std::initializer_list<T>;
};

/// Classes that say so of themselves: T() is all bits zero.
template <class T>
concept ZeroIsAllBitsZero = std::is_trivially_copyable_v<T> && requires {
  requires T::kZeroIsAllBitsZero;
};

/// Cells whose zero is all bits zero and that can be moved as bytes.
template <class T>
inline constexpr bool kPlainCell =
    std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_pointer_v<T> || ZeroIsAllBitsZero<T>;

}  // namespace detail

/// View of a block of cells of one rank; what TDynArray of a higher rank yields for one index.
/// Valid until the array changes its size.
template <class T, int Rank>
class TDynView {
 public:
  TDynView(T* data, const std::size_t* extents) : FData(data), FExtents(extents) {}

  /// Extent of a dimension of the view, the first numbered 0.
  [[nodiscard]] std::size_t Length(int dim = 0) const { return FExtents[dim]; }
  [[nodiscard]] std::size_t size() const {
    std::size_t n = 1;
    for (int d = 0; d < Rank; ++d) n *= FExtents[d];
    return n;
  }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] T* data() const { return FData; }
  [[nodiscard]] T* begin() const { return FData; }
  [[nodiscard]] T* end() const { return FData + size(); }

  /// Part with the given first index: a span for a view of rank 2, a view of one rank less above.
  [[nodiscard]] auto operator[](std::size_t i) const {
    const std::size_t* rest = FExtents + 1;
    if constexpr (Rank == 2) {
      return std::span<T>(FData + i * rest[0], rest[0]);
    } else {
      TDynView<T, Rank - 1> part(FData, rest);
      return TDynView<T, Rank - 1>(FData + i * part.size(), rest);
    }
  }

 private:
  T* FData;
  const std::size_t* FExtents;
};

/// Rectangular array of Rank dimensions in one contiguous 64-byte aligned block, last index
/// fastest.
///
/// Indices start at 0 and are not checked. New cells are 0 (T() for other types). Extents are
/// checked for overflow before anything is allocated. Growing along the first index is amortised
/// like std::vector::push_back; growing along another index moves each kept cell at most once, in
/// place where the block has room. A failed resize leaves the array as it was.
template <class T, int Rank>
class TDynArray {
  static_assert(Rank >= 1 && Rank <= 4);

 public:
  using value_type = T;
  using size_type = std::size_t;
  using iterator = T*;
  using const_iterator = const T*;

  TDynArray() = default;

  /// Array of the given extents, every cell 0.
  template <std::integral... N>
  requires(sizeof...(N) == Rank) explicit TDynArray(N... extents) { SetLength(extents...); }

  /// From nested braces: TDouble2DArray{{1, 2}, {3, 4}} has two columns of two cells.
  /// @throws EZELError  if inner lists differ in length
  TDynArray(typename detail::NestedList<T, Rank>::type cells) {
    Shape shape{};
    MeasureList<Rank>(cells, shape, true);
    Reshape(shape);
    T* next = FData;
    CopyList<Rank>(cells, next);
  }

  /// One-dimensional arrays from any range of cells.
  explicit TDynArray(std::span<const T> cells) requires(Rank == 1) {
    Reshape({cells.size()});
    std::copy(cells.begin(), cells.end(), FData);
  }

  TDynArray(const TDynArray& other) {
    Reshape(other.FShape);
    std::copy(other.begin(), other.end(), FData);
  }
  TDynArray(TDynArray&& other) noexcept { swap(other); }
  TDynArray& operator=(const TDynArray& other) {
    if (this != &other) {
      TDynArray copy(other);
      swap(copy);
    }
    return *this;
  }
  TDynArray& operator=(TDynArray&& other) noexcept {
    TDynArray taken(std::move(other));
    swap(taken);
    return *this;
  }
  ~TDynArray() { DestroyBlock(FData, FCapacity); }

  void swap(TDynArray& other) noexcept {
    std::swap(FData, other.FData);
    std::swap(FShape, other.FShape);
    std::swap(FCapacity, other.FCapacity);
  }
  friend void swap(TDynArray& a, TDynArray& b) noexcept { a.swap(b); }

  /// Extent of a dimension, the first numbered 0.
  [[nodiscard]] std::size_t Length(int dim = 0) const {
    return FShape[static_cast<std::size_t>(dim)];
  }
  /// Number of cells.
  [[nodiscard]] std::size_t size() const {
    std::size_t n = 1;
    for (const std::size_t extent : FShape) n *= extent;
    return n;
  }
  /// True if some extent is 0.
  [[nodiscard]] bool empty() const { return size() == 0; }
  /// Cells that fit without a new allocation.
  [[nodiscard]] std::size_t capacity() const { return FCapacity; }

  /// Sets the extents; cells that both shapes have keep their values, new cells are 0.
  /// @throws std::length_error  for a negative extent or a product beyond the address space
  /// @throws std::bad_alloc
  template <std::integral... N>
  requires(sizeof...(N) == Rank) void SetLength(N... extents) {
    Reshape({CheckedExtent(extents)...});
  }

  /// Inserts a cell of 0 before place `at` of the last dimension, in each of the arrays that the
  /// other indices number: a row in an array [column][row]. One pass over the cells; amortised
  /// growth.
  /// @param at  not beyond the extent
  /// @throws std::length_error, std::bad_alloc  the array is unchanged then
  void InsertLast(std::size_t at) {
    const std::size_t length = FShape[Rank - 1];
    const std::size_t lines = Lines();
    Shape shape = FShape;
    ++shape[Rank - 1];
    const std::size_t cells = CheckedSize(shape);
    if (cells > FCapacity) {
      const std::size_t room = RoomFor(cells);
      T* block = CreateBlock(room);
      ForEachPiece(lines, length, at, false, [&](std::size_t k, T* first, T* last) {
        std::move(first, last, block + (first - FData) + k);
      });
      DestroyBlock(FData, FCapacity);
      FData = block;
      FCapacity = room;
    } else {
      ForEachPiece(lines, length, at, true, [&](std::size_t k, T* first, T* last) {
        if (k == 0) return;
        std::move_backward(first, last, last + k);
        first[k - 1] = T();
      });
    }
    FShape = shape;
  }
  /// Removes a cell of the last dimension, in each of the arrays that the other indices number.
  /// @param at  below the extent
  void EraseLast(std::size_t at) {
    const std::size_t lines = Lines();
    const std::size_t old = size();
    // The removed cell is the first one of each piece but the first.
    ForEachPiece(lines, FShape[Rank - 1], at, false, [&](std::size_t k, T* first, T* last) {
      if (k > 0 && first != last) std::move(first + 1, last, first + 1 - k);
    });
    --FShape[Rank - 1];
    ResetCells(FData + size(), FData + old);
  }

  void clear() { Reshape({}); }

  [[nodiscard]] T* data() { return FData; }
  [[nodiscard]] const T* data() const { return FData; }
  [[nodiscard]] iterator begin() { return FData; }
  [[nodiscard]] iterator end() { return FData + size(); }
  [[nodiscard]] const_iterator begin() const { return FData; }
  [[nodiscard]] const_iterator end() const { return FData + size(); }

  /// The cell (rank 1), one contiguous column (rank 2), a view of one rank less (rank 3 and 4).
  [[nodiscard]] decltype(auto) operator[](std::size_t i) { return Part(FData, i); }
  [[nodiscard]] decltype(auto) operator[](std::size_t i) const {
    return Part(static_cast<const T*>(FData), i);
  }
  /// The cell with these indices, one per dimension.
  template <std::integral... I>
  requires(sizeof...(I) == Rank) [[nodiscard]] T& operator()(I... index) {
    return FData[Offset(index...)];
  }
  template <std::integral... I>
  requires(sizeof...(I) == Rank) [[nodiscard]] const T& operator()(I... index) const {
    return FData[Offset(index...)];
  }

  [[nodiscard]] bool operator==(const TDynArray& other) const {
    return FShape == other.FShape && std::equal(begin(), end(), other.begin());
  }

  // The interface of a vector, for one dimension.
  void resize(std::size_t n) requires(Rank == 1) { Reshape({n}); }
  void resize(std::size_t n, const T& value) requires(Rank == 1) {
    const T kept = value;
    const std::size_t old = size();
    Reshape({n});
    if (n > old) std::fill(FData + old, FData + n, kept);
  }
  void assign(std::size_t n, const T& value) requires(Rank == 1) {
    const T kept = value;
    Reshape({n});
    std::fill(begin(), end(), kept);
  }
  void push_back(const T& value) requires(Rank == 1) {
    const T kept = value;
    const std::size_t old = size();
    if (old >= CheckedRoom()) throw std::length_error("TDynArray: extents too large");
    Reshape({old + 1});
    FData[old] = kept;
  }
  void pop_back() requires(Rank == 1) { Reshape({size() - 1}); }
  [[nodiscard]] T& front() requires(Rank == 1) { return FData[0]; }
  [[nodiscard]] T& back() requires(Rank == 1) { return FData[size() - 1]; }
  [[nodiscard]] const T& front() const requires(Rank == 1) { return FData[0]; }
  [[nodiscard]] const T& back() const requires(Rank == 1) { return FData[size() - 1]; }

  friend std::ostream& operator<<(std::ostream& out, const TDynArray& a) {
    const T* next = a.FData;
    Print<0>(out, a.FShape, next);
    return out;
  }

 private:
  using Shape = std::array<std::size_t, Rank>;

  template <std::integral N>
  static std::size_t CheckedExtent(N n) {
    if constexpr (std::is_signed_v<N>) {
      if (n < 0) throw std::length_error("TDynArray: negative extent");
    }
    return static_cast<std::size_t>(n);
  }

  /// Number of cells of a shape.
  static std::size_t CheckedSize(const Shape& shape) {
    constexpr std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    std::size_t n = 1;
    for (const std::size_t extent : shape) {
      if (extent != 0 && n > most / extent) throw std::length_error("TDynArray: extents too large");
      n *= extent;
    }
    return n;
  }

  static T* CreateBlock(std::size_t cells) {
    if (cells == 0) return nullptr;
    T* block = static_cast<T*>(detail::AllocateZeroed(cells * sizeof(T)));
    if constexpr (!detail::kPlainCell<T>) {
      try {
        std::uninitialized_value_construct_n(block, cells);
      } catch (...) {
        detail::ReleaseStorage(block);
        throw;
      }
    }
    return block;
  }
  static void DestroyBlock(T* block, std::size_t cells) noexcept {
    if constexpr (!detail::kPlainCell<T>) std::destroy_n(block, cells);
    detail::ReleaseStorage(block);
  }

  /// Cells that form one contiguous run in both shapes: the product of the trailing extents that
  /// agree, times the shorter of the first pair that does not.
  struct Overlap {
    std::size_t run = 1;  // contiguous cells kept together
    int outer = Rank;     // dimensions that number the runs
  };
  static Overlap FindOverlap(const Shape& from, const Shape& to) {
    Overlap o;
    while (o.outer > 0) {
      --o.outer;
      const auto d = static_cast<std::size_t>(o.outer);
      o.run *= std::min(from[d], to[d]);
      if (from[d] != to[d]) break;
    }
    return o;
  }

  /// Calls move(fromOffset, toOffset) for every run that both shapes have, in the given direction.
  template <class Move>
  static void ForEachRun(const Shape& from, const Shape& to, int outer, bool backward,
                         Move&& move) {
    std::size_t runs = 1;
    for (int d = 0; d < outer; ++d) {
      runs *= std::min(from[static_cast<std::size_t>(d)], to[static_cast<std::size_t>(d)]);
    }
    for (std::size_t k = 0; k < runs; ++k) {
      std::size_t rest = backward ? runs - 1 - k : k;
      Shape index{};
      for (int d = outer - 1; d >= 0; --d) {
        const auto e = static_cast<std::size_t>(d);
        const std::size_t extent = std::min(from[e], to[e]);
        index[e] = rest % extent;
        rest /= extent;
      }
      std::size_t fromOffset = 0;
      std::size_t toOffset = 0;
      for (std::size_t d = 0; d < Rank; ++d) {
        fromOffset = fromOffset * from[d] + index[d];
        toOffset = toOffset * to[d] + index[d];
      }
      move(fromOffset, toOffset);
    }
  }

  /// Number of arrays along the last dimension.
  [[nodiscard]] std::size_t Lines() const {
    std::size_t n = 1;
    for (std::size_t d = 0; d + 1 < Rank; ++d) n *= FShape[d];
    return n;
  }
  /// Calls move(k, first, last) for the pieces between the cells at a place of the last dimension,
  /// k = 0..lines: the end of one array and the start of the next one lie together.
  template <class Move>
  void ForEachPiece(std::size_t lines, std::size_t length, std::size_t at, bool backward,
                    Move&& move) {
    for (std::size_t i = 0; i <= lines; ++i) {
      const std::size_t k = backward ? lines - i : i;
      T* const first = k == 0 ? FData : FData + (k - 1) * length + at;
      T* const last = k == lines ? FData + lines * length : FData + k * length + at;
      move(k, first, last);
    }
  }
  /// Cells to allocate when an array grows that will grow again.
  [[nodiscard]] std::size_t RoomFor(std::size_t cells) const {
    return std::max(cells, std::min(FCapacity + FCapacity / 2, CheckedRoom()));
  }

  void Reshape(const Shape& shape) {
    if (shape == FShape) return;
    const std::size_t cells = CheckedSize(shape);
    const std::size_t old = size();
    const bool nothingKept = old == 0 || cells == 0;
    if (cells > FCapacity) {
      // Geometric growth only when an array grows that already holds cells.
      std::size_t room = cells;
      if (!nothingKept && FindOverlap(FShape, shape).outer == 0) {
        room = RoomFor(cells);
      }
      T* block = CreateBlock(room);
      if (!nothingKept) {
        const Overlap o = FindOverlap(FShape, shape);
        ForEachRun(FShape, shape, o.outer, false, [&](std::size_t from, std::size_t to) {
          std::move(FData + from, FData + from + o.run, block + to);
        });
      }
      DestroyBlock(FData, FCapacity);
      FData = block;
      FCapacity = room;
    } else if (nothingKept) {
      ResetCells(FData, FData + old);
    } else {
      ReshapeInPlace(shape, old);
    }
    FShape = shape;
  }

  static std::size_t CheckedRoom() {
    return std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
  }

  static void ResetCells(T* first, T* last) {
    if (first < last) std::fill(first, last, T());
  }

  /// Cells beyond the size are always 0, so that growing within the capacity only has to move.
  /// Shrinking dimensions move runs toward the front, growing ones toward the back; a shape that
  /// does both goes through the shape of their common cells.
  void ReshapeInPlace(const Shape& shape, std::size_t old) {
    Shape common;
    for (std::size_t d = 0; d < Rank; ++d) common[d] = std::min(FShape[d], shape[d]);
    std::size_t kept = 1;
    for (const std::size_t extent : common) kept *= extent;
    if (common != FShape) {
      const Overlap o = FindOverlap(FShape, common);
      ForEachRun(FShape, common, o.outer, false, [&](std::size_t from, std::size_t to) {
        if (from != to) std::move(FData + from, FData + from + o.run, FData + to);
      });
      ResetCells(FData + kept, FData + old);
    }
    if (common != shape) {
      const Overlap o = FindOverlap(common, shape);
      ForEachRun(common, shape, o.outer, true, [&](std::size_t from, std::size_t to) {
        if (from == to) return;
        std::move_backward(FData + from, FData + from + o.run, FData + to + o.run);
        // What the run left behind belongs to new cells, unless an earlier run will be moved there.
        ResetCells(FData + from, FData + std::min(from + o.run, to));
      });
    }
  }

  template <class P>
  [[nodiscard]] decltype(auto) Part(P* data, std::size_t i) const {
    if constexpr (Rank == 1) {
      return (data[i]);
    } else {
      return TDynView<P, Rank>(data, FShape.data())[i];
    }
  }

  template <std::integral... I>
  [[nodiscard]] std::size_t Offset(I... index) const {
    const Shape at{static_cast<std::size_t>(index)...};
    std::size_t offset = 0;
    for (std::size_t d = 0; d < Rank; ++d) offset = offset * FShape[d] + at[d];
    return offset;
  }

  template <int Depth, class List>
  static void MeasureList(const List& list, Shape& shape, bool first) {
    std::size_t& extent = shape[Rank - Depth];
    if (!first && extent != list.size()) throw EZELError("TDynArray: lists of different length");
    extent = list.size();
    if constexpr (Depth > 1) {
      bool firstInner = first;
      for (const auto& inner : list) {
        MeasureList<Depth - 1>(inner, shape, firstInner);
        firstInner = false;
      }
    }
  }
  template <int Depth, class List>
  static void CopyList(const List& list, T*& next) {
    if constexpr (Depth == 1) {
      next = std::copy(list.begin(), list.end(), next);
    } else {
      for (const auto& inner : list) CopyList<Depth - 1>(inner, next);
    }
  }

  template <std::size_t Dim>
  static void Print(std::ostream& out, const Shape& shape, const T*& next) {
    out << '{';
    for (std::size_t i = 0; i < shape[Dim]; ++i) {
      if (i > 0) out << ", ";
      if constexpr (Dim + 1 == Rank) {
        out << *next++;
      } else {
        Print<Dim + 1>(out, shape, next);
      }
    }
    out << '}';
  }

  T* FData = nullptr;
  Shape FShape{};
  std::size_t FCapacity = 0;
};

using TDoubleArray = std::vector<double>;
using TSingleArray = std::vector<float>;
using TIntArray = std::vector<int>;
using TStrArray = std::vector<std::string>;
/// One addressable byte per value, unlike std::vector<bool>.
using TBoolArray = TDynArray<bool, 1>;

using TDouble2DArray = TDynArray<double, 2>;
using TDouble3DArray = TDynArray<double, 3>;
using TDouble4DArray = TDynArray<double, 4>;
using TInt2DArray = TDynArray<int, 2>;
using TInt3DArray = TDynArray<int, 3>;
using TInt4DArray = TDynArray<int, 4>;
using TBool2DArray = TDynArray<bool, 2>;
using TStr2DArray = TDynArray<std::string, 2>;

using TPIntArray = TIntArray*;
using TPDblArray = TDoubleArray*;

}  // namespace zel
