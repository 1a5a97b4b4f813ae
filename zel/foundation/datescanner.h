/// @file
/// Dates and times read out of a text.
#pragma once

#include <cstddef>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// The date and time that starts at character Pos of s and is written as Format describes:
/// - d, dd: day of the month
/// - m, mm: number of the month; mmm or mmmm: its name
/// - yyyy: year, 0001 to 9999; yy: 69 to 99 of the last century, 00 to 68 of this one
/// - h, hh: hour, 0 to 23, or 1 to 12 where Format has am/pm; n, nn: minute; s, ss: second
/// - z, zzz: millisecond
/// - am/pm: one of the two, in either case
/// - blanks and tabs: at least one of them
/// - text in single or double quotation marks and every other character: itself
///
/// A single letter stands for one digit or more, as many as the field can have; otherwise there are
/// as many digits as letters. A month's name is a run of letters, either the whole name or the
/// first three letters or more, if these belong to one month only; a point may follow such an
/// abbreviation. Case and accents make no difference: "Mär", "MAR", "Maerz" and "März" are the
/// same. Fields may repeat and must agree then. Field letters are lower-case, so that
/// `yyyy-mm-ddThh:nn:ssZ` needs no quotation marks.
///
/// The calendar is the Gregorian one, for all years. A day that does not exist is no date, 24 is no
/// hour and 60 no second. Missing fields are 0, or 1 for month and day, but there is no date
/// without a year and no am/pm without an hour; a format without day, month and year gives the time
/// alone.
/// @param Language  of the months' names
/// @param Pos       0-based; moved behind the text, unchanged if it is not as described
/// @return days since 30 December 1899 0:00, a time as the fraction of a day, rounded correctly;
///   negative before, where the fraction counts upwards too (-0.75 is 6:00 on 29 December);
///   not-a-number if the text is not as described or Format holds a field that is not listed
ZEL_API double ScanDateTime(std::string_view s, std::string_view Format, TLanguage Language,
                            std::size_t& Pos);

}  // namespace zel
