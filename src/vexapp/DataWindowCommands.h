// The commands that work on a data window: which there are, when they can be used, what they do.
#pragma once

#include <span>

class CDataWindow;
struct DataWindowState;

struct DATAWINDOWCOMMAND {
  int number;  // of the menu
  bool (*enabled)(const DataWindowState& state);
  void (*run)(CDataWindow& window);
};

std::span<const DATAWINDOWCOMMAND> DataWindowCommands();
