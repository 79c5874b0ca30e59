/* The public headers are C: this file is built as C99 and uses both libraries through them. */
#include "fikleipa.h"
#include "pxutil.h"

#include <stdio.h>
#include <string.h>

static unsigned int signalEvent(void* argument) {
    pxOSSetEvent(argument);
    return 0;
}

static int platformWorks(void) {
    pxOSEvent done = pxOSCreateEvent(NULL, 0, 0, "done");
    unsigned int id = 0;
    pxOSThread thread = pxOSCreateThread(NULL, 0, signalEvent, done, 0, &id, "worker");
    const int signalled = pxOSWaitForEvent(done, 60000);
    pxOSCloseThread(thread, NULL);
    pxOSCloseEvent(done);
    return signalled;
}

static int conversionWorks(void) {
    unsigned char yuy2[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    unsigned char uyvy[8] = {0};
    const unsigned char expected[8] = {2, 1, 4, 3, 6, 5, 8, 7};
    PXYCBCRMatrix matrix = PX_MATRIX_BT601;
    PXYCBCRRgbType order = PX_RGB_BGRA;
    return cycbcr_transcode(uyvy, yuy2, 2, 2, 4, 4, matrix, order, PX_FOURCC_UYVY, PX_FOURCC_8800001E) == 8 &&
           memcmp(uyvy, yuy2, sizeof yuy2) == 0 &&
           cycbcr_transcode(uyvy, yuy2, 2, 2, 4, 4, matrix, order, PX_FOURCC_UYVY, PX_FOURCC_YUY2) == 8 &&
           memcmp(uyvy, expected, sizeof expected) == 0;
}

int main(void) {
    if (!platformWorks()) fputs("the platform library does not work\n", stderr);
    if (!conversionWorks()) fputs("the conversion does not work\n", stderr);
    return platformWorks() && conversionWorks() ? 0 : 1;
}
