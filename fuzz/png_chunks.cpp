#include "fuzz/png_chunks.h"

#include "tools/png.h"

#include <algorithm>
#include <array>
#include <zlib.h>

namespace fikleipa::fuzz {
namespace {

using tool::kPngMagic;

constexpr std::size_t kAround = 12; // length, name and checksum

std::uint32_t number(std::span<const std::uint8_t> bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

void append(Bytes& file, std::uint32_t value) {
    for (unsigned shift = 32; shift != 0;) file.push_back(static_cast<std::uint8_t>(value >> (shift -= 8)));
}

} // namespace

std::vector<Chunk> chunksOf(std::span<const std::uint8_t> file) {
    if (file.size() < kPngMagic.size() ||
        !std::equal(kPngMagic.begin(), kPngMagic.end(), file.begin(),
                    [](char wanted, std::uint8_t byte) { return static_cast<std::uint8_t>(wanted) == byte; }))
        return {};
    std::vector<Chunk> chunks;
    for (auto rest = file.subspan(kPngMagic.size()); rest.size() >= kAround;) {
        const std::uint32_t length = number(rest);
        if (length > rest.size() - kAround) break;
        const auto body = rest.subspan(4, 4 + length);
        chunks.push_back({{body.begin(), body.begin() + 4}, {body.begin() + 4, body.end()}});
        rest = rest.subspan(kAround + length);
    }
    return chunks;
}

Bytes fileOf(std::span<const Chunk> chunks) {
    Bytes file(kPngMagic.begin(), kPngMagic.end());
    for (const Chunk& chunk : chunks) {
        append(file, static_cast<std::uint32_t>(chunk.data.size()));
        const std::size_t body = file.size();
        file.insert(file.end(), chunk.name.begin(), chunk.name.end());
        file.insert(file.end(), chunk.data.begin(), chunk.data.end());
        const auto bodyBytes = static_cast<uInt>(file.size() - body);
        append(file, static_cast<std::uint32_t>(crc32(0, &file[body], bodyBytes)));
    }
    return file;
}

std::optional<Bytes> uncompressed(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kMost = 1 << 16;
    Bytes result(kMost);
    uLongf size = result.size();
    if (uncompress(result.data(), &size, bytes.data(), bytes.size()) != Z_OK) return {};
    result.resize(size);
    return result;
}

Bytes compressed(std::span<const std::uint8_t> bytes) {
    Bytes result(compressBound(bytes.size()));
    uLongf size = result.size();
    compress(result.data(), &size, bytes.data(), bytes.size());
    result.resize(size);
    return result;
}

} // namespace fikleipa::fuzz
