#include "vexdata/CommandLine.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

#include "vexdata/Commands.h"
#include "vexdata/EditArguments.h"
#include "vexdata/OutputArguments.h"
#include "vexdata/ProcedureArguments.h"
#include "vexdata/SourceFile.h"
#include "vexdata/TerminalHost.h"

namespace {

constexpr const char* kTextGroup = "Text files";

// What each command reads from the command line; the callbacks only remember which one runs.
class Parser {
 public:
  explicit Parser(CTerminalHost& host) : host_(host) {
    app_.set_version_flag("--version", "vexdata " VEX_VERSION);
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.add_flag("--quiet,-q", quiet_, "No progress and no notes");
    AddFormats();
    AddImport();
    AddExport();
    AddInfo();
    AddShow();
    AddConvert();
    AddRun();
  }

  int Run(int argc, const char* const* argv) {
    try {
      app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? kExitDone : kExitUsage;
    }
    host_.SetQuiet(quiet_);
    int code = command_();
    std::cout.flush();
    if (code == kExitDone && (!std::cout || std::fflush(stdout) != 0)) {
      AfxMessageBox(CString("Standard output: ") + std::strerror(errno));
      code = kExitFailed;
    }
    if (code == kExitFailed && !host_.HasSpoken()) AfxMessageBox("stopped");
    return code;
  }

 private:
  void AddFormats() {
    CLI::App* const command = app_.add_subcommand("formats", "Every file type");
    command->add_flag("--json", json_, "As JSON");
    command->add_flag("--markdown", markdown_, "As the page docs/formats.md");
    command->callback([this] { command_ = [this] { return ListFormats(json_, markdown_); }; });
  }

  void AddImport() {
    CLI::App* const command =
        app_.add_subcommand("import", "Make a system data file of a foreign file");
    command->add_option("SOURCE", import_.source, "The foreign file")->required();
    command->add_option("TARGET", import_.target, "The system data file; SOURCE's name with .VSF");
    command->add_option("--type", import_.type, "Code of the file type (see 'formats')")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--select", import_.select, "Names of the variables wanted")
        ->delimiter(',');
    command->add_option("--table", import_.table,
                        "The sheet, member or table of a file with several");
    command->add_option(
        "--encoding", import_.encoding,
        "Of a file that does not name its own, for example CP850; of text files utf-8, "
        "utf-16le, utf-16be or windows-1252");
    command->add_flag("--keep-labels", import_.keepLabels,
                      "Keep full names or labels as descriptions, value labels as categories");
    command->add_flag("--overwrite", import_.overwrite, "Replace an existing file");
    AddTextImport(*command);
    command->callback([this] { command_ = [this] { return ImportFile(import_); }; });
  }

  void AddTextImport(CLI::App& command) {
    command
        .add_flag_callback(
            "--names", [this] { import_.names = true; }, "Names on the first line")
        ->group(kTextGroup);
    command
        .add_flag_callback(
            "--no-names", [this] { import_.names = false; },
            "Data on the first line; without either, told from what it holds")
        ->excludes("--names")
        ->group(kTextGroup);
    command
        .add_option("--missing", import_.missing,
                    "Fields that mean missing, with commas or semicolons between them; NA,NIL when "
                    "not given")
        ->group(kTextGroup);
    command
        .add_flag("--all-numeric", import_.allNumeric,
                  "Read numbers from columns of texts too; what is none is missing")
        ->group(kTextGroup);
    command
        .add_option("--delimiter", import_.delimiter,
                    "Between fields, one character or \"tab\"; needed for type 1004")
        ->group(kTextGroup);
    command.add_option("--decimal-mark", import_.decimalMark, "In numbers, . or ,")
        ->check(CLI::IsMember({".", ","}))
        ->group(kTextGroup);
  }

  void AddExport() {
    CLI::App* const command =
        app_.add_subcommand("export", "Write the cases to a foreign or text file");
    AddSourceArguments(*command, export_.source);
    command->add_option("TARGET", export_.target, "The new file; - for standard output")
        ->required();
    command->add_option("--type", export_.type, "Code of the file type (see 'formats')")
        ->check(CLI::NonNegativeNumber);
    command->add_flag("--names", export_.names, "Text files: names on the first line");
    command->add_option("--delimiter", export_.delimiter,
                        "Between values, one character or \"tab\"; for type 1004");
    command->add_flag("--overwrite", export_.overwrite, "Replace an existing file");
    command->callback([this] { command_ = [this] { return ExportFile(export_); }; });
  }

