// The parts of a moment-matrix text file.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "datadoc/ExternData.h"

enum class MatrixPart { Matrix, FirstVector, SecondVector };

// The parts in the order in which they stand in the file: those at the places 1, 2, 3, up to the
// first place that none has.
std::vector<MatrixPart> MatrixParts(const EXTERNDATA& kind);

// Rows of cells that the parts make: a row a variable for the matrix, one for each vector.
std::int64_t MatrixRecords(const EXTERNDATA& kind, std::int32_t variables);

// Sets the places of the parts from their names in the order of the file: "matrix", "means" (the
// first vector) and "deviations" (the second), with commas between them. False when a name is
// another or comes twice, or when there is none.
bool SetMatrixParts(std::string_view names, EXTERNDATA& kind);

// Every order of parts with a matrix, as SetMatrixParts reads it.
std::vector<CString> MatrixOrders();
