/// @file
/// What the double and the integer vector share.
#pragma once

#include <initializer_list>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zel/base/Zel_streams.h"
#include "zel/base/Zel_zelbase.h"

namespace zel {

namespace detail {
class TResults;
}

/// One-dimensional container of numbers; TVector (double) and TIntVector (32-bit integer) derive
/// from it.
///
/// Elements are numbered from 1. There is always at least one element. A read outside 1..NrOfElem
/// gives 0 and a write there is ignored. A range argument pair (LowElem, HighElem) is clamped: (0,
/// 0) is the whole vector, otherwise each bound is limited to 1..NrOfElem and a reversed pair is
/// exchanged. Operations that change elements or size fire OnChange afterwards, once for bulk
/// operations, unless their description says otherwise.
///
/// Integer vectors compute Sum, DotProduct, Correlate, Add, Subtract, SMult and AbsVal modulo 2^32,
/// and everything that returns a double in floating point.
///
/// Not-a-number elements: sums and moments become not-a-number, minimum, maximum and the searches
/// never pick one, a sort leaves the elements in the order that its comparisons, which a
/// not-a-number always fails, happen to produce; percentiles, quartiles and the mode read that
/// order.
template <class T>
class TNumVector : public TComponent {
 public:
  using value_type = T;

  /// Fired by Changed.
  TNotifyEvent OnChange;
  /// Fired by SortElems for each exchange, with ExchgWhat 0 and the two 1-based positions.
  TSortExchgEvent OnSortExchange;

  /// One element, 0.
  /// @throws EZELVectorError  `: not enough memory on heap`
  explicit TNumVector(TComponent* AOwner = nullptr);
  ~TNumVector() override;

  /// Copies size, contents, IsEmpty and both handlers of a vector of the same element type;
  /// OnChange is not fired.
  /// @throws EConvertError    for a source of another class, or null
  /// @throws EZELVectorError  `: not enough memory`; the vector is unchanged then
  void Assign(const TPersistent* Source) override;
  void AssignTo(TPersistent* Dest) const override;

  /// Fires OnChange.
  void Changed();
  /// Fires OnSortExchange.
  void SortExchange(std::uint8_t ExchgWhat, int Index1, int Index2, int First, int Last);
  /// Fingerprint of the elements: one CRC-32 register (reflected polynomial 0xEDB88320) for each
  /// byte place of the element type, each as eight upper-case hexadecimal digits: 64 characters for
  /// doubles, 32 for integers. Equal contents, equal text; the bits of the elements count, so 0.0
  /// and -0.0 differ.
  [[nodiscard]] std::string CRCofData() const;

  /// Number of elements, at least 1.
  [[nodiscard]] int NrOfElem() const { return static_cast<int>(FVec.size()); }
  /// Resizes; a value below 1 is ignored.
  void SetNrOfElem(int NE) { Resize(NE); }
  /// Sets the number of elements; those that remain keep their values, new ones are 0. Appending
  /// one at a time costs amortised constant time.
  /// @return false, with nothing changed, if NE < 1; true without notification if NE is the size
  /// already
  /// @throws EZELVectorError  `: not enough memory`; the vector is unchanged then
  bool Resize(int NE);
  /// Clamps a range: (0, 0) to the whole vector, otherwise each bound to 1..NrOfElem, then
  /// exchanges a reversed pair.
  void MakeValidElemRange(int& LowElem, int& HighElem) const;
  /// True until a value is written after creation or the last Clear. Informative only.
  [[nodiscard]] bool IsEmpty() const { return FIsEmpty; }

  /// Element, 0 outside 1..NrOfElem.
  [[nodiscard]] T GetVal(int Elem) const {
    const auto index = static_cast<std::size_t>(static_cast<unsigned>(Elem) - 1U);
    return index < FVec.size() ? FVec[index] : T{0};
  }
  /// Writes an element and fires OnChange; outside 1..NrOfElem nothing happens.
  void SetVal(int Elem, T Value) {
    const auto index = static_cast<std::size_t>(static_cast<unsigned>(Elem) - 1U);
    if (index < FVec.size()) {
      FVec[index] = Value;
      if (FIsEmpty) FIsEmpty = false;  // a test is cheaper than a second store per element
      if (OnChange) Changed();
    }
  }
  [[nodiscard]] T Elem(int Elem) const { return GetVal(Elem); }
  [[nodiscard]] T operator()(int Elem) const { return GetVal(Elem); }

