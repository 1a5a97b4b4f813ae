#include "zel/openarrays/arrayimages.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "zel/base/bitmap.h"
#include "zel/base/stringhelpers.h"
#include "zel/kernels/flood_fill.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

struct Bounds {
  int& highRow;
  int& lowRow;
  int& lowCol;
  int& highCol;
};

int storeRegion(const kernels::Region& region, const Bounds& bounds) {
  bounds.highRow = static_cast<int>(region.highRow);
  bounds.lowRow = static_cast<int>(region.lowRow);
  bounds.lowCol = static_cast<int>(region.lowColumn);
  bounds.highCol = static_cast<int>(region.highColumn);
  return static_cast<int>(std::min<std::int64_t>(region.cells, std::numeric_limits<int>::max()));
}

template <class T>
bool isInside(const TDynArray<T, 2>& a, int x, int y) {
  return x >= 0 && y >= 0 && static_cast<std::size_t>(x) < a.Length(0) &&
         static_cast<std::size_t>(y) < a.Length(1);
}

/// Fills cells of `a` where the cells of a matrix of its shape belong; fill makes them not belong.
template <class T, class Belongs, class Fill>
int floodFill(TDynArray<T, 2>& a, int x, int y, Belongs&& belongs, Fill&& fill,
              const Bounds& bounds) {
  const auto region = detail::GuardArrays("FloodFillArray", [&] {
    return kernels::floodFill(detail::MatrixOf(a), static_cast<std::size_t>(y),
                              static_cast<std::size_t>(x), belongs, fill);
  });
  return storeRegion(region, bounds);
}

/// What fills cells of an array with a value.
template <class T>
auto filling(TDynArray<T, 2>& a, T value) {
  return [m = detail::MatrixOf(a), value](std::size_t column, std::size_t row, std::size_t count) {
    std::fill_n(m.column(column) + row, count, value);
  };
}

int floodFill(TInt2DArray& a, int x, int y, int value, const Bounds& bounds) {
  if (!isInside(a, x, y)) return -1;
  const int seed = a(x, y);
  if (seed == value) return -2;
  return floodFill(
      a, x, y, [seed](int cell) { return cell == seed; }, filling(a, value), bounds);
}

int floodFill(TDouble2DArray& a, int x, int y, double tolerance, double value,
              const Bounds& bounds) {
  if (!isInside(a, x, y)) return -1;
  const double low = a(x, y) - std::fabs(tolerance);
  const double high = a(x, y) + std::fabs(tolerance);
  const auto belongs = [=](double cell) { return low <= cell && cell <= high; };
  if (!belongs(value)) return floodFill(a, x, y, belongs, filling(a, value), bounds);
  // Filled cells would belong again, so the region is taken from an array that says which do.
  TBool2DArray open;
  detail::GuardArrays("FloodFillArray", [&] { open.SetLength(a.Length(0), a.Length(1)); });
  std::ranges::transform(a, open.begin(), belongs);
  const auto fillBoth = [close = filling(open, false), fill = filling(a, value)](auto... run) {
    close(run...);
    fill(run...);
  };
  return floodFill(
      open, x, y, [](bool cell) { return cell; }, fillBoth, bounds);
}

template <class T>
int fillMasked(TDynArray<T, 2>& a, T value, const TBool2DArray& mask) {
  if (a.empty()) return -2;
  if (mask.empty()) {
    std::ranges::fill(a, value);
    return 0;
  }
  if (detail::ExtentsOf<2>(mask) != detail::ExtentsOf<2>(a)) return -1;
  const bool* isProtected = mask.data();
  for (T& cell : a) {
    if (!*isProtected++) cell = value;
  }
  return 0;
}

bool isPictureName(std::string_view name) {
  const std::string_view file = name.substr(name.find_last_of('/') + 1);
  const std::size_t dot = file.rfind('.');
  if (dot == file.npos) return false;
  constexpr std::string_view kEndings[] = {".bmp", ".png", ".jpg"};
  return StringIx(file.substr(dot), kEndings) >= 0;
}

int saveImage(std::string_view name, const TInt2DArray& cells, int zoom) {
  if (zoom < 1 || zoom > 10) return -2;
  if (!name.empty() && !isPictureName(name)) return -1;
  if (cells.empty()) return -1;
  if (name.empty()) return -3;
  const std::size_t columns = cells.Length(0);
  const std::size_t rows = cells.Length(1);
  const auto scale = static_cast<std::size_t>(zoom);
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  if (columns > kMost / scale || rows > kMost / scale) {
    throw EZELError("SaveArrayAsImg: not enough memory");
  }
  TBitmap picture(static_cast<int>(columns) * zoom, static_cast<int>(rows) * zoom);
  for (std::size_t y = 0; y < rows; ++y) {
    const auto first = picture.Row(static_cast<int>(y) * zoom);
    for (std::size_t x = 0; x < columns; ++x) {
      std::fill_n(first.begin() + static_cast<std::ptrdiff_t>(x * scale), scale,
                  static_cast<TColor>(cells[x][y]) & 0xFFFFFFU);
    }
    for (int copy = 1; copy < zoom; ++copy) {
      std::ranges::copy(first, picture.Row(static_cast<int>(y) * zoom + copy).begin());
    }
  }
  picture.SaveToFile(name);
  return 0;
}

}  // namespace

int FloodFillArray(int x, int y, int FillValue, TInt2DArray& Arr, int& HighRow, int& LowRow,
                   int& LowCol, int& HighCol) {
  return floodFill(Arr, x, y, FillValue, {HighRow, LowRow, LowCol, HighCol});
}
int FloodFillArray(int x, int y, double Tolerance, double FillValue, TDouble2DArray& Arr,
                   int& HighRow, int& LowRow, int& LowCol, int& HighCol) {
  return floodFill(Arr, x, y, Tolerance, FillValue, {HighRow, LowRow, LowCol, HighCol});
}

int FillArrayMasked(TDouble2DArray& Arr, double Value, const TBool2DArray& Mask) {
  return fillMasked(Arr, Value, Mask);
}
int FillArrayMasked(TInt2DArray& Arr, int Value, const TBool2DArray& Mask) {
  return fillMasked(Arr, Value, Mask);
}

int SaveArrayAsImg(std::string_view FName, const TInt2DArray& Arr, int Zoom) {
  return saveImage(FName, Arr, Zoom);
}

}  // namespace zel
