// The data table beside pandas and R, which run as programs of their own, and beside a plain vector
// of columns.

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/interpreter.h"
#include "bench/rivals.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel::bench {
namespace {

constexpr int kColumns = 10;

/// n rows of normal deviates, every one of full precision.
std::unique_ptr<TDataTable> newTable(std::size_t n, int columns = kColumns) {
  auto table = std::make_unique<TDataTable>();
  table->Resize(columns, static_cast<int>(n));
  const std::vector<double>& x = normalData(n * static_cast<std::size_t>(columns));
  std::copy(x.begin(), x.end(), table->NumericData->data());
  return table;
}

/// A table as a file, removed at the end.
class CsvFile {
 public:
  explicit CsvFile(const TDataTable& table) {
    static int number = 0;
    const std::string name =
        "zel_bench_" + std::to_string(::getpid()) + "_" + std::to_string(++number);
    FName = (std::filesystem::temp_directory_path() / name).string();
    static_cast<void>(table.ExportAsCSV(FName, -1, cdComma, true, false));
  }
  ~CsvFile() { std::filesystem::remove(FName); }
  CsvFile(const CsvFile&) = delete;
  CsvFile& operator=(const CsvFile&) = delete;
  [[nodiscard]] const std::string& name() const { return FName; }

 private:
  std::string FName;
};

// Debian's interpreter, for which the package of pandas is.
constexpr const char* kPandas = "exec /usr/bin/python3 " ZEL_BENCH_SOURCE "/table_peers.py";
constexpr const char* kR = "exec Rscript --vanilla " ZEL_BENCH_SOURCE "/table_peers.R";

/// A table here and in a peer.
struct Twins {
  std::unique_ptr<TDataTable> table;
  std::unique_ptr<CsvFile> file;
  std::unique_ptr<Interpreter> peer;

  /// Makes them by a file.
  void start(std::unique_ptr<TDataTable> made, const char* command) {
    table = std::move(made);
    file = std::make_unique<CsvFile>(*table);
    peer = std::make_unique<Interpreter>(command);
    peer->ask("read " + file->name());
  }
};

bool isNear(double a, double b) { return std::fabs(a - b) <= 1e-9 * std::fabs(b); }

double sumOfFirst(TDataTable& table) {
  int n = 0;
  return table.SumOfNumCells(1, 0, 1, 0, n);
}

void addReading(const char* peer, const char* command, std::size_t n) {
  const auto twins = std::make_shared<Twins>();
  const auto run = [=] {
    return twins->table->ImportFromCSV(twins->file->name(), cdComma, true, false) == 0;
  };
  const auto runPeer = [=] { return twins->peer->ask("read " + twins->file->name()); };
  compete("read CSV, 10 columns", n,
          [=] {
            twins->start(newTable(n), command);
            return run() && isNear(runPeer(), sumOfFirst(*twins->table));
          },
          {{"Zel", [=] { run(); }}, {peer, [=] { runPeer(); }}});
}

void addWriting(std::size_t n) {
  const auto twins = std::make_shared<Twins>();
  const auto run = [=] {
    return twins->table->ExportAsCSV(twins->file->name(), -1, cdComma, true, false);
  };
  const auto runPeer = [=] { return twins->peer->ask("write " + twins->file->name()); };
  compete("write CSV, 10 columns", n,
          [=] {
            twins->start(newTable(n), kPandas);
            runPeer();
            TDataTable read;
            return read.ImportFromCSV(twins->file->name(), cdComma, true, false) == 0 &&
                   isNear(sumOfFirst(read), sumOfFirst(*twins->table)) && run();
          },
          {{"Zel", [=] { run(); }}, {"pandas", [=] { runPeer(); }}});
}

void addSort(std::size_t n) {
  // Each run sorts by the next column, for which the rows are in no order.
  const auto twins = std::make_shared<Twins>();
  const auto ours = std::make_shared<int>(0);
  const auto theirs = std::make_shared<int>(0);
  const auto run = [=] {
    *ours = *ours % kColumns + 1;
    twins->table->SortRows(*ours, true, 0, 0, 0, 0, true);
    return twins->table->GetElem(*ours, 1);
  };
  const auto runPeer = [=] {
    *theirs = *theirs % kColumns + 1;
    return twins->peer->ask("sort " + std::to_string(*theirs - 1));
  };
  compete("sort rows, 10 columns", n,
          [=] {
            twins->start(newTable(n), kPandas);
            return isNear(run(), runPeer());
          },
          {{"Zel", [=] { run(); }}, {"pandas", [=] { runPeer(); }}});
}

/// A tenth of the cells is missing.
std::unique_ptr<TDataTable> withMissing(std::size_t n) {
  auto table = newTable(n);
  for (int c = 1; c <= kColumns; ++c) {
    for (int r = c; r <= static_cast<int>(n); r += 10) table->SetIsEmpty(c, r, true);
  }
  return table;
}

void addStatistics(std::size_t n) {
  const auto twins = std::make_shared<Twins>();
  const auto run = [=] {
    double meanOfFirst = 0;
    for (int c = kColumns; c >= 1; --c) {
      int n = 0;
      double variance = 0, low = 0, high = 0, q1 = 0, q2 = 0, q3 = 0;
      twins->table->MeanVarOfNumCells(c, 0, c, 0, meanOfFirst, variance);
      twins->table->MinMaxOfNumCells(c, 0, c, 0, low, high);
      twins->table->QuartilesOfNumCells(c, 0, c, 0, q1, q2, q3, n);
      keep(variance + low + high + q1 + q2 + q3);
    }
    return meanOfFirst;
  };
  const auto runPeer = [=] { return twins->peer->ask("describe"); };
  compete("statistics, 10 columns", n,
          [=] {
            twins->start(withMissing(n), kPandas);
            return isNear(run(), runPeer());
          },
          {{"Zel", [=] { run(); }}, {"pandas", [=] { runPeer(); }}});
}

/// What a user without a table would have.
struct PlainColumns {
  std::vector<std::vector<double>> values;
  std::vector<std::vector<std::uint8_t>> states;
  std::vector<std::string> names;
  std::vector<int> attributes;

