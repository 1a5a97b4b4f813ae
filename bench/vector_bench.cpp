// The vector class itself: element access in a loop and bulk writes, no handler set, beside
// std::vector.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "bench/rivals.h"
#include "zel/vector/Zel_vector.h"

namespace zel::bench {
namespace {

struct Twins {
  explicit Twins(std::size_t n) : plain(n, 1.5) {
    vector.Resize(static_cast<int>(n));
    vector.Fill(1.5);
  }
  TVector vector;
  std::vector<double> plain;
};

double readAll(const TVector& v) {
  double last = 0;
  const int n = v.NrOfElem();
  for (int i = 1; i <= n; ++i) last = std::max(last, v.GetVal(i));
  return last;
}
double readAll(const std::vector<double>& v) {
  double last = 0;
  for (std::size_t i = 0; i < v.size(); ++i) last = std::max(last, v[i]);
  return last;
}

void writeAll(TVector& v, double x) {
  const int n = v.NrOfElem();
  for (int i = 1; i <= n; ++i) v.SetVal(i, x);
}
void writeAll(std::vector<double>& v, double x) {
  double* cells = v.data();
  for (std::size_t i = 0; i < v.size(); ++i) cells[i] = x;
}

const bool kRegistered = [] {
  for (const std::size_t n : {std::size_t{1000}, std::size_t{1000000}}) {
    const auto twins = std::make_shared<std::unique_ptr<Twins>>();
    const auto make = [=] {
      if (!*twins) *twins = std::make_unique<Twins>(n);
      writeAll((*twins)->vector, 4.5);
      writeAll((*twins)->plain, 4.5);
      return readAll((*twins)->vector) == 4.5 && readAll((*twins)->plain) == 4.5;
    };
    compete("GetVal loop", n, make,
            {{"Zel", [=] { keep(readAll((*twins)->vector)); }},
             {"std::vector", [=] { keep(readAll((*twins)->plain)); }}});
    compete("SetVal loop", n, make,
            {{"Zel",
              [=] {
                writeAll((*twins)->vector, 2.5);
                keep((*twins)->vector.GetVal(1));
              }},
             {"std::vector", [=] {
                writeAll((*twins)->plain, 2.5);
                keep((*twins)->plain[0]);
              }}});
    compete("Fill", n, make,
            {{"Zel",
              [=] {
                (*twins)->vector.Fill(3.5);
                keep((*twins)->vector.GetVal(1));
              }},
             {"std::fill", [=] {
                std::fill((*twins)->plain.begin(), (*twins)->plain.end(), 3.5);
                keep((*twins)->plain[0]);
              }}});
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
