#include "zel/datatable/Zel_datatable.h"

#include "tests/datatable/table_model.h"
#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

// Every operation on structure and cells, in random order, beside the plain model: the whole state
// and all events agree after each.
TEST(DataTableModel, FollowsThePlainModel) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    std::mt19937 random(seed);
    const auto draw = [&](int low, int high) {
      return std::uniform_int_distribution<int>(low, high)(random);
    };
    TMatrix external;
    TDataTable table;  // half of the runs use a borrowed matrix
    if (seed % 2 == 0) table.AssignAnotherDataMatrix(&external);
    TableModel model;
    recordEvents(table, model.events);
    for (int step = 0; step < 700; ++step) {
      std::string events;
      recordEvents(table, events);
      model.events.clear();
      const int nc = model.nCols(), nr = model.nRows();
      const int c = draw(1, nc), r = draw(1, nr), c2 = draw(c, nc), r2 = draw(r, nr);
      const int anyCol = draw(0, nc + 2), anyRow = draw(0, nr + 2);
      const int x = draw(0, 8), y = draw(-2, 9), mask = draw(0, 255), op = draw(0, 40);
      const auto byte = static_cast<std::uint8_t>(op > 30 ? 1 << (mask % 16) : mask);
      if (op < 2) table.Resize(x, y), model.resize(x, y);
      if (op == 2 || op == 3) table.InsertRow(anyRow), model.insert(true, anyRow);
      if (op == 4 || op == 5) table.InsertColumn(anyCol), model.insert(false, anyCol);
      if (op == 6) table.RemoveRow(anyRow), model.remove(true, anyRow);
      if (op == 7) table.RemoveColumn(anyCol), model.remove(false, anyCol);
      if (op == 8 || op == 9) {
        const int first = op == 8 ? 0 : anyRow, last = op == 8 ? 0 : r;
        EXPECT_EQ(table.RemoveMarkedRows(first, last, byte),
                  model.removeMarkedRows(first, last, mask));
      }
      if (op == 10) table.ExchangeColumns(anyCol, c), model.exchange(false, anyCol, c);
      if (op == 11) table.ExchangeRows(anyRow, r), model.exchange(true, anyRow, r);
      if (op == 12) table.MirrorColumns(), model.mirror(false);
      if (op == 13) table.MirrorRows(), model.mirror(true);
      if (op == 14 && x == 0) table.Clear(), model.clear();
      if (op == 15 && nc * nr < 40) table.Serialize(x > 4, y > 4), model.serialize(x > 4, y > 4);
      if (op == 16 || op == 17) {  // within the table, overlapping; bounds reversed
        table.CopyFrom(&table, c2, r2, c, r, x - 2, y), model.copyFrom(c, r, c2, r2, x - 2, y);
      }
      if (op == 18) {
        table.SetMScaleType(c, static_cast<TMScaleType>(x % 5));
        model.column(c).scale = static_cast<TMScaleType>(x % 5);
        model.events = "S";
      }
      if (op == 19) {
        table.SetColAttrib(c, y), table.SetRowAttrib(r, x);
        model.column(c).attribute = y, model.row(r).attribute = x;
        model.events = "AA";
      }
      if (op == 20) {
        const std::string name(static_cast<std::size_t>(mask / 4), 'x');
        table.SetColName(c, name), table.SetRowName(r, name), table.SetFComment(name);
        model.column(c).name = model.row(r).name = name.substr(0, 50), model.comment = name;
        model.events = "NNS";
      }
      if (op == 21 && mask >= 1 && mask <= 150 && model.categorical(c)) {
        table.SetNominalID(c, mask, "identifiers");
        model.column(c).ids[static_cast<std::size_t>(mask)] = "identifier";
        model.events = "S";
      }
      if (op > 21) {
        table.SetElem(c, r, mask / 2.0), table.SetCellState(c, r, byte);
        model.events = byte == model.cell(c, r).state ? "D" : "DC";
        model.cell(c, r) = {mask / 2.0, byte};
      }
      ASSERT_EQ(events, model.events) << "seed " << seed << " step " << step << " operation " << op;
      ASSERT_EQ(difference(table, model), "")
          << "seed " << seed << " step " << step << " operation " << op;
    }
    TDataTable copy;
    copy.Resize(3, 2);
    std::string events;
    recordEvents(copy, events);
    copy.CopyContentsFrom(&table);
    EXPECT_TRUE(events == "Z(3,2)DCSNAZ(3,2)" || events == "DCSNAZ(3,2)") << events;
    TDataTable assigned;
    assigned.Assign(&table);
    EXPECT_EQ(difference(assigned, model), "");
    model.round(1, 1);
    EXPECT_EQ(difference(copy, model), "");
    EXPECT_EQ(copy.CRCofCellStates(), table.CRCofCellStates());
    EXPECT_EQ(copy.CRCofNamesAndAttributes(), table.CRCofNamesAndAttributes());
  }
}

