// Names of files that are derived from the name of another.
#pragma once

#include <string_view>

#include "host/Types.h"

// `path` with the extension of its file name replaced by `extension` (".TRK"), or with that added
// where it has none. The path is split into a drive (a letter and a colon), a folder and a base
// name of up to 255 bytes each; a longer one comes back as it was, so callers compare.
CString ReplaceExtension(const CString& path, std::string_view extension);
