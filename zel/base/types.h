/// @file
/// Records, enumerations and events that several units share.
#pragma once

#include <cstdint>
#include <functional>

namespace zel {

/// The 80-bit format on x86; whatever `long double` is elsewhere.
using Extended = long double;

class TObject;

/// Plain notification.
using TNotifyEvent = std::function<void(TObject* Sender)>;
/// A sort has exchanged two elements (ExchgWhat 0), columns (1) or rows (2); Index1 and Index2 are
/// 1-based, First..Last is the range of the other dimension that the sort covered (0, 0 for
/// vectors).
using TSortExchgEvent = std::function<void(TObject* Sender, std::uint8_t ExchgWhat, int Index1,
                                           int Index2, int First, int Last)>;
/// Progress of a long operation in percent.
using TOnPercentDoneEvent = std::function<void(TObject* Sender, int PercentDone)>;
/// Abort query: the handler sets Abort to true to stop the operation.
using TOnCheckAbortEvent = std::function<void(TObject* Sender, bool& Abort)>;

/// A point of the plane.
struct TPointDouble {
  double X = 0;
  double Y = 0;
  bool operator==(const TPointDouble&) const = default;
};

/// A rectangle given by two opposite corners, in any order.
struct TRectDouble {
  double X1 = 0;
  double Y1 = 0;
  double X2 = 0;
  double Y2 = 0;
  bool operator==(const TRectDouble&) const = default;
};

/// A point with integer coordinates (pixels).
struct TPoint {
  int X = 0;
  int Y = 0;
  bool operator==(const TPoint&) const = default;
};

/// A rectangle with integer coordinates (pixels).
struct TRect {
  int Left = 0;
  int Top = 0;
  int Right = 0;
  int Bottom = 0;
  bool operator==(const TRect&) const = default;
};

/// How an angle is written: decimal degrees, degrees and decimal minutes, degrees, minutes and
/// decimal seconds, a plain number.
enum TDegreeFormat : std::uint8_t { dfDegrees, dfDegMin, dfDegMinSec, dfNumber };
/// What stands between the cells of a text file; cdDetect: the one of the others that the first
/// line has most of (a comma when writing).
enum TCSVDelimiters : std::uint8_t { cdComma, cdSemicolon, cdTab, cdDetect };
/// The decimal separator of a text; dpsBoth takes either.
enum TDecPSep : std::uint8_t { dpsPoint, dpsComma, dpsBoth };
/// Language of the names of months.
enum TLanguage : std::uint8_t { lgEnglish, lgGerman, lgFrench, lgItalian, lgSpanish };

/// The dimension of a matrix that a result runs along.
enum TDims : std::uint8_t { dimColumns, dimRows };

/// orVertical: one result per row; orHorizontal: one result per column.
enum TOrientation : std::uint8_t { orVertical, orHorizontal };

/// Aggregation of the values along an edge vector.
enum TEdgeOp : std::uint8_t { eoMin, eoMax, eoSum, eoMean };

/// Distance measures between objects.
enum TDistMode : std::uint8_t { dmTanimoto, dmManhattan, dmEuclid, dmSqrEuclid, dmDice, dmUser };

/// Element type of the untyped array routines.
enum TVarKind : std::uint8_t { vkDouble, vkReal, vkSingle, vkInteger, vkLongint };

}  // namespace zel
