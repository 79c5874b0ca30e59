#include "file.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fikleipa::tool {
namespace {

constexpr std::size_t kAheadStep = 256;

} // namespace

bool Descriptor::write(std::span<const unsigned char> bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = ::write(number_, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool Descriptor::close() {
    return number_ < 0 || ::close(std::exchange(number_, -1)) == 0;
}

Descriptor standardStream(int number) {
    const bool isInput = number == STDIN_FILENO;
    const int flags = ::fcntl(number, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == (isInput ? O_WRONLY : O_RDONLY))
        fail("standard {} is not open for {}", isInput ? "input" : "output", isInput ? "reading" : "writing");
    return Descriptor(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

InputFile::InputFile(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      descriptor_(path == "-" ? standardStream(STDIN_FILENO)
                              : Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY))) {
    if (!descriptor_) failSystem("cannot open " + name_);
}

std::optional<std::uint64_t> InputFile::bytesLeft() const {
    struct stat status {};
    if (::fstat(descriptor_.number(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    const off_t position = ::lseek(descriptor_.number(), 0, SEEK_CUR);
    if (position < 0) return {};
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - position, 0)) + ahead_.size();
}

std::size_t InputFile::readSome(unsigned char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(descriptor_.number(), buffer, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) failSystem("cannot read " + name_);
    }
}

bool InputFile::readAhead() {
    std::array<unsigned char, kAheadStep> more{};
    const std::size_t count = readSome(more.data(), more.size());
    ahead_.append(more.begin(), more.begin() + static_cast<std::ptrdiff_t>(count));
    return count != 0;
}

bool InputFile::startsWith(std::string_view text) {
    while (ahead_.size() < text.size() && text.starts_with(ahead_) && readAhead()) {
    }
    return std::string_view(ahead_).starts_with(text);
}

std::size_t InputFile::read(std::span<unsigned char> buffer) {
    std::size_t filled = std::min(ahead_.size(), buffer.size());
    std::copy_n(ahead_.begin(), filled, buffer.begin());
    ahead_.erase(0, filled);
    while (filled < buffer.size()) {
        const std::size_t count = readSome(buffer.data() + filled, buffer.size() - filled);
        if (count == 0) break;
        filled += count;
    }
    return filled;
}

std::optional<std::string> InputFile::readLine(std::size_t limit) {
    std::size_t end = 0;
    while ((end = ahead_.find('\n')) == std::string::npos && ahead_.size() < limit && readAhead()) {
    }
    if (ahead_.empty()) return {};
    if (end == std::string::npos || end > limit) fail("{} has a header line that does not end", name_);
    std::string line = ahead_.substr(0, end);
    ahead_.erase(0, end + 1);
    return line;
}

void InputFile::skip(std::uint64_t bytes) {
    std::array<unsigned char, 1U << 16> scratch; // NOLINT(*-member-init): only ever written
    if (const auto left = bytesLeft(); left && bytes <= *left && bytes > ahead_.size()) {
        if (::lseek(descriptor_.number(), static_cast<off_t>(bytes - ahead_.size()), SEEK_CUR) < 0)
            failSystem("cannot read " + name_);
        ahead_.clear();
        return;
    }
    while (bytes != 0) {
        const std::size_t step = std::min<std::uint64_t>(bytes, scratch.size());
        if (read(std::span(scratch).first(step)) != step) fail("{} ends before the first frame asked for", name_);
        bytes -= step;
    }
}

} // namespace fikleipa::tool
