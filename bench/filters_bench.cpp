// Smoothing and filters of signals and pictures beside GSL, Eigen and plain loops.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/peers_filters.h"
#include "bench/rivals.h"
#include "zel/analysis/Zel_math2.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;
using Job = std::function<void(std::span<double>)>;  // writes n numbers

bool areClose(std::span<const double> a, std::span<const double> b, double tolerance = 1e-9) {
  return std::equal(a.begin(), a.end(), b.begin(), [=](double x, double y) {
    return std::abs(x - y) <= tolerance * (1 + std::abs(y));
  });
}

/// Its results start `offset` behind ours, and end as far before them.
struct Peer {
  std::string name;
  Job job;
  std::size_t offset = 0;
};

/// @param margin  at both ends, where the results may differ
void add(const std::string& kernel, std::size_t n, std::size_t margin,
         const std::function<void(TVector&)>& zel, const std::vector<Peer>& peers) {
  struct Results {
    TVector ours;
    Data theirs;
  };
  const auto results = std::make_shared<Results>();
  const auto prepare = [=] {
    results->ours.Resize(static_cast<int>(n));
    results->theirs.resize(n);
  };
  const auto room = [=](const Peer& peer) {
    return std::span(results->theirs).first(n - 2 * peer.offset);
  };
  std::vector<Rival> rivals{{"Zel", [=] {
                               zel(results->ours);
                               keep(results->ours(1));
                             }}};
  for (const Peer& peer : peers) {
    rivals.push_back({peer.name, [=] {
                        peer.job(room(peer));
                        keep(results->theirs[0]);
                      }});
  }
  compete(
      kernel, n,
      [=] {
        prepare();
        zel(results->ours);
        const auto inner = results->ours.Elements().subspan(margin, n - 2 * margin);
        return std::ranges::all_of(peers, [&](const Peer& peer) {
          peer.job(room(peer));
          return areClose(inner, std::span<const double>(results->theirs)
                                     .subspan(margin - peer.offset, n - 2 * margin));
        });
      },
      std::move(rivals));
}

const TVector& signalOf(std::size_t n) {
  static std::map<std::size_t, std::unique_ptr<TVector>> all;
  auto& signal = all[n];
  if (!signal) signal = std::make_unique<TVector>(normalData(n));
  return *signal;
}

void addSmoothers(std::size_t n, int width) {
  const int last = static_cast<int>(n);
  const auto w = static_cast<std::size_t>(width);
  const std::size_t m = w / 2;
  const std::string of = " of " + std::to_string(width);
  const auto x = [=]() -> std::span<const double> { return normalData(n); };
  add("moving average" + of, n, m,
      [=](TVector& y) { MovingAverageSmooth(&signalOf(n), 1, last, &y, width); },
      {{"GSL", [=](auto y) { gslMovingMean(x(), w, y); }},
       {"running sum", [=](auto y) { runningMeans(x(), w, y); }, m}});
  add("moving median" + of, n, m,
      [=](TVector& y) { MovingMedianSmooth(&signalOf(n), 1, last, &y, width); },
      {{"GSL", [=](auto y) { gslMovingMedian(x(), w, y); }}});
  Data triangle(w);
  for (std::size_t k = 0; k < w; ++k) {
    triangle[k] =
        static_cast<double>(std::min(k, w - 1 - k) + 1) / static_cast<double>((m + 1) * (m + 1));
  }
  add("weighted average" + of, n, m,
      [=](TVector& y) { WeightedAverageSmooth(&signalOf(n), 1, last, &y, width); },
      {{"Eigen", [=](auto y) { eigenConvolve(x(), triangle, y); }, m}});
  Data gauss(w);
  gslGaussianKernel(gauss);
  const auto ours = std::make_shared<TVector>(gauss);
  add("kernel" + of + " taps", n, 0,
      [=](TVector& y) { MovingKernelFilter(&signalOf(n), 1, last, &y, ours.get()); },
      {{"GSL", [=](auto y) { gslGaussian(x(), w, y); }}});
  add("kernel" + of + " taps, inner", n, m,
      [=](TVector& y) { MovingKernelFilter(&signalOf(n), 1, last, &y, ours.get()); },
      {{"Eigen", [=](auto y) { eigenConvolve(x(), gauss, y); }, m}});
}

