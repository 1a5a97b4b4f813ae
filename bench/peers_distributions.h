/// @file
/// What a user would call instead. Compiled apart, with -O3 -march=native.
#pragma once

namespace zel::bench {

double boostStudentIntegral(double t, int df);
double boostStudentQuantile(double p, int df);
double boostIncompleteBeta(double a, double b, double x);

}  // namespace zel::bench