  /// Sets every element.
  void Fill(T value);
  /// Sets every element to 0 and IsEmpty to true.
  void Clear();
  /// Replaces every element by its absolute value.
  void AbsVal();
  /// Reverses the order of the elements.
  void Mirror();
  /// Reseeds the generator from the clock and makes NrOfElem exchanges of two positions drawn
  /// independently and uniformly, which may coincide. Fires no event.
  void ShuffleElems();
  /// Comb sort (gap shrink factor 1.3) of a range. Not stable; equal elements are never exchanged.
  /// Fires OnSortExchange after each exchange and OnChange at the end; a range of fewer than two
  /// elements does nothing. With no OnSortExchange handler the same passes run vectorised, to the
  /// same result. A handler that resizes the vector ends the sort.
  /// @param RangeFirst, RangeLast  (0, 0): whole vector; otherwise exchanged if reversed, then
  /// limited
  void SortElems(bool Ascending, int RangeFirst, int RangeLast);

  /// Makes this vector an element-by-element copy; null: nothing happens. OnChange fires for a
  /// resize, for each element and once more at the end.
  void Clone(const TNumVector* VecSource);
  /// Copies elements SourceElemLo..SourceElemHi (each bound limited to the source, a reversed pair
  /// exchanged; (0, 0) is element 1) to DestElem and the following positions; what falls outside
  /// this vector is dropped. OnChange fires for each element stored and once more at the end. Null:
  /// nothing happens. Copying within one vector proceeds upwards.
  void CopyFrom(const TNumVector* VecSource, int SourceElemLo, int SourceElemHi, int DestElem);
  /// Copies a range of elements; the array gets its length.
  void CopyToArray(std::vector<T>& DestArray, int LowElem, int HighElem) const;
  /// Writes the array to Elem and the following positions; what falls outside is dropped. OnChange
  /// fires for each element stored.
  void CopyFromArray(std::span<const T> SrcArray, int Elem);

  /// Euclidean length, the square root of the sum of squares.
  [[nodiscard]] double CalcVecLeng() const;
  [[nodiscard]] double Leng() const { return CalcVecLeng(); }

  /// Position of the element nearest to value, the first on ties; 0 if every distance is
  /// not-a-number or not below the largest double.
  [[nodiscard]] int Find(int LowElem, int HighElem, T value) const;
  /// Binary search over the whole vector, which must be sorted in the given direction.
  /// @return position of an element equal to Value, else of the nearest of the two that enclose it,
  /// the
  ///   upper one on ties
  [[nodiscard]] int FindInSortedVector(bool Ascending, T Value) const;

