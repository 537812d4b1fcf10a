#include "dataview/table/RowCache.h"

#include <algorithm>

namespace {

// A screenful at least, and no more than this many values beyond it.
constexpr int kFewestSlots = 64;
constexpr int kMostSlots = 512;
constexpr int kValueBudget = 1 << 19;  // 4 MiB

}  // namespace

void CRowCache::SetClient(CDataTableClient* client) {
  client_ = client;
  Clear();
}

void CRowCache::SetColumnCount(int columns) {
  columns_ = std::max(columns, 0);
  const int slots = std::clamp(kValueBudget / std::max(columns_, 1), kFewestSlots, kMostSlots);
  slots_.clear();
  slots_.resize(static_cast<std::size_t>(slots));
}

void CRowCache::Clear() {
  for (Slot& slot : slots_) slot.row = -1;
}

std::span<const double> CRowCache::Row(std::int64_t row) {
  if (client_ == nullptr || row < 0 || slots_.empty()) return {};
  Slot& slot = slots_[static_cast<std::size_t>(row) % slots_.size()];
  if (slot.row != row) {
    slot.values.resize(static_cast<std::size_t>(columns_));
    slot.present = client_->GetRow(row, slot.values);
    slot.row = row;
  }
  return slot.present ? std::span<const double>(slot.values) : std::span<const double>();
}
