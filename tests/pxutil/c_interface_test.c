/* The public headers are C: this file is built as C99 and uses both libraries through them. */
#include "fikleipa.h"
#include "pxutil.h"

#include <stdio.h>
#include <string.h>

static int faults = 0;

static void check(int ok, const char* what) {
    if (ok) return;
    fprintf(stderr, "failed: %s\n", what);
    ++faults;
}

#define CHECK(condition) check((condition), #condition)

static unsigned int signalEvent(void* argument) {
    pxOSSetEvent(argument);
    return 0;
}

static void checkPlatform(void) {
    pxOSEvent done = pxOSCreateEvent(NULL, 0, 0, "done");
    unsigned int id = 0;
    pxOSThread thread = pxOSCreateThread(NULL, 0, signalEvent, done, 0, &id, "worker");
    CHECK(pxOSWaitForEvent(done, 60000) == 1);
    pxOSCloseThread(thread, NULL);
    pxOSCloseEvent(done);

    int counter = 0;
    CHECK(pxOSInterlockedIncrement(&counter) == 1);
    CHECK(pxOSInterlockedDecrement(&counter) == 0);

    unsigned char* words = PXAlloc(4);
    memcpy(words, "abcd", 4);
    EndianConvertWord(words, words, 2);
    CHECK(memcmp(words, "badc", 4) == 0);
    PXFree(words);
}

static void checkConversion(void) {
    unsigned char yuy2[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    unsigned char uyvy[8] = {0};
    const unsigned char expected[8] = {2, 1, 4, 3, 6, 5, 8, 7};
    PXYCBCRMatrix matrix = PX_MATRIX_BT601;
    PXYCBCRRgbType order = PX_RGB_BGRA;
    CHECK(cycbcr_transcode(uyvy, yuy2, 2, 2, 4, 4, matrix, order, PX_FOURCC_UYVY, PX_FOURCC_YUY2) == 8);
    CHECK(memcmp(uyvy, expected, sizeof expected) == 0);
    CHECK(strlen(fikleipa_version()) >= 5);
}

int main(void) {
    checkPlatform();
    checkConversion();
    return faults == 0 ? 0 : 1;
}
