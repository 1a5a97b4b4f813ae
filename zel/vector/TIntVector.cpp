#include "zel/vector/TIntVector.h"

#include <algorithm>

#include "zel/kernels/search.h"
#include "zel/kernels/sums.h"
#include "zel/vector/export_asc_impl.h"
#include "zel/vector/histogram_impl.h"

namespace zel {

TIntVector::TIntVector(TComponent* AOwner) : TNumVector(AOwner) {}
TIntVector::TIntVector(std::initializer_list<int> values) {
  SetElements({values.begin(), values.size()});
}
TIntVector::TIntVector(std::span<const int> values) { SetElements(values); }
TIntVector::~TIntVector() = default;
std::string_view TIntVector::ClassName() const { return "TIntVector"; }

int TIntVector::FindExact(int LowElem, int HighElem, int value) const {
  MakeValidElemRange(LowElem, HighElem);
  const std::size_t at = kernels::findExact(Range(LowElem, HighElem), value);
  return at == kernels::npos ? 0 : LowElem + static_cast<int>(at);
}

bool TIntVector::Histogram(int FirstElem, int LastElem, int FirstBin, int LastBin, int BinWidth,
                           TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const {
  if (!Histo) return false;
  const int width = std::max(BinWidth, 1);
  const int bins = detail::AcceptedBins(FirstBin, LastBin, width);
  if (bins < 1) Raise<EZELVectorError>(".Histogram\": invalid number of bins");
  if (Histo == this) {
    const TIntVector copy(Elements());
    return copy.Histogram(FirstElem, LastElem, FirstBin, LastBin, width, Histo, Underflow, Overflow,
                          MaxCnt);
  }
  detail::CountInto(
      *Histo, FirstBin, LastBin, width, bins, Underflow, Overflow, MaxCnt,
      [&](auto& counter) { detail::CountPositions(Elements(), FirstElem, LastElem, counter); });
  return true;
}

int TIntVector::Correlate(const TIntVector* OtherVec, int ElemShift) const {
  if (!OtherVec) return 0;
  // Positions outside the other vector count as 0, so only the overlap matters.
  return static_cast<int>(
      kernels::integerShiftedCrossProduct(Elements(), OtherVec->Elements(), ElemShift));
}

bool TIntVector::StoreOnFile(int FirstElem, int LastElem, std::string_view FileName) const {
  if (LastElem < FirstElem) std::swap(FirstElem, LastElem);
  FirstElem = std::max(FirstElem, 1);
  LastElem = std::min(LastElem, NrOfElem());
  return detail::StoreNumberFile(FileName, FirstElem, LastElem, [&](std::ostream& out) {
    for (int i = FirstElem; i <= LastElem; ++i) out << GetVal(i) << '\n';
  });
}

int TIntVector::ExportAsASC(std::string_view FName, std::string_view Comment) const {
  return detail::ExportVectorASC(FName, ClassName(), Comment, NrOfElem(), [&](std::ostream& out) {
    for (const int x : Elements()) out << x << '\n';
  });
}

}  // namespace zel
