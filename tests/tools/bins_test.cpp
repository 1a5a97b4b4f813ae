// Histogram bins against a slow obvious count in exact decimals.
#include "tools/bins.h"

#include "tests/support/testing.h"

namespace {

using tool::countInAbout;
using tool::countInBins;
using tool::Histogram;

int total(const Histogram& h) { return std::accumulate(h.counts.begin(), h.counts.end(), 0); }

// 0.3 / 0.1 and 0.29 * 100 are below 3 and 29 in binary; a value that is an edge belongs to the bin
// above it all the same.
TEST(Bins, DecimalEdges) {
  std::mt19937 random(7);
  for (const int decimals : {0, 1, 2, 3}) {
    const int unit = static_cast<int>(std::lround(std::pow(10, decimals)));
    for (const int spread : {9, 40, 300, 5000}) {
      std::vector<int> units(300);  // the values in units of their last decimal
      std::vector<double> values;
      for (int& k : units) {
        k = static_cast<int>(random() % static_cast<unsigned>(spread)) - spread / 3;
        values.push_back(static_cast<double>(k) / unit);
      }
      for (const int bins : {0, 3, 10, 47}) {
        const zel::TVector x(values);
        const auto h = bins == 0 ? countInBins(x, 30) : countInAbout(x, bins);
        ASSERT_TRUE(h);
        const int width = static_cast<int>(std::lround(h->width() * unit));
        ASSERT_NEAR(width, h->width() * unit, 1e-9) << "finer than the data";
        const int first = static_cast<int>(std::lround(h->edge(0) * unit));
        std::vector<int> counts(h->counts.size());
        for (const int k : units) ++counts.at(static_cast<std::size_t>((k - first) / width));
        EXPECT_EQ(counts, h->counts) << decimals << ' ' << spread << ' ' << bins;
        EXPECT_GT(h->counts.front(), 0);
        EXPECT_GT(h->counts.back(), 0);
      }
    }
  }
}

TEST(Bins, NumberOfBins) {
  std::mt19937 random(11);
  std::normal_distribution<double> normal;
  for (const double scale : {1e-280, 3e-7, 1.0, 4e5, 1e290}) {
    std::vector<double> values(2000);
    for (double& v : values) v = normal(random) * scale;
    values.push_back(50 * scale);  // an outlier
    const zel::TVector x(values);
    const auto automatic = countInBins(x, 30);
    ASSERT_TRUE(automatic) << scale;
    EXPECT_LE(automatic->counts.size(), 30U);
    EXPECT_EQ(2001, total(*automatic));
    for (const int bins : {1, 5, 12, 60, 200}) {
      const auto about = countInAbout(x, bins);
      ASSERT_TRUE(about) << scale;
      EXPECT_EQ(2001, total(*about));
      EXPECT_NEAR(bins, static_cast<double>(about->counts.size()), 0.2 * bins + 1);
    }
  }
}

TEST(Bins, NarrowAndExtremeData) {
  // Neighbouring doubles: edges must not coincide.
  const double big = 1e15;
  const auto narrow = countInBins(zel::TVector{big, std::nextafter(big, 2 * big)}, 30);
  ASSERT_TRUE(narrow);
  EXPECT_EQ(2, total(*narrow));
  for (const double constant : {0.0, 55.0, 3.14159, -1e-7, 1e250}) {
    const auto h = countInBins(zel::TVector{constant, constant, constant}, 30);
    ASSERT_TRUE(h) << constant;
    EXPECT_EQ(std::vector<int>{3}, h->counts) << constant;
    EXPECT_LE(h->edge(0), constant);
    EXPECT_GT(h->edge(1), constant);
  }
  const auto tiny = countInBins(zel::TVector{0, 5e-324, 1e-323, 3e-322}, 30);
  ASSERT_TRUE(tiny);
  EXPECT_EQ(4, total(*tiny));
  EXPECT_FALSE(countInBins(zel::TVector{-1.7e308, 1.7e308}, 30));
}

}  // namespace
