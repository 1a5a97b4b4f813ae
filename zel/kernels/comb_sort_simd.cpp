// Comb sort, fast and bit for bit the plain one.
//
// A pass is many independent bubbles: with gap g, position i meets i + g, i + 2g, ..., and
// positions of different residue never meet. So lanes i, i+1, ... of a vector take one step
// together as long as g is at least the number of lanes.
//
// Passes follow one another closely. Once a pass has done step i, position i is final for it; the
// next pass, with gap h, may do step i - h. Element by element this reorders nothing that a pass
// can observe, so any number of passes can walk through the array as a train, each h behind its
// predecessor, and a train whose gaps sum up to less than a cache reads memory once instead of once
// per pass. (The gaps from g on sum up to about 4.3 g.) Three kinds of stages make up the train:
//
//   chain  up to eight passes with large gaps. What a pass leaves at its lower position is what the
//          next pass meets at its upper one, so it stays in a register: one load, one store per
//          step.
//   rows   one pass with a small gap g, whose g bubbles are carried in registers from row to row of
//   g
//          elements. A chain would read there what it stored a moment ago at another alignment, and
//          wait for it.
//   ones   one pass with gap 1: blocks in order are skipped, others go element by element.
//
// Whether a pass with gap 1 exchanged anything is known too late for a train, so passes are added
// on speculation; a pass too many changes nothing, and it is not counted.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <utility>

#include "zel/kernels/comb_finish.h"
#include "zel/kernels/comb_sort.h"

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/comb_sort_simd.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Exchanges the lanes in which the later key belongs before the earlier one.
template <bool kAscending, class V>
HWY_INLINE void exchangeLanes(V& earlier, V& later) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
  // These instructions are comparisons: min(a, b) is a < b ? a : b, max(a, b) is a > b ? a : b, and
  // the second operand comes back for ties, signed zeros and NaN. In this order of operands that is
  // just the exchange. Other machines order zeros and NaN differently.
  const V front = kAscending ? hn::Min(later, earlier) : hn::Max(later, earlier);
  later = kAscending ? hn::Max(earlier, later) : hn::Min(earlier, later);
  earlier = front;
#else
  const auto out = kAscending ? hn::Lt(later, earlier) : hn::Lt(earlier, later);
  const V front = hn::IfThenElse(out, later, earlier);
  later = hn::IfThenElse(out, earlier, later);
  earlier = front;
#endif
}

template <bool kAscending, class T>
HWY_INLINE void exchangeKeys(T& earlier, T& later) {
  const T a = earlier;
  const T b = later;
  const bool out = kAscending ? b < a : a < b;
  earlier = out ? b : a;
  later = out ? a : b;
}

// One pass of a chain: `moving` comes from the pass before, its larger part stays at `upper`, the
// other one moves on.
template <bool kAscending, class D, class T>
HWY_INLINE void chainLink(D d, hn::Vec<D> lower, hn::Vec<D>& moving, T* upper) {
  exchangeLanes<kAscending>(lower, moving);
  hn::StoreU(moving, d, upper);
  moving = lower;
}

template <bool kAscending, class T>
HWY_INLINE void chainLinkKey(T lower, T& moving, T* upper) {
  exchangeKeys<kAscending>(lower, moving);
  *upper = moving;
  moving = lower;
}

// `count` steps of passes in chain, the first with its upper position at `upper`; every gap has at
// least a vector's lanes.
template <bool kAscending, class T, std::size_t... kPass>
HWY_INLINE void chainSteps(T* upper, const std::size_t* gaps, std::size_t count,
                           std::index_sequence<kPass...> /*passes*/) {
  const hn::ScalableTag<T> d;
  constexpr std::size_t kLanes = HWY_LANES(T);
  constexpr std::size_t kPasses = sizeof...(kPass);
  T* at[kPasses + 1] = {upper};
  ((at[kPass + 1] = at[kPass] - gaps[kPass]), ...);
  std::size_t t = 0;
  for (; t + kLanes <= count; t += kLanes) {
    auto moving = hn::LoadU(d, upper + t);
    const hn::Vec<decltype(d)> lower[] = {hn::LoadU(d, at[kPass + 1] + t)...};
    (chainLink<kAscending>(d, lower[kPass], moving, at[kPass] + t), ...);
    hn::StoreU(moving, d, at[kPasses] + t);
  }
  for (; t < count; ++t) {
    T moving = upper[t];
    (chainLinkKey<kAscending>(at[kPass + 1][t], moving, at[kPass] + t), ...);
    at[kPasses][t] = moving;
  }
}