  /// Sum of a range.
  [[nodiscard]] T Sum(int LowElem, int HighElem) const;
  /// Mean and sample variance (divisor n - 1). The variance of one or two values is 1.0; that of
  /// equal values is exactly 0. Double-double sums, rounded once: right to an ulp or two whatever
  /// the offset of the data.
  void MeanVar(int LowElem, int HighElem, double& Mean, double& Variance) const;
  /// Skewness m3 / s^3 and excess kurtosis m4 / s^4 - 3 from population moments m3, m4 and the
  /// sample standard deviation s. Both 0 for fewer than four values or no spread.
  void SkewKurt(int LowElem, int HighElem, double& Skewness, double& Kurtosis) const;
  /// The same with corrections for the sample size: skewness times n^2 / ((n-1)(n-2)); kurtosis
  /// (K + 3) n^2 (n+1) / ((n-1)(n-2)(n-3)) - 3 (n-1)^2 / ((n-2)(n-3)). Both 0 for fewer than four
  /// values.
  void SkewKurtSample(int LowElem, int HighElem, double& Skewness, double& Kurtosis) const;
  /// exp(mean of ln x); 0 if an element is 0.
  /// @throws EZELVectorError  `: negative argument passed to GeometricMean`
  [[nodiscard]] double GeometricMean(int LowElem, int HighElem) const;
  /// n / sum of 1/x.
  /// @throws EZELVectorError  `: negative or zero argument passed to HarmonicMean`
  [[nodiscard]] double HarmonicMean(int LowElem, int HighElem) const;
  /// Smallest and largest element of a range, and their positions, the first on ties. The search
  /// starts at 1.7e308 and -1.7e308 (integers: 2147483647 and -2147483647) with position 0; these
  /// remain if no element lies strictly below (above).
  void MinMax(int LowElem, int HighElem, T& Minimum, T& Maximum) const;
  void MinMax(int LowElem, int HighElem, T& Minimum, T& Maximum, int& MinIx, int& MaxIx) const;
  /// Most frequent value, the smallest on ties.
  [[nodiscard]] T Mode(int LowElem, int HighElem) const;
  /// Quartiles at positions (n + 1) q of the sorted values, interpolated linearly, limited to the
  /// first and last value; (1, 2, 3, 4) gives 1.25, 2.5, 3.75. (Not the rule of Percentile.)
  /// @return true
  /// @throws EZELVectorError  `: not enough memory on heap`
  bool Quartiles(int LowElem, int HighElem, double& Q1, double& Q2, double& Q3) const;
  /// Percentile at position (n - 1) prob / 100 of the sorted values numbered from 0, interpolated
  /// linearly; the 25th percentile of (1, 2, 3, 4, 5) is 2. Found by selection in linear time;
  /// while MathFeedBackProc is set the range is sorted instead, reporting a progress step for each
  /// pass.
  /// @param prob  percent, limited to 0..100
  /// @throws EZELVectorError  `: not enough memory on heap`
  [[nodiscard]] double Percentile(double prob, int LowElem, int HighElem) const;
  /// True if the whole vector holds at most two distinct values, v1 the first element and v2 the
  /// first one that differs (v1 if none does). False, with v1 = v2 = 0, for a single element.
  bool IsDichotomous(T& v1, T& v2) const;

  /// Sum of products.
  /// @throws EZELVectorError  `: vectors have different dimensions`
  [[nodiscard]] T DotProduct(const TNumVector* OtherVec) const;
  /// Square root of the sum of squared differences.
  /// @throws EZELVectorError  "EuclideanDistance: dimensions of vectors do not match"
  [[nodiscard]] double EuclideanDistance(const TNumVector* OtherVec) const;
  /// Product-moment correlation; 0 if the lengths differ, for fewer than two elements, or if a
  /// vector is constant.
  [[nodiscard]] double PearsonCorrCoeff(const TNumVector* OtherVec) const;
  /// Adds the other vector element by element. Null: nothing happens.
  /// @throws EZELVectorError  `: vectors have different dimensions`
  void Add(const TNumVector* OtherVec);
  /// Subtracts the other vector element by element. Null: nothing happens.
  /// @throws EZELVectorError  `: vectors have different dimensions`
  void Subtract(const TNumVector* OtherVec);
  /// Multiplies every element.
  void SMult(T scalar);

  /// Appends a binary record: LowElem, HighElem, the elements. Doubles and their bounds are stored
  /// as extended values, integers and theirs as 32-bit values. A missing memory stream is created.
  void SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LowElem, int HighElem) const;
  void SaveToStream(std::ostream& OutStream, int LowElem, int HighElem) const;
  /// Reads a record of SaveToStream: the values for positions LowElem..HighElem. OnChange fires for
  /// each value stored and once at the end, unless the bounds cannot be read.
  /// @param AdjustVectorSize  resize to HighElem first
  /// @return false if the stream is null, the bounds cannot be read, HighElem exceeds the size, or
  /// a
  ///   value cannot be read (the rest is read all the same). False, with no value stored, also if
  ///   HighElem exceeds what the stream holds by more than 2^24 elements.
  bool LoadFromStream(std::istream* InStream, bool AdjustVectorSize);
  bool LoadFromStream(std::istream& InStream, bool AdjustVectorSize) {
    return LoadFromStream(&InStream, AdjustVectorSize);
  }
  /// Reads a number file: LowElem and HighElem, then a word for each of these positions; a word
  /// that is not a number leaves its element unchanged. Integers are rounded, ties to even.
  /// OnChange fires once at the end (and for a resize).
  /// @param AdjustVectorSize  resize to HighElem first
  /// @return false if the file or its bounds cannot be read, HighElem exceeds the size, or it
  /// exceeds
  ///   what the file holds by more than 2^24 elements
  bool LoadFromFile(std::string_view FileName, bool AdjustVectorSize);
  /// Reads an ASC file of one column; "NAN" and "###" give 0. OnChange fires once at the end (and
  /// for a resize).
  /// @param Comment  the first line of the file
  /// @return 0; -5 bad row attribute, -6 bad value (the vector then ends with the failing row,
  /// whose
  ///   element is 0 or what it was); -7 more than one column, -8 no such file (vector unchanged);
  ///   1 to 4: this line of the header is bad, -1 the file cannot be read (vector unchanged)
  /// @throws EInOutError  if reading fails after the file was opened
  int ImportASC(std::string_view FName, std::string& Comment);

