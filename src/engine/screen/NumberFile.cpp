#include "engine/screen/NumberFile.h"

#include "host/Numbers.h"

namespace {

void Append(COutputFile& file, const CString& text) {
  file.Write(text);
}
void Append(CString& to, const CString& text) {
  to += text;
}

// To a file or a text.
template <class Target>
class CNumberWriter {
 public:
  explicit CNumberWriter(Target& to) : to_(to) {}

  void PutVector(const Eigen::VectorXd& values) {
    for (Eigen::Index i = 0; i < values.size(); ++i) Put(values(i));
    EndLine();
  }
  void PutTriangle(const Eigen::MatrixXd& matrix) {
    for (Eigen::Index i = 0; i < matrix.rows(); ++i) {
      for (Eigen::Index j = 0; j <= i; ++j) Put(matrix(i, j));
      EndLine();
    }
  }

 private:
  void Put(double value) {
    constexpr int kPerLine = 8;
    if (onLine_ == kPerLine) EndLine();
    if (onLine_++ > 0) Append(to_, " ");
    Append(to_, FormatShortest(value));
  }
  void EndLine() {
    if (onLine_ > 0) Append(to_, "\n");
    onLine_ = 0;
  }

  Target& to_;
  int onLine_ = 0;
};

}  // namespace

void SaveVector(COutputFile* file, const Eigen::VectorXd& values) {
  if (file != nullptr) CNumberWriter(*file).PutVector(values);
}

void SaveTriangle(COutputFile* file, const Eigen::MatrixXd& matrix) {
  if (file != nullptr) CNumberWriter(*file).PutTriangle(matrix);
}

void AppendVector(const Eigen::VectorXd& values, CString& text) {
  CNumberWriter(text).PutVector(values);
}

void AppendTriangle(const Eigen::MatrixXd& matrix, CString& text) {
  CNumberWriter(text).PutTriangle(matrix);
}
