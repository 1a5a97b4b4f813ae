/// @file
/// A resizable set of bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "zel/base/api.h"
#include "zel/base/component.h"

namespace zel {

/// Ways to combine two bits: the own one first, then the other.
enum TBitCombination : std::uint8_t { bcAnd, bcOr, bcXor, bcAndNot };

/// Bits numbered 0..Size. Every bit is false at first; a read outside gives false, a write outside
/// is ignored. Counts and searches go by 64-bit words.
class ZEL_API TBitFld : public TComponent {
 public:
  /// A field without bits: Size is -1.
  explicit TBitFld(TComponent* AOwner = nullptr);
  ~TBitFld() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Makes bits 0..n addressable. Bits that both sizes have keep their value, new ones are false; a
  /// negative n leaves no bits.
  /// @throws EZELError  if there is not enough memory; the field is then unchanged
  void SetSize(int n);
  /// The largest index; -1 if there are no bits.
  [[nodiscard]] int Size() const { return FSize; }

  /// Makes every bit false; the size stays.
  void Clear();
  void SetBit(int i, bool v);
  [[nodiscard]] bool GetBit(int i) const {
    return i >= 0 && i <= FSize && ((FWords[Word(i)] >> (i % 64)) & 1U) != 0;
  }

  /// Index of the first true bit, -1 if there is none.
  [[nodiscard]] int FirstTrueBit() const { return NextTrueBit(0); }
  /// Index of the first true bit from index i upwards, -1 if there is none.
  [[nodiscard]] int NextTrueBit(int i) const;
  /// Number of true bits.
  [[nodiscard]] std::int64_t CountTrueBits() const;
  /// Changes every bit.
  void Invert();

  /// Takes size and bits of Source; null changes nothing.
  void Clone(const TBitFld* Source);
  /// A copy without owner and name.
  [[nodiscard]] std::unique_ptr<TBitFld> Clone() const;
  /// Clone, if Source is a bit field.
  /// @throws EConvertError  if it is not
  void Assign(const TPersistent* Source) override;

  /// Replaces every bit by its combination with the bit of the same index of other; a bit that
  /// other does not have counts as false. The size stays. Null changes nothing.
  void CombineWith(const TBitFld* other, TBitCombination op);

  /// Same size and same bits.
  [[nodiscard]] bool operator==(const TBitFld& other) const {
    return FSize == other.FSize && FWords == other.FWords;
  }

 private:
  static std::size_t Word(int i) { return static_cast<std::size_t>(i) / 64; }
  void ClearBeyondSize();

  int FSize = -1;
  std::vector<std::uint64_t> FWords;  // the bits beyond FSize in the last word are false
};

}  // namespace zel
