#include "samples.h"

#include <cstring>

namespace fikleipa::tool {
namespace {

constexpr unsigned int kThird = 0x3FF;
constexpr unsigned int kHighest = 20; // the shift of the highest third
constexpr std::size_t kGroupSamples = 12;

struct ThirdPlace {
    std::size_t byte; // of the word
    unsigned int shift;
};

ThirdPlace placeOfThird(std::size_t index) {
    return {index / 3 * 4, static_cast<unsigned int>(index % 3) * 10};
}

std::uint32_t loadWord(const unsigned char* at) {
    std::uint32_t word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

} // namespace

void writeSample(unsigned char* row, std::size_t index, SampleFormat format, unsigned int value) {
    switch (format.storage) {
    case Storage::Bytes:
        row[index] = static_cast<unsigned char>(value);
        break;
    case Storage::Words: {
        const auto word = static_cast<std::uint16_t>(value << format.shift);
        std::memcpy(row + index * sizeof word, &word, sizeof word);
        break;
    }
    case Storage::Thirds:
        writeThird(row, index, value);
        break;
    }
}

unsigned int readThird(const unsigned char* row, std::size_t index) {
    const auto [byte, shift] = placeOfThird(index);
    return loadWord(row + byte) >> shift & kThird;
}

void writeThird(unsigned char* row, std::size_t index, unsigned int value) {
    const auto [byte, shift] = placeOfThird(index);
    // The highest takes the two bits along that belong to none.
    const std::uint32_t field = shift == kHighest ? ~0U << shift : kThird << shift;
    const std::uint32_t word = (loadWord(row + byte) & ~field) | value << shift;
    std::memcpy(row + byte, &word, sizeof word);
}

void clearRestOfGroup(unsigned char* row, std::uint32_t width) {
    for (std::size_t index = std::size_t{width} * 2; index % kGroupSamples != 0; ++index) writeThird(row, index, 0);
}

void repeatLastChroma(unsigned char* row, std::uint32_t width) {
    constexpr std::size_t kPair = 4; // Cb Y Cr Y
    const std::size_t end = std::size_t{width} * 2;
    writeThird(row, end, readThird(row, end - kPair));
    writeThird(row, end + 2, readThird(row, end + 2 - kPair));
}

} // namespace fikleipa::tool
