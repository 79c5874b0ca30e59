#include "tests/exports/exports.h"

#include "core/fourcc.h"
#include "fikleipa.h"
#include "v210/bands.h"

#include <algorithm>
#include <tuple>
#include <type_traits>

namespace fikleipa::tests {
namespace {

using Call = std::function<std::uint64_t(const Case&, Memory&)>;
using Pointers = std::array<std::uint8_t*, Memory::kPlanes>;

// Three of a function's pointers that belong together.
struct Triple {
    unsigned first;
    bool isWritten;
};

// What a function's type does not say.
struct Shape {
    std::vector<Triple> triples;
    unsigned packedSample; // the bytes of one where a packed frame may be written, else 0
};

// Planes that are written do not lie on one another, but for what some functions write behind a row.
Pointers pointersOf(const Case& c, Memory& memory, unsigned count, const Shape& shape) {
    Pointers pointers{};
    for (unsigned p = 0; p < count; ++p) pointers[p] = memory.plane(p);
    const unsigned widest = *std::max_element(c.pitches.begin(), c.pitches.end());
    const bool fits = c.pitches[0] == widest && widest >= 2 * c.width;
    for (const Triple& triple : shape.triples) {
        std::uint8_t* const start = pointers[triple.first];
        const unsigned sample = triple.isWritten ? shape.packedSample : 1 + c.number % 2;
        for (unsigned i = 0; i < 3; ++i) {
            std::uint8_t*& pointer = pointers[triple.first + i];
            if (c.places == Places::Packed && sample != 0) {
                pointer = start + std::size_t{sample} * c.firstSamples[i];
            } else if (c.places == Places::Tight && (fits || !triple.isWritten)) {
                pointer = start + std::size_t{widest} * c.height * i;
            }
        }
    }
    return pointers;
}

// Gives a function's arguments one after another what a case has for them. All functions that convert have pointers,
// then width, height and pitches, then, if any, the colour matrix and the order of RGB, and behind these the depth of
// RGB and one more pitch. Flags are anywhere.
class Arguments {
public:
    Arguments(const Case& c, const Pointers& pointers)
        : case_(c), pointers_(pointers), numbers_{c.width,      c.height,       c.pitches[0], c.pitches[1],
                                                  c.pitches[2], c.bitsPerPixel, c.pitches[2]} {}

    void set(unsigned char*& argument) { argument = pointers_.at(pointer_++); }
    void set(unsigned short*& argument) { argument = reinterpret_cast<unsigned short*>(pointers_.at(pointer_++)); }
    void set(unsigned& argument) { argument = numbers_.at(number_++); }
    void set(unsigned long& argument) { argument = numbers_.at(number_++); }
    void set(int& argument) { argument = case_.choices.at(choice_++); }
    void set(unsigned char& argument) { argument = case_.flags.at(flag_++); }
    void set(PXYCBCRMatrix& argument) const { argument = static_cast<PXYCBCRMatrix>(case_.matrix); }
    void set(PXYCBCRRgbType& argument) {
        argument = static_cast<PXYCBCRRgbType>(case_.type);
        number_ = kDepth;
    }

private:
    static constexpr unsigned kDepth = 5; // in the numbers

