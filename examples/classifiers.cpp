// Automatic or manual? The gearbox of 32 cars from their weight and consumption.
#include <zel/analysis/Zel_math2.h>
#include <zel/statistics/Zel_statis.h>

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Consumption, weight and a constant in x, the gearbox (1: manual) in y.
bool load(const std::string& name, zel::TMatrix& x, zel::TMatrix& y) {
  std::ifstream file(name);
  std::string line;
  std::getline(file, line);
  for (int row = 1; std::getline(file, line); ++row) {
    std::vector<std::string> cells;
    std::istringstream words(line);
    for (std::string cell; std::getline(words, cell, ',');) cells.push_back(cell);
    x.Resize(3, row);
    y.Resize(1, row);
    x.SetVal(1, row, std::atof(cells[1].c_str()));
    x.SetVal(2, row, std::atof(cells[6].c_str()));
    x.SetVal(3, row, 1);
    y.SetVal(1, row, std::atof(cells[9].c_str()));
  }
  return x.NrOfRows() > 1;
}

/// Coefficients of the regression of y on the columns of x, over some rows.
bool fit(const zel::TMatrix& x, const zel::TMatrix& y, const zel::TIntArray& rows,
         zel::TVector& coefficients) {
  zel::TMatrix some;
  zel::TVector responses;
  const int n = static_cast<int>(rows.size());
  some.Resize(x.NrOfColumns(), n);
  responses.Resize(n);
  for (int i = 1; i <= n; ++i) {
    const int row = rows[static_cast<std::size_t>(i - 1)];
    for (int c = 1; c <= x.NrOfColumns(); ++c) some.SetVal(c, i, x(c, row));
    responses.SetVal(i, y(1, row));
  }
  zel::TVector errors;
  bool isNearSingular = false;
  return zel::MultiLinReg(&some, &responses, &coefficients, &errors, isNearSingular);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  zel::TCrossValidator validator;
  auto x = std::make_unique<zel::TMatrix>();
  auto y = std::make_unique<zel::TMatrix>();
  if (!load(folder + "/mtcars.csv", *x, *y)) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  zel::TMatrix estimates;  // of each car in column 1, what it is in column 2
  estimates.Resize(2, x->NrOfRows());
  zel::TVector all;
  zel::TIntArray rows;
  for (int row = 1; row <= x->NrOfRows(); ++row) rows.push_back(row);
  if (!fit(*x, *y, rows, all)) return 1;
  for (int row : rows) {
    double estimate = 0;
    for (int c = 1; c <= 3; ++c) estimate += all(c) * (*x)(c, row);
    estimates.SetVal(1, row, estimate);
    estimates.SetVal(2, row, (*y)(1, row));
  }
  std::cout << std::fixed << std::setprecision(3);

  zel::TCFEvaluator evaluator;
  evaluator.CopyEstFromMatrix(1, &estimates);
  evaluator.CopyTrueFromMatrix(2, &estimates);
  zel::TDouble2DArray curve;
  int bestPoint = 0;
  double area = 0, byMatthews = 0, byAccuracy = 0, byInformedness = 0;
  evaluator.OptimizeThresholds(curve, bestPoint, area, byMatthews, byAccuracy, byInformedness);
  const auto point = static_cast<std::size_t>(bestPoint);
  std::cout << "area under the ROC curve " << area << "; best point: " << curve(point, 1)
            << " of the manual cars found with " << curve(point, 0) << " of the others\n";
  for (const double threshold : {0.5, curve(point, 2)}) {
    evaluator.CalcConfusionMatrix(threshold);
    int tp = 0, fp = 0, tn = 0, fn = 0;
    double used = 0;
    evaluator.GetConfMatValues(tp, fp, tn, fn, used);
    std::cout << "threshold " << used << ": right " << tp << " manual, " << tn
              << " automatic; wrong " << fp << " and " << fn << "; accuracy "
              << evaluator.Accuracy() << ", Matthews correlation " << evaluator.MatthewsCorr()
              << '\n';
  }

  // The same by cars that the model does not know.
  validator.SetXMat(x.release());  // which the validator owns from now on
  validator.SetYMat(y.release());
  zel::TVector model;
  validator.OnModelCreateRequest = [&](zel::TObject*, int, const zel::TIntArray& some, bool& ok) {
    ok = fit(*validator.XMat(), *validator.YMat(), some, model);
  };
  validator.OnModelApplyRequest = [&](zel::TObject*, int, const zel::TDoubleArray& predictors,
                                      zel::TDoubleArray& response) {
    for (std::size_t c = 0; c < predictors.size(); ++c) {
      response[0] += model(static_cast<int>(c) + 1) * predictors[c];
    }
  };
  validator.SetTestSize(1);  // leave one out
  if (!validator.Execute()) return 1;
  std::cout << "one left out at a time: error " << validator.GetRMSEP(1) << ", "
            << validator.GetTPRate(1) << " of the manual cars found with " << validator.GetFPRate(1)
            << " of the others\n";
  return 0;
}
