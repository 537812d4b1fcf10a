// Temporary files.
#pragma once

#include <string>

// Creates an empty file of our own (exclusively, mode 0600) and returns its name, or an empty text
// when that fails. The name is `prefix`, six characters and ".tmp", in TempFolder(). The caller
// removes the file.
std::string GetTempName(const char* prefix);

// $TMPDIR where it is set and is a folder, else /tmp, or /var/tmp where /tmp lies in memory:
// scratch data may be larger than memory.
std::string TempFolder();
