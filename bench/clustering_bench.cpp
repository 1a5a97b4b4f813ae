// k-means, trees and nearest neighbours beside Eigen, R, plain loops and a k-d tree.

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/interpreter.h"
#include "bench/peers_clustering.h"
#include "bench/rivals.h"
#include "zel/analysis/Zel_math2.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

bool isNear(double a, double b) { return std::abs(a - b) <= 1e-9 * std::abs(b); }

constexpr std::size_t kBlobs = 10;

/// Objects around ten points, the groups overlapping.
const Data& blobs(std::size_t rows, int columns) {
  static std::map<std::pair<std::size_t, int>, Data> all;
  Data& data = all[{rows, columns}];
  if (data.empty()) {
    data = normalData(rows * static_cast<std::size_t>(columns));
    for (std::size_t k = 0; k < data.size(); ++k) {
      const std::size_t row = k % rows;
      const std::size_t blob = (row * 2654435761u >> 7) % kBlobs;
      data[k] += 1.5 * static_cast<double>((blob * 7 + k / rows * 3) % kBlobs);
    }
  }
  return data;
}

const TMatrix& matrixOf(std::size_t rows, int columns) {
  static std::map<std::pair<std::size_t, int>, std::unique_ptr<TMatrix>> all;
  auto& matrix = all[{rows, columns}];
  if (!matrix) {
    matrix = std::make_unique<TMatrix>();
    matrix->Resize(columns, static_cast<int>(rows));
    std::ranges::copy(blobs(rows, columns), matrix->data());
  }
  return *matrix;
}

void addKMeans(std::size_t n, int columns, int clusters) {
  struct Results {
    TMatrix centres;
    TIntVector assignment, sizes;
    std::vector<int> theirs;
  };
  const auto r = std::make_shared<Results>();
  const auto ours = [=] {
    keep(kMeansClustering(&matrixOf(n, columns), 0, 0, clusters, 0, &r->centres, &r->assignment,
                          &r->sizes));
  };
  const auto theirs = [=] {
    r->theirs.resize(n);
    keep(eigenLloyd(blobs(n, columns).data(), static_cast<long>(n), columns, clusters,
                    r->theirs.data()));
  };
  compete("k-means of " + std::to_string(columns) + " columns, k = " + std::to_string(clusters), n,
          [=] {
            ours();
            theirs();
            std::vector<int> sizes(static_cast<std::size_t>(clusters));
            for (const int cluster : r->theirs) ++sizes[static_cast<std::size_t>(cluster)];
            std::ranges::sort(sizes, std::greater());
            return std::ranges::equal(sizes, r->sizes.Elements());
          },
          {{"Zel", ours}, {"Eigen", theirs}});
}

double zelTree(std::size_t n, int columns, TClusterMethod method) {
  TMatrix data;
  data.Clone(&matrixOf(n, columns));
  TIntMatrix tree;
  TVector heights;
  TVector positions;
  keep(
      AgglomClustering(nullptr, &data, dmEuclid, method, 0.5, &tree, &heights, &positions, {}, {}));
  return heights.Sum(0, 0);
}

/// R with the objects of one size.
class RCluster {
 public:
  RCluster(std::size_t rows, int columns) : FRows(rows), FR(kCommand) {
    const auto file = std::filesystem::temp_directory_path() /
                      ("zel_bench_" + std::to_string(::getpid()) + "_objects");
    const Data& data = blobs(rows, columns);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size() * sizeof(double)));
    FR.ask("load " + file.string() + ' ' + std::to_string(rows));
    std::filesystem::remove(file);
  }
  double heights(const std::string& method) { return FR.ask(method + ' ' + std::to_string(FRows)); }

 private:
  static constexpr const char* kCommand =
      "exec Rscript --vanilla " ZEL_BENCH_SOURCE "/clustering_peers.R";
  std::size_t FRows;
  Interpreter FR;
};

void addTree(const std::string& kernel, TClusterMethod method, const char* methodOfR,
             std::size_t n) {
  constexpr int kColumns = 5;
  const auto r = [=]() -> RCluster& {
    static std::map<std::size_t, std::unique_ptr<RCluster>> all;
    auto& one = all[n];
    if (!one) one = std::make_unique<RCluster>(n, kColumns);
    return *one;
  };
  const auto ours = [=] { return zelTree(n, kColumns, method); };
  const auto plain = [=] {
    const double* const data = blobs(n, kColumns).data();
    const auto rows = static_cast<long>(n);
    if (method == cmSingleLink) return plainSpanningTree(data, rows, kColumns);
    return plainChain(data, rows, kColumns,
                      method == cmCompleteLink ? TreeRule::complete
                      : method == cmWard       ? TreeRule::ward
                                               : TreeRule::average);
  };
  compete(kernel, n,
          [=] {
            const double sum = ours();
            return isNear(sum, plain()) && isNear(sum, r().heights(methodOfR));
          },
          {{"Zel", [=] { keep(ours()); }},
           {method == cmSingleLink ? "plain Prim" : "plain chain", [=] { keep(plain()); }},
           {"R", [=] { keep(r().heights(methodOfR)); }}});
}

