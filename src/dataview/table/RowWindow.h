// Which rows are on the screen, out of how many. All counts in 64 bits; nothing is kept per row.
#pragma once

#include <cstdint>

class CRowWindow {
 public:
  void SetTotal(std::int64_t rows);
  // Rows that are visible in full; at least 1 is assumed.
  void SetVisible(int rows);
  // Makes `row` the first visible one, as far as there are rows to fill the window.
  void SetFirst(std::int64_t row);
  void ScrollBy(std::int64_t rows);
  // Moves as little as needed to have `row` visible in full.
  void Reveal(std::int64_t row);

  std::int64_t Total() const { return total_; }
  int Visible() const { return visible_; }
  std::int64_t First() const { return first_; }
  std::int64_t LastFirst() const;  // the greatest first row
  // Rows to draw: the visible ones and one that is cut by the lower edge.
  int Drawn() const;

  // A scroll bar counts in 32 bits: beyond that a step of the bar stands for several rows.
  int BarMaximum() const;
  int ToBar(std::int64_t row) const;
  std::int64_t FromBar(int value) const;

 private:
  std::int64_t total_ = 0;
  std::int64_t first_ = 0;
  int visible_ = 1;
};
