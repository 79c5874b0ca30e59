// Small files that claim to be large: memory is taken for what has been read, not for what a header says.
#include "command.h"

#include <fmt/format.h>
#include <zlib.h>

namespace fikleipa::tool {
namespace {

constexpr std::size_t kMost = 100'000'000;

// Of addresses, which no thread's stack reaches. Sanitizers need more of them than any machine has memory.
const std::string kLimit = FIKLEIPA_SANITIZED ? "" : "ulimit -v 600000; ";

class MemoryTest : public CommandTest {
protected:
    void expectSmall(const std::string& line, int status, const std::string& reason) const {
        const Result result = shell(kLimit + line);
        EXPECT_EQ(result.status, status) << line << "\n" << result.err;
        EXPECT_NE(result.err.find(reason), std::string::npos) << line << "\n" << result.err;
        EXPECT_LT(result.peakBytes, kMost) << line;
    }
};

std::string bigEndian(std::uint32_t value) {
    std::string text;
    for (unsigned int shift = 32; shift != 0; shift -= 8) text += static_cast<char>(value >> (shift - 8));
    return text;
}

std::string chunk(const std::string& typeAndData) {
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(typeAndData.data()), static_cast<uInt>(typeAndData.size()));
    return bigEndian(static_cast<std::uint32_t>(typeAndData.size() - 4)) + typeAndData +
           bigEndian(static_cast<std::uint32_t>(sum));
}

std::string deflated(const std::string& plain) {
    uLongf size = compressBound(static_cast<uLong>(plain.size()));
    std::string packed(size, 0);
    compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
              static_cast<uLong>(plain.size()), Z_BEST_COMPRESSION);
    packed.resize(size);
    return packed;
}

struct Kind {
    std::uint32_t width, height;
    char bits, interlacing;
};

std::string png(const Kind& kind, const std::string& data, const std::string& furtherChunks = "") {
    constexpr char kRgb = 2;
    const std::string header{kind.bits, kRgb, 0, 0, kind.interlacing};
    return "\x89PNG\r\n\x1A\n" + chunk("IHDR" + bigEndian(kind.width) + bigEndian(kind.height) + header) +
           furtherChunks + chunk("IDAT" + data) + chunk("IEND");
}

TEST_F(MemoryTest, ClipsThatEndBeforeTheirFirstFrame) {
    write("in", std::string("YUV4MPEG2 W65534 H21000 C420\nFRAME\nabc"));
    for (const auto* options : {"--to i420", "--to i420 --y4m", "--to yv12", "--to i420 --dst-pitch 65540"}) {
        const std::string line = fmt::format("fikleipa convert - out {} --jobs 4 < in", options);
        expectSmall(line, 1, "ends within frame 0");
        expectSmall("cat in | " + line.substr(0, line.find('<')), 1, "ends within frame 0");
    }
    for (const auto* layout : {"rgb64", "yuv444p12", "v210"})
        expectSmall(fmt::format("echo abc | fikleipa convert - out --size 21000x21000 --to v210 --from {}", layout), 1,
                    "ends within frame 0");
    write("in", std::string("YUV4MPEG2 W32766 H32766 C420\nFRAME\nabc"));
    expectSmall("fikleipa view in out.png", 1, "ends within frame 0");
    write("in", std::string("YUV4MPEG2 W65534 H32766 C420\nFRAME\nabc"));
    expectSmall("fikleipa view in out.png", 1, "too large");
}

TEST_F(MemoryTest, PicturesThatEndBeforeTheirLastRow) {
    for (const Kind& kind : {Kind{30000, 30000, 8, 0},
                             {20000, 20000, 16, 0},
                             {30000, 30000, 8, 1},
                             {20000, 20000, 16, 1},
                             {1000000, 700, 8, 1},
                             {500, 1000000, 16, 0}}) {
        for (const std::string& data : {std::string(), deflated(std::string(1000000, 0))}) {
            write("in.png", png(kind, data));
            expectSmall("fikleipa view in.png out.png", 1, "broken PNG picture");
            expectSmall("fikleipa convert in.png out --to v210", 1, "broken PNG picture");
        }
    }
    for (const char bits : {'\x08', '\x10'}) {
        write("in.png", png({37800, 37800, bits, 0}, ""));
        expectSmall("fikleipa view in.png out.png", 1, "too large");
    }
}

TEST_F(MemoryTest, TextsThatUnpackToALot) {
    const std::string text = chunk(std::string("zTXtkey\0\0", 9) + deflated(std::string(7'900'000, 'a')));
    std::string texts;
    for (int i = 0; i < 30; ++i) texts += text;
    write("in.png", png({4, 4, 8, 0}, deflated(std::string(std::size_t{4} * 13, 0)), texts));
    expectSmall("fikleipa view in.png out.png", 0, "");
}

} // namespace
} // namespace fikleipa::tool
