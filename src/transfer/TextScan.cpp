#include "transfer/TextScan.h"

#include <algorithm>

#include "host/Text.h"
#include "host/statrn32.h"

namespace STUtils {
namespace {

bool LooksLikeNames(const basic_text_import_t<char>& reader,
                    const std::vector<std::string>& fields) {
  return std::all_of(fields.begin(), fields.end(), [&](const std::string& field) {
    return field.empty() || !reader.IsNumber(field);
  });
}

std::int32_t KindOf(const basic_text_import_t<char>& reader, const std::string& text) {
  if (text.empty() || reader.Missing().HasText(text)) return ST_TYPE_UNKNOWN;
  return reader.IsNumber(text) ? ST_TYPE_NUMERIC : ST_TYPE_STRING;
}

// A record that cannot be read ends the look; the import will refuse it, unless the file is to be
// read in another way by then.
void SenseKinds(basic_text_import_t<char>& reader, std::vector<variable_info_t>& variables) {
  std::vector<variable_data_t> values(variables.size());
  reader.SetTextColumns(variables.size());
  reader.StartRecords();
  for (int record = 0; record < kScannedRecords && reader.ReadRecord(values); ++record) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (variables[i].type == ST_TYPE_STRING) continue;
      const std::int32_t kind = KindOf(reader, values[i].text);
      if (kind != ST_TYPE_UNKNOWN) variables[i].type = kind;
    }
  }
  reader.ClearError();
}

}  // namespace

std::vector<std::string> NamesInFile(basic_text_import_t<char>& reader) {
  std::vector<std::string> names;
  reader.ReadFirstLine(names);
  for (std::string& name : names) {
    name = reader.HasNames() ? std::string(Trimmed(TextForDisplay(name))) : std::string();
  }
  return names;
}

bool SenseTextData(basic_text_import_t<char>& reader, bool& hasNames,
                   std::vector<variable_info_t>& variables, const var_name_template_t& names) {
  variables.clear();
  std::vector<std::string> fields;
  if (!reader.ReadFirstLine(fields)) return false;
  hasNames = reader.Settings().hasNames.value_or(LooksLikeNames(reader, fields));
  reader.SetHasNames(hasNames);
  for (const std::string& name : NamesInFile(reader)) {
    variable_info_t variable;
    variable.auxiliary = name.empty();
    variable.name = name.empty() ? names.Name(variables.size()) : name;
    variables.push_back(std::move(variable));
  }
  SenseKinds(reader, variables);
  return true;
}

}  // namespace STUtils
