/// @file
/// Runs a check once for each instruction set that is compiled in and that the machine has.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "zel/kernels/targets.h"
// after the list of targets
#include "hwy/targets.h"

namespace zel::test {

template <class Check>
void forEachTarget(Check check) {
  for (const auto target : hwy::SupportedAndGeneratedTargets()) {
    SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
    check();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().DeInit();
}

}  // namespace zel::test