void addParabolas(std::size_t n, int width) {
  using Smooth = void (*)(const TVector*, int, int, TVector*, int);
  const auto w = static_cast<std::size_t>(width);
  const double m = width / 2;
  const auto addForm = [&](const char* kernel, Smooth smooth, auto&& weight) {
    Data weights;
    for (double k = -m; k <= m; ++k) weights.push_back(weight(k));
    add(kernel + (" of " + std::to_string(width)), n, w / 2,
        [=](TVector& y) { smooth(&signalOf(n), 1, static_cast<int>(n), &y, width); },
        {{"Eigen", [=](auto y) { eigenConvolve(normalData(n), weights, y); }, w / 2}});
  };
  addForm("Savitzky-Golay", PolynomialSmooth, [=](double k) {
    return (3 * m * m + 3 * m - 1 - 5 * k * k) * 3 / ((2 * m + 3) * (2 * m + 1) * (2 * m - 1));
  });
  addForm("first derivative", FirstDeriv,
          [=](double k) { return k * 3 / (m * (m + 1) * (2 * m + 1)); });
  addForm("second derivative", SecondDeriv, [=](double k) {
    return (3 * k * k - m * (m + 1)) * 30 / (m * (m + 1) * (2 * m + 1) * (2 * m - 1) * (2 * m + 3));
  });
}

void addChebyshev(std::size_t n, int poles) {
  struct Filter {
    double a0 = 0;
    TMatrix coefficients;
    Data a, b;
  };
  const auto filter = std::make_shared<Filter>();
  CalcChebFilterCoeffs(poles, false, 0.1, 0.5, filter->a0, &filter->coefficients);
  const auto column = [&](int c) {
    const auto from = filter->coefficients.Column(c);
    return Data(from.begin(), from.end());
  };
  filter->a = column(1);
  filter->b = column(2);
  add("Chebyshev both ways, " + std::to_string(poles) + " poles", n, 0,
      [=](TVector& y) {
        ChebychevFilter(&signalOf(n), 1, static_cast<int>(n), &y, filter->a0,
                        &filter->coefficients);
      },
      {{"plain loop",
        [=](auto y) { plainBothWays(normalData(n), filter->a0, filter->a, filter->b, y); }}});
}

/// Pictures of n x n.
void addPictureKernel(std::size_t n, std::size_t width) {
  struct Pictures {
    TDouble2DArray kernel, data, ours, theirs;
  };
  const auto p = std::make_shared<Pictures>();
  const auto theirs = [=] {
    // Stored the other way round, both of them.
    eigenPictureKernel(p->data.data(), static_cast<long>(n), static_cast<long>(n), p->kernel.data(),
                       static_cast<long>(width), p->theirs.data());
  };
  const auto ours = [=] { keep(KernelConvolve(p->kernel, p->data, p->ours, {})); };
  compete(
      "picture kernel, " + std::to_string(width) + " x " + std::to_string(width), n,
      [=] {
        const auto fill = [](TDouble2DArray& a, std::size_t side) {
          a.SetLength(side, side);
          std::ranges::copy(normalData(side * side), a.data());
        };
        fill(p->kernel, width);
        fill(p->data, n);
        fill(p->theirs, n);
        ours();
        theirs();
        const std::size_t half = width / 2;
        for (std::size_t r = half; r < n - half; ++r) {
          if (!areClose(std::span<const double>(p->ours.data() + r * n + half, n - 2 * half),
                        std::span<const double>(p->theirs.data() + r * n + half, n - 2 * half))) {
            return false;
          }
        }
        return true;
      },
      {{"Zel", ours}, {"Eigen", theirs}});
}

void addRanks(const char* kernel, std::size_t n, double step) {
  struct Ranks {
    Data data, theirs;
    TVector ours, from;
  };
  const auto r = std::make_shared<Ranks>();
  const auto ours = [=] { return CalcRanks(&r->from, &r->ours); };
  const auto theirs = [=] { return plainRanks(r->data, r->theirs); };
  compete(kernel, n,
          [=] {
            r->data = normalData(n);
            if (step > 0) {
              for (double& v : r->data) v = std::round(v / step);
            }
            r->from.Resize(static_cast<int>(n));
            r->from.CopyFromArray(r->data, 1);
            r->theirs.resize(n);
            return std::abs(ours() - theirs()) <= 1e-12 * theirs() &&
                   std::ranges::equal(r->ours.Elements(), r->theirs);
          },
          {{"Zel", [=] { keep(ours()); }}, {"argsort", [=] { keep(theirs()); }}});
}

