#include "output_file.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace fikleipa::tool {
namespace {

namespace fs = std::filesystem;

// What a signal handler may look at: the temporary file's path, empty for none.
std::array<char, PATH_MAX> doomedPath{};

extern "C" void removeAndDie(int signal) {
    if (doomedPath[0] != 0) ::unlink(doomedPath.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// For all signals that would end the process and that nobody handles or ignores.
void removeOnSignals() {
    constexpr std::array kHarmless{SIGCHLD, SIGCONT, SIGURG, SIGWINCH, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU};
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        struct sigaction action {};
        if (std::find(kHarmless.begin(), kHarmless.end(), signal) != kHarmless.end()) continue;
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        std::signal(signal, removeAndDie);
    }
}

// Keeps signals waiting while names come and go.
class SignalPause {
public:
    SignalPause() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;
    ~SignalPause() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

struct stat statusOf(const Descriptor& file) {
    struct stat status {};
    ::fstat(file.number(), &status);
    return status;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Where links lead, also to where nothing is yet.
fs::path behindLinks(fs::path path) {
    constexpr int kMostLinks = 40;
    std::error_code ignored;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, ignored)); ++i)
        path = path.parent_path() / fs::read_symlink(path, ignored);
    return path;
}

std::string freshName(const std::string& folder) {
    std::random_device random;
    return (fs::path(folder) / fmt::format(".fikleipa-{:08x}{:08x}", random(), random())).string();
}

// The extended attributes, access lists among them. Nothing where they cannot be told.
std::optional<std::map<std::string, std::vector<char>>> attributesOf(const Descriptor& file) {
    std::map<std::string, std::vector<char>> all;
    std::vector<char> names(XATTR_LIST_MAX);
    const ssize_t length = ::flistxattr(file.number(), names.data(), names.size());
    if (length < 0) return errno == ENOTSUP ? std::optional(all) : std::nullopt;
    for (const char* name = names.data(); name < names.data() + length;
         name += std::char_traits<char>::length(name) + 1) {
        std::vector<char> value(XATTR_SIZE_MAX);
        const ssize_t size = ::fgetxattr(file.number(), name, value.data(), value.size());
        if (size < 0) return {};
        value.resize(static_cast<std::size_t>(size));
        all[name] = value;
    }
    return all;
}

// The way to a file that has no name.
std::string pathOf(const Descriptor& file) {
    return fmt::format("/proc/self/fd/{}", file.number());
}

bool link(const Descriptor& file, const std::string& path) {
    return ::linkat(AT_FDCWD, pathOf(file).c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

} // namespace

OutputFile::OutputFile(const std::string& path, const InputFile* input)
    : name_(path == "-" ? "standard output" : path) {
    Descriptor opened =
        path == "-" ? standardStream(STDOUT_FILENO) : Descriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!opened && errno != ENOENT) failSystem("cannot write " + name_);
    if (opened) {
        const struct stat status = statusOf(opened);
        const bool isRegular = S_ISREG(status.st_mode);
        if (isRegular && input != nullptr && isSameFile(status, statusOf(input->descriptor())))
            fail("{} is both the input and the output", name_);
        if (!isRegular || path == "-") {
            file_ = std::move(opened);
            return;
        }
        existing_ = std::move(opened);
    }
    path_ = behindLinks(path).string();
    if (path_.empty()) fail("cannot create '{}'", name_);
    const fs::path folder = fs::path(path_).parent_path();
    const std::string here = folder.empty() ? "." : folder.string();
    if (!existing_) {
        if (!openTemporary(here, 0666)) failSystem("cannot create " + name_);
        return;
    }
    replaces_ = openTemporary(here, 0600) && isLikeExisting();
    std::error_code ignored;
    if (!file_ && !openTemporary(fs::temp_directory_path(ignored).string(), 0600)) failSystem("cannot write " + name_);
}

bool OutputFile::openTemporary(const std::string& folder, mode_t mode) {
    file_ = Descriptor(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    if (file_ && ::access(pathOf(file_).c_str(), F_OK) == 0) return true;
    return openNamedTemporary(folder, mode);
}

bool OutputFile::openNamedTemporary(const std::string& folder, mode_t mode) {
    const std::string temporary = freshName(folder);
    if (temporary.size() >= doomedPath.size()) fail("cannot create {}: its path is too long", name_);
    removeOnSignals();
    const SignalPause pause;
    file_ = Descriptor(::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file_) return false;
    temporary_ = temporary;
    std::copy(temporary.begin(), temporary.end(), doomedPath.begin());
    return true;
}

// Whether the new file may take the place of the one that exists: nothing of that is lost but its bytes.
bool OutputFile::isLikeExisting() const {
    const struct stat old = statusOf(existing_);
    const struct stat fresh = statusOf(file_);
    struct stat named {};
    if (::stat(path_.c_str(), &named) != 0 || !isSameFile(named, old)) return false;
    const auto attributes = attributesOf(existing_);
    return old.st_nlink == 1 && old.st_uid == fresh.st_uid && old.st_gid == fresh.st_gid && attributes &&
           attributes == attributesOf(file_);
}

OutputFile::~OutputFile() {
    if (temporary_.empty()) return;
    const SignalPause pause;
    ::unlink(temporary_.c_str());
    doomedPath.fill(0);
}

void OutputFile::write(std::span<const unsigned char> bytes) {
    if (!file_.write(bytes)) failSystem("cannot write " + name_);
}

void OutputFile::write(std::string_view text) {
    write(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
}

void OutputFile::commit() {
    if (path_.empty()) {
        if (!file_.close()) failSystem("cannot write " + name_);
        return;
    }
    // Some file systems report a full disk only when a file is closed.
    if (!Descriptor(::fcntl(file_.number(), F_DUPFD_CLOEXEC, 0)).close()) failSystem("cannot write " + name_);
    const SignalPause pause;
    if (replaces_ && takePlace()) return;
    if (!existing_) failSystem("cannot create " + name_);
    writeOver();
}

// Gives the file its name. Fails for a place that cannot be taken.
bool OutputFile::takePlace() {
    if (existing_ && ::fchmod(file_.number(), statusOf(existing_).st_mode & 07777) != 0) return false;
    if (temporary_.empty()) {
        if (!existing_ && link(file_, path_)) return true;
        // What is there can only be replaced by something with a name.
        const std::string temporary = freshName(fs::path(path_).parent_path().string());
        if (!link(file_, temporary)) return false;
        temporary_ = temporary;
    }
    if (::rename(temporary_.c_str(), path_.c_str()) != 0) return false;
    temporary_.clear();
    doomedPath.fill(0);
    return true;
}

// Puts the bytes into the file that exists, for which there is room before the first of them changes.
void OutputFile::writeOver() {
    const off_t size = statusOf(file_).st_size;
    const off_t oldSize = statusOf(existing_).st_size;
    if (::fallocate(existing_.number(), 0, 0, size) != 0 && (errno == ENOSPC || errno == EDQUOT)) {
        const int reason = errno;
        if (::ftruncate(existing_.number(), oldSize) == 0) errno = reason;
        failSystem("cannot write " + name_);
    }
    std::vector<unsigned char> buffer(1U << 20);
    ssize_t count = 0;
    for (off_t at = 0; (count = ::pread(file_.number(), buffer.data(), buffer.size(), at)) > 0; at += count) {
        if (!existing_.write(std::span(buffer).first(static_cast<std::size_t>(count)))) break;
    }
    if (count != 0 || ::ftruncate(existing_.number(), size) != 0 || !existing_.close())
        failSystem(fmt::format("{} is broken now: writing over it failed", name_));
}

void prepareProcess() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // For the opposite of what it is for, so that using it is an error still.
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace fikleipa::tool
