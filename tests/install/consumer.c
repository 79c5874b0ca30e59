/* A C program against the installed library: UYVY to YUY2 swaps the bytes of every word. */
#include <fikleipa.h>

#include <stdio.h>
#include <string.h>

/* Codes are constants, also where the last byte sets the sign. */
static int is_uyvy(int fourcc) {
    switch (fourcc) {
    case PX_FOURCC('U', 'Y', 'V', 'Y'):
    case PX_FOURCC(0x1E, 0x00, 0x10, 0x88):
        return 1;
    default:
        return 0;
    }
}

int main(void) {
    unsigned char uyvy[] = {90, 16, 240, 235}, yuy2[sizeof uyvy];
    const unsigned char expected[] = {16, 90, 235, 240};

    unsigned int bytes =
        cycbcr_transcode(yuy2, uyvy, 2, 1, 0, 0, PX_MATRIX_BT601, PX_RGB_BGRA, PX_FOURCC_YUY2, PX_FOURCC_UYVY);

    if (!is_uyvy(PX_FOURCC_UYVY) || !is_uyvy(PX_FOURCC_8810001E) || is_uyvy(PX_FOURCC_YUY2)) {
        fputs("C: wrong codes\n", stderr);
        return 1;
    }
    if (bytes != sizeof yuy2 || memcmp(yuy2, expected, sizeof yuy2) != 0) {
        fputs("C: wrong result\n", stderr);
        return 1;
    }
    printf("C: fikleipa %s converts\n", fikleipa_version());
    return 0;
}
