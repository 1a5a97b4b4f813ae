#include <algorithm>
#include <fstream>
#include <string>

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/pairs_asc_impl.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"
#include "zel/base/ascheader_impl.h"

namespace zel {

std::string TCurveFit::ExportAsASC(std::string_view FName, std::string_view Comment,
                                   int Precision) const {
  WholeFileWriter file(FName);
  if (!file.IsOpen()) return file.Error().message();
  std::ostream& out = file.Stream();
  detail::WriteASCHeader(out, ClassName(), FName, Comment, 2, FNumData,
                         "FALSE TRUE FALSE\t;row attributes, column names, row names");
  out << "x   y\n";
  const auto x = Values(1);
  const auto y = Values(2);
  for (std::size_t i = 0; i < x.size() && out; ++i) {
    out << strff(x[i], 1, Precision) << '\t' << strff(y[i], 1, Precision) << '\n';
  }
  if (!file.Commit()) {
    throw EInOutError("ExportAsASC: error while writing " + std::string(FName) + ": " +
                      file.Error().message());
  }
  return {};
}

int TCurveFit::ImportASC(std::string_view FName) {
  ClearCaches();
  return detail::GuardFit("TCurveFit.ImportASC", [&] {
    std::ifstream file;
    OpenForReading(file, FName);
    detail::TPairs pairs;
    const int result = detail::ReadPairsASC(file, pairs);
    if (file.is_open() && file.bad())
      throw EInOutError("ImportASC: error while reading " + std::string(FName));
    if (result == 0) Replace(pairs.x, pairs.y);
    return result;
  });
}

void TCurveFit::Replace(std::span<const double> x, std::span<const double> y) {
  const auto count = static_cast<int>(x.size());
  FData.Resize(2, std::max(count, kLeastRows));
  ResetSummary();
  for (int i = 1; i <= count; ++i) {
    const auto at = static_cast<std::size_t>(i - 1);
    FData.SetVal(1, i, x[at]);
    FData.SetVal(2, i, y[at]);
    AdjustSums(x[at], y[at]);
  }
  FNumData = count;
}

}  // namespace zel
