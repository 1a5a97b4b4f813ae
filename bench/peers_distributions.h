/// @file
/// What a user would call instead. Compiled apart, with -O3 -march=native.
#pragma once

namespace zel::bench {

double boostStudentIntegral(double t, int df);
double boostStudentQuantile(double p, int df);
double boostIncompleteBeta(double a, double b, double x);
double boostChiSquareIntegral(double x, int df);
double boostChiSquareQuantile(double p, int df);
double boostFIntegral(double x, int df1, int df2);
double boostFQuantile(double p, int df1, int df2);
double boostBinomialIntegral(int n, double p, int k);

}  // namespace zel::bench
