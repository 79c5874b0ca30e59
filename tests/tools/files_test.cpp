// What becomes of output files, old and new, whatever ends the command.
#include "command.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fikleipa::tool {
namespace {

namespace fs = std::filesystem;

constexpr auto* kOptions = " --from uyvy --to yuy2 --size 16x4";

class FilesTest : public CommandTest {
protected:
    void SetUp() override { write("in", noise(128)); }

    struct stat status(const std::string& name) const {
        struct stat seen {};
        EXPECT_EQ(::stat(path(name).c_str(), &seen), 0) << name;
        return seen;
    }

    // The command, as what follows `prefix`, writes a new frame to `name` and leaves nothing else in the folder.
    void expectNewFrame(const std::string& prefix, const std::string& name) const {
        const auto before = files();
        mustRun(fmt::format("{} fikleipa convert in {}{}", prefix, name, kOptions));
        EXPECT_EQ(read(name).size(), 128U) << prefix << name;
        auto after = files();
        after.erase(name);
        for (const auto& [other, bytes] : before) EXPECT_TRUE(other == name || after.erase(other) == 1) << other;
        EXPECT_TRUE(after.empty()) << prefix << name << " left " << after.begin()->first;
    }
};

const std::string kNamed = "LD_PRELOAD=" FIKLEIPA_NO_TMPFILE " ";

// A shell script in which root is held off by permissions, as anybody is.
std::string withoutPowers(const std::string& script) {
    return ::geteuid() == 0 ? fmt::format("setpriv --bounding-set -dac_override,-dac_read_search sh -c '{}'", script)
                            : fmt::format("sh -c '{}'", script);
}

TEST_F(FilesTest, ALinkStaysALinkToWhateverThereIs) {
    fs::create_directory(path("folder"));
    fs::create_symlink("folder/second", path("link"));
    fs::create_symlink("../target", path("folder/second"));
    for (const std::string& prefix : {std::string(), kNamed}) {
        for (int time = 0; time < 2; ++time) { // at first there is no target
            mustRun(fmt::format("{}fikleipa convert in link{}", prefix, kOptions));
            EXPECT_TRUE(fs::is_symlink(path("link")) && fs::is_symlink(path("folder/second")));
            EXPECT_EQ(read("target").size(), 128U);
            EXPECT_EQ(files().size(), 4U) << prefix;
            write("target", "old");
        }
        fs::remove(path("target"));
    }
    fs::create_symlink("missing/target", path("lost"));
    EXPECT_EQ(shell(fmt::format("fikleipa convert in lost{}", kOptions)).err,
              "fikleipa: cannot create lost: No such file or directory\n");
    EXPECT_TRUE(fs::is_symlink(path("lost")));
}

TEST_F(FilesTest, AnOldFileKeepsWhatItIs) {
    constexpr uid_t kOther = 12345;
    for (const std::string& prefix : {std::string(), kNamed}) {
        fs::create_directory(path("folder"));
        for (const auto* name : {"plain", "linked", "owned", "marked", "folder/shut"}) {
            write(name, std::string(1000, 'x'));
            fs::permissions(path(name), fs::perms(0606));
        }
        fs::create_hard_link(path("linked"), path("other"));
        const bool owned = ::chown(path("owned").c_str(), kOther, kOther) == 0;
        const bool marked = ::setxattr(path("marked").c_str(), "user.take", "7", 1, 0) == 0;
        fs::permissions(path("folder"), fs::perms(0555));

        for (const auto* name : {"plain", "linked", "owned", "marked"}) expectNewFrame("umask 077;" + prefix, name);
        mustRun(withoutPowers(fmt::format("{}fikleipa convert in folder/shut{}", prefix, kOptions)));
        EXPECT_EQ(read("folder/shut").size(), 128U);

        for (const auto* name : {"plain", "linked", "owned", "marked", "folder/shut"})
            EXPECT_EQ(status(name).st_mode & 07777, 0606U) << name;
        EXPECT_EQ(status("linked").st_ino, status("other").st_ino);
        EXPECT_EQ(status("owned").st_uid, owned ? kOther : ::geteuid());
        EXPECT_EQ(::getxattr(path("marked").c_str(), "user.take", nullptr, 0), marked ? 1 : -1);
        fs::permissions(path("folder"), fs::perms(0755));
        fs::remove_all(path("folder"));
        fs::remove(path("other"));
    }
    expectNewFrame("umask 027;", "new");
    EXPECT_EQ(status("new").st_mode & 07777, 0640U);
    fs::permissions(path("plain"), fs::perms(0444));
    const std::string line = withoutPowers(fmt::format("fikleipa convert in plain{}", kOptions));
    EXPECT_EQ(shell(line).err, "fikleipa: cannot write plain: Permission denied\n");
}

// A disk of 64 KiB holds an old file of 8; the new one would be of 256.
TEST_F(FilesTest, AFullDiskLeavesTheOldFile) {
    write("in", noise(1U << 18));
    const std::string convert = "fikleipa convert in disk/{} --from uyvy --to yuy2 --size 256x512";
    const std::string script =
        "mkdir disk && mount -t tmpfs -o size=64k none disk && cp old disk && {} || exit 77; {}; s=$?; {} "
        "cmp old disk/old && test $(ls -A disk | wc -l) = 1 && exit $s";
    write("old", noise(8192));
    struct Case {
        std::string before, command, after;
    };
    const std::string shut = withoutPowers(fmt::format(fmt::runtime(convert), "old"));
    for (const auto& [before, command, after] :
         {Case{"true", fmt::format(fmt::runtime(convert), "old"), ""},
          Case{"true", fmt::format(fmt::runtime(convert), "new"), ""},
          Case{"ln disk/old disk/other", fmt::format(fmt::runtime(convert), "old"), "rm disk/other;"},
          Case{"chmod 555 disk", shut, ""}}) {
        for (const std::string& prefix : {std::string(), kNamed}) {
            write("script", fmt::format(fmt::runtime(script), before, prefix + command, after));
            const Result result = shell("unshare -m sh script; s=$?; rmdir disk; exit $s");
            if (result.status == 77 || result.err.find("unshare") != std::string::npos) GTEST_SKIP() << "no disks here";
            EXPECT_EQ(result.status, 1) << prefix << before;
            EXPECT_EQ(result.err.rfind("fikleipa: cannot write disk/", 0), 0U) << result.err;
            EXPECT_NE(result.err.find("No space left on device\n"), std::string::npos) << result.err;
        }
    }
}

TEST_F(FilesTest, ALimitOfSizeLeavesTheOldFile) {
    write("in", noise(128 * 300));
    write("out", "precious");
    fs::create_hard_link(path("out"), path("linked"));
    write("plain", "precious");
    const auto before = files();
    for (const std::string& prefix : {std::string(), kNamed}) {
        for (const auto* name : {"out", "plain", "new"}) {
            const Result result = shell(fmt::format("ulimit -f 8; {}fikleipa convert in {}{}", prefix, name, kOptions));
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.err, fmt::format("fikleipa: cannot write {}: File too large\n", name));
            EXPECT_EQ(files(), before);
        }
    }
}

