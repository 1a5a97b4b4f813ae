#include "zel/kernels/recursive_filter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "zel/kernels/weighted_windows.h"

namespace zel::kernels {

namespace {

/// A sequence that goes on block by block: the last P numbers, then a block.
class Sequence {
 public:
  Sequence(std::size_t order, std::size_t longest) : FOrder(order), FCells(order + longest) {}
  [[nodiscard]] double* block() { return FCells.data() + FOrder; }
  [[nodiscard]] std::span<double> history() { return std::span(FCells).first(FOrder); }
  /// The next block follows the first n numbers of this one.
  void goOn(std::size_t n) {
    const auto last = FCells.begin() + static_cast<std::ptrdiff_t>(n);
    std::copy(last, last + static_cast<std::ptrdiff_t>(FOrder), FCells.begin());
  }

 private:
  std::size_t FOrder;
  std::vector<double> FCells;
};

class TwoPasses {
 public:
  TwoPasses(const RecursiveFilter& filter, std::span<const double> x, std::int64_t length)
      : FB(filter.b),
        FX(x),
        FOrder(filter.b.size()),
        FLength(length),
        FBlock(blockLength(length)),
        FWeights(filter.a.rbegin(), filter.a.rend()),
        FInput(FOrder, FBlock),
        FForth(FOrder, FBlock),
        FBackInput(FOrder, FBlock),
        FBack(FOrder, FBlock) {
    FWeights.push_back(filter.a0);
  }

  /// Gives take(t, value) the results of the numbers t >= least.
  template <class Take>
  void run(std::int64_t least, Take&& take) {
    keepStates();
    for (auto b = static_cast<std::int64_t>(FStates.size() / FOrder); b-- > 0;) {
      const std::int64_t begin = b * static_cast<std::int64_t>(FBlock);
      const auto n =
          static_cast<std::size_t>(std::min(static_cast<std::int64_t>(FBlock), FLength - begin));
      if (begin + static_cast<std::int64_t>(n) <= least) return;
      std::copy_n(FStates.begin() + b * static_cast<std::int64_t>(FOrder), FOrder,
                  FForth.history().begin());
      forth(begin, n);
      std::reverse_copy(FForth.block(), FForth.block() + n, FBackInput.block());
      filter(FBackInput, FBack, n);
      for (std::size_t i = 0; i < n; ++i) {
        take(begin + static_cast<std::int64_t>(n - 1 - i), FBack.block()[i]);
      }
      FBackInput.goOn(n);
      FBack.goOn(n);
    }
  }

 private:
  /// One block while the range ends near the signal, else blocks that balance what they and the
  /// states before them take.
  [[nodiscard]] std::size_t blockLength(std::int64_t length) const {
    constexpr std::size_t kNear = 1 << 16;
    const std::size_t near = FX.size() + 4 * FOrder + kNear;
    const auto whole = static_cast<std::size_t>(length);
    if (whole <= near) return whole;
    const double balance = std::sqrt(static_cast<double>(length) * static_cast<double>(FOrder));
    return std::max({kNear, FOrder, static_cast<std::size_t>(balance)});
  }

  /// The states before the blocks; the passes end where the first has died away.
  void keepStates() {
    FStates.assign(FOrder, 0);
    const auto step = static_cast<std::int64_t>(FBlock);
    const auto quiet = static_cast<std::int64_t>(FX.size() + 2 * FOrder) + 1;
    for (std::int64_t begin = 0; begin + step < FLength; begin += step) {
      forth(begin, FBlock);
      FForth.goOn(FBlock);
      const std::span<const double> state = FForth.history();
      if (begin + step >= quiet && std::all_of(state.begin(), state.end(), [](double y) {
            return std::abs(y) < std::numeric_limits<double>::min();
          })) {
        FLength = begin + step;
        return;
      }
      FStates.insert(FStates.end(), state.begin(), state.end());
    }
  }

  /// The first pass over the numbers begin, begin + 1, ... of the signal behind pad zeros.
  void forth(std::int64_t begin, std::size_t n) {
    const auto pad = static_cast<std::int64_t>(FOrder) + 1;
    const auto size = static_cast<std::int64_t>(FX.size());
    const std::int64_t first = begin - pad - static_cast<std::int64_t>(FOrder);
    double* const to = FInput.history().data();
    const auto used = static_cast<std::int64_t>(FOrder + n);
    const std::int64_t from = std::clamp<std::int64_t>(-first, 0, used);
    const std::int64_t till = std::clamp<std::int64_t>(size - first, from, used);
    std::fill(to, to + from, 0.0);
    for (std::int64_t i = from; i < till; ++i) to[i] = FX[static_cast<std::size_t>(first + i)];
    std::fill(to + till, to + used, 0.0);
    filter(FInput, FForth, n);
  }

  void filter(Sequence& from, Sequence& to, std::size_t n) {
    const double* const x = from.history().data();
    double* const y = to.block();
    weightedSums(&x, {FWeights.data(), 1, FOrder + 1, 0}, y, n);
    for (std::size_t i = 0; i < n; ++i) {
      // The value just computed comes last: it is what the next step waits for.
      double sum = y[i];
      const double* const past = y + i;
      for (std::size_t k = FOrder; k > 1; --k) {
        sum += FB[k - 1] * past[-static_cast<std::ptrdiff_t>(k)];
      }
      y[i] = sum + FB[0] * past[-1];
    }
  }

  std::span<const double> FB;
  std::span<const double> FX;
  std::size_t FOrder;
  std::int64_t FLength;
  std::size_t FBlock;
  std::vector<double> FWeights;  // the oldest value's first
  std::vector<double> FStates;
  Sequence FInput, FForth, FBackInput, FBack;
};

}  // namespace

void filterBothWays(const RecursiveFilter& filter, std::span<const double> x, std::int64_t end,
                    std::int64_t first, std::span<double> out) {
  const auto pad = static_cast<std::int64_t>(filter.b.size()) + 1;
  if (end < 0 || out.empty()) return;
  const auto last = first + static_cast<std::int64_t>(out.size());
  // Results that the passes do not reach, where the signal has died away, stay 0. Blocks are
  // written from the last on, and none reads what a later one has written.
  TwoPasses passes(filter, x, end + pad);
  std::int64_t reached = last;
  passes.run(first + pad, [&](std::int64_t t, double y) {
    const std::int64_t at = t - pad;
    if (at < first || at >= last) return;
    for (; reached > at + 1; --reached) out[static_cast<std::size_t>(reached - 1 - first)] = 0;
    out[static_cast<std::size_t>(at - first)] = y;
    reached = at;
  });
  std::fill_n(out.begin(), reached - first, 0.0);
}

}  // namespace zel::kernels
