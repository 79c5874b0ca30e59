// How much memory cycbcr_transcode() needs, by the table of fikleipa.h: who has it from there gets the same.
#pragma once

#include "core/fourcc.h"

#include <algorithm>
#include <cstdint>

namespace fikleipa::tests {

struct Footprint {
    std::uint64_t src;
    std::uint64_t dst;
};

// Of a frame whose pitches _fixPitch() has corrected.
class FootprintOf {
public:
    FootprintOf(Layout from, Layout to, unsigned width, unsigned height, unsigned dstPitch, unsigned srcPitch)
        : from_(from), to_(to), w_(width), h_(height), dp_(dstPitch), sp_(srcPitch) {}

    Footprint operator()() const {
        Footprint all{source(), destination()};
        const bool plain = from_ == Layout::V210 || from_ == Layout::Uyvy || to_ == Layout::Uyvy || from_ == to_;
        if ((from_ == Layout::Cyuv || to_ == Layout::Cyuv) && !plain && h_ > 1) {
            all.dst = std::max(all.dst, planar(to_) ? third(to_, dp_) + (third(to_, dp_) - dp_ * h_) : dp_ * h_);
        }
        return all;
    }

private:
    using Bytes = std::uint64_t;

    static bool packed(Layout l) { return l <= Layout::Cyuv; }
    static bool planar(Layout l) { return l == Layout::I420 || l == Layout::Yv12 || l == Layout::P422; }

    static Bytes rows(Bytes k, Bytes pitch, Bytes b) { return k == 0 || b == 0 ? 0 : (k - 1) * pitch + b; }
    // Where the third plane starts behind `h_` rows of so many bytes of luma.
    Bytes third(Layout l, Bytes lumaPitch) const {
        const Bytes luma = lumaPitch * h_;
        return luma + luma / (l == Layout::P422 ? 2 : 4);
    }
    static Bytes planes(Bytes luma, Bytes third, Bytes chroma) {
        return std::max(luma, chroma == 0 ? 0 : third + chroma);
    }
    Bytes chromaRows(Layout l) const { return l == Layout::P422 ? h_ : (h_ + 1) / 2; }

    Bytes source() const {
        if (from_ == Layout::Rgb32) return rows(h_, sp_, to_ == Layout::V210 ? 4 * w_ : 8 * wholePairs());
        if (from_ == Layout::V210) return sourceOfV210();
        if (to_ == Layout::V210) return sourceToV210();
        return packed(from_) ? sourceOfPacked() : sourceOfPlanar();
    }

    Bytes destination() const {
        if (to_ == Layout::Rgb32) return rows(h_, dp_, 8 * (from_ == Layout::V210 ? wholePairs() : pairs()));
        if (to_ == Layout::V210) return destinationOfV210();
        if (from_ == Layout::V210) return destinationFromV210();
        return packed(to_) ? destinationOfPacked() : destinationOfPlanar();
    }

    Bytes sourceOfV210() const {
        const Bytes q = wholePairs();
        if (to_ == Layout::V210) return rows(h_, sp_, std::min(dp_, sp_));
        if (to_ == Layout::Rgb32) return q == 0 ? 0 : rows(h_, sp_, (q + 2) / 3 * 16 + (q % 3 == 0 ? 4 : 0));
        const Bytes pitch = std::max(sp_, natural());
        if (to_ != Layout::Uyvy) return rows(h_, pitch, 16 * groupsByTwos());
        return sp_ == 0 ? 16 * groups() * h_ : rows(h_, pitch, 16 * groups());
    }

    Bytes sourceToV210() const {
        const Bytes row = 12 * groups();
        if (from_ == Layout::Uyvy) return rows(h_, std::max(sp_, 2 * w_), row);
        if (packed(from_)) return sp_ == 2 * w_ ? row * h_ : rows(h_, sp_, row);
        return planes(rows(h_, w_, 6 * groups()), third(from_, sp_), rows(chromaRows(from_), w_ / 2, 3 * groups()));
    }

