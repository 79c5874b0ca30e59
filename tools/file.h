// Files and pipes to read. "-" is standard input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace fikleipa::tool {

// An open file; a negative number is none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }

    // These return false for an error, which errno tells.
    bool write(std::span<const unsigned char> bytes) const;
    bool close();

private:
    int number_;
};

// A copy of standard input or standard output. Fails where it is closed or made for the other direction.
Descriptor standardStream(int number);

class InputFile {
public:
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() = default;

    // As messages call it.
    const std::string& name() const { return name_; }
    const Descriptor& descriptor() const { return descriptor_; }

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
    Descriptor descriptor_;
    std::string ahead_; // read from the file and not yet handed out
};

} // namespace fikleipa::tool