constexpr std::size_t kChain = 8;

template <bool kAscending, std::size_t kPasses = kChain, class T>
void chain(T* upper, const std::size_t* gaps, std::size_t passes, std::size_t count) {
  if (passes >= kPasses) {
    chainSteps<kAscending>(upper, gaps, count, std::make_index_sequence<kPasses>());
    for (std::size_t k = 0; k < kPasses; ++k) upper -= gaps[k];
    gaps += kPasses;
    passes -= kPasses;
  }
  if constexpr (kPasses > 1) {
    if (passes > 0) chain<kAscending, kPasses / 2>(upper, gaps, passes, count);
  }
}

template <bool kAscending, class D, class T>
HWY_INLINE void rowLink(D d, hn::Vec<D>& carried, T* row, T* nextRow) {
  auto next = hn::LoadU(d, nextRow);
  exchangeLanes<kAscending>(carried, next);
  hn::StoreU(carried, d, row);
  carried = next;
}

// `rows` times `gap` steps from x on. The last vector of a row overlaps the one before if need be:
// both find the same in the lanes they share.
template <bool kAscending, class D, class T, std::size_t... kVec>
HWY_NOINLINE void rowSteps(D d, T* x, std::size_t gap, std::size_t rows,
                           std::index_sequence<kVec...> /*vectors*/) {
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  constexpr std::size_t kLast = sizeof...(kVec) - 1;
  const std::size_t last = gap - kLanes;
  hn::Vec<D> carried[] = {hn::LoadU(d, x + (kVec < kLast ? kVec * kLanes : last))...};
  for (; rows > 0; --rows) {
    T* const next = x + gap;
    (rowLink<kAscending>(d, carried[kVec], x + (kVec < kLast ? kVec * kLanes : last),
                         next + (kVec < kLast ? kVec * kLanes : last)),
     ...);
    x = next;
  }
  (hn::StoreU(carried[kVec], d, x + (kVec < kLast ? kVec * kLanes : last)), ...);
}

// Vectors of a row at most: enough for what a chain would store to have reached the cache when it
// is read again.
constexpr std::size_t kCarried = 6;

template <bool kAscending, std::size_t kMost, std::size_t kVectors = 1, class D, class T>
HWY_INLINE void rowsOfVectors(D d, T* x, std::size_t gap, std::size_t rows, std::size_t vectors) {
  if constexpr (kVectors < kMost) {
    if (vectors > kVectors) {
      return rowsOfVectors<kAscending, kMost, kVectors + 1>(d, x, gap, rows, vectors);
    }
  }
  rowSteps<kAscending>(d, x, gap, rows, std::make_index_sequence<kVectors>());
}

// Vectors are as long as the gap allows.
template <bool kAscending, std::size_t kLanes, class T>
void rowsOfLanes(T* x, std::size_t gap, std::size_t rows) {
  if constexpr (kLanes > 1) {
    if (gap < kLanes) return rowsOfLanes<kAscending, kLanes / 2>(x, gap, rows);
  }
  constexpr std::size_t kMost = kLanes < HWY_LANES(T) ? 2 : kCarried;
  const std::size_t vectors = (gap + kLanes - 1) / kLanes;
  rowsOfVectors<kAscending, kMost>(hn::CappedTag<T, kLanes>(), x, gap, rows, vectors);
}

// Lanes k.. of x whose right neighbour belongs before them.
template <bool kAscending, class D, class T>
HWY_INLINE auto outOfOrder(D d, const T* x) {
  const auto left = hn::LoadU(d, x);
  const auto right = hn::LoadU(d, x + 1);
  return kAscending ? hn::Lt(right, left) : hn::Lt(left, right);
}

