// The patterns that say how a cell is shown: "#" a digit where there is one, "0" a digit in any
// case.
#pragma once

#include "host/Types.h"

// "#" (width - decimals - 2) times, "0.", "#" decimals times; negative counts are 0, at most 63
// characters.
CString CellPattern(int width, int decimals);
// The same with "#." for "0.".
CString HeadingPattern(int width, int decimals);

// `value` as a pattern shows it: rounded to as many decimals as there are places behind the point,
// of which "#" places drop trailing zeros. A number that is wider than the pattern is shown all the
// same. Not-a-numbers show as "NaN".
CString FormatByPattern(double value, const CString& pattern);