void addCenters(std::size_t n, bool withPeer) {
  constexpr int kColumns = 3;
  constexpr int kWanted = 10;
  const auto ours = [=] {
    TMatrix centres;
    centres.Resize(kColumns, kWanted);
    double distance = 0;
    FindCenters(&matrixOf(n, kColumns), 0, 0, kWanted, &centres, distance);
    return Data(centres.begin(), centres.end());
  };
  const auto theirs = [=] {
    Data data = blobs(n, kColumns);
    plainCenters(data.data(), static_cast<long>(n), kColumns, kWanted);
    Data centres;
    for (std::size_t c = 0; c < kColumns; ++c) {
      for (std::size_t i = 0; i < kWanted; ++i) centres.push_back(data[c * n + i]);
    }
    return centres;
  };
  std::vector<Rival> rivals{{"Zel", [=] { keep(ours()[0]); }}};
  if (withPeer) rivals.push_back({"plain loop", [=] { keep(theirs()[0]); }});
  compete(
      "ten centres by agglomeration", n,
      [=] { return !withPeer || std::ranges::equal(ours(), theirs(), isNear); }, std::move(rivals));
}

void addNearest(std::size_t n, int columns) {
  constexpr std::size_t kFound = 10;
  struct Room {
    TVector probe;
    TMatrix list;
    std::vector<int> numbers = std::vector<int>(kFound);
    Data distances = Data(kFound);
  };
  const auto room = std::make_shared<Room>();
  const auto ours = [=] {
    FindNearestNeighbors(kFound, &matrixOf(n, columns), 0, 0, &room->probe, &room->list, {});
    keep(room->list(2, 1));
  };
  const auto theirs = [=] {
    eigenNearest(blobs(n, columns).data(), static_cast<long>(n), columns, room->probe.data(),
                 room->numbers, room->distances);
    keep(room->distances[0]);
  };
  compete("10 neighbours of a point, " + std::to_string(columns) + " columns", n,
          [=] {
            room->probe.Resize(columns);
            room->probe.Fill(9);
            room->list.Resize(2, kFound);
            ours();
            theirs();
            for (int k = 1; k <= static_cast<int>(kFound); ++k) {
              const auto at = static_cast<std::size_t>(k - 1);
              if (room->list(1, k) != room->numbers[at] + 1) return false;
              if (!isNear(room->list(2, k), room->distances[at])) return false;
            }
            return true;
          },
          {{"Zel", ours}, {"Eigen", theirs}});
}

void addMeanDistances(std::size_t n, int columns) {
  constexpr int kFound = 10;
  struct Room {
    TVector ours;
    Data theirs;
  };
  const auto room = std::make_shared<Room>();
  const auto ours = [=] {
    MeanDistanceKNN(&matrixOf(n, columns), kFound, 1, static_cast<int>(n), &room->ours);
    keep(room->ours(1));
  };
  const auto theirs = [=] {
    KdTree(blobs(n, columns).data(), n, columns).meanDistances(kFound, room->theirs);
    keep(room->theirs[0]);
  };
  compete("10 neighbours of all, " + std::to_string(columns) + " columns", n,
          [=] {
            room->ours.Resize(static_cast<int>(n));
            room->theirs.resize(n);
            ours();
            theirs();
            return std::ranges::equal(room->ours.Elements(), room->theirs, isNear);
          },
          {{"Zel", ours}, {"nanoflann", theirs}});
}

[[maybe_unused]] const bool kRegistered = [] {
  ::signal(SIGPIPE, SIG_IGN);  // a peer that is missing is told as an error
  addKMeans(10000, 10, 10);
  addKMeans(100000, 10, 10);
  addKMeans(100000, 2, 4);
  for (const std::size_t n : {500u, 1000u, 2000u, 4000u}) {
    addTree("single linkage", cmSingleLink, "single", n);
    addTree("complete linkage", cmCompleteLink, "complete", n);
    addTree("Ward's method", cmWard, "ward.D", n);
    addTree("unweighted pair group", cmUpgma, "average", n);
    addCenters(n, n < 2000);
  }
  for (const std::size_t n : {1000u, 10000u, 100000u}) {
    for (const int columns : {3, 10}) addNearest(n, columns);
    addMeanDistances(n, 3);
    if (n < 100000) addMeanDistances(n, 10);
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
