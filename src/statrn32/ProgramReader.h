// What reading a program finds out about its data, and the reader that follows it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "statrn32/FileReader.h"
#include "statrn32/LineReader.h"

namespace statrn32 {

// One column of the data.
struct PROGRAM_COLUMN {
  VARIABLE variable;
  // In fixed columns: the first one from 0 and the number of them; -1 in a list.
  int begin = -1;
  int width = 0;
  int impliedDecimals = 0;  // of a number written without a point
};

// Where the data stand and how.
struct PROGRAM_DATA {
  std::vector<PROGRAM_COLUMN> columns;
  std::vector<LABEL_SET> labelSets;
  std::string file;            // beside the program; empty: inside it
  std::int64_t firstLine = 1;  // of the file they stand in
  std::string end;             // the line that ends data inside the program, in upper case
  std::string separators;      // of a list; empty: blanks
  bool commas = false;         // without separators of its own a comma ends a field too
  bool flows = false;          // records go on over line ends and begin within a line
  bool wraps = false;          // a record goes on over line ends; the next begins with a line
  bool doubledQuotes = true;   // a mark inside a quoted text stands twice
};

// Words, quoted texts, numbers and signs of a program.
struct PROGRAM_TOKEN {
  enum KIND { Word, Text, Sign, End } kind = End;
  std::string text;
  std::int64_t line = 0;
  bool Is(std::string_view upper) const;
};

// Splits one command. Quotes are ' and ", doubled inside; `"..."' as well. Words are letters,
// digits and the characters of `wordMarks`.
std::vector<PROGRAM_TOKEN> SplitCommand(std::string_view command, std::int64_t line,
                                        std::string_view wordMarks);

// Reads a program up to its data (and what describes them behind it).
class CProgramReader : public CFileReader {
 public:
  bool ReadHeader(DICTIONARY* out) final;
  void FillBlock(CBlockFiller* out) final;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const final;

 protected:
  explicit CProgramReader(std::int32_t code) : CFileReader(code), lines_(&Input()) {}

  // Reads the commands with NextLine and fills the data's description.
  virtual bool ReadProgram(PROGRAM_DATA* data) = 0;

  CLineReader& Lines() { return lines_; }
  bool FailLine(std::int64_t line, const std::string& what) {
    return FailFile("line " + std::to_string(line) + ": " + what);
  }
  bool FailNotUnderstood(const PROGRAM_TOKEN& token) {
    return FailLine(token.line, "\"" + token.text + "\" is not understood here");
  }
  // The column of that name (case aside); null when there is none.
  static PROGRAM_COLUMN* FindColumn(PROGRAM_DATA* data, std::string_view name);
  static bool ParseProgramNumber(std::string_view text, double* number);

 private:
  bool OpenData();
  bool NextDataLine();
  bool EndsData() const;
  bool NextField(std::string* field, bool* quoted);
  bool AtLineEnd();
  bool FillListRecord(CBlockFiller* out);
  void FillFixedRecord(CBlockFiller* out);
  void PutField(const PROGRAM_COLUMN& column, std::string_view field, bool quoted,
                CBlockFiller* out);

  PROGRAM_DATA data_;
  CLineReader lines_;
  CInputFile dataFile_;
  std::unique_ptr<CLineReader> dataLines_;
  CTextDecoder decoder_;
  std::string line_;
  std::size_t at_ = 0;
  bool lineOpen_ = false;
  bool ended_ = false;
  std::string field_;
  std::int64_t unreadable_ = 0;
  bool cutOff_ = false;  // the data end within a record
};

}  // namespace statrn32
