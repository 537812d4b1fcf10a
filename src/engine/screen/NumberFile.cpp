#include "engine/screen/NumberFile.h"

#include "host/Numbers.h"

namespace {

class CNumberWriter {
 public:
  explicit CNumberWriter(COutputFile& file) : file_(file) {}
  void Put(double value) {
    constexpr int kPerLine = 8;
    if (onLine_ == kPerLine) EndLine();
    if (onLine_++ > 0) file_.Write(" ");
    file_.Write(FormatShortest(value));
  }
  void EndLine() {
    if (onLine_ > 0) file_.Write("\n");
    onLine_ = 0;
  }

 private:
  COutputFile& file_;
  int onLine_ = 0;
};

}  // namespace

void SaveVector(COutputFile* file, const Eigen::VectorXd& values) {
  if (file == nullptr) return;
  CNumberWriter writer(*file);
  for (Eigen::Index i = 0; i < values.size(); ++i) writer.Put(values(i));
  writer.EndLine();
}

void SaveTriangle(COutputFile* file, const Eigen::MatrixXd& matrix) {
  if (file == nullptr) return;
  CNumberWriter writer(*file);
  for (Eigen::Index i = 0; i < matrix.rows(); ++i) {
    for (Eigen::Index j = 0; j <= i; ++j) writer.Put(matrix(i, j));
    writer.EndLine();
  }
}