// Steps begin..end-1 of a pass with gap 1; whether any exchanged.
template <bool kAscending, class T>
bool neighbourSteps(T* x, std::size_t begin, std::size_t end) {
  const hn::ScalableTag<T> d;
  const hn::CappedTag<T, 1> single;
  constexpr std::size_t kLanes = HWY_LANES(T);
  constexpr std::size_t kSteps = 4 * kLanes;
  bool exchanged = false;
  std::size_t i = begin;
  while (end - i >= kSteps) {
    const auto out =
        hn::Or(hn::Or(outOfOrder<kAscending>(d, x + i), outOfOrder<kAscending>(d, x + i + kLanes)),
               hn::Or(outOfOrder<kAscending>(d, x + i + 2 * kLanes),
                      outOfOrder<kAscending>(d, x + i + 3 * kLanes)));
    const std::size_t stop = i + kSteps;
    if (!hn::AllFalse(d, out)) {
      exchanged = true;
      auto carried = hn::LoadU(single, x + i);
      for (; i < stop; ++i) {
        auto next = hn::LoadU(single, x + i + 1);
        exchangeLanes<kAscending>(carried, next);
        hn::StoreU(carried, single, x + i);
        carried = next;
      }
      hn::StoreU(carried, single, x + stop);
    }
    i = stop;
  }
  for (; i < end; ++i) {
    exchanged |= kAscending ? x[i + 1] < x[i] : x[i] < x[i + 1];
    exchangeKeys<kAscending>(x[i], x[i + 1]);
  }
  return exchanged;
}

// Elements that the head of the train takes at a time. Large enough that a stage finds what the one
// before stored in the cache and not still on its way there, small enough that a block stays in the
// first-level cache from stage to stage.
constexpr std::size_t kBlock = 1024;
// Passes with gap 1 on speculation behind the first one.
constexpr std::size_t kSpeculative = 2;
// A new train begins where the gap falls below this many bytes: a train of all passes of a long
// array has so many distant places in hand that it drives its own near ones out of the cache.
constexpr std::size_t kCacheGap = std::size_t{1} << 20;
// After so many passes with gap 1 a stable sort is cheaper than to go on.
constexpr std::size_t kManyOnes = 128;

template <bool kAscending, class T>
class Train {
 public:
  Train(T* x, std::size_t n, PassReport report) : x_(x), n_(n), report_(report) {}

  // Number of passes that the plain sort makes. n >= 2.
  std::size_t sort(std::size_t firstGap) {
    for (std::size_t gap = combGap(firstGap); gap > 1; gap = combGap(gap)) addPass(gap);
    std::size_t ones = 1 + kSpeculative;
    for (std::size_t total = ones;; total += ones) {
      for (std::size_t k = 0; k < ones; ++k) addStage(1);
      if (run() || (total >= kManyOnes && finishBySort())) return passes_;
      ones = kChain;
    }
  }

 private:
  static constexpr std::size_t kLanes = HWY_LANES(T);
  static constexpr std::size_t kLargestRow = kCarried * kLanes;
  // Fewer than 170 gaps lead from the largest size to 1, and those beyond kLargestRow come in
  // eights.
  static constexpr std::size_t kStages = 64;

  struct Stage {
    std::size_t passes;
    std::size_t gap[kChain];
    std::size_t begin[kChain];  // where each pass begins, in steps of the first pass
    std::size_t done;           // steps of the first pass, counted on after its end
    bool exchanged;             // only for gap 1
  };

  void addPass(std::size_t gap) {
    if (gap >= n_) return finished(1);  // no two keys are so far apart
    if (stages_ > 0) {
      Stage& last = stage_[stages_ - 1];
      const std::size_t lastGap = last.gap[last.passes - 1];
      if (lastGap > kCacheGap / sizeof(T) && gap <= kCacheGap / sizeof(T)) {
        run();
      } else if (gap > kLargestRow && last.passes < kChain) {
        last.begin[last.passes] = last.begin[last.passes - 1] + gap;
        last.gap[last.passes] = gap;
        ++last.passes;
        return;
      }
    }
    addStage(gap);
  }

  void addStage(std::size_t gap) {
    Stage& stage = stage_[stages_++];
    stage.passes = 1;
    stage.gap[0] = gap;
    stage.begin[0] = 0;
    stage.done = 0;
    stage.exchanged = false;
  }

  // Runs all stages through the array and removes them. Whether one with gap 1 exchanged nothing.
  bool run() {
    for (std::size_t head = 0; head < n_;) {
      head = std::min(n_, head + kBlock);
      std::size_t final = head;
      for (std::size_t k = 0; k < stages_ && final > 0; ++k) final = advance(stage_[k], final);
    }
    const std::size_t stages = std::exchange(stages_, 0);
    for (std::size_t k = 0; k < stages; ++k) {
      finished(stage_[k].passes);
      if (stage_[k].gap[0] == 1 && !stage_[k].exchanged) return true;
    }
    return false;
  }

  bool finishBySort() {
    std::size_t passes = 0;
    try {
      passes = finishByStableSort(std::span(x_, n_), kAscending);
    } catch (const std::bad_alloc&) {
      return false;  // the passes get there too
    }
    finished(passes);
    return true;
  }

