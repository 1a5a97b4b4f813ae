#include "zel/kernels/nearest_tree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <vector>

#include "zel/kernels/distances.h"

namespace zel::kernels {

namespace {

constexpr std::size_t kLeaf = 24;
constexpr double kNone = std::numeric_limits<double>::infinity();

/// Puts a number that is below the last into an ascending list, from which the last drops out.
void insert(std::span<double> list, double value) {
  std::size_t k = list.size() - 1;
  for (; k > 0 && list[k - 1] > value; --k) list[k] = list[k - 1];
  list[k] = value;
}

class RowTree {
 public:
  /// Takes the rows whose values are all finite; others have no neighbours.
  RowTree(ConstMatrix m, std::size_t length)
      : FColumns(m.columns),
        FLength(length),
        FNearest(kLeaf * length),
        FDistances(length),
        FProbes(kLeaf * m.columns),
        FAskers(kLeaf),
        FSquares(kLeaf * kLeaf) {
    FRows.reserve(m.rows);
    for (std::size_t r = 0; r < m.rows; ++r) {
      bool isFinite = true;
      for (std::size_t c = 0; c < FColumns; ++c) isFinite &= std::isfinite(m(r, c));
      if (isFinite) FRows.push_back(r);
    }
    if (FRows.empty()) return;
    FNodes.reserve(4 * (FRows.size() / kLeaf + 1));
    split(m, 0, FRows.size());
    FCells.resize(FRows.size() * FColumns);
    for (std::size_t c = 0; c < FColumns; ++c) {
      for (std::size_t k = 0; k < FRows.size(); ++k) cells()(k, c) = m(FRows[k], c);
    }
  }

  void searchAll(const UseDistances& use) {
    for (std::size_t n = 0; n < FNodes.size(); ++n) {
      if (!FNodes[n].isLeaf()) continue;
      FAsking = n;
      const Node& asking = FNodes[n];
      std::ranges::fill(FNearest, kNone);
      FReach = kNone;
      meet(n);
      search(0, 0);
      for (std::size_t k = asking.begin; k < asking.end; ++k) {
        const auto squares = nearest(k - asking.begin);
        const auto end = std::ranges::lower_bound(squares, kNone);
        std::transform(squares.begin(), end, FDistances.begin(),
                       [](double square) { return std::sqrt(square); });
        use(FRows[k], std::span(FDistances).first(static_cast<std::size_t>(end - squares.begin())));
      }
    }
  }

 private:
  /// Rows begin..end-1 in the order of the tree, with the box around them.
  struct Node {
    std::size_t begin, end;
    std::size_t first = 0, second = 0;  // children; 0: a leaf
    [[nodiscard]] bool isLeaf() const { return first == 0; }
  };

  [[nodiscard]] Matrix cells() { return {FCells.data(), FRows.size(), FColumns, FRows.size()}; }
  /// The least squares so far of a row that asks.
  [[nodiscard]] std::span<double> nearest(std::size_t k) {
    return std::span(FNearest).subspan(k * FLength, FLength);
  }
  [[nodiscard]] const double* low(std::size_t node) const {
    return FBoxes.data() + node * 2 * FColumns;
  }
  [[nodiscard]] const double* high(std::size_t node) const { return low(node) + FColumns; }

  std::size_t split(ConstMatrix m, std::size_t begin, std::size_t end) {
    const std::size_t node = FNodes.size();
    FNodes.push_back({begin, end});
    const std::span<std::size_t> rows = std::span(FRows).subspan(begin, end - begin);
    FBoxes.resize(FBoxes.size() + 2 * FColumns);
    double* const box = FBoxes.data() + node * 2 * FColumns;
    std::size_t widest = 0;
    for (std::size_t c = 0; c < FColumns; ++c) {
      const double* const column = m.column(c);
      double least = column[rows[0]];
      double most = least;
      for (const std::size_t r : rows) {
        least = std::min(least, column[r]);
        most = std::max(most, column[r]);
      }
      box[c] = least;
      box[FColumns + c] = most;
      if (most - least > box[FColumns + widest] - box[widest]) widest = c;
    }
    if (rows.size() <= kLeaf) return node;
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(rows.size() / 2);
    const double* const column = m.column(widest);
    std::nth_element(rows.begin(), middle, rows.end(),
                     [&](std::size_t a, std::size_t b) { return column[a] < column[b]; });
    const std::size_t at = begin + rows.size() / 2;
    const std::size_t first = split(m, begin, at);
    const std::size_t second = split(m, at, end);
    FNodes[node].first = first;
    FNodes[node].second = second;
    return node;
  }

