#include "command.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <png.h>
#include <pty.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fikleipa::tool {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void becomeShell(const fs::path& folder, const std::string& line) {
    const std::string bin = fs::path(FIKLEIPA_COMMAND).parent_path();
    const std::string script = "PATH='" + bin + "':$PATH\n" + line;
    if (::chdir(folder.c_str()) == 0) ::execl("/bin/sh", "sh", "-c", script.c_str(), nullptr);
    ::_exit(127);
}

void redirect(int descriptor, const fs::path& file) {
    const int opened = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(opened, descriptor);
    ::close(opened);
}

int waitFor(pid_t child, struct rusage& used) {
    int status = 0;
    ::wait4(child, &status, 0, &used);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

Result CommandTest::shell(const std::string& line) const {
    const pid_t child = ::fork();
    if (child == 0) {
        redirect(STDOUT_FILENO, logs_.path() / "out");
        redirect(STDERR_FILENO, logs_.path() / "err");
        becomeShell(folder_.path(), line);
    }
    struct rusage used {};
    const int status = waitFor(child, used);
    constexpr std::size_t kUnit = 1024;
    return {status, slurp(logs_.path() / "out"), slurp(logs_.path() / "err"),
            static_cast<std::size_t>(used.ru_maxrss) * kUnit};
}

void CommandTest::mustRun(const std::string& line) const {
    const Result result = shell(line);
    EXPECT_EQ(result.status, 0) << line;
    EXPECT_EQ(result.err, "") << line;
}

Bytes CommandTest::converted(const std::string& options) const {
    mustRun("fikleipa convert in out " + options);
    return read("out");
}

std::string CommandTest::onTerminal(const std::string& line) const {
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) becomeShell(folder_.path(), line);
    std::string shown;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = ::read(terminal, buffer.data(), buffer.size())) > 0)
        shown.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(terminal);
    struct rusage ignored {};
    waitFor(child, ignored);
    return shown;
}

Bytes CommandTest::read(const std::string& name) const {
    const std::string bytes = text(name);
    return {bytes.begin(), bytes.end()};
}

std::string CommandTest::text(const std::string& name) const {
    EXPECT_TRUE(fs::exists(path(name))) << name;
    return slurp(path(name));
}

void CommandTest::write(const std::string& name, const Bytes& bytes) const {
    write(name, std::string(bytes.begin(), bytes.end()));
}

void CommandTest::write(const std::string& name, const std::string& text) const {
    spill(path(name), text);
}

std::map<std::string, Bytes> CommandTest::files() const {
    std::map<std::string, Bytes> all;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.path())) {
        const std::string name = entry.path().filename();
        all[name] = entry.is_regular_file() ? read(name) : Bytes{};
    }
    return all;
}

Picture CommandTest::storedPicture(const std::string& name) const {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path(name).c_str(), "rb"), std::fclose);
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    EXPECT_EQ(png_get_color_type(png, info), PNG_COLOR_TYPE_RGB);
    Picture picture{png_get_image_width(png, info), png_get_image_height(png, info), png_get_bit_depth(png, info), {}};
    const png_bytepp rows = png_get_rows(png, info);
    for (std::size_t y = 0; y < picture.height; ++y) {
        const auto sample = [&](std::size_t i) {
            return picture.bits == 16 ? rows[y][2 * i] << 8 | rows[y][2 * i + 1] : rows[y][i];
        };
        for (std::size_t x = 0; x < picture.width; ++x)
            picture.pixels.push_back({sample(3 * x), sample(3 * x + 1), sample(3 * x + 2)});
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return picture;
}

std::vector<Pixel> CommandTest::picture(const std::string& name, std::size_t width, std::size_t height) const {
    Picture stored = storedPicture(name);
    EXPECT_EQ(stored.width, width);
    EXPECT_EQ(stored.height, height);
    if (stored.bits == 16) {
        for (auto& [red, green, blue] : stored.pixels) red >>= 8, green >>= 8, blue >>= 8;
    }
    return stored.pixels;
}

void CommandTest::writeNoisePng(const std::string& name, std::uint32_t width, std::uint32_t height, int bits, int type,
                                int interlacing) const {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path(name).c_str(), "wb"), std::fclose);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_set_IHDR(png, info, width, height, bits, type, interlacing, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    Bytes bytes = noise(rowBytes * height);
    std::vector<png_bytep> rows;
    for (std::size_t y = 0; y < height; ++y) rows.push_back(bytes.data() + y * rowBytes);
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
}

Bytes noise(std::size_t size) {
    std::mt19937 generator(20);
    Bytes bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(generator() >> 24);
    return bytes;
}

Bytes words(const std::vector<unsigned int>& values) {
    Bytes bytes;
    for (const unsigned int value : values) {
        bytes.push_back(static_cast<unsigned char>(value));
        bytes.push_back(static_cast<unsigned char>(value >> 8));
    }
    return bytes;
}

Bytes noiseWords(std::size_t count, unsigned int lowest, unsigned int highest) {
    std::mt19937 generator(20);
    std::uniform_int_distribution<unsigned int> distribution(lowest, highest);
    std::vector<unsigned int> values(count);
    for (unsigned int& value : values) value = distribution(generator);
    return words(values);
}

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t count) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

Bytes repeated(const Bytes& bytes, std::size_t times) {
    Bytes all;
    for (std::size_t i = 0; i < times; ++i) all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

} // namespace fikleipa::tool
