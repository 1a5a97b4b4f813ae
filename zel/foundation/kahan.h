/// @file
/// Compensated summation.
#pragma once

#include "zel/base/api.h"
#include "zel/base/component.h"

namespace zel {

/// Running sum whose rounding errors are carried along and given back: the error of Sum stays near
/// one unit in the last place of the sum of the magnitudes, however many numbers are added.
///
/// A term much larger than the sum so far takes the place of the sum's low digits. After a number
/// that is not finite, Sum is not a number from the next Add until the next Reset.
/// Method: Kahan, Commun. ACM 8 (1965) 40.
class ZEL_API TKahanSum : public TComponent {
 public:
  explicit TKahanSum(TComponent* AOwner = nullptr);
  ~TKahanSum() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Sum and compensation become 0.
  void Reset();
  /// Adds one number, in four additions. Compiled in the library, so that a caller's compiler
  /// options cannot simplify the compensation away.
  void Add(double ANumber);

  /// The sum since the last Reset.
  double Sum = 0;

 private:
  double cps = 0;  // what Sum holds too much of the terms so far
};

}  // namespace zel
