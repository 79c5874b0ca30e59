// How the samples of YCbCr layouts are stored, and single samples of a row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fikleipa::tool {

enum class Storage {
    Bytes,
    Words,  // 16 bits
    Thirds, // 10 bits, three to a 32-bit word
};

struct SampleFormat {
    Storage storage = Storage::Bytes;
    unsigned int bits = 8;
    unsigned int shift = 0; // bits below the value, which are 0

    unsigned int highest() const { return (1U << bits) - 1; }
};

void writeSample(unsigned char* row, std::size_t index, SampleFormat format, unsigned int value);

// A sample of v210, whose row is one sequence Cb Y Cr Y of samples.
unsigned int readThird(const unsigned char* row, std::size_t index);
void writeThird(unsigned char* row, std::size_t index, unsigned int value);

// v210 comes in groups of twelve samples; sets those behind the last pixel of the row to 0.
void clearRestOfGroup(unsigned char* row, std::uint32_t width);

// Gives a row of v210 one more pair of chroma, equal to its last.
void repeatLastChroma(unsigned char* row, std::uint32_t width);

} // namespace fikleipa::tool
