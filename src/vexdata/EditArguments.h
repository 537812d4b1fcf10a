// The arguments of the commands that change a data set.
#pragma once

#include <functional>

#include <CLI/CLI.hpp>

#include "vexdata/Commands.h"

// Adds the commands. The one that is called puts what is to be run into `command`.
class CEditArguments {
 public:
  CEditArguments(CLI::App& app, std::function<int()>& command);
  CEditArguments(const CEditArguments&) = delete;
  CEditArguments& operator=(const CEditArguments&) = delete;

 private:
  CLI::App* AddCommand(CLI::App& app, const char* name, const char* text, EditTarget& target);
  void AddSort(CLI::App& app);
  void AddDefine(CLI::App& app);
  void AddInsert(CLI::App& app);
  void AddDelete(CLI::App& app);
  void AddSelect(CLI::App& app);

  std::function<int()>& command_;
  SortOptions sort_;
  DefineOptions define_;
  InsertOptions insert_;
  DeleteOptions delete_;
  SelectOptions select_;
};
