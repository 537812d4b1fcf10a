// The tool bar's pictures, drawn at whatever size and in whatever colours they are asked for.
#pragma once

#include <QIcon>

enum class Picture {
  Program,
  New,
  Open,
  Save,
  Import,
  Export,
  Print,
  Undo,
  Redo,
  GoTo,
  Find,
  SortUp,
  Variables,
  Define,
  InsertVariable,
  InsertCase,
  Select,
  Weight,
  Labels,
  Output,
  Syntax
};

QIcon DrawnIcon(Picture picture);
