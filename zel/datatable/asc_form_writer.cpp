#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>

#include "zel/base/ascheader_impl.h"
#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/textwriter_impl.h"
#include "zel/datatable/asc_form_impl.h"

namespace zel::detail {

namespace {

constexpr int kShortest = -1;
/// Of values with a fixed number of decimals, as the vectors write them.
constexpr std::size_t kWidth = 12;

template <class Number>
void append(std::string& text, Number x) {
  char digits[32];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), x).ptr);
}

/// A name as all readers of the form know them, in one line.
void appendName(std::string& text, std::string_view name) {
  text += '"';
  for (const char c : name) {
    if (c == '"') text += c;
    text += isControl(c) ? ' ' : c;
  }
  text += '"';
}

bool hasControl(std::string_view text) { return std::ranges::any_of(text, isControl); }

bool hasOtherNames(const TDynArray<TDTNameStr, 1>& names, char initial) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!(names[i] == NumberedName(initial, i + 1))) return true;
  }
  return false;
}

class TASCWriter : TextWriter {
 public:
  TASCWriter(std::ostream& out, const TTableView& table, int precision)
      : TextWriter(out), FTable(table), FArrays(table.Arrays), FPrecision(precision) {}

  void write(std::string_view fileName, const TStr2DArray& custData) {
    writeHeader(fileName);
    writeRows();
    writeHeads();
    writeCells();
    writeCustom(custData);
    if (FHasMore) ((FText += ';') += kASCLineNames[alEnd]) += '\n';
    flush();
  }

 private:
  void writeHeader(std::string_view fileName) {
    FHasAttributes = std::ranges::any_of(FArrays.FRowAtt, [](int a) { return a != 0; });
    FHasRowNames = hasOtherNames(FArrays.FRowName, 'R');
    const bool hasColNames = hasOtherNames(FArrays.FColName, 'C');
    const bool isNominal = std::ranges::any_of(FArrays.FVType, [](const TColumnType& type) {
      return IsCategoricalScale(type.MScaleType);
    });
    std::string flags;
    for (const bool flag : {FHasAttributes, hasColNames, FHasRowNames, isNominal}) {
      if (!flags.empty()) flags += ' ';
      flags += flag ? "TRUE" : "FALSE";
    }
    WriteASCHeader(FOut, kASCClassName, fileName, FArrays.FComment,
                   static_cast<int>(FTable.Columns()), static_cast<int>(FTable.Rows()),
                   flags.append(kASCLegend));
    if (!hasColNames) return;
    for (const TDTNameStr& name : FArrays.FColName) {
      appendName(FText, name);
      FText += '\t';
    }
    FText.back() = '\n';
  }

  /// The row of a cell tells its value; otherwise it has NAN.
  [[nodiscard]] bool isTold(std::size_t c, std::size_t r) const {
    return (FTable.State(c, r) & 3) == 0 && std::isfinite(FTable.Value(c, r));
  }

  void addValue(double x, int precision) {
    const std::size_t start = FText.size();
    appendNumber(FText, x, precision);
    const std::size_t length = FText.size() - start;
    if (precision >= 0 && length < kWidth) FText.insert(start, kWidth - length, ' ');
  }

  void writeRows() {
    for (std::size_t r = 0; r < FTable.Rows() && FOut; ++r) {
      if (FHasAttributes) {
        append(FText, FArrays.FRowAtt[r]);
        FText += '\t';
      }
      if (FHasRowNames) {
        appendName(FText, FArrays.FRowName[r]);
        FText += '\t';
      }
      for (std::size_t c = 0; c < FTable.Columns(); ++c) {
        if (isTold(c, r)) {
          addValue(FTable.Value(c, r), FTable.IsCategorical(c) ? kShortest : FPrecision);
        } else {
          FText += "NAN";
        }
        FText += '\t';
      }
      FText.back() = '\n';
      flushIfLong();
    }
  }

  /// Begins a line behind the rows.
  /// @param column  from 1, if the line is about one
  void beginLine(TASCLine line, std::size_t column) {
    if (!FHasMore) (FText += kASCMore) += "\t;what the rows do not tell\n";
    FHasMore = true;
    (FText += ';') += kASCLineNames[line];
    if (column == 0) return;
    FText += '\t';
    append(FText, column);
  }

