// The list of texts that stand for a missing value, edited where it stands.
#pragma once

#include <QListWidget>

// Insert adds a text, Delete takes the current one away, F2 or a double click changes it. Texts
// that are blank or stand there already do not stay.
class COXELMissingStrings final : public QListWidget {
  Q_OBJECT

 public:
  explicit COXELMissingStrings(QWidget* parent = nullptr);

  void SetStrings(const QStringList& strings);
  QStringList Strings() const;

  // Adds a text that is to be typed.
  void Add();
  void RemoveCurrent();

 signals:
  void Changed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Tidy();

  QStringList told_;  // as Changed() told them last
};
