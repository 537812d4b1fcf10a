// Which commands of the data window can be used, as a function of what the document holds.
#pragma once

#include <cstdint>

// The commands by their menu numbers.
namespace datacommands {

inline constexpr int kDefineVariables = 1228;
inline constexpr int kRecode = 1233;
inline constexpr int kSelect = 1235;
inline constexpr int kCompute = 1236;
inline constexpr int kWeight = 1242;
inline constexpr int kFormat = 1243;
inline constexpr int kGroupVariable = 34088;
inline constexpr int kInsertVariable = 9026;
inline constexpr int kInsertCase = 9027;
inline constexpr int kDeleteVariable = 9028;
inline constexpr int kDeleteCase = 9029;
inline constexpr int kSort = 34064;
inline constexpr int kEqualThresholds = 9244;
inline constexpr int kFixThresholds = 9243;
inline constexpr int kHomogeneityTest = 9249;
inline constexpr int kCopy = 57634;
inline constexpr int kPaste = 57637;
inline constexpr int kUndo = 57643;
inline constexpr int kRedo = 57644;

}  // namespace datacommands

class CDataView;

// What the rules look at.
struct DataWindowState {
  std::int32_t variables = 0;
  std::int32_t cases = 0;
  bool rawData = false;     // cases by variables, not a moment matrix
  bool hasOrdinal = false;  // at least one variable of type 0
  bool hasCurrentCell = false;
  bool canUndo = false;
  bool canRedo = false;
};

DataWindowState StateOf(const CDataView& view);

// Can the command be used? The numbers of Statistics, Graphs and the other menus that work on the
// data set follow the rule of all of them: at least one variable, and raw data.
bool IsCommandEnabled(int command, const DataWindowState& state);
