#include "dataview/table/RowWindow.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t kLargestBar = std::numeric_limits<int>::max();

// value * numerator / denominator, rounded to the nearest, without overflow.
std::int64_t Scaled(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
  return static_cast<std::int64_t>(static_cast<long double>(value) *
                                       static_cast<long double>(numerator) /
                                       static_cast<long double>(denominator) +
                                   0.5L);
}

}  // namespace

void CRowWindow::SetTotal(std::int64_t rows) {
  total_ = std::max<std::int64_t>(rows, 0);
  SetFirst(first_);
}

void CRowWindow::SetVisible(int rows) {
  visible_ = std::max(rows, 1);
  SetFirst(first_);
}

void CRowWindow::SetFirst(std::int64_t row) {
  first_ = std::clamp<std::int64_t>(row, 0, LastFirst());
}

void CRowWindow::ScrollBy(std::int64_t rows) {
  const std::int64_t room = rows > 0 ? LastFirst() - first_ : first_;
  SetFirst(first_ + std::clamp(rows, -room, room));
}

void CRowWindow::Reveal(std::int64_t row) {
  if (row < first_) {
    SetFirst(row);
  } else if (row - first_ >= visible_) {
    SetFirst(row - visible_ + 1);
  }
}

std::int64_t CRowWindow::LastFirst() const {
  return std::max<std::int64_t>(total_ - visible_, 0);
}

int CRowWindow::Drawn() const {
  return static_cast<int>(std::min<std::int64_t>(total_ - first_, std::int64_t{visible_} + 1));
}

int CRowWindow::BarMaximum() const {
  return static_cast<int>(std::min(LastFirst(), kLargestBar));
}

int CRowWindow::ToBar(std::int64_t row) const {
  const std::int64_t last = LastFirst();
  row = std::clamp<std::int64_t>(row, 0, last);
  return static_cast<int>(last <= kLargestBar ? row : Scaled(row, kLargestBar, last));
}

std::int64_t CRowWindow::FromBar(int value) const {
  const std::int64_t last = LastFirst();
  const std::int64_t row = last <= kLargestBar ? value : Scaled(value, last, kLargestBar);
  return std::clamp<std::int64_t>(row, 0, last);
}