  void AddInfo() {
    CLI::App* const command = app_.add_subcommand("info", "What a data file describes");
    AddSourceArguments(*command, info_);
    command->add_flag("--json", json_, "As JSON");
    command->callback([this] { command_ = [this] { return ShowInfo(info_, json_); }; });
  }

  void AddShow() {
    CLI::App* const command = app_.add_subcommand("show", "Cells as text, a case a line");
    AddSourceArguments(*command, show_.source);
    command->add_option("--cases", show_.cases, "For example 1-20, 7 or 100-");
    command->add_option("--variables", show_.variables, "For example age,A1-A5 or 1-3");
    command->callback([this] { command_ = [this] { return ShowCells(show_); }; });
  }

  void AddConvert() {
    CLI::App* const command = app_.add_subcommand(
        "convert", "Write a data set as another kind of file, or in another layout");
    AddSourceArguments(*command, convert_.source);
    command->add_option("TARGET", convert_.target, "The new file")->required();
    command->add_option("--to", convert_.to, "vsf, dsf or text; else as TARGET's extension says")
        ->check(CLI::IsMember({"vsf", "dsf", "text"}));
    command->add_option("--to-format", convert_.format, "Text: fixed columns, as \"(5F8.2)\"");
    command
        ->add_option("--layout", convert_.layout, "System data file: names of 8 or 16 characters")
        ->check(CLI::IsMember({"old", "new"}));
    command->add_flag("--overwrite", convert_.overwrite, "Replace an existing file");
    command->callback([this] { command_ = [this] { return ConvertFile(convert_); }; });
  }

  void AddRun() {
    CLI::App* const command = app_.add_subcommand(
        "run",
        "Write DATA.TRK, run the engine on it and print DATA.OUT; plain screening when "
        "nothing else is asked for");
    command->add_option("DATA", run_.file, "The system data file")->required();
    command->require_subcommand(0, 1);
    command->add_subcommand("contents", "What the data set describes")
        ->group("Procedures")
        ->callback([this] { run_.contents = true; });
    AddProcedures(*command, run_.procedure);
    command->add_option("--line", run_.lines, "A line of the syntax as it stands; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    command->add_flag("--syntax", run_.syntaxOnly, "Write and print DATA.TRK without running it");
    command->add_flag("--overwrite", run_.overwrite, "Replace an existing file of new data (--to)");
    AddOutputArguments(*command, run_.output);
    command->callback([this, command] {
      CheckRun(HasOutputArguments(*command));
      command_ = [this] { return RunData(run_); };
    });
  }

  // Options that would go without effect are refused.
  void CheckRun(bool outputArguments) const {
    const auto refuse = [](const char* why) { throw CLI::ValidationError("run", why); };
    const bool named = run_.contents || run_.procedure;
    if (named && !run_.lines.empty()) refuse("a procedure and --line are given");
    if (run_.contents && run_.syntaxOnly) refuse("the contents listing is always run");
    const bool ownLine = run_.procedure && EntryOf(*run_.procedure).outputMode == kNoOutputOptions;
    if (outputArguments && (HasOutputLine(run_) || run_.contents || ownLine)) {
      refuse("the output line is given already: the output options would have no effect");
    }
  }

  CTerminalHost& host_;
  CLI::App app_{"Data sets of the Vex package from the command line", "vexdata"};
  std::function<int()> command_;
  CEditArguments edits_{app_, command_};
  bool quiet_ = false;
  bool json_ = false;
  bool markdown_ = false;
  SourceOptions info_;
  ExportOptions export_;
  ImportOptions import_;
  ShowOptions show_;
  ConvertOptions convert_;
  RunOptions run_;
};

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  CTerminalHost host;
  try {
    return Parser(host).Run(argc, argv);
  } catch (const std::bad_alloc&) {
    AfxMessageBox("Not enough memory!");
  } catch (const std::exception& error) {
    AfxMessageBox(error.what());
  }
  return kExitFailed;
}
