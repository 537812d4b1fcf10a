#include "vexdata/EditArguments.h"

#include "dataview/CaseOperations.h"

CEditArguments::CEditArguments(CLI::App& app, std::function<int()>& command) : command_(command) {
  AddSort(app);
  AddDefine(app);
  AddInsert(app);
  AddDelete(app);
  AddSelect(app);
}

CLI::App* CEditArguments::AddCommand(CLI::App& app, const char* name, const char* text,
                                     EditTarget& target) {
  CLI::App* const command = app.add_subcommand(name, text);
  command->add_option("DATA", target.file, "The system data file")->required();
  command->add_option("--output,-o", target.output, "Write to this file; DATA stays as it is");
  command->add_option("--layout", target.layout, "Names of 8 or of 16 characters; as in DATA")
      ->check(CLI::IsMember({"old", "new"}));
  command->add_flag("--overwrite", target.overwrite, "Replace an existing output");
  return command;
}

void CEditArguments::AddSort(CLI::App& app) {
  CLI::App* const command = AddCommand(app, "sort", "Sort the cases", sort_.target);
  command->add_option("--by", sort_.by, "The variable")->required();
  command->add_flag("--descending", sort_.descending, "Largest first");
  command->callback([this] { command_ = [this] { return SortData(sort_); }; });
}

void CEditArguments::AddDefine(CLI::App& app) {
  CLI::App* const command = AddCommand(app, "define", "Change what variables are", define_.target);
  command->add_option("VARIABLES", define_.variables, "For example age,A1-A5 or 1-3")->required();
  CLI::Option_group* const what = command->add_option_group("What", "What to change");
  what->add_option("--rename", define_.rename, "The new name of one variable");
  what->add_option("--type", define_.type, "How it was measured")
      ->check(CLI::IsMember(
          std::vector<std::string>(std::begin(kVariableTypes), std::end(kVariableTypes))));
  what->add_option("--missing", define_.missing,
                   "Up to three values and a range: \"9,99,90 to 98\"; none for no own ones");
  what->add_option("--categories", define_.categories, "\"1=low,2=high\"; none for no categories");
  what->add_flag("--weight", define_.weight, "Make it the weight variable");
  what->add_flag("--group", define_.group, "Make it the group variable");
  what->require_option();
  command->callback([this] { command_ = [this] { return DefineVariables(define_); }; });
}

void CEditArguments::AddInsert(CLI::App& app) {
  CLI::App* const command =
      AddCommand(app, "insert", "Insert cases or variables of zeros", insert_.target);
  CLI::Option_group* const what = command->add_option_group("What", "What to insert");
  what->add_option("--cases", insert_.cases, "So many cases")
      ->check(CLI::Range(std::int64_t{1}, kMostCases));
  CLI::Option* const variables =
      what->add_option("--variables", insert_.variables, "So many variables")
          ->check(CLI::Range(1, kMostVariables));
  what->require_option(1);
  CLI::Option* const before = command->add_option(
      "--before", insert_.before, "The case or variable; at the end without --before or --after");
  command->add_option("--after", insert_.after, "The case or variable")->excludes(before);
  command->add_option("--names", insert_.names, "Names of the new variables; var with a number")
      ->delimiter(',')
      ->needs(variables);
  command->callback([this] { command_ = [this] { return InsertData(insert_); }; });
}

void CEditArguments::AddDelete(CLI::App& app) {
  CLI::App* const command = AddCommand(app, "delete", "Delete cases or variables", delete_.target);
  CLI::Option_group* const what = command->add_option_group("What", "What to delete");
  what->add_option("--cases", delete_.cases, "For example 1-20, 7 or 100-");
  what->add_option("--variables", delete_.variables, "For example age,A1-A5 or 1-3");
  what->require_option(1);
  command->callback([this] { command_ = [this] { return DeleteData(delete_); }; });
}

void CEditArguments::AddSelect(CLI::App& app) {
  CLI::App* const command = AddCommand(
      app, "select",
      "Keep (SC) or delete (SD, with the variables named) the cases for which a line holds",
      select_.target);
  command
      ->add_option("LINES", select_.lines,
                   "\"SC CASE ODD\", \"SC age > 17\", \"SD 2 5 = 9\"; together they all apply")
      ->required();
  command->add_flag("--dry-run", select_.tellOnly, "Say what would go and change nothing");
  command->callback([this] { command_ = [this] { return SelectCases(select_); }; });
}
