// Values of a variable as matio holds it.
#pragma once

#include <cstddef>
#include <matio.h>
#include <string>
#include <vector>

namespace statrn32 {

// Numbers of any kind, in a full or a sparse matrix?
bool IsNumeric(const matvar_t& variable);
// The number of elements; 0 where there are none or too many to count.
std::size_t Elements(const matvar_t& variable);
// A row of numbers or texts is meant as one variable, as a column is. Texts are rows of characters.
bool IsVector(const matvar_t& variable);
// Records of the table that the variable makes.
std::size_t RowsOf(const matvar_t& variable);
// Are all the elements that the dimensions promise in memory?
bool IsWhole(const matvar_t& variable, std::size_t elementBytes);

// Of a complex array the real parts.
const void* DataOf(const matvar_t& variable);
// The element at `index`, which must be in memory; NaN for a type without numbers.
double NumberAt(matio_types type, const void* data, std::size_t index);
// One row of a matrix of characters, in UTF-8; empty where it is not in memory.
std::string RowOfCharacters(const matvar_t& variable, std::size_t row);
// Puts the values of one column of a sparse matrix where they belong; false where its indices lead
// out of it.
bool MakeDense(const mat_sparse_t& sparse, std::size_t column, std::vector<double>* dense,
               matio_types type);

}  // namespace statrn32
