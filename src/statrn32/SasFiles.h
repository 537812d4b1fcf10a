// SAS data files (.sas7bdat, with value labels from a catalogue beside them) and transport files
// (.xpt, .stx).
#pragma once

#include <memory>
#include <string_view>

#include "statrn32/Names.h"
#include "statrn32/Reader.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

bool IsSas7bdat(std::string_view first);
bool IsTransport(std::string_view first);

std::unique_ptr<CReader> ReadSas7bdat();
std::unique_ptr<CReader> ReadTransport();
// Version 5, which every program reads.
std::unique_ptr<CWriter> WriteTransport();

extern const NAME_RULES kTransportNames;
extern const LIMITS kTransportLimits;

}  // namespace statrn32
