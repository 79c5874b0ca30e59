// A C++ program against both installed libraries. It calls functions of either linkage and of libpxutil, and replaces
// what libfikleipa asks of libpxutil by a definition of its own, which the dynamic linker is to prefer.
#include <fikleipa.h>
#include <pxutil.h>

#include <cstdio>
#include <vector>

unsigned int CPUFeatureFlags() {
    return 0;
}

int main() {
    std::vector<unsigned char> uyvy{128, 235, 128, 16}, rgb(8);
    const std::vector<unsigned char> whiteAndBlack{254, 254, 254, 255, 0, 0, 0, 255};

    const unsigned int bytes = cycbcr_uyvy_to_rgb32(rgb.data(), uyvy.data(), 2, 1, 8, 4, PX_MATRIX_BT601, PX_RGB_RGBA);

    unsigned int pitch = 0;
    _fixPitch(PX_FOURCC_YUY2, 2, pitch);
    int counter = 41;
    pxOSInterlockedIncrement(&counter);

    const bool converted = bytes == rgb.size() && rgb == whiteAndBlack;
    const bool replaced = cycbcr_set_cpu(4) < 2 && gdwProcType < 2;
    if (!converted || pitch != 4 || counter != 42 || !replaced) {
        std::fputs("C++: wrong result\n", stderr);
        return 1;
    }
    std::printf("C++: fikleipa %s converts\n", fikleipa_version());
}
