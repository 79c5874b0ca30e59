#include "file.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fikleipa::tool {
namespace {

constexpr std::size_t kAheadStep = 256;

constexpr std::array kDeadlySignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// What a signal handler may look at: the temporary file's path, empty for none.
std::array<char, PATH_MAX> doomedPath{};

extern "C" void removeAndDie(int signal) {
    if (doomedPath[0] != 0) ::unlink(doomedPath.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Keeps deadly signals waiting while a temporary file and its entry above come and go.
class SignalPause {
public:
    SignalPause() {
        sigset_t deadly;
        sigemptyset(&deadly);
        for (const int signal : kDeadlySignals) sigaddset(&deadly, signal);
        pthread_sigmask(SIG_BLOCK, &deadly, &before_);
    }
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;
    ~SignalPause() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

bool isSameFile(const struct stat& a, const struct stat& b) {
    return S_ISREG(a.st_mode) && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

mode_t newFileMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

InputFile::InputFile(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      descriptor_(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) failSystem("cannot open " + name_);
}

InputFile::~InputFile() {
    if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
}

std::optional<std::uint64_t> InputFile::bytesLeft() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return {};
    const off_t position = ::lseek(descriptor_, 0, SEEK_CUR);
    if (position < 0) return {};
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - position, 0)) + ahead_.size();
}

std::size_t InputFile::readSome(unsigned char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(descriptor_, buffer, size);
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
        if (::lseek(descriptor_, static_cast<off_t>(bytes - ahead_.size()), SEEK_CUR) < 0)
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

OutputFile::OutputFile(const std::string& path, const InputFile* input)
    : name_(path == "-" ? "standard output" : path), path_(path) {
    struct stat output {};
    const bool exists = path == "-" ? ::fstat(STDOUT_FILENO, &output) == 0 : ::stat(path.c_str(), &output) == 0;
    if (struct stat source{}; input != nullptr && exists && ::fstat(input->descriptor(), &source) == 0) {
        if (isSameFile(source, output)) fail("{} is both the input and the output", name_);
    }
    if (path == "-") {
        // A copy, which can be closed.
        descriptor_ = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        if (descriptor_ < 0) failSystem("cannot write " + name_);
    } else if (exists && S_ISDIR(output.st_mode)) {
        fail("cannot write {}: it is a directory", name_);
    } else if (exists && !S_ISREG(output.st_mode)) {
        descriptor_ = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor_ < 0) failSystem("cannot write " + name_);
    } else {
        createTemporary();
        ::fchmod(descriptor_, exists ? output.st_mode & 0777 : newFileMode());
    }
}

void OutputFile::createTemporary() {
    // A link stays a link: what it points to is replaced.
    std::error_code ignored;
    const std::filesystem::path target = std::filesystem::weakly_canonical(path_, ignored);
    if (!ignored) path_ = target.string();
    const auto directory = std::filesystem::path(path_).parent_path();
    std::string temporary = (directory / ".fikleipa-XXXXXX").string();
    if (temporary.size() >= doomedPath.size()) fail("cannot create {}: its path is too long", name_);

    const SignalPause pause;
    descriptor_ = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor_ < 0) failSystem("cannot create " + name_);
    temporary_ = temporary;
    std::copy(temporary.begin(), temporary.end(), doomedPath.begin());
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (temporary_.empty()) return;
    const SignalPause pause;
    ::unlink(temporary_.c_str());
    doomedPath.fill(0);
}

void OutputFile::write(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            failSystem("cannot write " + name_);
        }
    }
}

void OutputFile::write(std::string_view text) {
    write(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
}

void OutputFile::commit() {
    // Some file systems report a full disk only here.
    if (::close(std::exchange(descriptor_, -1)) != 0) failSystem("cannot write " + name_);
    if (temporary_.empty()) return;
    const SignalPause pause;
    if (::rename(temporary_.c_str(), path_.c_str()) != 0) failSystem("cannot create " + name_);
    temporary_.clear();
    doomedPath.fill(0);
}

void prepareSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int signal : kDeadlySignals) {
        // A signal that the parent had ignored stays ignored.
        if (std::signal(signal, removeAndDie) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

} // namespace fikleipa::tool
