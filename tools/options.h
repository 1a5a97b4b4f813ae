/// @file
/// The commands on the command line: their options and their help.
#pragma once

#include "cluster.h"
#include "convert.h"
#include "correlate.h"
#include "crosstab.h"
#include "describe.h"
#include "fit.h"
#include "pca.h"
#include "smooth.h"
#include "spectrum.h"
#include "wavelet.h"

namespace CLI {
class App;
}

namespace tool {

// Each adds a command; parsing fills the options.

CLI::App* addDescribe(CLI::App& program, DescribeOptions& options);
CLI::App* addCorrelate(CLI::App& program, CorrelateOptions& options);
CLI::App* addFit(CLI::App& program, FitOptions& options);
CLI::App* addPca(CLI::App& program, PcaOptions& options);
CLI::App* addCluster(CLI::App& program, ClusterOptions& options);
CLI::App* addSmooth(CLI::App& program, SmoothOptions& options);
CLI::App* addSpectrum(CLI::App& program, SpectrumOptions& options);
CLI::App* addWavelet(CLI::App& program, WaveletOptions& options);
CLI::App* addCrosstab(CLI::App& program, CrosstabOptions& options);
CLI::App* addConvert(CLI::App& program, ConvertOptions& options);

}  // namespace tool
