// Names, descriptions and value labels of a foreign dictionary, as they fit into a system data
// file.
#pragma once

#include <string>
#include <vector>

#include "datadoc/DataSet.h"
#include "transfer/TransferTypes.h"

// The names of the selected variables, cut to 16 bytes.
std::vector<CString> ImportedNames(const std::vector<STUtils::variable_info_t>& variables);

// Those of `names` that stand there more than once, each told once.
std::vector<CString> RepeatedNames(const std::vector<CString>& names);

// `names` with numbers put to the end of repeated ones, within 16 bytes.
std::vector<CString> UniqueNames(const std::vector<CString>& names);

// How many value labels KeepLabels leaves out, or cuts, for want of room.
std::size_t LabelsWithoutRoom(const STUtils::variable_info_t& source);

// Gives variable 0 of `block` what the source says beyond its name: as description the full name
// where `storedName` is a cut one, else the source's label; and the value labels of whole numbers,
// at most 15.
void KeepLabels(const STUtils::variable_info_t& source, const CString& storedName,
                TORVIKSTRUCT& block);
