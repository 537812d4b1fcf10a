// What several commands do with system data files.
#pragma once

#include "datadoc/VsfReader.h"
#include "vexutils/BlockIo.h"

// Opens a system data file and reads its description. False after a message.
bool OpenSystemFile(const CString& fileName, CDescriptor& file, VsfContents& contents);

// May `fileName` be written? False after a message when it exists and `overwrite` was not asked
// for.
bool MayWrite(const CString& fileName, bool overwrite);
