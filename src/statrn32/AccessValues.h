// Values as they stand in the fields of an Access table.
#pragma once

#include <string>
#include <string_view>

#include "statrn32/AccessTable.h"

namespace statrn32 {

// Becomes a text variable?
bool IsAccessText(ACCESS_TYPE type);
// Becomes a variable at all?
bool IsAccessValue(ACCESS_TYPE type);

// The number of a field that holds one, of a moment the days since 1899-12-30. False where the
// field is too short.
bool AccessNumber(const ACCESS_COLUMN& column, std::string_view bytes, double* number);

// "{00112233-4455-6677-8899-AABBCCDDEEFF}".
std::string GuidText(std::string_view bytes);

}  // namespace statrn32
