// Data sets that the window tests make for themselves.
#pragma once

#include <QString>

// Writes a system data file of `cases` x `variables` (x1, x2, ...) to `path`. Cell (r, c), counted
// from 0, holds r + c / 100, the first cell of each seventh case the missing-data code. False on
// failure.
bool WriteSampleData(const QString& path, int cases, int variables);