  // What C++ callers expect beside the operations above.
  [[nodiscard]] std::span<const T> Elements() const { return FVec; }
  [[nodiscard]] const T* data() const { return FVec.data(); }
  [[nodiscard]] std::size_t size() const { return FVec.size(); }
  [[nodiscard]] const T* begin() const { return FVec.begin(); }
  [[nodiscard]] const T* end() const { return FVec.end(); }
  explicit operator std::vector<T>() const { return {begin(), end()}; }
  /// Takes over size and values, unless there are none, without notification.
  /// @throws EZELVectorError  `: not enough memory`; the vector is unchanged then
  void SetElements(std::span<const T> values);

 protected:
  /// Elements of a clamped range.
  [[nodiscard]] std::span<const T> Range(int LowElem, int HighElem) const;
  [[nodiscard]] std::span<T> Cells() { return FVec; }
  /// Copy of a range for an operation that rearranges it.
  /// @throws EZELVectorError  `: not enough memory on heap`
  [[nodiscard]] TDynArray<T, 1> WorkCopy(int LowElem, int HighElem) const;
  /// Takes over contents, at least one element, without notification; they get the old ones.
  void TakeOver(TDynArray<T, 1>& contents) noexcept;
  /// Marks the vector as written.
  void MarkWritten() { FIsEmpty = false; }
  /// Raises `: vectors have different dimensions`.
  void RequireSameLength(const TNumVector& OtherVec) const;
  /// What reading a value has come to; bad: this one cannot be read, ended: nor will a later one.
  enum class TReadResult : std::uint8_t { good, bad, ended };
  /// Values read for successive positions, and the indices of those that could not be read.
  struct TPositions {
    std::vector<T> values;
    std::vector<std::size_t> gaps;
  };
  /// Reads values for LowElem..HighElem, those below 1 for nothing, until one ends the reading.
  /// @throws EZELVectorError  `: not enough memory`
  template <class Next>
  void ReadPositions(int LowElem, int HighElem, TPositions& read, Next&& next) const;
  /// The next word of a text as an element.
  static TReadResult ReadWord(std::istream& file, T& value);
  /// Resizes to HighElem where asked to, unless the source holds far less.
  /// @param held  number of values read
  /// @return true if positions up to HighElem exist
  bool ResizeForPositions(int HighElem, bool AdjustVectorSize, std::size_t held);
  /// Stores values from index first on, without notification.
  void StoreQuietly(std::size_t first, const TPositions& read);

 private:
  friend class detail::TResults;

  /// Stores value(k) at the positions first, first + 1, ..., firing OnChange for each.
  template <class Value>
  void StoreEach(std::int64_t first, std::size_t count, Value&& value);

  /// Runs statistic() with the class's message for a lack of storage.
  template <class Statistic>
  auto OrderStatistic(Statistic&& statistic) const;

  bool FIsEmpty = true;
  TDynArray<T, 1> FVec;
};

/// Elements in braces.
template <class T>
std::ostream& operator<<(std::ostream& out, const TNumVector<T>& vector) {
  out << '{';
  const char* separator = "";
  for (const T x : vector) {
    out << separator << x;
    separator = ", ";
  }
  return out << '}';
}

extern template class ZEL_API TNumVector<double>;
extern template class ZEL_API TNumVector<int>;

}  // namespace zel
