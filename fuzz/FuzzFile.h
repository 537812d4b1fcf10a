// Reads the bytes that a fuzzer made as a file of one type, through the functions of the transfer
// library.
#pragma once

#include <cstddef>
#include <cstdint>

// Reads the dictionary, the labels and every record of at most a million values, then closes.
void FuzzStatFile(std::int32_t type, const std::uint8_t* data, std::size_t size);

// The same of two files of one name. The first two bytes tell, little-endian, how many of the
// others are the file beside the one that is opened; `main` and `beside` are their extensions.
void FuzzStatFilePair(std::int32_t type, const char* main, const char* beside,
                      const std::uint8_t* data, std::size_t size);
