// Files and pipes. "-" is standard input or standard output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace fikleipa::tool {

class InputFile {
public:
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    // As messages call it.
    const std::string& name() const { return name_; }
    int descriptor() const { return descriptor_; }

    // The bytes not read yet, of a regular file.
    std::optional<std::uint64_t> bytesLeft() const;

    // Whether the bytes to come begin with `text`; reads nothing.
    bool startsWith(std::string_view text);

    // Fills the buffer; fewer bytes come back at the end of the file only.
    std::size_t read(std::span<unsigned char> buffer);

    // The next line without its end. Nothing at the end of the file; fails where the line does not end within `limit`.
    std::optional<std::string> readLine(std::size_t limit);

    // Fails where the file ends before.
    void skip(std::uint64_t bytes);

private:
    std::size_t readSome(unsigned char* buffer, std::size_t size);
    bool readAhead();

    std::string name_;
    int descriptor_;
    std::string ahead_; // read from the file and not yet handed out
};

// A file that appears under its name when it is complete: until commit() it is a temporary file beside it, which goes
// away on failure and on a signal that ends the process. Pipes and devices are written directly. There is at most one
// at a time.
class OutputFile {
public:
    // Fails if `path` is the file that `input` reads.
    explicit OutputFile(const std::string& path, const InputFile* input = nullptr);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    void write(std::span<const unsigned char> bytes);
    void write(std::string_view text);
    void commit();

private:
    void createTemporary();

    std::string name_;
    std::string path_;
    std::string temporary_; // empty when written directly
    int descriptor_ = -1;
};

// From here on a write to a closed pipe or past the limit of a file's size is an error like any other, and signals that
// end the process remove the temporary file.
void prepareSignals();

} // namespace fikleipa::tool
