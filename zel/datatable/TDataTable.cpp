#include "zel/datatable/TDataTable.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <exception>
#include <iterator>

#include "zel/base/Zel_stringl.h"
#include "zel/datatable/guards_impl.h"
#include "zel/datatable/xml_form_impl.h"
#include "zel/kernels/range.h"

namespace zel {

using detail::at;

TDataTable::TDataTable(TComponent* AOwner) : TComponent(AOwner) {
  try {
    FOwned = std::make_unique<TMatrix>();
    ResizeLines(1, 1);
    FCState.SetLength(1, 1);
  } catch (const std::exception&) {
    Raise<EZELDataTableError>("\": failed to initialize (out of memory)");
  }
  detail::NameColumns(*this, 0);
  detail::NameRows(*this, 0);
  NumericData = FOwned.get();
  AttachMatrix();
}

TDataTable::~TDataTable() {
  if (FOwned) return;
  NumericData->OnChange = nullptr;
  NumericData->OnSortExchange = nullptr;
}

std::string_view TDataTable::ClassName() const { return "TDataTable"; }

void TDataTable::AttachMatrix() {
  NumericData->OnChange = [this](TObject* Sender) { DataHasChanged(Sender); };
  NumericData->OnSortExchange = [this](TObject* Sender, std::uint8_t ExchgWhat, int Index1,
                                       int Index2, int First, int Last) {
    ExchangeDuringSort(Sender, ExchgWhat, Index1, Index2, First, Last);
  };
}

// Notification.

void TDataTable::ChangedData() { Fire(OnChange, this); }
void TDataTable::ChangedSetup() { Fire(OnChangeSetup, this); }
void TDataTable::ChangedNames() { Fire(OnChangeNames, this); }
void TDataTable::ChangedAttrib() { Fire(OnChangeAttrib, this); }
void TDataTable::ChangedCellStates() { Fire(OnChangeCellState, this); }
void TDataTable::DataHasChanged(TObject*) { ChangedData(); }
void TDataTable::PercDone(TObject*, int Percent) { Fire(OnPercentDone, this, Percent); }

void TDataTable::FireResize(int oldCols, int oldRows) {
  Fire(OnResize, this, oldCols, oldRows, FNrOfCols, FNrOfRows);
}

// Names.

namespace {

std::string_view withoutBlanks(std::string_view name) {
  const std::size_t first = name.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

int findName(std::span<const TDTNameStr> names, std::string_view name) {
  const TDTNameStr cut(name);
  const std::string_view wanted = withoutBlanks(cut);
  const auto found = std::find_if(names.begin(), names.end(), [&](const TDTNameStr& candidate) {
    return EqualIgnoringCase(withoutBlanks(candidate), wanted);
  });
  return found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
}

int longestName(std::span<const TDTNameStr> names) {
  std::size_t longest = 0;
  for (const TDTNameStr& name : names) longest = std::max(longest, name.size());
  return static_cast<int>(longest);
}

void mergeAttributes(std::span<int> attributes, int value, std::uint32_t mask) {
  for (int& a : attributes) {
    a = static_cast<int>((static_cast<std::uint32_t>(a) & ~mask) |
                         (static_cast<std::uint32_t>(value) & mask));
  }
}

}  // namespace

TDTNameStr TDataTable::GetColName(int ColNr) const {
  return HasColumn(ColNr) ? FColName[at(ColNr)] : TDTNameStr();
}

void TDataTable::SetColName(int ColNr, std::string_view HLine) {
  if (!HasColumn(ColNr)) return;
  FColName[at(ColNr)] = TDTNameStr(HLine);
  ChangedNames();
}

TDTNameStr TDataTable::GetRowName(int RowNr) const {
  return HasRow(RowNr) ? FRowName[at(RowNr)] : TDTNameStr();
}

void TDataTable::SetRowName(int RowNr, std::string_view HLine) {
  if (!HasRow(RowNr)) return;
  FRowName[at(RowNr)] = TDTNameStr(HLine);
  ChangedNames();
}

int TDataTable::MaxColNameLength() const { return longestName(FColName); }
int TDataTable::MaxRowNameLength() const { return longestName(FRowName); }
int TDataTable::FindColIndex(std::string_view ColID) const { return findName(FColName, ColID); }
int TDataTable::FindRowIndex(std::string_view RowID) const { return findName(FRowName, RowID); }

// Attributes.

int TDataTable::GetColAttrib(int ColNr) const { return HasColumn(ColNr) ? FColAtt[at(ColNr)] : 0; }

void TDataTable::SetColAttrib(int ColNr, int Attrib) {
  if (!HasColumn(ColNr)) return;
  FColAtt[at(ColNr)] = Attrib;
  ChangedAttrib();
}

int TDataTable::GetRowAttrib(int RowNr) const { return HasRow(RowNr) ? FRowAtt[at(RowNr)] : 0; }

void TDataTable::SetRowAttrib(int RowNr, int Attrib) {
  if (!HasRow(RowNr)) return;
  FRowAtt[at(RowNr)] = Attrib;
  ChangedAttrib();
}

void TDataTable::SetColAttributes(int Attrib) { SetColAttributes(Attrib, ~std::uint32_t{0}); }
void TDataTable::SetRowAttributes(int Attrib) { SetRowAttributes(Attrib, ~std::uint32_t{0}); }

void TDataTable::SetColAttributes(int Attrib, std::uint32_t Mask) {
  mergeAttributes(FColAtt, Attrib, Mask);
  ChangedAttrib();
}

void TDataTable::SetRowAttributes(int Attrib, std::uint32_t Mask) {
  mergeAttributes(FRowAtt, Attrib, Mask);
  ChangedAttrib();
}

void TDataTable::SetFComment(std::string_view value) {
  FComment = Guarded([&] { return RemoveControlChars(value); });
  ChangedSetup();
}

// Ranges and reading.

void TDataTable::MakeValidColRange(int& LowCol, int& HighCol) const {
  kernels::clampRange(LowCol, HighCol, FNrOfCols);
}

void TDataTable::MakeValidRowRange(int& LowRow, int& HighRow) const {
  kernels::clampRange(LowRow, HighRow, FNrOfRows);
}

void TDataTable::ReadValues(int c, int r, std::size_t n, double* out) const {
  const auto cells = NumericData->Column(c);
  const std::size_t first = std::min(at(r), cells.size());
  const std::size_t count = std::min(n, cells.size() - first);
  // The two may overlap in a table that copies from itself.
  if (count > 0) std::memmove(out, cells.data() + first, count * sizeof(double));
  std::fill(out + count, out + n, 0.0);
}

}  // namespace zel