    const Case& case_;
    const Pointers& pointers_;
    std::array<unsigned, 7> numbers_;
    unsigned pointer_ = 0, number_ = 0, choice_ = 0, flag_ = 0;
};

template <class Convert, class... A>
Call converter(Convert convert, const Shape& shape, std::tuple<A...> /*arguments*/) {
    return [convert, shape](const Case& c, Memory& memory) -> std::uint64_t {
        const Pointers pointers = pointersOf(c, memory, (std::is_pointer_v<A> + ...), shape);
        Arguments next(c, pointers);
        std::tuple<A...> arguments;
        std::apply([&next](A&... each) { (next.set(each), ...); }, arguments);
        if constexpr (std::is_void_v<decltype(std::apply(convert, arguments))>) {
            std::apply(convert, arguments);
            return 0;
        } else {
            return std::apply(convert, arguments);
        }
    };
}

// Source and destination of four pointers are one and three or three and one, those of six three and three. Which is
// which shows in what is written.
std::vector<Triple> triplesOf(const Call& call, std::size_t pointers) {
    if (pointers < 4) return {};
    Case c{48, 4};
    c.pitches = {8 * c.width, 8 * c.width, 8 * c.width};
    Memory memory({c});
    memory.fill(c);
    call(c, memory);
    if (pointers == 6) return {{0, memory.isChanged(0)}, {3, memory.isChanged(3)}};
    if (memory.isChanged(0) && !memory.isChanged(1)) return {{1, false}};
    return {{memory.isChanged(0) ? 0U : 1U, true}};
}

template <class R, class... A>
Call callOf(R (*convert)(A...)) {
    using Function = R(A...);
    Shape shape{};
    if constexpr (std::is_same_v<Function, PXFromPlanar> || std::is_same_v<Function, PXFromRgb>) shape.packedSample = 1;
    if constexpr (std::is_same_v<Function, PXV210ToSamples>) shape.packedSample = convert == Fromv210_16 ? 2 : 1;
    shape.triples = triplesOf(converter(convert, shape, std::tuple<A...>()), (std::is_pointer_v<A> + ...));
    return converter(convert, shape, std::tuple<A...>());
}

// The function of C++ is chosen by its parameters where one of C has the same name, which is chosen here.
template <class... A, class R>
auto withParameters(R (*function)(A...)) {
    return function;
}
Call callOf(PXConvertFrame* convert) {
    return callOf<unsigned>(convert);
}

// A worker of a split. It is not the last, which would signal an event.
Call callOf(unsigned (*worker)(void*)) {
    return [worker](const Case& c, Memory& memory) -> std::uint64_t {
        int pending = 2;
        BandRecord band{memory.plane(0), memory.plane(1), memory.plane(2), memory.plane(3), c.width, c.height,
                        c.pitches[0],    c.pitches[1],    &pending,        nullptr,         0};
        return std::uint64_t{worker(&band)} << 1 | (pending == 1 ? 1 : 0);
    };
}

// All codes there are in turn, and one that there is not.
constexpr int kUnknownCode = 0x20202020;
constexpr unsigned kAllCodes = kCodes.size() + 2;
int codeOf(unsigned number) {
    const unsigned i = number % kAllCodes;
    return i < kCodes.size() ? kCodes[i].fourcc : i == kCodes.size() ? PX_FOURCC_422P : kUnknownCode;
}

Call callOf(void (*fixPitch)(unsigned, unsigned, unsigned&)) {
    return [fixPitch](const Case& c, Memory& /*memory*/) -> std::uint64_t {
        Digest digest;
        for (unsigned i = 0; i < kAllCodes; ++i) {
            unsigned pitch = c.pitches[0];
            fixPitch(static_cast<unsigned>(codeOf(i)), c.width, pitch);
            digest.add(pitch);
        }
        return digest.value();
    };
}

Call callOf(int (*canTranscode)(int, int)) {
    return [canTranscode](const Case& c, Memory& /*memory*/) -> std::uint64_t {
        Digest digest;
        for (unsigned i = 0; i < kAllCodes; ++i) {
            digest.add(static_cast<std::uint64_t>(canTranscode(codeOf(c.number), codeOf(i))));
        }
        return digest.value();
    };
}

using Transcode = std::remove_pointer_t<decltype(&cycbcr_transcode)>;

// `from` and `onto` give a code for every number.
template <class From, class Onto>
Call transcoderOf(Transcode* transcode, From from, Onto onto) {
    return [=](const Case& c, Memory& memory) {
        const auto convert = [&](unsigned char* dst, unsigned char* src, unsigned width, unsigned height,
                                 unsigned dstPitch, unsigned srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
            return transcode(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, onto(c.number),
                             from(c.number));
        };
        using RgbFrame = std::tuple<unsigned char*, unsigned char*, unsigned, unsigned, unsigned, unsigned,
                                    PXYCBCRMatrix, PXYCBCRRgbType>;
        return converter(convert, Shape{}, RgbFrame())(c, memory);
    };
}

// What it does not convert.
Call callOf(Transcode* transcode) {
    return transcoderOf(transcode, codeOf, [](unsigned number) {
        const bool both32 = codeOf(number) == PX_FOURCC_RGB32;
        return both32 ? PX_FOURCC_RGB32 : number % 2 == 0 ? PX_FOURCC_422P : kUnknownCode;
    });
}

std::string nameOf(int fourcc) {
    if (fourcc == PX_FOURCC_RGB32) return "RGB32";
    std::string name;
    for (int shift = 0; shift < 32; shift += 8) name += static_cast<char>(fourcc >> shift & 0xFF);
    return name;
}

// Each pair of layouts, whose codes take turns.
void addPairs(std::vector<Export>& list) {
    std::array<std::vector<int>, kLayouts> codes;
    for (const Code& code : kCodes) codes[static_cast<unsigned>(code.layout)].push_back(code.fourcc);
    for (const std::vector<int>& onto : codes) {
        for (std::vector<int> from : codes) {
            if (from[0] == PX_FOURCC_RGB32 && onto[0] == PX_FOURCC_RGB32) continue;
            const std::string name = "cycbcr_transcode/" + nameOf(from[0]) + "/" + nameOf(onto[0]);
            if (from[0] == PX_FOURCC_P422) from.push_back(PX_FOURCC_422P);
            const auto turn = [](const std::vector<int>& all) {
                return [all](unsigned number) { return all[number % all.size()]; };
            };
            list.push_back({name, transcoderOf(cycbcr_transcode, turn(from), turn(onto))});
        }
    }
}

} // namespace

std::vector<Export> exports() {
    std::vector<Export> list;
#define EXPORT_C(name) list.push_back({#name, callOf(name)});
#define EXPORT_CXX(name, ...) list.push_back({#name "()", callOf(withParameters<__VA_ARGS__>(name))});
#include "exports.inc"
    addPairs(list);
    std::sort(list.begin(), list.end(), [](const Export& a, const Export& b) { return a.name < b.name; });
    return list;
}

} // namespace fikleipa::tests