    Bytes sourceOfPacked() const {
        if (to_ == Layout::Rgb32) return 4 * pairs() * h_;
        return rows(h_, sp_, packed(to_) && !byWidth() ? std::min(dp_, sp_) : 4 * wholePairs());
    }

    Bytes sourceOfPlanar() const {
        const bool is422 = from_ == Layout::P422;
        const Bytes last = h_ == 0 ? 0 : is422 ? h_ - 1 : (h_ - 1) / 2;
        const Bytes fieldRows = h_ / 4 * 2 + std::min<Bytes>(h_ % 4, 2);
        if (to_ == Layout::Rgb32 && h_ != 0) {
            return planes(rows(h_, w_, 2 * pairs()), third(from_, w_), w_ == 0 ? 0 : last * w_ / 2 + pairs());
        }
        if (!planar(to_)) {
            const Bytes chroma = is422 ? pairs() * h_ : rows(fieldRows, sp_ / 2, pairs());
            return planes(rows(h_, sp_, 2 * pairs()), third(from_, w_), chroma);
        }
        if (is422 && to_ == Layout::P422) return std::max(dp_ * h_, third(from_, sp_) + dp_ * h_ / 2);
        if (!is422 && to_ != Layout::P422) return third(from_, sp_) + sp_ * h_ / 4;
        const Bytes pitch = is422 ? sp_ / 2 * 2 : sp_ / 2;
        return planes(rows(h_, sp_, w_), third(from_, sp_), rows((h_ + 1) / 2, pitch, w_));
    }

    Bytes destinationOfV210() const {
        if (from_ == Layout::V210) return rows(h_, dp_, std::min(dp_, sp_));
        if (from_ == Layout::Rgb32) return rows(h_, dp_, w_ / 6 * 16 + (w_ % 6 > 1 ? 8 : 0));
        const Bytes least = from_ == Layout::Uyvy ? (w_ * 16 / 6 + 63) / 64 * 64 : natural();
        return rows(h_, std::max(dp_, least), 16 * groups());
    }

    Bytes destinationFromV210() const {
        if (to_ == Layout::Uyvy) return rows(h_, dp_, 4 * pairs());
        if (packed(to_)) return rows(h_, dp_, 12 * groupsByTwos());
        return planes(rows(h_, dp_, 6 * groupsByTwos()), third(to_, dp_),
                      rows(chromaRows(to_), dp_ / 2, 3 * groupsByTwos()));
    }

    Bytes destinationOfPacked() const {
        if (planar(from_)) return rows(h_, dp_, 4 * pairs());
        return rows(h_, dp_, packed(from_) && !byWidth() ? std::min(dp_, sp_) : 4 * wholePairs());
    }

    Bytes destinationOfPlanar() const {
        const bool is422 = to_ == Layout::P422;
        const Bytes start = third(to_, dp_);
        if (!planar(from_)) {
            const Bytes chroma = is422 ? h_ : h_ / 2 + (h_ % 4 == 1 ? 1 : 0);
            return planes(rows(h_, dp_, 2 * wholePairs()), start, rows(chroma, dp_ / 2, wholePairs()));
        }
        if (is422 && from_ == Layout::P422) return start + dp_ * h_ / 2;
        if (!is422 && from_ != Layout::P422) return std::max(rows(h_, dp_, sp_), start + dp_ * h_ / 4);
        return planes(rows(h_, dp_, w_), start, rows(chromaRows(to_), dp_ / 2, w_));
    }

    // Of two packed layouts, the ones that are converted by the width; others are by the smaller pitch.
    bool byWidth() const { return (from_ == Layout::Yvyu) != (to_ == Layout::Yvyu); }

    Bytes wholePairs() const { return w_ / 2; }
    Bytes pairs() const { return (w_ + 1) / 2; }
    Bytes groups() const { return (w_ + 5) / 6; }
    Bytes groupsByTwos() const { return (w_ + 11) / 12 * 2; }
    Bytes natural() const { return (w_ + 47) / 48 * 128; }

    Layout from_, to_;
    Bytes w_, h_, dp_, sp_;
};

} // namespace fikleipa::tests