  /// Writes a line with an entry for each run of equal items; none if no item needs an entry.
  /// @param item    item(i), i from 0: what the entry tells, if one is needed
  /// @param append  appends the text of an item
  template <class Item, class Append>
  void writeEntries(TASCLine line, std::size_t column, std::size_t count, Item item,
                    Append appendItem) {
    bool isBegun = false;
    for (std::size_t first = 0; first < count;) {
      const auto told = item(first);
      std::size_t next = first + 1;
      while (next < count && item(next) == told) ++next;
      if (told) {
        if (!isBegun) beginLine(line, column);
        isBegun = true;
        FText += '\t';
        append(FText, first + 1);
        if (next > first + 1) {
          FText += '-';
          append(FText, next);
        }
        FText += '=';
        appendItem(*told);
        flushIfLong();
      }
      first = next;
    }
    if (isBegun) FText += '\n';
  }

  /// An entry for each text that needs one.
  template <class Texts, class NeedsEntry>
  void writeTexts(TASCLine line, std::size_t column, const Texts& texts, NeedsEntry needsEntry) {
    const auto item = [&](std::size_t i) {
      const std::string_view text = texts[i];
      return needsEntry(text) ? std::optional(text) : std::nullopt;
    };
    writeEntries(line, column, texts.size(), item,
                 [&](std::string_view text) { AppendASCText(FText, text); });
  }

  void writeHeads() {
    const std::string& comment = FArrays.FComment;
    if (hasControl(comment) || comment.starts_with(DefaultASCComment(kASCClassName, ""))) {
      beginLine(alComment, 0);
      FText += '\t';
      AppendASCText(FText, comment);
      FText += '\n';
    }
    writeTexts(alColNames, 0, FArrays.FColName, hasControl);
    writeEntries(
        alColAttrib, 0, FTable.Columns(),
        [&](std::size_t c) {
          const int attribute = FArrays.FColAtt[c];
          return attribute != 0 ? std::optional(attribute) : std::nullopt;
        },
        [&](int attribute) { append(FText, attribute); });
    writeEntries(
        alScales, 0, FTable.Columns(),
        [&](std::size_t c) {
          const TMScaleType scale = FArrays.FVType[c].MScaleType;
          return scale != stInterval ? std::optional(scale) : std::nullopt;
        },
        [&](TMScaleType scale) { FText += MScaleTypeNames[scale]; });
    for (std::size_t c = 0; c < FTable.Columns(); ++c) {
      writeTexts(alCategories, c + 1, FArrays.FVType[c].IDs,
                 [](std::string_view id) { return !id.empty(); });
    }
    writeTexts(alRowNames, 0, FArrays.FRowName, hasControl);
  }

  void writeCells() {
    for (std::size_t c = 0; c < FTable.Columns(); ++c) {
      writeEntries(
          alStates, c + 1, FTable.Rows(),
          [&](std::size_t r) {
            const std::uint8_t state = FTable.State(c, r);
            const std::uint8_t told = isTold(c, r) ? std::uint8_t{0} : kEmptyState;
            return state != told ? std::optional<int>(state) : std::nullopt;
          },
          [&](int state) { append(FText, state); });
    }
    for (std::size_t c = 0; c < FTable.Columns(); ++c) {
      writeEntries(
          alValues, c + 1, FTable.Rows(),
          [&](std::size_t r) {
            const auto bits = std::bit_cast<std::uint64_t>(FTable.Value(c, r));
            return bits != 0 && !isTold(c, r) ? std::optional(bits) : std::nullopt;
          },
          [&](std::uint64_t bits) {
            appendNumber(FText, std::bit_cast<double>(bits), FPrecision);
          });
    }
  }

  void writeCustom(const TStr2DArray& custData) {
    for (std::size_t k = 0; k < custData.Length(0); ++k) {
      beginLine(alCustom, k + 1);
      for (std::size_t r = 0; r < FTable.Rows(); ++r) {
        FText += '\t';
        AppendASCText(FText, r < custData.Length(1) ? custData(k, r) : std::string_view());
        flushIfLong();
      }
      FText += '\n';
    }
  }

  const TTableView& FTable;
  const TTableArrays& FArrays;
  int FPrecision;
  bool FHasAttributes = false;
  bool FHasRowNames = false;
  bool FHasMore = false;
};

}  // namespace

void WriteTableASC(std::ostream& out, const TTableView& table, std::string_view fileName,
                   int precision, const TStr2DArray& custData) {
  TASCWriter(out, table, precision).write(fileName, custData);
}

}  // namespace zel::detail
