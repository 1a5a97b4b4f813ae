/// @file
/// TNumVector: object, size, elements, copies, order, search. Included by vectorbase.cpp only.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "zel/base/random.h"
#include "zel/kernels/comb_sort.h"
#include "zel/kernels/elementwise.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/hooks.h"
#include "zel/kernels/range.h"
#include "zel/kernels/search.h"
#include "zel/kernels/sums.h"
#include "zel/vector/vectorbase.h"

namespace zel {

template <class T>
TNumVector<T>::TNumVector(TComponent* AOwner) : TComponent(AOwner) {
  try {
    FVec.SetLength(1);
  } catch (...) {
    Raise<EZELVectorError>("\": not enough memory on heap");
  }
}

template <class T>
TNumVector<T>::~TNumVector() = default;

template <class T>
void TNumVector<T>::Assign(const TPersistent* Source) {
  const auto* source = dynamic_cast<const TNumVector*>(Source);
  if (!source) return TComponent::Assign(Source);
  if (source == this) return;
  TDynArray<T, 1> copy;
  try {
    copy = source->FVec;
  } catch (...) {
    Raise<EZELVectorError>("\": not enough memory");
  }
  // Copies of handlers may throw, so they are made before anything of this object changes.
  TNotifyEvent change = source->OnChange;
  TSortExchgEvent exchange = source->OnSortExchange;
  FVec.swap(copy);
  FIsEmpty = source->FIsEmpty;
  OnChange.swap(change);
  OnSortExchange.swap(exchange);
}

template <class T>
void TNumVector<T>::AssignTo(TPersistent* Dest) const {
  auto* dest = dynamic_cast<TNumVector*>(Dest);
  if (!dest) return TComponent::AssignTo(Dest);
  dest->Assign(this);
}

template <class T>
void TNumVector<T>::Changed() {
  Fire(OnChange, this);
}

template <class T>
void TNumVector<T>::SortExchange(std::uint8_t ExchgWhat, int Index1, int Index2, int First,
                                 int Last) {
  Fire(OnSortExchange, this, ExchgWhat, Index1, Index2, First, Last);
}

template <class T>
std::string TNumVector<T>::CRCofData() const {
  return kernels::fingerprintText(Elements());
}

template <class T>
bool TNumVector<T>::Resize(int NE) {
  if (NE == NrOfElem()) return true;
  if (NE <= 0) return false;
  try {
    FVec.SetLength(NE);
  } catch (...) {
    Raise<EZELVectorError>("\": not enough memory");
  }
  Changed();
  return true;
}

template <class T>
void TNumVector<T>::MakeValidElemRange(int& LowElem, int& HighElem) const {
  kernels::clampRange(LowElem, HighElem, NrOfElem());
}

template <class T>
std::span<const T> TNumVector<T>::Range(int LowElem, int HighElem) const {
  MakeValidElemRange(LowElem, HighElem);
  return Elements().subspan(static_cast<std::size_t>(LowElem - 1),
                            static_cast<std::size_t>(HighElem - LowElem + 1));
}

template <class T>
TDynArray<T, 1> TNumVector<T>::WorkCopy(int LowElem, int HighElem) const {
  try {
    return TDynArray<T, 1>(Range(LowElem, HighElem));
  } catch (...) {
    Raise<EZELVectorError>("\": not enough memory on heap");
  }
}

template <class T>
void TNumVector<T>::SetElements(std::span<const T> values) {
  if (values.empty()) return;
  TDynArray<T, 1> contents;
  try {
    contents = TDynArray<T, 1>(values);
  } catch (...) {
    Raise<EZELVectorError>("\": not enough memory");
  }
  TakeOver(contents);
}

template <class T>
void TNumVector<T>::TakeOver(TDynArray<T, 1>& contents) noexcept {
  FVec.swap(contents);
  FIsEmpty = false;
}

template <class T>
void TNumVector<T>::Fill(T value) {
  std::fill(FVec.begin(), FVec.end(), value);
  FIsEmpty = false;
  Changed();
}

template <class T>
void TNumVector<T>::Clear() {
  std::fill(FVec.begin(), FVec.end(), T{0});
  FIsEmpty = true;
  Changed();
}

template <class T>
void TNumVector<T>::AbsVal() {
  kernels::absolute(Cells());
  Changed();
}

template <class T>
void TNumVector<T>::Mirror() {
  std::reverse(FVec.begin(), FVec.end());
  Changed();
}

template <class T>
void TNumVector<T>::ShuffleElems() {
  Randomize();
  const int n = NrOfElem();
  for (int k = 0; k < n; ++k) {
    const auto i = static_cast<std::size_t>(Random(n));
    const auto j = static_cast<std::size_t>(Random(n));
    std::swap(FVec[i], FVec[j]);
  }
}

template <class T>
void TNumVector<T>::SortElems(bool Ascending, int RangeFirst, int RangeLast) {
  MakeValidElemRange(RangeFirst, RangeLast);
  if (RangeLast <= RangeFirst) return;
  const auto first = static_cast<std::size_t>(RangeFirst - 1);
  const auto gap = static_cast<std::size_t>(RangeLast - RangeFirst);
  const std::span<T> cells = Cells().subspan(first, gap + 1);
  if (OnSortExchange) {
    // The handler may resize the vector, which ends the validity of the span and so the sort.
    auto report = [&](std::size_t i, std::size_t j) {
      SortExchange(0, RangeFirst + static_cast<int>(i), RangeFirst + static_cast<int>(j), 0, 0);
      return FVec.data() + first == cells.data() && FVec.size() >= first + cells.size();
    };
    kernels::combSort(cells, gap, Ascending, report);
  } else {
    kernels::combSortFast(cells, gap, Ascending);
  }
  Changed();
}

template <class T>
template <class Value>
void TNumVector<T>::StoreEach(std::int64_t first, std::size_t count, Value&& value) {
  // Only positions inside the vector; which ones that are does not depend on a handler's doings,
  // since both paths check again.
  const std::int64_t skipped = std::max<std::int64_t>(0, 1 - first);
  const std::int64_t last = std::min<std::int64_t>(first + static_cast<std::int64_t>(count) - 1,
                                                   std::numeric_limits<int>::max());
  if (OnChange) {
    for (std::int64_t pos = first + skipped; pos <= last; ++pos) {
      SetVal(static_cast<int>(pos), value(static_cast<std::size_t>(pos - first)));
    }
  } else {
    const std::int64_t end = std::min<std::int64_t>(last, NrOfElem());
    for (std::int64_t pos = first + skipped; pos <= end; ++pos) {
      FVec[static_cast<std::size_t>(pos - 1)] = value(static_cast<std::size_t>(pos - first));
      FIsEmpty = false;
    }
  }
}

template <class T>
void TNumVector<T>::Clone(const TNumVector* VecSource) {
  if (!VecSource) return;
  Resize(VecSource->NrOfElem());
  StoreEach(1, FVec.size(),
            [&](std::size_t k) { return VecSource->GetVal(static_cast<int>(k) + 1); });
  Changed();
}

template <class T>
void TNumVector<T>::CopyFrom(const TNumVector* VecSource, int SourceElemLo, int SourceElemHi,
                             int DestElem) {
  if (!VecSource) return;
  kernels::clampBounds(SourceElemLo, SourceElemHi, VecSource->NrOfElem());
  StoreEach(DestElem, static_cast<std::size_t>(SourceElemHi - SourceElemLo) + 1,
            [&](std::size_t k) { return VecSource->GetVal(SourceElemLo + static_cast<int>(k)); });
  Changed();
}

template <class T>
void TNumVector<T>::CopyToArray(std::vector<T>& DestArray, int LowElem, int HighElem) const {
  const std::span<const T> range = Range(LowElem, HighElem);
  DestArray.assign(range.begin(), range.end());
}

template <class T>
void TNumVector<T>::CopyFromArray(std::span<const T> SrcArray, int Elem) {
  StoreEach(Elem, SrcArray.size(), [&](std::size_t k) { return SrcArray[k]; });
}

template <class T>
double TNumVector<T>::CalcVecLeng() const {
  return kernels::euclideanNorm(Elements());
}

template <class T>
int TNumVector<T>::Find(int LowElem, int HighElem, T value) const {
  MakeValidElemRange(LowElem, HighElem);
  const std::size_t at = kernels::findNearest(Range(LowElem, HighElem), value);
  return at == kernels::npos ? 0 : LowElem + static_cast<int>(at);
}

template <class T>
int TNumVector<T>::FindInSortedVector(bool Ascending, T Value) const {
  return static_cast<int>(kernels::findInSorted(Elements(), Value, Ascending)) + 1;
}

}  // namespace zel
