// RGB to more than 8 bits, in 64-bit integers.
#include "tests/rgb/from_rgb.h"

namespace fikleipa::tests {
namespace {

using Wide = std::int64_t;

// The default row, then those of the matrices 1 to 9. ug, vg and vb are subtracted.
struct Row {
    Wide yo, yr, yg, yb, ur, ug, ub, vr, vg, vb;
};
constexpr Row k8To10[10] = {
    {64, 10280, 20160, 3920, -5920, 11640, 17560, 17560, 14720, 2839},
    {0, 11960, 23480, 4559, -6903, 13553, 20456, 20456, 17130, 3326},
    {64, 7320, 24560, 2480, -4040, 13520, 17560, 17560, 15960, 1600},
    {0, 8520, 28600, 2880, -4680, 15760, 20440, 20440, 18560, 1880},
    {64, 7282, 24497, 2473, -4013, 13503, 17517, 17517, 15910, 1606},
    {0, 8504, 28607, 2888, -4582, 15417, 20000, 20000, 18166, 1833},
    {64, 9024, 23291, 2037, -4906, 12662, 17568, 17568, 16155, 1412},
    {0, 10508, 27120, 2372, -5585, 14414, 20000, 20000, 18391, 1608},
    {64, 8880, 25240, 19840, -10800, 30720, 41200, 18760, 17440, 1360},
    {0, 10360, 29520, 23200, -12320, 35120, 47440, 21480, 19920, 1560},
};
constexpr Row k16[10] = {
    {64, 2570, 5040, 980, -1480, 2910, 4390, 4390, 3680, 709},
    {0, 2990, 5870, 1139, -1725, 3388, 5114, 5114, 4282, 831},
    {64, 1830, 6140, 620, -1010, 3380, 4390, 4390, 3990, 400},
    {0, 2130, 7150, 720, -1170, 3940, 5110, 5110, 4640, 470},
    {64, 1820, 6124, 618, -1003, 3375, 4379, 4379, 3977, 401},
    {0, 2126, 7151, 722, -1145, 3854, 5000, 5000, 4541, 458},
    {64, 2256, 5822, 509, -1226, 3165, 4392, 4392, 4038, 353},
    {0, 2627, 6780, 593, -1396, 3603, 5000, 5000, 4597, 402},
    {64, 2220, 6310, 4960, -2700, 7680, 10300, 4690, 4360, 340},
    {0, 2590, 7380, 5800, -3080, 8780, 11860, 5370, 4980, 390},
};
constexpr Row k10[10] = {
    {64, 257000, 504000, 98000, -148000, 291000, 439000, 439000, 368000, 71000},
    {0, 299011, 587006, 113983, -172577, 338837, 511414, 511414, 428253, 83160},
    {64, 183000, 614000, 62000, -101000, 338000, 439000, 439000, 399000, 40000},
    {0, 213000, 715000, 72000, -117000, 394000, 511000, 511000, 464000, 47000},
    {64, 182068, 612427, 61829, -100342, 337585, 437927, 437927, 397766, 40161},
    {0, 212600, 715200, 72200, -114572, 385428, 500000, 500000, 454153, 45847},
    {64, 225610, 582280, 50930, -122660, 316560, 439210, 439210, 403890, 35320},
    {0, 262700, 678000, 59300, -139630, 360370, 500000, 500000, 459790, 40210},
    {64, 222000, 631000, 496000, -270000, 768000, 1030000, 469000, 436000, 34000},
    {0, 259000, 738000, 580000, -308000, 878000, 1186000, 537000, 498000, 39000},
};
constexpr Row kTo12{256, 41120, 80640, 15680, -23680, 46560, 70240, 70240, 58880, 11359};

struct Arithmetic {
    Row row;
    Wide divisor;
    Wide top; // the highest sample
    bool rounded;
};

Row timesFour(Row k) {
    return {4 * k.yo, 4 * k.yr, 4 * k.yg, 4 * k.yb, 4 * k.ur, 4 * k.ug, 4 * k.ub, 4 * k.vr, 4 * k.vg, 4 * k.vb};
}

Arithmetic arithmeticOf(FromRgb arithmetic, unsigned matrix) {
    const unsigned row = matrix <= 9 ? matrix : 0;
    switch (arithmetic) {
    case FromRgb::From8To10:
        return {k8To10[row], 10000, 1023, false};
    case FromRgb::From16To10:
        return {k16[row], 640000, 1023, true};
    case FromRgb::From16To16:
        return {k16[row], 10000, 65535, true};
    case FromRgb::UpperTo10:
        return {k8To10[row], 40000, 1023, false};
    case FromRgb::UpperTo12:
        return {row == 0 ? kTo12 : timesFour(k8To10[row]), 40000, 4095, false};
    default:
        return {k10[row], 1000000, 1023, true};
    }
}

// From which remainder on a quotient of 0 and more, or one below, moves away from zero: from one above so many per cent
// of the divisor.
struct Steps {
    Wide up, down;
};
constexpr Steps kHalves{50, 50};
constexpr Steps kUneven{45, 25};

Wide stepAt(const Arithmetic& a, Wide percent) {
    return a.rounded ? a.divisor * percent / 100 + 1 : a.divisor;
}

unsigned sample(const Arithmetic& a, Wide offset, Wide sum, Steps steps) {
    Wide quotient = sum / a.divisor;
    const Wide remainder = sum % a.divisor;
    if (sum >= 0 && remainder >= stepAt(a, steps.up)) ++quotient;
    if (sum < 0 && -remainder >= stepAt(a, steps.down)) --quotient;
    return static_cast<unsigned>(std::clamp<Wide>(offset + quotient, 0, a.top));
}

unsigned doubleSample(double least, double most, int offset, double value) {
    const double raised = std::min(most, std::max(least, value)) * 1023 + 0.5;
    return static_cast<unsigned>(offset + static_cast<int>(raised));
}

Ycc inDoubles(const Row& k, const Colour& c) {
    const double r = c.r / 65535.0;
    const double g = c.g / 65535.0;
    const double b = c.b / 65535.0;
    const auto of = [](Wide coefficient) { return static_cast<double>(coefficient) / 1e6; };
    return {doubleSample(0, 1, static_cast<int>(k.yo), of(k.yr) * r + of(k.yg) * g + of(k.yb) * b),
            doubleSample(-0.5, 0.5, 512, of(k.ur) * r - of(k.ug) * g + of(k.ub) * b),
            doubleSample(-0.5, 0.5, 512, of(k.vr) * r - of(k.vg) * g - of(k.vb) * b)};
}

// Two colours, where there are, with kr R + kg G + kb B as near as may be to `sum`, and those beside them.
void addColoursNear(std::vector<Colour>& colours, Wide kr, Wide kg, Wide kb, Wide sum, Wide most,
                    std::minstd_rand& random) {
    std::size_t wanted = 2;
    for (unsigned attempt = 0; attempt < 6 && wanted != 0; ++attempt) {
        const Wide r = static_cast<Wide>(random()) % (most + 1);
        const Wide b = static_cast<Wide>(random()) % (most + 1);
        const Wide g = (sum - kr * r - kb * b) / kg;
        if (g < 1 || g >= most) continue;
        --wanted;
        for (const Wide near : {g - 1, g, g + 1}) {
            colours.push_back({static_cast<unsigned>(r), static_cast<unsigned>(near), static_cast<unsigned>(b)});
        }
    }
}

bool isUpper(FromRgb arithmetic) {
    return arithmetic == FromRgb::UpperTo10 || arithmetic == FromRgb::UpperTo12;
}

} // namespace

Ycc fromRgb(FromRgb arithmetic, unsigned matrix, const Colour& rgb) {
    const Arithmetic a = arithmeticOf(arithmetic, matrix);
    if (arithmetic == FromRgb::Double) return inDoubles(a.row, rgb);
    const unsigned dropped = isUpper(arithmetic) ? 6 : 0;
    const Wide r = rgb.r >> dropped;
    const Wide g = rgb.g >> dropped;
    const Wide b = rgb.b >> dropped;
    const Row& k = a.row;
    const Wide centre = (a.top + 1) / 2;
    return {sample(a, k.yo, k.yr * r + k.yg * g + k.yb * b, kHalves),
            sample(a, centre, k.ur * r - k.ug * g + k.ub * b, kUneven),
            sample(a, centre, k.vr * r - k.vg * g - k.vb * b, kHalves)};
}

std::vector<Colour> coloursAtSteps(FromRgb arithmetic, unsigned matrix) {
    const Arithmetic a = arithmeticOf(arithmetic, matrix);
    const Wide most = arithmetic == FromRgb::From8To10                           ? 255
                      : isUpper(arithmetic) || arithmetic == FromRgb::From10To10 ? 1023
                                                                                 : 65535;
    std::minstd_rand random(matrix + 1);
    std::vector<Colour> colours;
    const Row& k = a.row;
    for (Wide quotient = 0; quotient <= a.top; ++quotient) {
        const auto at = [&](Wide percent) { return (quotient - 1) * a.divisor + stepAt(a, percent); };
        addColoursNear(colours, k.yr, k.yg, k.yb, at(kHalves.up), most, random);
        if (quotient > (a.top + 1) / 2) continue;
        addColoursNear(colours, k.ur, -k.ug, k.ub, at(kUneven.up), most, random);
        addColoursNear(colours, k.ur, -k.ug, k.ub, -at(kUneven.down), most, random);
        addColoursNear(colours, k.vr, -k.vg, -k.vb, at(kHalves.up), most, random);
        addColoursNear(colours, k.vr, -k.vg, -k.vb, -at(kHalves.down), most, random);
    }
    if (isUpper(arithmetic)) {
        for (Colour& c : colours) c = {c.r << 6 | c.g % 64, c.g << 6 | c.b % 64, c.b << 6 | c.r % 64};
    }
    return colours;
}

} // namespace fikleipa::tests
