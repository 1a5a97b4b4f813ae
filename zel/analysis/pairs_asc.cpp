#include <limits>
#include <optional>
#include <string>

#include "zel/analysis/pairs_asc_impl.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"
#include "zel/base/errors.h"
#include "zel/base/numbertext.h"

namespace zel::detail {

namespace {

std::optional<double> readValue(std::istream& f) {
  const std::string word = ReadNextWordInTextFile(f);
  if (word == "NAN" || word == "###") return std::numeric_limits<double>::quiet_NaN();
  return ParseNumber(word);
}

void skipName(std::istream& f) {
  std::string name;
  ReadQuotedName(f, '"', name);
}

}  // namespace

int ReadPairsASC(std::istream& f, TPairs& pairs) {
  constexpr int badAttribute = -5;
  constexpr int badValue = -6;
  constexpr int nominalVariables = -7;
  pairs = {};
  TASCHeader header;
  const int headerResult = ReadHeaderOfASC(f, header);
  if (headerResult != 0) return headerResult;
  if (header.Nominal) return nominalVariables;
  if (header.NCols != 2) {
    throw EZELMath2Error("TCurveFit.ImportASC: number of columns must be 2 (is actually " +
                         std::to_string(header.NCols) + ").");
  }
  for (int c = 0; header.ColNames && c < header.NCols; ++c) skipName(f);
  for (int r = 0; r < header.NRows; ++r) {
    if (double attribute = 0; header.RowAttr && !ReadNumber(f, attribute)) return badAttribute;
    if (header.RowNames) skipName(f);
    const auto x = readValue(f);
    const auto y = x ? readValue(f) : std::nullopt;
    if (!y) return badValue;
    pairs.x.push_back(*x);
    pairs.y.push_back(*y);
  }
  return 0;
}

}  // namespace zel::detail