void addPictureCorrelation(std::size_t n) {
  struct Pictures {
    TBitmap first, second;
    std::vector<unsigned char> firstBytes, secondBytes;
  };
  const auto p = std::make_shared<Pictures>();
  const int last = static_cast<int>(n) - 1;
  const auto ours = [=] {
    const TRect all{0, 0, last, last};
    return CalcImgCorrelation(&p->first, &p->second, all, all, icmGrayValues);
  };
  const auto theirs = [=] {
    return plainGreyCorrelation(p->firstBytes.data(), p->secondBytes.data(), n, n, n);
  };
  compete("correlation of grey pictures", n,
          [=] {
            const Data& v = normalData(n * n);
            const auto fill = [&](TBitmap& image, std::vector<unsigned char>& bytes, double noise) {
              image.SetSize(last + 1, last + 1);
              for (std::size_t k = 0; k < n * n; ++k) {
                unsigned char rgb[4] = {};
                for (std::size_t c = 0; c < 3; ++c) {
                  const double value = 20 * v[k] + noise * v[(k * 7 + c) % (n * n)];
                  rgb[c] = static_cast<unsigned char>(std::clamp(value, 0.0, 255.0));
                }
                bytes.insert(bytes.end(), rgb, rgb + 4);
                image.SetPixel(static_cast<int>(k % n), static_cast<int>(k / n),
                               RGB(rgb[0], rgb[1], rgb[2]));
              }
            };
            fill(p->first, p->firstBytes, 3);
            fill(p->second, p->secondBytes, 9);
            return std::abs(ours() - theirs()) < 1e-12;
          },
          {{"Zel", [=] { keep(ours()); }}, {"plain, Eigen", [=] { keep(theirs()); }}});
}

void addTestSignals() {
  constexpr std::size_t n = 100000;
  static const TPeakParamsList peaks{{20000, 3000, 1}, {50000, 800, 2}, {80000, 9000, 0.5}};
  static const Data flat = [] {
    Data all;
    for (const auto& peak : peaks) all.insert(all.end(), peak.begin(), peak.end());
    return all;
  }();
  struct Results {
    Data ours, theirs;
  };
  const auto results = std::make_shared<Results>();
  const auto zelPeaks = [=] { keep(CreateGaussianPeaks(peaks, results->ours)); };
  const auto eigenSum = [=] { eigenPeaks(flat, results->theirs); };
  compete("three Gaussian peaks", n,
          [=] {
            results->ours.resize(n);
            results->theirs.resize(n);
            zelPeaks();
            eigenSum();
            return areClose(results->ours, results->theirs, 1e-13);
          },
          {{"Zel", zelPeaks}, {"Eigen", eigenSum}});
  constexpr std::size_t kSide = 1000;
  const auto picture = std::make_shared<TDouble2DArray>();
  const auto theirs = std::make_shared<Data>(kSide * kSide);
  const auto ours = [=] { keep(Gauss2D(300, 500, 150, 2, *picture)); };
  const auto eigen = [=] { eigenPeak2D(300, 500, 150, 2, theirs->data(), kSide, kSide); };
  compete("Gaussian peak in a picture", kSide,
          [=] {
            picture->SetLength(kSide, kSide);
            ours();
            eigen();
            return areClose({picture->data(), kSide * kSide}, *theirs, 1e-13);
          },
          {{"Zel", ours}, {"Eigen", eigen}});
}

void addGaussKernels(std::size_t n) {
  struct Points {
    TVector x, y;
  };
  const auto p = std::make_shared<Points>();
  const double sigma = std::sqrt(static_cast<double>(n));
  const auto ours = [=] { return CalcGaussKernel(&p->x, &p->y, sigma); };
  const auto theirs = [=] { return eigenGaussKernel(p->x.Elements(), p->y.Elements(), sigma); };
  compete("Gaussian kernel of two points", n,
          [=] {
            const auto fill = [&](TVector& v, const Data& data) {
              v.Resize(static_cast<int>(n));
              v.CopyFromArray(std::span(data).first(n), 1);
            };
            fill(p->x, normalData(n));
            fill(p->y, normalData(2 * n));
            return std::abs(ours() / theirs() - 1) < 1e-9;
          },
          {{"Zel", [=] { keep(ours()); }}, {"Eigen", [=] { keep(theirs()); }}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {10000u, 1000000u}) {
    addSmoothers(n, 11);
    addParabolas(n, 11);
    addChebyshev(n, 4);
    addRanks("mean ranks", n, 0);
    addRanks("mean ranks, many ties", n, 0.1);
  }
  addSmoothers(100000, 101);
  addSmoothers(100000, 1001);
  addParabolas(100000, 25);
  addChebyshev(100000, 10);
  for (const std::size_t n : {200u, 2000u}) {
    addPictureKernel(n, 3);
    addPictureKernel(n, 9);
  }
  for (const std::size_t n : {100u, 1000u}) addPictureCorrelation(n);
  addTestSignals();
  for (const std::size_t n : {10u, 1000u}) addGaussKernels(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
