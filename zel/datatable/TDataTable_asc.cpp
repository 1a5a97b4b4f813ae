#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include "zel/base/wholefile.h"
#include "zel/datatable/asc_form_impl.h"
#include "zel/datatable/guards_impl.h"

namespace zel {

using detail::at;

namespace {

constexpr int kUnreadable = -1;
constexpr int kBadPlace = -4;
constexpr int kNoSuchFile = -8;
constexpr int kTooManyCategories = -10;

/// Gives the values of a column the numbers that their categories have in another one, which gets
/// those that it lacks. What is no category or has no identifier stays as it is.
/// @return false if there would be too many categories
bool translateCategories(const detail::TColumnType& from, std::span<double> values,
                         detail::TColumnType& to) {
  std::array<int, detail::kSlots> numbers{};  // 0: not met yet
  for (double& value : values) {
    const int k = RoundToInt<int>(value);
    if (!detail::IsCategory(k) || from.IDs[at(k)].empty()) continue;
    int& number = numbers[at(k)];
    if (number == 0) {
      number = detail::FindCategory(to, from.IDs[at(k)], true);
      if (number == 0) {
        number = detail::FreeCategory(to);
        if (number == 0) return false;
        to.IDs.Set(at(number), from.IDs[at(k)]);
      }
    }
    value = number;
  }
  return true;
}

}  // namespace

int TDataTable::ExportAsASC(std::string_view FName, int Precision) const {
  return ExportAsASC(FName, Precision, TStr2DArray());
}

int TDataTable::ExportAsASC(std::string_view FName, int Precision,
                            const TStr2DArray& CustData) const {
  return Guarded([&] {
    WholeFileWriter file(FName);
    if (!file.IsOpen()) return -1;
    WithView([&](const detail::TTableView& view) {
      detail::WriteTableASC(file.Stream(), view, FName, Precision, CustData);
    });
    return file.Commit() ? 0 : -1;
  });
}

void TDataTable::ExportAsASC(std::ostream& OutStream, int Precision) const {
  Guarded([&] {
    WithView([&](const detail::TTableView& view) {
      detail::WriteTableASC(OutStream, view, "", Precision, TStr2DArray());
    });
  });
}

int TDataTable::TakeASC(std::string_view text, TStr2DArray& custData, std::string& message) {
  detail::TASCTable read;
  const int result = Guarded([&] { return detail::ReadTableASC(text, read, message); });
  if (result != 0) return result;
  custData = std::move(read.CustData);
  TakeContents(std::move(read.Contents));
  return 0;
}

template <class Source, class Read>
int TDataTable::WithText(Source&& source, Read read) const {
  std::optional<std::string> text;
  if constexpr (std::is_convertible_v<Source, std::string_view>) {
    if (!FileExists(source)) return kNoSuchFile;
    text = Guarded([&] { return ReadWholeFile(source); });
  } else {
    text = Guarded([&] { return ReadWholeStream(source); });
  }
  return text ? read(*text) : kUnreadable;
}

int TDataTable::ImportASC(std::string_view FName) {
  TStr2DArray ignored;
  return ImportASC(FName, ignored);
}

int TDataTable::ImportASC(std::string_view FName, TStr2DArray& CustData) {
  std::string message;
  return WithText(FName, [&](const std::string& text) { return TakeASC(text, CustData, message); });
}

int TDataTable::ImportASC(std::istream& InStream) {
  TStr2DArray ignored;
  std::string message;
  return ImportASC(InStream, ignored, message);
}

int TDataTable::ImportASC(std::istream& InStream, TStr2DArray& CustData, std::string& Message) {
  const int result =
      WithText(InStream, [&](const std::string& text) { return TakeASC(text, CustData, Message); });
  if (result == kUnreadable) Message = "the stream cannot be read";
  return result;
}

int TDataTable::ImportASC(const TClipboard& ClipBd) {
  TStr2DArray ignored;
  std::string message;
  return TakeASC(ClipBd.AsText, ignored, message);
}

bool TDataTable::MergeCategories(detail::TTableContents& contents, int PosX) const {
  for (std::size_t c = 0; c < contents.Columns(); ++c) {
    const int place = PosX + static_cast<int>(c);
    detail::TColumnType& type = contents.FVType[c];
    detail::TColumnType merged = HasColumn(place) ? Type(place) : detail::TColumnType();
    const bool areCategories = detail::IsCategoricalScale(type.MScaleType) &&
                               detail::IsCategoricalScale(merged.MScaleType);
    if (areCategories && !translateCategories(type, contents.Values[c], merged)) return false;
    type = merged;
  }
  return true;
}

int TDataTable::PasteASC(std::string_view text, int PosX, int PosY, bool ReplaceIDs) {
  if (PosX < 1 || PosY < 1) return kBadPlace;
  detail::TASCTable table;
  std::string message;
  const int result = Guarded([&] { return detail::ReadTableASC(text, table, message); });
  if (result != 0) return result;
  detail::TTableContents& read = table.Contents;
  const std::size_t columns = read.Columns();
  const std::size_t rows = read.Rows();
  const std::size_t newColumns = std::max(Columns(), at(PosX) + columns);
  const std::size_t newRows = std::max(Rows(), at(PosY) + rows);
  constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
  if (newColumns > kMost || newRows > kMost) return kBadPlace;

  // Whatever may fail comes before anything of the table changes.
  const bool fits = ReplaceIDs || Guarded([&] { return MergeCategories(read, PosX); });
  if (!fits) return kTooManyCategories;
  const int oldCols = FNrOfCols;
  const int oldRows = FNrOfRows;
  ResizeTo(static_cast<std::int64_t>(newColumns), static_cast<std::int64_t>(newRows));

  bool isSetupChanged = ReplaceIDs;
  for (std::size_t c = 0; c < columns; ++c) {
    const int to = PosX + static_cast<int>(c);
    std::ranges::copy(read.Values[c], Values(to) + at(PosY));
    std::ranges::copy(read.FCState[c], States(to) + at(PosY));
    isSetupChanged = isSetupChanged || !(Type(to) == read.FVType[c]);
    Type(to) = read.FVType[c];
  }
  if (ReplaceIDs) {
    std::ranges::copy(read.FColAtt, FColAtt.begin() + at(PosX));
    std::ranges::copy(read.FRowAtt, FRowAtt.begin() + at(PosY));
    if (table.HasColNames) std::ranges::copy(read.FColName, FColName.begin() + at(PosX));
    if (table.HasRowNames) std::ranges::copy(read.FRowName, FRowName.begin() + at(PosY));
  }
  if (FNrOfCols != oldCols || FNrOfRows != oldRows) FireResize(oldCols, oldRows);
  ChangedData();
  ChangedCellStates();
  if (isSetupChanged) ChangedSetup();
  if (ReplaceIDs) {
    ChangedNames();
    ChangedAttrib();
  }
  return 0;
}

int TDataTable::ReadFromASC(std::string_view FName, int PosX, int PosY, bool ReplaceIDs) {
  return WithText(FName,
                  [&](const std::string& text) { return PasteASC(text, PosX, PosY, ReplaceIDs); });
}

int TDataTable::ReadFromASC(std::istream& InStream, int PosX, int PosY, bool ReplaceIDs) {
  return WithText(InStream,
                  [&](const std::string& text) { return PasteASC(text, PosX, PosY, ReplaceIDs); });
}

int TDataTable::ReadFromASC(const TClipboard& ClipBd, int PosX, int PosY, bool ReplaceIDs) {
  return PasteASC(ClipBd.AsText, PosX, PosY, ReplaceIDs);
}

}  // namespace zel
