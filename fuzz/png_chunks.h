// PNG files taken apart and put together again, with right checksums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// libFuzzer's own changes, for those who make their own.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace fikleipa::fuzz {

using Bytes = std::vector<std::uint8_t>;

struct Chunk {
    std::string name;
    Bytes data;
};

// Those before the first that is not whole. None for a file that does not begin like a PNG file.
std::vector<Chunk> chunksOf(std::span<const std::uint8_t> file);
Bytes fileOf(std::span<const Chunk> chunks);

// Nothing where the bytes are broken or very many.
std::optional<Bytes> uncompressed(std::span<const std::uint8_t> bytes);
Bytes compressed(std::span<const std::uint8_t> bytes);

} // namespace fikleipa::fuzz
