/// @file
/// What the sources of TDataTable share. Internal.
#pragma once

#include "zel/base/guard_impl.h"
#include "zel/datatable/TDataTable.h"
#include "zel/datatable/table_contents_impl.h"

namespace zel {

template <class Operation>
decltype(auto) TDataTable::Guarded(Operation&& operation) const {
  const auto makeError = [this] { return EZELDataTableError(ComponentMessage(detail::kNoMemory)); };
  return detail::GuardMemory(
      [&]() -> decltype(auto) {
        try {
          return operation();
        } catch (const EZELMatrixError&) {  // the matrix could not get its memory
          throw makeError();
        }
      },
      makeError);
}

/// While it lives, changes of the matrix do not reach the table.
class TDataTable::TDetached {
 public:
  explicit TDetached(TDataTable& table) : FTable(table) { table.NumericData->OnChange = nullptr; }
  ~TDetached() { FTable.AttachMatrix(); }
  TDetached(const TDetached&) = delete;
  TDetached& operator=(const TDetached&) = delete;

 private:
  TDataTable& FTable;
};

namespace detail {

/// While it lives, an event has no handler.
class TSuspended {
 public:
  explicit TSuspended(TNotifyEvent& event) noexcept : FEvent(event) { FEvent.swap(FKept); }
  ~TSuspended() { FEvent.swap(FKept); }
  TSuspended(const TSuspended&) = delete;
  TSuspended& operator=(const TSuspended&) = delete;

 private:
  TNotifyEvent& FEvent;
  TNotifyEvent FKept;
};

}  // namespace detail

template <class Write>
void TDataTable::WithView(Write&& write) const {
  const double* values = NumericData->data();
  TDouble2DArray copy;
  if (NumericData->NrOfColumns() != FNrOfCols || NumericData->NrOfRows() != FNrOfRows) {
    CopyDataToArray(copy);
    values = copy.data();
  }
  write(detail::TTableView{*this, values});
}

}  // namespace zel
