// Options of text files that import and export share.
#pragma once

#include <optional>

#include "host/Types.h"

// The character that stands between fields, as --delimiter says: itself, or "tab". 0 when it was
// not given, which a type without a delimiter of its own refuses. Empty after a message.
std::optional<char> DelimiterOf(const CString& option, int type);
