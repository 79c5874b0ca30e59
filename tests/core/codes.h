// The codes of layouts that cycbcr_can_transcode() knows, synonyms together.
#pragma once

#include "fikleipa.h"

#include <vector>

namespace fikleipa::tests {

using Codes = std::vector<int>;

inline const Codes kYuy2Codes{PX_FOURCC_YUY2, PX_FOURCC_YUNV};
inline const Codes kUyvyCodes{PX_FOURCC_UYVY, PX_FOURCC_UYNV, PX_FOURCC_AJYU,     PX_FOURCC_2vuy,    PX_FOURCC_yuv2,
                              PX_FOURCC_2Vuy, PX_FOURCC_yuV2, PX_FOURCC_8800001E, PX_FOURCC_8810001E};
inline const Codes kYvyuCodes{PX_FOURCC_YVYU};
inline const Codes kCyuvCodes{PX_FOURCC_cyuv};
inline const Codes kI420Codes{PX_FOURCC_I420, PX_FOURCC_IYUV};
inline const Codes kYv12Codes{PX_FOURCC_YV12};
inline const Codes kP422Codes{PX_FOURCC_P422};
inline const Codes kV210Codes{PX_FOURCC_v210, PX_FOURCC_012v};
inline const Codes kRgb32Codes{PX_FOURCC_RGB32};
inline const Codes kUnknownCodes{PX_FOURCC('N', 'V', '1', '2'), -1};

} // namespace fikleipa::tests