  void finished(std::size_t passes) {
    passes_ += passes;
    if (report_.call == nullptr) return;
    for (; passes > 0; --passes) report_.call(report_.context);
  }

  // Does the steps that are possible when positions below `final` (n: all) are final for all
  // earlier stages; returns the same bound for the next stage.
  std::size_t advance(Stage& stage, std::size_t final) {
    const std::size_t gap = stage.gap[0];
    if (gap > kLargestRow) return advanceChain(stage, final);
    const std::size_t possible = final > gap ? final - gap : 0;
    if (possible > stage.done) {
      if (gap == 1) {
        stage.exchanged |= neighbourSteps<kAscending>(x_, stage.done, possible);
        stage.done = possible;
      } else {
        const std::size_t rows = (possible - stage.done) / gap;
        if (rows > 0) rowsOfLanes<kAscending, kLanes>(x_ + stage.done, gap, rows);
        stage.done += rows * gap;
        if (final == n_) {
          chain<kAscending>(x_ + stage.done + gap, &gap, 1, possible - stage.done);
        }
      }
    }
    return final == n_ ? n_ : stage.done;
  }

  std::size_t advanceChain(Stage& stage, std::size_t final) {
    const std::size_t lastBegin = stage.begin[stage.passes - 1];
    const std::size_t allDone = end(stage, stage.passes - 1);
    const std::size_t possible = final == n_            ? allDone
                                 : final > stage.gap[0] ? final - stage.gap[0]
                                                        : 0;
    while (stage.done < possible) {
      // The passes first..last-1 are under way, since both begins and ends ascend.
      std::size_t first = 0;
      while (end(stage, first) <= stage.done) ++first;
      std::size_t last = first;
      while (last < stage.passes && stage.begin[last] <= stage.done) ++last;
      std::size_t stop = possible;
      if (last < stage.passes) stop = std::min(stop, stage.begin[last]);
      if (first < last) {
        stop = std::min(stop, end(stage, first));
        T* const upper = x_ + (stage.done - stage.begin[first]) + stage.gap[first];
        chain<kAscending>(upper, stage.gap + first, last - first, stop - stage.done);
      }
      stage.done = stop;
    }
    if (stage.done == allDone) return n_;
    return stage.done > lastBegin ? stage.done - lastBegin : 0;
  }

  std::size_t end(const Stage& stage, std::size_t pass) const {
    return stage.begin[pass] + (n_ - stage.gap[pass]);
  }

  T* x_;
  std::size_t n_;
  PassReport report_;
  std::size_t passes_ = 0;
  std::size_t stages_ = 0;
  Stage stage_[kStages];
};

template <class T>
std::size_t sortKeys(std::span<T> x, std::size_t firstGap, bool ascending, PassReport report) {
  if (x.size() < 2) return 0;
  return ascending ? Train<true, T>(x.data(), x.size(), report).sort(firstGap)
                   : Train<false, T>(x.data(), x.size(), report).sort(firstGap);
}

std::size_t sortDoubles(std::span<double> x, std::size_t firstGap, bool ascending,
                        PassReport report) {
  return sortKeys(x, firstGap, ascending, report);
}
std::size_t sortFloats(std::span<float> x, std::size_t firstGap, bool ascending,
                       PassReport report) {
  return sortKeys(x, firstGap, ascending, report);
}
std::size_t sortIntegers(std::span<std::int32_t> x, std::size_t firstGap, bool ascending,
                         PassReport report) {
  return sortKeys(x, firstGap, ascending, report);
}

}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(sortDoubles);
HWY_EXPORT(sortFloats);
HWY_EXPORT(sortIntegers);

std::size_t combSortFast(std::span<double> x, std::size_t firstGap, bool ascending,
                         PassReport report) {
  return HWY_DYNAMIC_DISPATCH(sortDoubles)(x, firstGap, ascending, report);
}
std::size_t combSortFast(std::span<float> x, std::size_t firstGap, bool ascending,
                         PassReport report) {
  return HWY_DYNAMIC_DISPATCH(sortFloats)(x, firstGap, ascending, report);
}
std::size_t combSortFast(std::span<std::int32_t> x, std::size_t firstGap, bool ascending,
                         PassReport report) {
  return HWY_DYNAMIC_DISPATCH(sortIntegers)(x, firstGap, ascending, report);
}

}  // namespace zel::kernels
#endif
