// Files of matrices beside what only moves the bytes, and the aggregation of layers.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "bench/peers_matrix.h"
#include "bench/rivals.h"
#include "zel/matrix/Zel_matrix.h"

namespace zel::bench {
namespace {

std::string scratch(const char* name) {
  return (std::filesystem::temp_directory_path() / (std::string("zel_bench_") + name)).string();
}

void writeBlock(const std::string& name, const double* x, std::size_t n) {
  std::FILE* const f = std::fopen(name.c_str(), "wb");
  if (!f) return;
  std::fwrite(x, sizeof(double), n, f);
  std::fclose(f);
}

void readBlock(const std::string& name, double* x, std::size_t n) {
  std::FILE* const f = std::fopen(name.c_str(), "rb");
  if (!f) return;
  keep(static_cast<double>(std::fread(x, sizeof(double), n, f)));
  std::fclose(f);
}

/// A matrix and an array of time slots with the same number of elements, and a plain block.
struct Blocks {
  explicit Blocks(std::size_t n) : plain(n) {
    const int columns = 1000;
    const int rows = static_cast<int>(n) / columns;
    matrix.Resize(columns, rows);
    matrix.FillRandomGauss(0, 1);
    slots.Resize(columns, rows / 10, 10, 1);
    slots.FillRandomGauss(0, 1);
  }
  TMatrix matrix;
  TMat4D slots;
  std::vector<double> plain;
};

void binaryFiles() {
  constexpr std::size_t n = 10000000;
  const auto blocks = std::make_shared<std::unique_ptr<Blocks>>();
  const std::string ours = scratch("binary");
  const std::string theirs = scratch("block");
  const auto agree = [=] {
    if (!*blocks) *blocks = std::make_unique<Blocks>(n);
    writeBlock(theirs, (*blocks)->plain.data(), n);
    TMatrix back;
    TMat4D backSlots;
    const bool saved = (*blocks)->matrix.SaveBinary(ours) == 0 && back.LoadBinary(ours) == 0;
    const bool savedSlots =
        (*blocks)->slots.SaveBinary(ours, 0, 0) == 0 && backSlots.LoadBinary(ours, 0, 0) == 0;
    return saved && savedSlots && back.CRCofData() == (*blocks)->matrix.CRCofData() &&
           backSlots.CRCofData() == (*blocks)->slots.CRCofData();
  };
  const Rival write{"fwrite", [=] { writeBlock(theirs, (*blocks)->plain.data(), n); }};
  const Rival read{"fread", [=] { readBlock(theirs, (*blocks)->plain.data(), n); }};
  compete("save binary matrix", n, agree,
          {{"Zel", [=] { keep((*blocks)->matrix.SaveBinary(ours)); }}, write});
  compete("save binary slots", n, agree,
          {{"Zel", [=] { keep((*blocks)->slots.SaveBinary(ours, 0, 0)); }}, write});
  compete("load binary slots", n,
          [=] { return agree() && (*blocks)->slots.SaveBinary(ours, 0, 0) == 0; },
          {{"Zel", [=] { keep((*blocks)->slots.LoadBinary(ours, 0, 0)); }}, read});
  compete("load binary matrix", n,
          [=] { return agree() && (*blocks)->matrix.SaveBinary(ours) == 0; },
          {{"Zel", [=] { keep((*blocks)->matrix.LoadBinary(ours)); }}, read});
}

void xmlFiles() {
  constexpr std::size_t n = 1000000;
  const auto text = std::make_shared<std::string>();
  const std::string ours = scratch("xml");
  // The same numbers, one in a line.
  const auto numbers = [=] {
    double sum = 0;
    const char* next = text->c_str();
    for (std::size_t i = 0; i < n; ++i) {
      char* end = nullptr;
      sum += std::strtod(next, &end);
      next = end;
    }
    return sum;
  };
  compete("load XML matrix", n,
          [=] {
            TMatrix m;
            m.Resize(1000, n / 1000);
            m.FillRandomGauss(0, 1);
            const TVector all(m.Elements());
            if (!m.SaveAsXMLFile(ours, "") || !all.StoreOnFile(0, 0, -2, scratch("numbers"))) {
              return false;
            }
            std::ifstream in(scratch("numbers"), std::ios::binary);
            text->assign(std::istreambuf_iterator<char>(in), {});
            text->erase(0, text->find('\n'));
            TMatrix back;
            return back.LoadFromXMLFile(ours, "") && back.CRCofData() == m.CRCofData();
          },
          {{"Zel",
            [=] {
              TMatrix m;
              keep(m.LoadFromXMLFile(ours, ""));
            }},
           {"strtod", [=] { keep(numbers()); }}});
}

void layers() {
  constexpr int columns = 512;
  constexpr int rows = 512;
  constexpr int count = 64;
  const auto stack = std::make_shared<TMat4D>();
  const auto plain = std::make_shared<std::vector<double>>(std::size_t{columns} * rows);
  using Form = void (TMat4D::*)(TMatrix*, int, int, int, int, int, int, int, int, int) const;
  using Peer = void (*)(const double*, std::size_t, std::size_t, double*);
  const auto add = [&](const char* kernel, Form form, Peer peer) {
    const auto ours = [=](int threads) {
      TMatrix result;
      (stack.get()->*form)(&result, 0, 0, 0, 0, 0, 0, 0, 0, threads);
      keep(result(columns, rows));
    };
    compete(kernel, std::size_t{columns} * rows * count,
            [=] {
              if (stack->NrOfColumns() == 1) {
                stack->Resize(columns, rows, count, 1);
                stack->FillRandomGauss(5, 2);
              }
              TMatrix result;
              (stack.get()->*form)(&result, 0, 0, 0, 0, 0, 0, 0, 0, 2);
              peer(stack->begin(), plain->size(), count, plain->data());
              double worst = 0;
              for (int c = 1; c <= columns; ++c) {
                for (int r = 1; r <= rows; ++r) {
                  const auto at = static_cast<std::size_t>((r - 1) * columns + c - 1);
                  worst = std::max(worst, std::abs(result(c, r) - (*plain)[at]));
                }
              }
              return worst < 1e-12;
            },
            {{"Zel", [=] { ours(1); }},
             {"Zel, 2 threads", [=] { ours(2); }},
             {"Eigen", [=] { peer(stack->begin(), plain->size(), count, plain->data()); }}});
  };
  add("mean of layers", &TMat4D::MeanOfLayersToMatrix, eigenMeanOfRuns);
  add("maximum of layers", &TMat4D::MaximumOfLayersToMatrix, eigenMaximumOfRuns);
  add("deviation of layers", &TMat4D::StdDevOfLayersToMatrix, eigenDeviationOfRuns);
}

const bool kRegistered = [] {
  binaryFiles();
  xmlFiles();
  layers();
  return true;
}();

}  // namespace
}  // namespace zel::bench
