// The reader of PNG pictures. An input is a PNG file; one of an odd size comes through a pipe.
#include "fuzz/fuzz.h"
#include "fuzz/memory_file.h"
#include "fuzz/png_chunks.h"

#include "tools/error.h"
#include "tools/png.h"

#include <random>

namespace {

using namespace fikleipa::fuzz;
using namespace fikleipa::tool;

Picture read(std::span<const std::uint8_t> content, MemoryFile::Kind kind) {
    const MemoryFile file(content, kind);
    InputFile input(file.path());
    return PngReader(input).read();
}

// What is written of a picture is read as the same.
void check(const Picture& picture) {
    const auto [width, height] = picture.size;
    if (picture.sampleBits != 8 && picture.sampleBits != 16) found("a sample of {} bits", picture.sampleBits);
    if (picture.bytes.size() != std::size_t{3} * width * height * picture.sampleBits / 8)
        found("{} bytes of a picture of {}x{}", picture.bytes.size(), width, height);

    constexpr std::size_t kMostToWrite = 1 << 15; // a pipe's worth, and time
    if (picture.bytes.size() > kMostToWrite) return;
    const Picture again = read(encodePng(picture), MemoryFile::Kind::Regular);
    if (again.size != picture.size || again.sampleBits != picture.sampleBits || again.bytes != picture.bytes)
        found("a picture of {}x{} is written as another", width, height);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        check(read({data, size}, size % 2 != 0 ? MemoryFile::Kind::Pipe : MemoryFile::Kind::Regular));
    } catch (const Error& error) {
        tell("{}", error.what());
    }
    return 0;
}

// Bytes that are changed at random make a file that is refused for its checksums. So chunks are changed one at a time,
// the pixels before they are compressed.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    std::minstd_rand random(seed);
    auto chunks = chunksOf({data, size});
    constexpr unsigned kAsTheyAre = 8; // one of so many
    if (chunks.empty() || random() % kAsTheyAre == 0) return LLVMFuzzerMutate(data, size, maxSize);

    Chunk& chunk = chunks[random() % chunks.size()];
    const bool isPixels = chunk.name == "IDAT" && random() % 2 == 0;
    const auto pixels = isPixels ? uncompressed(chunk.data) : std::nullopt;
    Bytes changed = pixels ? *pixels : chunk.data;
    const std::size_t before = changed.size();
    changed.resize(before + maxSize);
    changed.resize(LLVMFuzzerMutate(changed.data(), before, changed.size()));
    chunk.data = pixels ? compressed(changed) : changed;

    const Bytes file = fileOf(chunks);
    if (file.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(file.begin(), file.end(), data);
    return file.size();
}
