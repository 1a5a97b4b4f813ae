#include <algorithm>
#include <charconv>
#include <iterator>

#include "zel/datatable/guards_impl.h"

namespace zel {

using detail::at;
using detail::IsCategory;
using detail::kSlots;

void TDataTable::SetMScaleType(int ColNr, TMScaleType MScaleType) {
  if (!HasColumn(ColNr)) return;
  Type(ColNr).MScaleType = MScaleType;
  ChangedSetup();
}

int TDataTable::OrdinalOfNominalID(int Col, std::string_view ID, bool IgnoreCase) const {
  const TNominalIDStr wanted(ID);
  if (!HasColumn(Col) || wanted.empty() || !IsCategorical(Col)) return 0;
  return detail::FindCategory(Type(Col), wanted, IgnoreCase);
}

int TDataTable::AddNominalID(int Col, std::string_view MScaleID) {
  if (!HasColumn(Col)) return 0;
  if (const int known = OrdinalOfNominalID(Col, MScaleID, true)) return known;
  const int free = detail::FreeCategory(Type(Col));
  if (free == 0) return 0;
  Guarded([&] { Type(Col).IDs.Set(at(free), TNominalIDStr(MScaleID)); });
  Type(Col).MScaleType = stNominal;
  ChangedSetup();
  return free;
}

void TDataTable::SetNominalID(int ColIx, int OrdVal, std::string_view MScaleID) {
  if (!HasColumn(ColIx) || !IsCategory(OrdVal)) return;
  if (MScaleID.empty() || IsCategorical(ColIx)) {
    Guarded([&] { Type(ColIx).IDs.Set(at(OrdVal), TNominalIDStr(MScaleID)); });
  }
  ChangedSetup();
}

TNominalIDStr TDataTable::GetNominalID(int ColIx, int OrdVal) const {
  if (!HasColumn(ColIx) || !IsCategorical(ColIx) || !IsCategory(OrdVal)) return {};
  return Type(ColIx).IDs[at(OrdVal)];
}

int TDataTable::CountNominalIDs(int Col) const {
  if (!HasColumn(Col)) return 0;
  const auto& ids = Type(Col).IDs;
  return static_cast<int>(
      std::count_if(ids.begin(), ids.end(), [](const TNominalIDStr& id) { return !id.empty(); }));
}

void TDataTable::ClearNominalIDs(int Col) {
  if (!HasColumn(Col)) return;
  Type(Col).IDs.Clear();
  ChangedSetup();
}

TNominalIDStr TDataTable::GetElemNominal(int ACol, int ARow) const {
  if (!HasCell(ACol, ARow) || !IsCategorical(ACol)) return {};
  return detail::CategoryText(Type(ACol), NumericData->GetVal(ACol, ARow));
}

void TDataTable::SetElemNominal(int ACol, int ARow, std::string_view Value) {
  if (!HasCell(ACol, ARow)) return;
  int k = OrdinalOfNominalID(ACol, Value, true);
  if (k == 0) {
    k = detail::FreeCategory(Type(ACol));
    if (k == 0) {
      Raise<EZELDataTableError>("\": number of available nominal values exceeded");
    }
    Guarded([&] { Type(ACol).IDs.Set(at(k), TNominalIDStr(Value)); });
  }
  SetElem(ACol, ARow, k);
}

TIntArray TDataTable::ListOfCategorialVars() const {
  return Guarded([&] {
    TIntArray list;
    for (int c = 1; c <= FNrOfCols; ++c) {
      if (IsCategorical(c)) list.push_back(c);
    }
    return list;
  });
}

int TDataTable::ScanForCatValues(int ACol, int LowRow, int HighRow, TIntArray& OrdList) const {
  if (!HasColumn(ACol) || !IsCategorical(ACol)) return -1;
  Guarded([&] { OrdList.assign(kSlots, 0); });
  MakeValidRowRange(LowRow, HighRow);
  int invalid = 0;
  for (std::int64_t r = LowRow; r <= HighRow; ++r) {
    const int k = Category(ACol, static_cast<int>(r));
    ++(IsCategory(k) ? OrdList[at(k)] : invalid);
  }
  return invalid;
}

int TDataTable::CreateContingencyTable(int Col1, int Col2, int LowRow, int HighRow,
                                       TInt2DArray& ContTab) const {
  if (!HasColumn(Col1) || !HasColumn(Col2)) return -1;
  if (!IsCategorical(Col1) || !IsCategorical(Col2)) return -2;
  MakeValidRowRange(LowRow, HighRow);
  return Guarded([&] {
    TInt2DArray counts(kSlots, kSlots);
    int most1 = 0;
    int most2 = 0;
    bool invalid = false;
    for (std::int64_t row = LowRow; row <= HighRow; ++row) {
      const int r = static_cast<int>(row);
      const int k1 = Category(Col1, r);
      const int k2 = Category(Col2, r);
      if (!IsCategory(k1) || !IsCategory(k2)) {
        invalid = true;
      } else if (GetIsNumber(Col1, r) && GetIsNumber(Col2, r)) {
        ++counts(at(k1), at(k2));
        most1 = std::max(most1, k1);
        most2 = std::max(most2, k2);
      }
    }
    TInt2DArray table(most1 + 1, most2 + 1);
    const auto last1 = static_cast<std::size_t>(most1);
    const auto last2 = static_cast<std::size_t>(most2);
    for (std::size_t i = 0; i < last1; ++i) {
      for (std::size_t j = 0; j < last2; ++j) {
        const int n = counts(i, j);
        table(i, j) = n;
        table(i, last2) += n;
        table(last1, j) += n;
        table(last1, last2) += n;
      }
    }
    ContTab.swap(table);
    return invalid ? -3 : 0;
  });
}

}  // namespace zel