  PlainColumns(std::size_t columns, std::size_t rows)
      : values(columns, std::vector<double>(rows)),
        states(columns, std::vector<std::uint8_t>(rows)),
        names(rows),
        attributes(rows) {}
  void resize(std::size_t rows) {
    for (auto& column : values) column.resize(rows);
    for (auto& column : states) column.resize(rows);
    names.resize(rows);
    attributes.resize(rows);
  }
  void insertRow(std::size_t ix) {
    const auto at = static_cast<std::ptrdiff_t>(ix);
    for (auto& column : values) column.insert(column.begin() + at, 0.0);
    for (auto& column : states) column.insert(column.begin() + at, std::uint8_t{0});
    names.insert(names.begin() + at, std::string());
    attributes.insert(attributes.begin() + at, 0);
  }
  void removeRow(std::size_t ix) {
    const auto at = static_cast<std::ptrdiff_t>(ix);
    for (auto& column : values) column.erase(column.begin() + at);
    for (auto& column : states) column.erase(column.begin() + at);
    names.erase(names.begin() + at);
    attributes.erase(attributes.begin() + at);
  }
};

void addRows(std::size_t n) {
  constexpr int columns = 20;
  const auto table = std::make_shared<std::unique_ptr<TDataTable>>();
  const auto plain = std::make_shared<std::unique_ptr<PlainColumns>>();
  const int rows = static_cast<int>(n);
  const int grown = rows + rows / 10;
  // Both get room to grow.
  const auto prepare = [=] {
    if (!*table) *table = newTable(n, columns);
    if (!*plain) *plain = std::make_unique<PlainColumns>(columns, n);
    for (const int size : {grown, rows}) {
      (*table)->Resize(columns, size);
      (*plain)->resize(static_cast<std::size_t>(size));
    }
    return true;
  };
  for (const auto& [kernel, row] : {std::pair("insert, remove first row, 20 cols", 1),
                                    std::pair("insert, remove mid row, 20 cols", rows / 2)}) {
    const int ix = row;
    compete(kernel, n, prepare,
            {{"Zel",
              [=] {
                (*table)->InsertRow(ix);
                (*table)->RemoveRow(ix);
              }},
             {"vectors", [=] {
                (*plain)->insertRow(static_cast<std::size_t>(ix - 1));
                (*plain)->removeRow(static_cast<std::size_t>(ix - 1));
              }}});
  }
  compete("resize rows to and fro, 20 cols", n, prepare,
          {{"Zel",
            [=] {
              (*table)->Resize(columns, grown);
              (*table)->Resize(columns, rows);
            }},
           {"vectors", [=] {
              (*plain)->resize(static_cast<std::size_t>(grown));
              (*plain)->resize(n);
            }}});
  compete("make and grow rows, 20 cols", n, prepare,
          {{"Zel",
            [=] {
              TDataTable fresh;
              fresh.Resize(columns, rows);
              fresh.Resize(columns, grown);
              keep(fresh.GetElem(1, 1));
            }},
           {"vectors", [=] {
              PlainColumns fresh(columns, n);
              fresh.resize(static_cast<std::size_t>(grown));
              keep(fresh.values[0][0]);
            }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  ::signal(SIGPIPE, SIG_IGN);  // of a peer that is not there
  addReading("R", kR, 30000);
  for (const std::size_t n : {60000, 600000}) addReading("pandas", kPandas, n);
  addWriting(60000);
  for (const std::size_t n : {100000, 1000000}) addSort(n);
  for (const std::size_t n : {100000, 1000000}) addStatistics(n);
  addRows(100000);
  return true;
}();

}  // namespace
}  // namespace zel::bench
