#include "zel/foundation/kahan.h"

namespace zel {

TKahanSum::TKahanSum(TComponent* AOwner) : TComponent(AOwner) { Reset(); }
TKahanSum::~TKahanSum() = default;
std::string_view TKahanSum::ClassName() const { return "TKahanSum"; }

void TKahanSum::Reset() {
  Sum = 0;
  cps = 0;
}

void TKahanSum::Add(double ANumber) {
  const double y = ANumber - cps;
  const double t = Sum + y;
  cps = (t - Sum) - y;
  Sum = t;
}

}  // namespace zel
