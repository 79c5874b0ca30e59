// zimg knows planes alone. Chroma is repeated, as our converters do, not interpolated.
#include "bench/peers/peers.h"

#include <zimg.h>

#include <memory>
#include <stdexcept>

namespace fikleipa::bench {
namespace {

struct FreeGraph {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};

struct Samples {
    unsigned bits;
    [[nodiscard]] unsigned bytes() const { return bits > 8 ? 2 : 1; }
};

zimg_image_format image(Samples samples, const FrameSize& f) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = f.width;
    format.height = f.height;
    format.pixel_type = samples.bytes() == 2 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
    format.depth = samples.bits;
    return format;
}

// A graph from 4:2:2 planes to planes of R, G and B, and the memory it works in.
struct Graph {
    std::unique_ptr<zimg_filter_graph, FreeGraph> graph;
    std::vector<std::uint8_t> room;

    Graph(Samples from, Samples to, const FrameSize& f) {
        zimg_image_format source = image(from, f);
        source.subsample_w = 1;
        source.color_family = ZIMG_COLOR_YUV;
        source.matrix_coefficients = ZIMG_MATRIX_BT709;
        source.pixel_range = ZIMG_RANGE_LIMITED;
        zimg_image_format destination = image(to, f);
        destination.color_family = ZIMG_COLOR_RGB;
        destination.matrix_coefficients = ZIMG_MATRIX_RGB;
        destination.pixel_range = ZIMG_RANGE_FULL;
        zimg_graph_builder_params params;
        zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
        params.resample_filter_uv = ZIMG_RESIZE_POINT;
        params.cpu_type = ZIMG_CPU_AUTO_64B;
        graph.reset(zimg_filter_graph_build(&source, &destination, &params));
        std::size_t size = 0;
        if (graph == nullptr || zimg_filter_graph_get_tmp_size(graph.get(), &size) != ZIMG_ERROR_SUCCESS) {
            throw std::runtime_error("zimg does not convert that");
        }
        room.resize(size + kAlignment);
    }

    void* aligned() {
        void* at = room.data();
        std::size_t space = room.size();
        return std::align(kAlignment, room.size() - kAlignment, at, space);
    }

    static constexpr std::size_t kAlignment = 64;
};

Convert toRgbPlanes(Samples from, Samples to) {
    return [from, to, graph = std::shared_ptr<Graph>(), width = 0U](std::uint8_t* dst, std::uint8_t* src,
                                                                    const FrameSize& f) mutable {
        if (width != f.width) {
            graph = std::make_shared<Graph>(from, to, f);
            width = f.width;
        }
        const PeerPlanes planes = planes422(src, f, from.bytes());
        zimg_image_buffer_const source{ZIMG_API_VERSION, {}};
        source.plane[0] = {planes.y, planes.pitch, ZIMG_BUFFER_MAX};
        source.plane[1] = {planes.cb, planes.chromaPitch, ZIMG_BUFFER_MAX};
        source.plane[2] = {planes.cr, planes.chromaPitch, ZIMG_BUFFER_MAX};
        zimg_image_buffer destination{ZIMG_API_VERSION, {}};
        const std::size_t pitch = std::size_t{f.width} * to.bytes();
        for (std::size_t i = 0; i < 3; ++i) {
            destination.plane[i] = {dst + i * pitch * f.height, static_cast<std::ptrdiff_t>(pitch), ZIMG_BUFFER_MAX};
        }
        zimg_filter_graph_process(graph->graph.get(), &source, &destination, graph->aligned(), nullptr, nullptr,
                                  nullptr, nullptr);
    };
}

const Peer kZimg("zimg", {
                             {"10ToRGBPlanarInt", toRgbPlanes({10}, {8})},
                             {"10ToRGBPlanarInt10", toRgbPlanes({10}, {10})},
                             {"10ToRGBPlanarInt16", toRgbPlanes({10}, {16})},
                             {"12ToRGBPlanarInt16", toRgbPlanes({12}, {16})},
                         });

} // namespace
} // namespace fikleipa::bench
