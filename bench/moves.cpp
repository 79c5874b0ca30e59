#include "bench/converters.h"

#include "pxutil/pxutil.h"

namespace fikleipa::bench {

void registerMoves(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    context.add("CopyMemoryFast", {2, 2}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        CopyMemoryFast(dst, src, std::size_t{2} * f.width * f.height);
    });
    context.add("EndianConvertWord", {2, 2}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        EndianConvertWord(dst, src, std::size_t{f.width} * f.height);
    });
}

} // namespace fikleipa::bench