/// A table that writes its events down.
class DataTable : public testing::Test {
 protected:
  void record(int columns, int rows) {
    table.Resize(columns, rows);
    recordEvents(table, events);
  }
  TMatrix first{{1, 2}, {3, 4}, {5, 6}};  // to borrow
  TDataTable table;
  std::string events;
};

TEST_F(DataTable, IndicesOutsideAreNeutral) {
  for (const int i : {-1, 0, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    table.SetElem(i, 1, 5), table.SetCellState(1, i, 7), table.SetIsEmpty(i, 1, true);
    table.SetElemNominal(i, 1, "a"), table.SetColName(i, "a"), table.SetRowAttrib(i, 3);
    EXPECT_EQ(table.GetElem(1, i), 0);
    EXPECT_FALSE(table.GetIsNumber(1, i));
    EXPECT_EQ(table.GetRowName(i), "");
    EXPECT_EQ(table.GetMScaleType(i), stUnknown);
    EXPECT_EQ(table.AddNominalID(i, "a"), 0);
    EXPECT_FALSE(table.IfRowHasCellState(i, 255));
    TDoubleArray untouched{1, 2};
    EXPECT_EQ(table.CopyDataRowToArray(i, untouched), -1);
    EXPECT_EQ(untouched.size(), 2U);
  }
  TableModel fresh;
  EXPECT_EQ(difference(table, fresh), "");
}

TEST_F(DataTable, NamesAreCutAndFoundWithoutCaseAndBlanks) {
  record(3, 2);
  table.SetColName(1, std::string(51, 'a'));
  EXPECT_EQ(table.MaxColNameLength(), 50);
  EXPECT_EQ(table.FindColIndex(std::string(70, 'A')), 1);
  EXPECT_EQ(table.FindColIndex(" c-2 "), 2);
  EXPECT_EQ(table.FindColIndex("\tc-2"), 0);
  table.SetRowName(2, "  B ");
  EXPECT_EQ(table.FindRowIndex("b"), 2);
  table.SetFComment("one\ntwo");
  EXPECT_EQ(table.Comment(), "onetwo");
  table.SetColAttributes(0x0F);
  table.SetColAttributes(0x50, 0xF0);
  EXPECT_EQ(table.GetColAttrib(3), 0x5F);
}

TEST_F(DataTable, CategoriesFillAndOverflow) {
  record(2, 2);
  table.SetName("T");
  EXPECT_EQ(table.OrdinalOfNominalID(1, "a", true), 0);
  table.SetMScaleType(1, stOrdinal);
  EXPECT_EQ(table.AddNominalID(1, "Identifier long"), 1);
  EXPECT_EQ(table.GetMScaleType(1), stNominal);
  EXPECT_EQ(table.AddNominalID(1, "identifier"), 1);
  EXPECT_EQ(table.OrdinalOfNominalID(1, "identifier", false), 0);
  for (int k = 2; k <= 150; ++k) table.SetElemNominal(1, 1, "k" + std::to_string(k));
  EXPECT_EQ(table.GetElem(1, 1), 150);
  EXPECT_EQ(table.GetElemNominal(1, 1), "k150");
  events.clear();
  table.SetElemNominal(1, 2, "K7");
  EXPECT_EQ(table.GetElem(1, 2), 7);
  EXPECT_EQ(table.AddNominalID(1, "more"), 0);
  EXPECT_THROW_MSG(table.SetElemNominal(1, 1, "more"), EZELDataTableError,
                   "Component \"T\": number of available nominal values exceeded");
  EXPECT_EQ(table.GetElem(1, 1), 150);
  table.SetElem(1, 1, -1e300);
  EXPECT_EQ(table.GetElemNominal(1, 1), "-214748364");
  table.SetElem(1, 1, 2.5);
  EXPECT_EQ(table.GetElem(1, 1), 2);
  table.SetNominalID(2, 1, "no");  // an interval column
  EXPECT_EQ(events, "DDDS");
  EXPECT_EQ(table.ListOfCategorialVars(), TIntArray{1});
}

TEST_F(DataTable, ContingencyTable) {
  record(2, 5);
  table.CopyDataFromArray(TInt2DArray{{1, 2, 2, 7, 3}, {2, 1, 1, 0, 1}});
  TInt2DArray counts;
  EXPECT_EQ(table.CreateContingencyTable(1, 3, 0, 0, counts), -1);
  EXPECT_EQ(table.CreateContingencyTable(1, 2, 0, 0, counts), -2);
  table.SetMScaleType(1, stNominal);
  table.SetMScaleType(2, stOrdinal);
  table.SetIsEmpty(1, 5, true);
  EXPECT_EQ(table.CreateContingencyTable(1, 2, 0, 0, counts), -3);
  EXPECT_EQ(counts, (TInt2DArray{{0, 1, 1}, {2, 0, 2}, {2, 1, 3}}));
  EXPECT_EQ(table.CreateContingencyTable(1, 2, 1, 1, counts), 0);
  EXPECT_EQ(counts, (TInt2DArray{{0, 1, 1}, {0, 1, 1}}));
  TIntArray list;
  EXPECT_EQ(table.ScanForCatValues(2, 0, 0, list), 1);
  EXPECT_EQ(list[0], 3);
  EXPECT_EQ(list.size(), 150U);
}

TEST_F(DataTable, StatesOfManyCells) {
  record(2, 3);
  table.SetCellState(2, 3, 64 + 4);
  table.SetCellState(1, 3, 128);
  table.SetIsImputed(1, 1, true);
  EXPECT_TRUE(table.IfAnyCellHasCellState(2, 2, 2, 3, 64));
  EXPECT_FALSE(table.IfAnyCellHasCellState(1, 1, 2, 2, 64));
  EXPECT_EQ(table.CountMarkedCellsInRow(3, 4), 1);
  EXPECT_EQ(table.CountMarkedCellsInColumn(1, 32 + 64), 1);
  table.ExchangeMarkings();
  EXPECT_EQ(table.GetCellState(2, 3), 128 + 4);
  EXPECT_EQ(table.GetCellState(1, 3), 64);
  table.InvertCellStates(1);
  table.UnmarkAllCells();
  EXPECT_EQ(table.GetCellState(2, 3), 4 + 1);
  EXPECT_FALSE(table.GetIsNumber(1, 2));
  table.SetIsEmpty(1, 2, true);
  table.SetIsEmpty(1, 2, true);
  EXPECT_EQ(events, "CCCDCCCCD");
  // A sort of the matrix takes the states along.
  table.NumericData->SetVal(2, 1, 9);
  table.NumericData->SortRows(2, false, 1, 1, 2, 3);
  table.NumericData->SortRows(2, true, 1, 1, 2, 3);
  for (int r = 1; r <= 3; ++r) {
    EXPECT_EQ(table.GetElem(2, r) == 9, table.GetIsImputed(1, r)) << r;
  }
}

// The CRC-32 of the bytes p = 1, 2, ... of all items that have the same p % 8, by Python.
TEST_F(DataTable, Fingerprints) {
  table.Resize(2, 5003);
  for (int c = 1; c <= 2; ++c) {
    for (int r = 1; r <= 5003; ++r) {
      table.SetCellState(c, r, static_cast<std::uint8_t>(100 * c + 29 * r));
    }
  }
  EXPECT_EQ(table.CRCofCellStates(),
            "752339FE6683291A03B082D449CC98F8B354B68E1D8C54113A3048D2C7FE4C13");
  table.Resize(2, 2);
  table.SetFComment("a longer comment");
  table.SetColAttributes(0x1234), table.SetRowAttributes(-1);
  table.AddNominalID(2, "red"), table.SetNominalID(2, 5, "green");
  EXPECT_EQ(table.CRCofNamesAndAttributes(),
            "0BB8BCAEB8A8E239610F0C13D86EFC315141D532C751668D56BD7A48F359C142");
}

TEST(DataTableMatrix, BorrowedIsNeitherFreedNorCut) {
  TMatrix first{{1, 2}, {3, 4}, {5, 6}}, second{{7}};
  const auto before = contents(first);
  {
    TDataTable table;
    std::string events;
    table.AddNominalID(1, "kept");
    recordEvents(table, events);
    table.AssignAnotherDataMatrix(&first);
    EXPECT_EQ(table.GetMScaleType(1), stInterval);
    EXPECT_EQ(table.CountNominalIDs(1), 1);
    first.SetVal(1, 1, 1);
    EXPECT_EQ(events, "Z(1,1)Z(1,1)DSNACD");
    table.AssignAnotherDataMatrix(&second);
    EXPECT_FALSE(first.OnChange);
    EXPECT_EQ(contents(first), before);
    events.clear();
    table.AssignAnotherDataMatrix(&second);  // the size stays
    EXPECT_EQ(events, "Z(1,1)DSNAC");
    table.OnChange = nullptr;
    second.Resize(4, 4);  // not for others to do
    table.InsertRow(1);
    table.AssignAnotherDataMatrix(nullptr);
  }
  EXPECT_FALSE(second.OnChange || second.OnSortExchange);
  EXPECT_EQ(contents(second), (std::vector<double>{1, 2, 0, 7}));
}

TEST_F(DataTable, AssignTakesHandlersAndKeepsTheMatrix) {
  record(3, 2);
  TDataTable target;
  TMatrix* const matrix = target.NumericData;
  table.AssignTo(&target);
  EXPECT_EQ(events, "");
  EXPECT_EQ(target.NumericData, matrix);
  int changes = 0;
  target.OnChange = [&](TObject* Sender) { changes += Sender == &target ? 1 : 0; };
  matrix->SetVal(1, 1, 3);
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(target.OnResize);
  EXPECT_EQ(table.GetElem(1, 1), 0);
  EXPECT_THROW(target.Assign(&first), EConvertError);
}

TEST_F(DataTable, ArraysCoverTheCommonPart) {
  record(2, 3);
  EXPECT_EQ(table.CopyDataFromArray(TDouble2DArray{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 9, 9, 9}}), -1);
  EXPECT_EQ(table.CopyDataColumnFromArray(2, TDoubleArray{8}), 0);
  EXPECT_EQ(table.CopyDataRowFromArray(3, TDoubleArray{0, 1, 2}), 0);
  EXPECT_EQ(events, "DDD");
  TDouble2DArray all;
  table.CopyDataToArray(all);
  EXPECT_EQ(all, (TDouble2DArray{{1, 2, 0}, {8, 6, 1}}));
  TDoubleArray row;
  EXPECT_EQ(table.CopyDataRowToArray(2, row), 0);
  EXPECT_EQ(row, (TDoubleArray{2, 6}));
}

