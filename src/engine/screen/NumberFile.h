// Files of numbers as text, in free format: eight to a line, each vector and each row of a triangle
// beginning a line. A file that was not asked for is null, and nothing is done.
#pragma once

#include <Eigen/Core>

#include "engine/run/OutputFiles.h"

void SaveVector(COutputFile* file, const Eigen::VectorXd& values);
// The lower triangle with the diagonal.
void SaveTriangle(COutputFile* file, const Eigen::MatrixXd& matrix);

// The same text, for who makes that of many at the same time.
void AppendVector(const Eigen::VectorXd& values, CString& text);
void AppendTriangle(const Eigen::MatrixXd& matrix, CString& text);
