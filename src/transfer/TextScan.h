// The scan of a text file: which variables it has, how they are called and what they hold.
#pragma once

#include <vector>

#include "transfer/TextImport.h"
#include "transfer/VarNameTemplate.h"

namespace STUtils {

// Records that are looked at to tell what the columns hold.
inline constexpr int kScannedRecords = 1000;

// Fills the list of variables from the first line with content and what follows. The line holds
// names when each of its fields that is not blank is text, also when all are blank, unless the
// reader's settings say otherwise; fields without a name, and all where it holds none, get the
// template's (`auxiliary` is set for these). A column is numeric when each field looked at that is
// neither blank nor a missing-value string is a number from its first character to its last;
// unknown without any such field; else text. False when there is no line with content or it cannot
// be read; the reader has the reason.
bool SenseTextData(basic_text_import_t<char>& reader, bool& hasNames,
                   std::vector<variable_info_t>& variables, const var_name_template_t& names);

// The names that the first line of a file holds, as the scan takes them: empty where the field is
// blank, and all of them where the line holds none.
std::vector<std::string> NamesInFile(basic_text_import_t<char>& reader);

}  // namespace STUtils
