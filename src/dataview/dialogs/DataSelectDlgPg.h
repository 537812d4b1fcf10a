// The page of the selection dialog that selects the variables of the run.
#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>
#include <vector>

struct TORVIKSTRUCT;

namespace Ui {
class DataSelectDlgPg;
}

class CDataSelectDlgPg final : public QWidget {
  Q_OBJECT

 public:
  explicit CDataSelectDlgPg(QWidget* parent = nullptr);
  ~CDataSelectDlgPg() override;

  void SetVariables(const TORVIKSTRUCT& dataSet);
  // Counted from 0, ascending; empty: all of them.
  std::vector<std::int32_t> Variables() const;

 signals:
  void VariablesChanged();

 private:
  std::unique_ptr<Ui::DataSelectDlgPg> ui_;
};
