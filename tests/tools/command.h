// Runs the real command in a folder of its own.
#pragma once

#include "folder.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace fikleipa::tool {

using Bytes = std::vector<unsigned char>;

struct Result {
    int status; // of the shell: 128 and more for a signal
    std::string out;
    std::string err;
    std::size_t peakBytes; // of memory, of the largest process
};

struct Pixel {
    int red, green, blue;
};

struct Picture {
    std::size_t width, height;
    int bits; // of a sample
    std::vector<Pixel> pixels;
};

class CommandTest : public testing::Test {
protected:
    // Runs a line of the shell, in which `fikleipa` is the command, in the test's folder.
    Result shell(const std::string& line) const;

    // The same, which must succeed in silence; what a conversion of `in` with these options leaves in `out`.
    void mustRun(const std::string& line) const;
    Bytes converted(const std::string& options) const;

    // The same with a terminal for standard error; what the terminal shows.
    std::string onTerminal(const std::string& line) const;

    std::filesystem::path path(const std::string& name) const { return folder_.path() / name; }
    Bytes read(const std::string& name) const;
    std::string text(const std::string& name) const;
    void write(const std::string& name, const Bytes& bytes) const;
    void write(const std::string& name, const std::string& text) const;

    // What lies in the folder.
    std::map<std::string, Bytes> files() const;

    // The picture of a PNG file, as it is stored; the pixels of one of that size, row by row, reduced to 8 bits.
    Picture storedPicture(const std::string& name) const;
    std::vector<Pixel> picture(const std::string& name, std::size_t width, std::size_t height) const;

    // A PNG file of noise. The type of colour and the kind of interlacing are libpng's.
    void writeNoisePng(const std::string& name, std::uint32_t width, std::uint32_t height, int bits, int type,
                       int interlacing) const;

private:
    Folder folder_;
    Folder logs_;
};

// Bytes without a pattern that a wrong offset could hide behind.
Bytes noise(std::size_t size);

// 16-bit words, the low byte first; such words of noise within bounds.
Bytes words(const std::vector<unsigned int>& values);
Bytes noiseWords(std::size_t count, unsigned int lowest, unsigned int highest);

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t count);
Bytes joined(std::initializer_list<Bytes> parts);
Bytes repeated(const Bytes& bytes, std::size_t times);

} // namespace fikleipa::tool
