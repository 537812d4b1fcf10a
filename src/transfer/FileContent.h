// Does a file hold what its name says?
#pragma once

#include <cstdint>
#include <string>

namespace STUtils {

// The format whose signature the file begins with, where that is another than `type`; `type`
// otherwise.
std::int32_t TypeByContent(const std::string& name, std::int32_t type);

// Asks the user which of both it shall be where they differ.
std::int32_t AskAboutContent(const std::string& name, std::int32_t type);

}  // namespace STUtils