  // The bounds below are rounded as the distances of the rows are, term by term, so none of these
  // is smaller than its bound.

  static double gapTo(double low, double high, double otherLow, double otherHigh) {
    return std::max({otherLow - high, low - otherHigh, 0.0});
  }
  /// Squared distance of the boxes of a node and of the leaf that asks.
  [[nodiscard]] double squareTo(std::size_t node) const {
    double sum = 0;
    for (std::size_t c = 0; c < FColumns; ++c) {
      const double gap = gapTo(low(node)[c], high(node)[c], low(FAsking)[c], high(FAsking)[c]);
      sum += gap * gap;
    }
    return sum;
  }
  /// Squared distance of a row from the box of a node.
  [[nodiscard]] double squareOfRow(std::size_t node, std::size_t row) {
    double sum = 0;
    for (std::size_t c = 0; c < FColumns; ++c) {
      const double x = cells()(row, c);
      const double gap = gapTo(low(node)[c], high(node)[c], x, x);
      sum += gap * gap;
    }
    return sum;
  }

  void search(std::size_t node, double square) {
    if (square >= FReach) return;
    const Node& n = FNodes[node];
    if (n.isLeaf()) {
      if (node != FAsking) meet(node);
      return;
    }
    const double first = squareTo(n.first);
    const double second = squareTo(n.second);
    if (first <= second) {
      search(n.first, first);
      search(n.second, second);
    } else {
      search(n.second, second);
      search(n.first, first);
    }
  }

  /// Offers the rows of a leaf to those that ask and may be near enough.
  void meet(std::size_t leaf) {
    const Node& asking = FNodes[FAsking];
    std::size_t count = 0;
    for (std::size_t k = 0; k < asking.end - asking.begin; ++k) {
      const std::size_t row = asking.begin + k;
      if (leaf != FAsking && squareOfRow(leaf, row) >= nearest(k).back()) continue;
      for (std::size_t c = 0; c < FColumns; ++c) FProbes[c * kLeaf + count] = cells()(row, c);
      FAskers[count++] = k;
    }
    if (count == 0) return;
    const Node& there = FNodes[leaf];
    const std::size_t rows = there.end - there.begin;
    const Matrix squares{FSquares.data(), rows, count, kLeaf};
    sumsFromPoints({FProbes.data(), count, FColumns, kLeaf}, dmSqrEuclid,
                   cells().block(there.begin, 0, rows, FColumns), squares);
    for (std::size_t j = 0; j < count; ++j) {
      const std::span<double> list = nearest(FAskers[j]);
      for (const double square : squares[j]) {
        if (square < list.back()) insert(list, square);
      }
    }
    FReach = 0;
    for (std::size_t k = 0; k < asking.end - asking.begin; ++k) {
      FReach = std::max(FReach, nearest(k).back());
    }
  }

  std::size_t FColumns;
  std::vector<std::size_t> FRows;  // in the order of the tree
  std::vector<Node> FNodes;
  std::vector<double> FBoxes;  // low, then high, for each node
  std::vector<double> FCells;  // the rows in that order, by columns
  std::size_t FLength;
  std::vector<double> FNearest;    // squares for each row that asks
  std::vector<double> FDistances;  // of one of them
  std::vector<double> FProbes;
  std::vector<std::size_t> FAskers;
  std::vector<double> FSquares;
  std::size_t FAsking = 0;
  double FReach = 0;  // the squares that any of them still takes are smaller
};

}  // namespace

void nearestOfAll(ConstMatrix m, std::size_t length, const UseDistances& use) {
  RowTree tree(m, length);
  for (std::size_t r = 0; r < m.rows; ++r) {
    for (std::size_t c = 0; c < m.columns; ++c) {
      if (std::isfinite(m(r, c))) continue;
      use(r, {});
      break;
    }
  }
  tree.searchAll(use);
}

}  // namespace zel::kernels