TEST_F(FilesTest, NoSignalLeavesAFile) {
    write("out", "precious");
    const auto before = files();
    for (const std::string& prefix : {std::string(), kNamed}) {
        for (const int signal : {SIGHUP, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGXCPU, SIGVTALRM, SIGPROF, SIGIO,
                                 SIGABRT, SIGSYS, SIGRTMIN, SIGRTMAX, SIGKILL}) {
            if (signal == SIGKILL && !prefix.empty()) continue;
            const Result result =
                shell(fmt::format("ulimit -c 0; {}fikleipa pattern out --to uyvy --size 640x480 --frames 1000000 & "
                                  "until ls -l /proc/$!/fd | grep -q '{}/.*[#.]'; do sleep 0.01; done; "
                                  "kill -{} $!; wait $!",
                                  prefix, path("").parent_path().string(), signal));
            EXPECT_EQ(result.status, 128 + signal) << prefix;
            EXPECT_EQ(files(), before) << prefix << signal;
        }
    }
}

TEST_F(FilesTest, ClosedStreamsAreCalledByTheirNames) {
    struct Case {
        std::string line, message;
    };
    const std::string output = "fikleipa: standard output is not open for writing\n";
    for (const auto& [line, message] : {Case{fmt::format("fikleipa convert in - {} >&-", kOptions), output},
                                        {"fikleipa formats >&-", output},
                                        {"fikleipa --help >&-", output},
                                        {fmt::format("fikleipa convert in - {} <&- >&-", kOptions), output},
                                        {fmt::format("fikleipa convert - out {} <&-", kOptions),
                                         "fikleipa: standard input is not open for reading\n"}}) {
        const Result result = shell(line);
        EXPECT_EQ(result.status, 1) << line;
        EXPECT_EQ(result.err, message) << line;
    }
    for (const auto* silent : {"2>&-", "2> /dev/full", "<&- >&- 2>&-"}) {
        EXPECT_EQ(shell(fmt::format("fikleipa nonsense {}", silent)).status, 2) << silent;
        EXPECT_EQ(shell(fmt::format("fikleipa convert missing out {} {}", kOptions, silent)).status, 1) << silent;
        EXPECT_EQ(files().count("out"), 0U);
        EXPECT_EQ(shell(fmt::format("fikleipa convert in out {} {}", kOptions, silent)).status, 0) << silent;
        EXPECT_EQ(read("out").size(), 128U) << silent;
        fs::remove(path("out"));
    }
}

} // namespace
} // namespace fikleipa::tool
