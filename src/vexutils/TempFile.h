// Temporary files.
#pragma once

#include <string>

// Creates an empty file of our own (exclusively, mode 0600) and returns its name, or an empty text
// when that fails. The name is `prefix`, six characters and ".tmp", in FolderOfTempFiles(). The
// caller removes the file.
std::string GetTempName(const char* prefix);

// $TMPDIR where it is set and is a folder, else /tmp, or /var/tmp where /tmp lies in memory:
// scratch data may be larger than memory.
std::string FolderOfTempFiles();

// Opens a file without a name for reading and writing, which vanishes when it is closed: in the
// folder of the open file `file`, where what replaces that file's content will also find room and
// the kernel can copy between the two, else in FolderOfTempFiles(). Returns the descriptor, which
// the caller closes, or -1.
int OpenUnnamedBeside(int file);

// The same in FolderOfTempFiles().
int OpenUnnamedTemporary();
