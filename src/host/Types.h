// The framework's names for text. A CString holds bytes as they stand in a file; host/Text.h says
// how they become something to show.
#pragma once

#include <list>
#include <string>

using CString = std::string;
using CStringList = std::list<CString>;
