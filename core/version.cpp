#include "fikleipa.h"
#include "simd/kernels.h"

const char* fikleipa_version() {
    return FIKLEIPA_VERSION;
}

int fikleipa_kernel(unsigned int index, const char** name, const char** level) {
    const auto info = fikleipa::simd::kernelInfo(index);
    if (!info) return 0;
    *name = info->name;
    *level = fikleipa::simd::levelName(info->level);
    return 1;
}