TEST_F(DataTable, ThrowingHandlersLeaveHandlersAndTableWhole) {
  record(2, 2);
  table.OnResize = [](TObject*, int, int, int, int) { throw std::runtime_error("stop"); };
  const TDataTable source;
  EXPECT_THROW(table.CopyContentsFrom(&source), std::runtime_error);
  EXPECT_THROW(table.Serialize(true, false), std::runtime_error);
  EXPECT_EQ(table.GetColName(2), "(data)");
  table.SetAllCellStates(64);
  EXPECT_THROW(table.InsertRow(1), std::runtime_error);
  EXPECT_THROW(table.RemoveMarkedRows(0, 0, 64), std::runtime_error);
  EXPECT_THROW(table.AssignAnotherDataMatrix(&first), std::runtime_error);
  EXPECT_EQ(table.GetElem(2, 3), 6);
  events.clear();
  first.SetVal(1, 1, 1);
  table.ChangedSetup(), table.ChangedNames(), table.ChangedAttrib(), table.ChangedCellStates();
  EXPECT_EQ(events, "DSNAC");
}

TEST(DataTableMemory, IsThatOfCellsNamesAndAttributes) {
  static std::size_t bytes;
  bytes = 0;
  TDataTable table;
  detail::AllocationAllowed = [](std::size_t n) { return (bytes += n, true); };
  table.Resize(10, 100000);
  detail::AllocationAllowed = nullptr;
  const double heads = 100010.0 * (sizeof(TDTNameStr) + sizeof(int));
  EXPECT_LE(static_cast<double>(bytes), 1.1 * (9.0 * 10 * 100000 + heads));
}

