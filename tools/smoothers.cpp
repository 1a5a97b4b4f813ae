#include "smoothers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"
#include "zel/analysis/Zel_math2.h"

namespace tool {
namespace {

using Window = void (*)(const zel::TVector*, int, int, zel::TVector*, int);
using Kernel = void (*)(int, double, int, zel::TVector*);
using BandKernel = void (*)(int, double, double, int, zel::TVector*);

/// Exactly one of the functions, or none for a recursive filter.
struct Method {
  const char* name;
  const char* words;
  int width;    // if none is given
  int longest;  // window
  int shortest;
  int derivative;
  Window window;
  Kernel kernel;
  BandKernel band;
  bool isHighPass = false;

  [[nodiscard]] bool isRecursive() const { return !window && !kernel && !band; }
  [[nodiscard]] std::size_t cutoffs() const { return window ? 0 : band ? 2 : 1; }
};

constexpr int kNoLimit = 1 << 30;

const std::array<Method, 12> kMethods{{
    {"mean", "moving average", 5, kNoLimit, 3, 0, zel::MovingAverageSmooth, {}, {}},
    {"median", "moving median", 5, kNoLimit, 3, 0, zel::MovingMedianSmooth, {}, {}},
    {"triangle",
     "triangular moving average",
     5,
     kNoLimit,
     3,
     0,
     zel::WeightedAverageSmooth,
     {},
     {}},
    {"polynomial", "Savitzky-Golay polynomial", 7, 25, 5, 0, zel::PolynomialSmooth, {}, {}},
    {"slope", "Savitzky-Golay first derivative", 7, 25, 5, 1, zel::FirstDeriv, {}, {}},
    {"curvature", "Savitzky-Golay second derivative", 7, 25, 5, 2, zel::SecondDeriv, {}, {}},
    {"lowpass", "windowed-sinc low-pass", 31, kNoLimit, 3, 0, {}, zel::CalcSincLPKernel, {}},
    {"highpass", "windowed-sinc high-pass", 31, kNoLimit, 3, 0, {}, zel::CalcSincHPKernel, {}},
    {"bandpass", "windowed-sinc band-pass", 31, kNoLimit, 3, 0, {}, {}, zel::CalcSincBPKernel},
    {"bandstop", "windowed-sinc band-stop", 31, kNoLimit, 3, 0, {}, {}, zel::CalcSincBSKernel},
    {"chebyshev-low", "Chebyshev low-pass", 0, 0, 0, 0, {}, {}, {}},
    {"chebyshev-high", "Chebyshev high-pass", 0, 0, 0, 0, {}, {}, {}, true},
}};

const Method& methodOf(const std::string& word) {
  for (const Method& method : kMethods) {
    if (word == method.name) return method;
  }
  throw Failure("--method: " + inQuotes(word) + " is none of " + methodWords());
}

int windowOf(const std::string& word) {
  if (word == "rectangle") return 0;
  if (word == "hamming") return 1;
  if (word == "blackman") return 2;
  throw Failure("--window: " + inQuotes(word) + " is none of rectangle, hamming and blackman");
}

/// The width of the window, odd so that it has a middle.
int widthOf(const Method& method, std::size_t length, const std::string& what,
            const SmoothOptions& options) {
  const int width = options.width > 0 ? options.width : method.width;
  const std::string option = "--width: the method " + options.method + " takes ";
  if (options.width > 0 && method.isRecursive()) throw Failure(option + "none");
  if (method.isRecursive()) return 0;
  if (width % 2 == 0 || width < method.shortest || width > method.longest) {
    throw Failure(option + "an odd number " +
                  (method.longest == kNoLimit ? "from " + std::to_string(method.shortest) + " on"
                                              : "of " + std::to_string(method.shortest) + " to " +
                                                    std::to_string(method.longest)));
  }
  if (static_cast<std::size_t>(width) >= length) {
    throw Failure(what + ": a window of " + std::to_string(width) +
                  " values takes a longer series than one of " +
                  counted(static_cast<long long>(length), "value"));
  }
  return width;
}

/// The limits of the band as parts of the sampling rate.
std::vector<double> cutoffsOf(const Method& method, const SmoothOptions& options) {
  const std::size_t wanted = method.cutoffs();
  if (options.cutoff.size() != wanted) {
    constexpr const char* kWanted[] = {"no frequency", "one frequency", "two frequencies"};
    throw Failure("--cutoff: the method " + options.method + " takes " + kWanted[wanted]);
  }
  std::vector<double> parts;
  for (const double f : options.cutoff) {
    const double part = f * options.sampleTime;
    if (!(part > 0 && part < 0.5)) {
      throw Failure("--cutoff: " + shortest(f) + " is not between 0 and " +
                    shortest(0.5 / options.sampleTime) +
                    ", half a cycle per value (--sample-time " + shortest(options.sampleTime) +
                    ')');
    }
    parts.push_back(part);
  }
  return parts;
}

/// Forwards and backwards about the mean, since the filter takes what lies outside the series as
/// zeros.
void filterBothWays(const Method& method, double cutoff, const SmoothOptions& options,
                    const zel::TVector& source, zel::TVector& result) {
  double mean = 0;
  double variance = 0;
  source.MeanVar(0, 0, mean, variance);
  double a0 = 0;
  zel::TMatrix coefficients;
  zel::CalcChebFilterCoeffs(options.poles, method.isHighPass, cutoff, options.ripple, a0,
                            &coefficients);
  const int n = source.NrOfElem();
  for (int i = 1; i <= n; ++i) result.SetVal(i, source(i) - mean);
  zel::ChebychevFilter(&result, 1, n, &result, a0, &coefficients);
  if (method.isHighPass) return;
  for (int i = 1; i <= n; ++i) result.SetVal(i, result(i) + mean);
}

std::string wordsOf(const Method& method, int width, const SmoothOptions& options) {
  std::string words = method.words;
  if (method.window) return words + " over " + std::to_string(width) + " values";
  for (std::size_t k = 0; k < options.cutoff.size(); ++k) {
    words += (k == 0 ? " at " : " to ") + shortest(options.cutoff[k]);
  }
  if (!method.isRecursive()) {
    return words + ", " + std::to_string(width) + " taps, window " + options.window;
  }
  return words + ", " + counted(options.poles, "pole") + ", ripple " + shortest(options.ripple) +
         " %, both ways";
}

}  // namespace

std::string methodWords() {
  std::vector<std::string> words;
  for (const Method& method : kMethods) words.emplace_back(method.name);
  std::string text;
  for (std::size_t k = 0; k < words.size(); ++k) {
    if (k > 0) text += k + 1 < words.size() ? ", " : " and ";
    text += words[k];
  }
  return text;
}

Smoothed smoothed(std::span<const double> series, const std::string& what,
                  const SmoothOptions& options) {
  const Method& method = methodOf(options.method);
  const int window = windowOf(options.window);
  const std::vector<double> cutoff = cutoffsOf(method, options);
  const int width = widthOf(method, series.size(), what, options);
  if (method.isRecursive() && options.poles % 2 != 0) throw Failure("--poles: it must be even");
  const int n = static_cast<int>(series.size());
  const zel::TVector source(series);
  zel::TVector result;
  result.Resize(n);
  if (method.window) {
    method.window(&source, 1, n, &result, width);
  } else if (method.isRecursive()) {
    filterBothWays(method, cutoff[0], options, source, result);
  } else {
    zel::TVector taps;
    if (method.band) {
      method.band(width, cutoff[0], cutoff[1], window, &taps);
    } else {
      method.kernel(width, cutoff[0], window, &taps);
    }
    zel::MovingKernelFilter(&source, 1, n, &result, &taps);
  }
  Smoothed smoothed{wordsOf(method, width, options), method.derivative > 0, width, {}};
  const double unit = std::pow(options.sampleTime, -method.derivative);
  for (int i = 1; i <= n; ++i) smoothed.values.push_back(result(i) * unit);
  if (!std::ranges::all_of(smoothed.values, [](double v) { return std::isfinite(v); })) {
    throw Failure(what + ": the result exceeds the range of numbers");
  }
  return smoothed;
}

}  // namespace tool
