// The whole command. An input is text: an argument a line, an empty line, and the content of the files in, in.y4m and
// standard input; the file many has it again and again. The command runs in a folder of its own, where there are also a
// file that may be overwritten and a link to a file that is not there. It runs twice with different bytes in fresh
// memory, which are not to show in what it writes.
#include "fuzz/fuzz.h"
#include "fuzz/memory_file.h"

#include "tools/command_line.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <vector>

namespace {

using namespace fikleipa::fuzz;
namespace fs = std::filesystem;

// Large frames that the arguments ask for are no finding, but take time: there is no memory for them. What a small file
// makes the command take is bounded by libFuzzer.
std::size_t mostToAllocate = SIZE_MAX;
constexpr std::size_t kMostWhenAsked = 1 << 18;

// What fresh memory holds, but for the very large, which is not all used.
int garbage = 0;
constexpr std::size_t kMostGarbage = 1 << 20;

constexpr rlim_t kMostToWrite = 1 << 16;
constexpr std::size_t kMany = 48 << 10; // a frame of 2048 x 8 pixels of 16-bit 4:2:0

void* allocateOrNot(std::size_t bytes) noexcept {
    void* const memory = bytes <= mostToAllocate ? std::malloc(bytes) : nullptr;
    if (memory != nullptr && bytes <= kMostGarbage) std::memset(memory, garbage, bytes);
    return memory;
}
void* allocate(std::size_t bytes) {
    void* const memory = allocateOrNot(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

} // namespace

void* operator new(std::size_t bytes) {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes) {
    return allocate(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocateOrNot(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

struct Input {
    std::vector<std::string> arguments{"fikleipa"};
    std::string content;

    explicit Input(std::string_view text) {
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            if (line.empty()) break;
            std::string argument(line.substr(0, line.find('\0')));
            std::replace(argument.begin(), argument.end(), '/', '_'); // nothing outside of the folder
            arguments.push_back(std::move(argument));
        }
        content = text;
    }

    // More jobs than one digit says would start as many threads.
    bool startsManyThreads() const {
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            const std::string& option = arguments[i];
            const std::size_t j = option.find('j');
            if (!option.starts_with('-') || j == std::string::npos) continue;
            const std::size_t number = option.find_first_of("0123456789", j);
            const bool inNext = number == std::string::npos && i + 1 < arguments.size();
            const std::string_view text = inNext                        ? std::string_view(arguments[i + 1])
                                          : number == std::string::npos ? std::string_view()
                                                                        : std::string_view(option).substr(number);
            if (text.size() > 1 && text.find_first_of("0123456789") != std::string_view::npos) return true;
        }
        return false;
    }

    bool asksForLargeFrames() const {
        return std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
            unsigned digits = 0;
            for (std::size_t i = 0; i < argument.size(); ++i) {
                digits = isDigit(argument[i]) ? digits + 1 : 0;
                const bool isSize = argument[i] == 'x' && i > 0 && isDigit(argument[i - 1]);
                if (digits > 3 || isSize) return true;
            }
            return false;
        });
    }
};

// What a folder holds: of a link where it points, of a file its content and time.
using Snapshot = std::map<std::string, std::pair<std::string, fs::file_time_type>>;

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Folder {
public:
    Folder() {
        const char* const parent = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it
        std::string name = std::string(parent != nullptr ? parent : "/dev/shm") + "/fikleipa-fuzz-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) found("no folder {}", name);
        path_ = name;
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path& path() const { return path_; }

    void fill(const std::string& content) const {
        for (const auto& entry : fs::directory_iterator(path_)) fs::remove_all(entry.path());
        constexpr fs::file_time_type kLongAgo{};
        std::string many;
        while (!content.empty() && many.size() < kMany) many += content;
        many.resize(content.empty() ? 0 : kMany);
        for (const auto& [name, text] :
             {std::pair{"in", content}, {"in.y4m", content}, {"many", many}, {"old", "an old file"}}) {
            std::ofstream(path_ / name, std::ios::binary) << text;
            fs::last_write_time(path_ / name, kLongAgo);
        }
        fs::create_symlink("nowhere", path_ / "link");
    }

    Snapshot snapshot() const {
        Snapshot files;
        for (const auto& entry : fs::directory_iterator(path_)) {
            auto& [content, time] = files[entry.path().filename()];
            if (entry.is_symlink()) {
                content = "-> " + fs::read_symlink(entry.path()).string();
            } else {
                content = contentOf(entry.path());
                time = entry.last_write_time();
            }
        }
        return files;
    }

private:
    fs::path path_;
};

// The standard streams and the working directory of one call.
class Surroundings {
public:
    Surroundings(const fs::path& folder, int input)
        : directory_(::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), output_({}, MemoryFile::Kind::Regular),
          errors_({}, MemoryFile::Kind::Regular) {
        const std::array streams{input, output_.descriptor(), errors_.descriptor()};
        for (int stream = 0; stream < 3; ++stream) {
            saved_[static_cast<std::size_t>(stream)] = ::fcntl(stream, F_DUPFD_CLOEXEC, 3);
            ::dup2(streams[static_cast<std::size_t>(stream)], stream);
        }
        fs::current_path(folder);
        limitFiles(kMostToWrite);
    }
    ~Surroundings() {
        limitFiles(RLIM_INFINITY);
        for (int stream = 0; stream < 3; ++stream) {
            const int saved = saved_[static_cast<std::size_t>(stream)];
            ::dup2(saved, stream);
            ::close(saved);
        }
        if (::fchdir(directory_) != 0) found("no way back");
        ::close(directory_);
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    std::string output() const { return contentOf(output_.path()); }
    std::string errors() const { return contentOf(errors_.path()); }

private:
    static void limitFiles(rlim_t bytes) {
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = std::min(bytes, limit.rlim_max);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }

    int directory_;
    MemoryFile output_;
    MemoryFile errors_;
    std::array<int, 3> saved_{};
};

int nextDescriptor() {
    const int next = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    ::close(next);
    return next;
}

struct Outcome {
    int status;
    std::string output, errors;
    bool closedAll;
    Snapshot before, after;
};

void run(const Input& input, const Folder& folder, Outcome& outcome) {
    std::vector<const char*> arguments;
    for (const std::string& argument : input.arguments) arguments.push_back(argument.c_str());
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(input.content.data());
    const MemoryFile standardInput({bytes, input.content.size()}, MemoryFile::Kind::Pipe);
    const Surroundings surroundings(folder.path(), standardInput.descriptor());
    const int before = nextDescriptor();
    mostToAllocate = input.asksForLargeFrames() ? kMostWhenAsked : SIZE_MAX;
    outcome.status = fikleipa::tool::runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    mostToAllocate = SIZE_MAX;
    outcome.closedAll = nextDescriptor() == before;
    outcome.output = surroundings.output();
    outcome.errors = surroundings.errors();
}

Outcome outcomeOf(const Input& input, const Folder& folder, int bytesInFreshMemory) {
    garbage = bytesInFreshMemory;
    Outcome outcome{};
    folder.fill(input.content);
    outcome.before = folder.snapshot();
    run(input, folder, outcome);
    outcome.after = folder.snapshot();
    return outcome;
}

bool isOneMessage(const std::string& text) {
    return text.starts_with("fikleipa: ") && text.size() > std::strlen("fikleipa: \n") &&
           std::count_if(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }) == 1 &&
           text.back() == '\n';
}

// How many files came or changed; those that were there are to stay.
std::size_t changes(const Snapshot& before, const Snapshot& after) {
    std::size_t changed = 0;
    for (const auto& [name, file] : after) {
        const auto known = before.find(name);
        changed += known == before.end() || known->second != file ? 1 : 0;
    }
    for (const auto& [name, file] : before) {
        const auto still = after.find(name);
        if (still == after.end()) found("{} is gone", name);
        if (file.first.starts_with("->") && still->second != file) found("the link {} is no longer one", name);
    }
    return changed;
}

void check(const Outcome& outcome) {
    const auto& [status, output, errors, closedAll, before, after] = outcome;
    const std::size_t changed = changes(before, after);
    if (!closedAll) found("a file is still open");
    if (status == 0) {
        if (!errors.empty()) found("success, and on standard error '{}'", errors);
        if (changed + (output.empty() ? 0 : 1) != 1)
            found("success with {} files and {} bytes of standard output", changed, output.size());
    } else {
        if (status != 1 && status != 2) found("status {}", status);
        if (!isOneMessage(errors)) found("status {}, and on standard error '{}'", status, errors);
        if (changed != 0) found("status {}, and {} files came or changed", status, changed);
    }
}

void compare(const Outcome& first, const Outcome& second) {
    if (first.status != second.status) found("status {}, and again {}", first.status, second.status);
    if (first.status != 0) return;
    const auto same = [](const auto& a, const auto& b) {
        return a.first == b.first && a.second.first == b.second.first;
    };
    if (first.output != second.output ||
        !std::equal(first.after.begin(), first.after.end(), second.after.begin(), second.after.end(), same))
        found("what is written depends on what fresh memory holds");
}

} // namespace

// Standard error is the command's: libFuzzer is to write to a copy.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    peopleRead = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    static std::string option = "-close_fd_mask=2";
    static std::vector<char*> arguments(*argv, *argv + *argc);
    arguments.push_back(option.data());
    arguments.push_back(nullptr);
    *argc += 1;
    *argv = arguments.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    const Input input({reinterpret_cast<const char*>(data), size});
    if (input.startsManyThreads()) return 0;
    tell("{}, with {} bytes of input", fmt::join(input.arguments, " "), input.content.size());

    const Outcome outcome = outcomeOf(input, folder, 0);
    tell("status {}, {} bytes of output, {}", outcome.status, outcome.output.size(), outcome.errors);
    check(outcome);
    constexpr int kGarbage = 0xA5;
    compare(outcome, outcomeOf(input, folder, kGarbage));
    return 0;
}