TEST(DataTableMemory, FailedAllocationsChangeNothing) {
  std::unique_ptr<TDataTable> table;
  TableModel model;
  TDataTable source;
  source.Resize(40, 70);
  const auto prepare = [&] {
    table = std::make_unique<TDataTable>();
    table->SetName("T");
    table->Resize(2, 2);
    table->SetElem(2, 2, 5);
    table->SetCellState(2, 1, 64);
    model = TableModel();
    model.resize(2, 2);
    model.cell(2, 2).value = 5;
    model.cell(2, 1).state = 64;
  };
  prepare();
  const std::string fingerprint = table->CRCofNamesAndAttributes();  // finds lines behind the last
  const auto unchanged = [&] {
    EXPECT_EQ(difference(*table, model), "");
    EXPECT_TRUE(table->NumericData->OnChange);
    EXPECT_EQ(table->CRCofNamesAndAttributes(), fingerprint);
  };
  const auto check = [&](auto&& operation) {
    expectFailuresHarmless<EZELDataTableError>(
        operation, "Component \"T\": not enough memory on heap", unchanged, prepare);
  };
  check([&] { table->Resize(60, 90); });
  check([&] { table->Resize(1, 90); });
  check([&] { table->InsertRow(2); });
  check([&] { table->InsertColumn(2); });
  check([&] { table->Serialize(true, true); });
  check([&] { table->Assign(&source); });
  check([&] { table->CopyContentsFrom(&source); });
  check([&] { (void)table->RemoveMarkedRows(0, 0, 64); });
  const zel_test::TempDir folder;
  const std::string file = folder.file("a file with a name that is stored outside of the string");
  zel_test::writeBytes(file, "length,species of the flower\n1.5,setosa\n2.5,virginica\n");
  check([&] { EXPECT_EQ(table->ImportFromCSV(file, cdComma, true, false), 0); });
  EXPECT_THROW_MSG(
      {
        const FailingStorage failing(1);
        const TDataTable made;
      },
      EZELDataTableError, "Component \"\": failed to initialize (out of memory)");
}

}  // namespace
}  // namespace zel::test
