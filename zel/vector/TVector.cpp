#include "zel/vector/TVector.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"
#include "zel/base/numbertext.h"
#include "zel/foundation/randoms.h"
#include "zel/kernels/elementwise.h"
#include "zel/kernels/integrate.h"
#include "zel/kernels/sums.h"
#include "zel/vector/export_asc_impl.h"
#include "zel/vector/files_impl.h"
#include "zel/vector/histogram_impl.h"

namespace zel {

TVector::TVector(TComponent* AOwner) : TNumVector(AOwner) {}
TVector::TVector(std::initializer_list<double> values) {
  SetElements({values.begin(), values.size()});
}
TVector::TVector(std::span<const double> values) { SetElements(values); }
TVector::~TVector() = default;
std::string_view TVector::ClassName() const { return "TVector"; }

void TVector::FillRandomUniform(double RangeLow, double RangeHigh) {
  for (double& x : Cells()) x = Random() * (RangeHigh - RangeLow) + RangeLow;
  MarkWritten();
  Changed();
}

void TVector::FillRandomGauss(double Mean, double StdDev) {
  for (double& x : Cells()) x = GRandom() * StdDev + Mean;
  MarkWritten();
  Changed();
}

void TVector::SetVecLeng(double value) {
  const double length = CalcVecLeng();
  if (!(length > 0)) return;
  kernels::scale(Cells(), value / length);
  Changed();
}

bool TVector::Histogram(int FirstElem, int LastElem, double FirstBin, double LastBin,
                        double BinWidth, TIntVector* Histo, int& Underflow, int& Overflow,
                        int& MaxCnt) const {
  const int bins = detail::AcceptedBins(FirstBin, LastBin, BinWidth);
  if (!Histo || bins < 1) return false;
  detail::CountInto(
      *Histo, FirstBin, LastBin, BinWidth, bins, Underflow, Overflow, MaxCnt,
      [&](auto& counter) { detail::CountPositions(Elements(), FirstElem, LastElem, counter); });
  return true;
}

double TVector::Integrate(double BoundLow, double BoundHigh, TIntegMethod Method) const {
  switch (Method) {
    case imSimple:
      return kernels::integrate(Elements(), BoundLow, BoundHigh, kernels::IntegrationRule::mean);
    case imTrapezoidal:
      return kernels::integrate(Elements(), BoundLow, BoundHigh,
                                kernels::IntegrationRule::trapezoidal);
    case imSimpson:
      return kernels::integrate(Elements(), BoundLow, BoundHigh, kernels::IntegrationRule::simpson);
  }
  return 0;
}

double TVector::Correlate(const TVector* OtherVec, int ElemShift) const {
  if (!OtherVec) return 0;
  return kernels::shiftedCrossProduct(Elements(), OtherVec->Elements(), ElemShift);
}

void TVector::Standardize(double& mean, double& stddev) {
  double variance = 0;
  MeanVar(1, NrOfElem(), mean, variance);
  stddev = std::sqrt(variance);
  if (stddev > 0) kernels::standardize(Cells(), mean, stddev);
}

double TVector::MeanCenter() {
  double mean = 0;
  double variance = 0;
  MeanVar(1, NrOfElem(), mean, variance);
  kernels::standardize(Cells(), mean, 1.0);
  return mean;
}

void TVector::QNormalize(double RefQuant, double& Median, double& QuantDiff) {
  const double quantile = Percentile(RefQuant, 0, 0);
  Median = Percentile(50, 0, 0);
  QuantDiff = std::fabs(Median - quantile);
  if (QuantDiff > 0) kernels::standardize(Cells(), Median, QuantDiff);
}

bool TVector::StoreOnFile(int FirstElem, int LastElem, int Precision,
                          std::string_view FileName) const {
  if (Precision < -2) Precision = 2;
  Precision = std::min(Precision, 20);
  if (LastElem < FirstElem) std::swap(FirstElem, LastElem);
  MakeValidElemRange(FirstElem, LastElem);
  return detail::StoreNumberFile(FileName, FirstElem, LastElem, [&](std::ostream& out) {
    for (const double x : Range(FirstElem, LastElem)) {
      out << (Precision >= 0 ? FormatFixed(x, Precision) : FormatExp(x, Precision == -1 ? 13 : 26))
          << '\n';
    }
  });
}

bool TVector::LoadFromFile(std::string_view FileName, bool AdjustVectorSize, bool AutoDetect) {
  if (!AutoDetect) return LoadFromFile(FileName, AdjustVectorSize);
  std::ifstream file;
  if (!OpenForReading(file, FileName)) return false;
  int marked = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.find("//dig") != std::string::npos) ++marked;
  }
  if (!file.eof() || file.bad()) return false;
  file.clear();
  file.seekg(0);
  if (!file) return false;
  if (AdjustVectorSize) Resize(marked);

  TPositions read;
  ReadPositions(1, NrOfElem(), read, [&](double& value) {
    std::string word = ReadNextWordInTextFile(file);
    // A mark is no value; it may also follow a number without a blank.
    while (word.starts_with("//")) word = ReadNextWordInTextFile(file);
    if (word.empty()) return TReadResult::ended;
    const auto number = ParseNumber(std::string_view(word).substr(0, word.find("//")));
    if (number) value = *number;
    return number ? TReadResult::good : TReadResult::bad;
  });
  StoreQuietly(0, read);
  Changed();
  return true;
}

int TVector::ExportAsASC(std::string_view FName, int Precision, std::string_view Comment) const {
  return detail::ExportVectorASC(FName, ClassName(), Comment, NrOfElem(), [&](std::ostream& out) {
    for (const double x : Elements()) out << strff(x, 12, Precision) << '\n';
  });
}

}  // namespace zel
