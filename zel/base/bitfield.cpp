#include "zel/base/bitfield.h"

#include <algorithm>
#include <bit>
#include <exception>

#include "zel/base/errors.h"

namespace zel {

TBitFld::TBitFld(TComponent* AOwner) : TComponent(AOwner) {}
TBitFld::~TBitFld() = default;
std::string_view TBitFld::ClassName() const { return "TBitFld"; }

void TBitFld::SetSize(int n) {
  n = std::max(n, -1);
  try {
    FWords.resize(n < 0 ? 0 : Word(n) + 1);
  } catch (const std::exception&) {
    Raise<EZELError>("\": not enough memory");
  }
  FSize = n;
  ClearBeyondSize();
}

void TBitFld::ClearBeyondSize() {
  const int used = (FSize + 1) % 64;
  if (used != 0) FWords.back() &= (std::uint64_t{1} << used) - 1;
}

void TBitFld::Clear() { std::fill(FWords.begin(), FWords.end(), 0U); }

void TBitFld::SetBit(int i, bool v) {
  if (i < 0 || i > FSize) return;
  const std::uint64_t mask = std::uint64_t{1} << (i % 64);
  std::uint64_t& word = FWords[Word(i)];
  word = v ? word | mask : word & ~mask;
}

int TBitFld::NextTrueBit(int i) const {
  i = std::max(i, 0);
  if (i > FSize) return -1;
  std::size_t w = Word(i);
  std::uint64_t word = FWords[w] & (~std::uint64_t{0} << (i % 64));
  while (word == 0) {
    if (++w == FWords.size()) return -1;
    word = FWords[w];
  }
  return static_cast<int>(w * 64) + std::countr_zero(word);
}

std::int64_t TBitFld::CountTrueBits() const {
  std::int64_t count = 0;
  for (const std::uint64_t word : FWords) count += std::popcount(word);
  return count;
}

void TBitFld::Invert() {
  for (std::uint64_t& word : FWords) word = ~word;
  ClearBeyondSize();
}

void TBitFld::Clone(const TBitFld* Source) {
  if (!Source || Source == this) return;
  try {
    FWords = Source->FWords;
  } catch (const std::exception&) {
    Raise<EZELError>("\": not enough memory");
  }
  FSize = Source->FSize;
}

std::unique_ptr<TBitFld> TBitFld::Clone() const {
  auto copy = std::make_unique<TBitFld>();
  copy->Clone(this);
  return copy;
}

void TBitFld::Assign(const TPersistent* Source) {
  if (const auto* field = dynamic_cast<const TBitFld*>(Source)) {
    Clone(field);
  } else {
    TComponent::Assign(Source);
  }
}

void TBitFld::CombineWith(const TBitFld* other, TBitCombination op) {
  if (!other) return;
  for (std::size_t w = 0; w < FWords.size(); ++w) {
    const std::uint64_t bits = w < other->FWords.size() ? other->FWords[w] : 0U;
    switch (op) {
      case bcAnd:
        FWords[w] &= bits;
        break;
      case bcOr:
        FWords[w] |= bits;
        break;
      case bcXor:
        FWords[w] ^= bits;
        break;
      case bcAndNot:
        FWords[w] &= ~bits;
        break;
    }
  }
  ClearBeyondSize();
}

}  // namespace zel
