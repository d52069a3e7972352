/* The memory layout of the public records, on 32-bit and on 64-bit processors. Programs are compiled against it, so a
 * change here breaks them. Compiling this file is the test; it is compiled as C and, through records.cpp, as C++. */
#include <nadir/nadir.h>
#include <stddef.h>

/* A macro, because C99 has no static assertion: an array of a negative size does not compile. */
#define HOLDS(name, condition) typedef char name[(condition) ? 1 : -1]

#define HERE(on32, on64) (sizeof(void*) == 4 ? (on32) : (on64))
#define SIZE(record, on32, on64) HOLDS(size_of_##record, sizeof(record) == HERE(on32, on64))

/* Both branches of the inner ?: must have the same pointer type, or compilers complain. */
#define FIELD(record, type, field, on32, on64) \
  HOLDS(record##_##field,                      \
        offsetof(record, field) == HERE(on32, on64) && sizeof(1 ? &((record*)0)->field : (type*)0) == sizeof(void*))

FIELD(Img, uint16_t, width, 0, 0);
FIELD(Img, uint16_t, height, 2, 2);
FIELD(Img, uint16_t, bytesPerPixel, 4, 4);
FIELD(Img, uint32_t, type, 8, 8);
FIELD(Img, void*, data, 12, 16);
SIZE(Img, 16, 24);

FIELD(ImgC, uint16_t, width, 0, 0);
FIELD(ImgC, uint16_t, height, 2, 2);
FIELD(ImgC, uint16_t, bytesPerPixel, 4, 4);
FIELD(ImgC, uint32_t, type, 8, 8);
FIELD(ImgC, const void*, data, 12, 16);
SIZE(ImgC, 16, 24);

FIELD(PcBuffer, uint32_t, width, 0, 0);
FIELD(PcBuffer, uint32_t, numDisparities, 4, 4);
FIELD(PcBuffer, uint8_t*, costsA, 8, 8);
FIELD(PcBuffer, uint8_t*, costsB, 12, 16);
FIELD(PcBuffer, uint32_t, costsSize, 16, 24);
FIELD(PcBuffer, uint32_t, costStride, 20, 28);
FIELD(PcBuffer, uint8_t*, minA, 24, 32);
FIELD(PcBuffer, uint8_t*, minB, 28, 40);
FIELD(PcBuffer, uint32_t, minSize, 32, 48);
FIELD(PcBuffer, uint32_t, minStride, 36, 52);
FIELD(PcBuffer, uint8_t*, prevCosts, 40, 56);
FIELD(PcBuffer, uint8_t*, curCosts, 44, 64);
FIELD(PcBuffer, uint8_t*, prevMin, 48, 72);
FIELD(PcBuffer, uint8_t*, curMin, 52, 80);
FIELD(PcBuffer, uint32_t, dir, 56, 88);
FIELD(PcBuffer, uint32_t, p1, 60, 92);
FIELD(PcBuffer, uint32_t, fillValue, 64, 96);
SIZE(PcBuffer, 68, 104);

FIELD(SgmParams, uint32_t, numDisparities, 0, 0);
FIELD(SgmParams, uint32_t, uniquenessRatio, 4, 4);
SIZE(SgmParams, 8, 8);

FIELD(SgmDebugData, uint8_t*, costVolume, 0, 0);
FIELD(SgmDebugData, uint32_t, costVolumeSize, 4, 8);
FIELD(SgmDebugData, uint8_t*, p2Left, 8, 16);
FIELD(SgmDebugData, uint8_t*, p2UpLeft, 12, 24);
FIELD(SgmDebugData, uint8_t*, p2Up, 16, 32);
FIELD(SgmDebugData, uint8_t*, p2UpRight, 20, 40);
FIELD(SgmDebugData, uint32_t, p2Size, 24, 48);
FIELD(SgmDebugData, uint8_t*, aggregatedVolume, 28, 56);
FIELD(SgmDebugData, uint32_t, aggregatedVolumeSize, 32, 64);
FIELD(SgmDebugData, uint8_t*, peakMap, 36, 72);
FIELD(SgmDebugData, uint32_t, peakMapSize, 40, 80);
SIZE(SgmDebugData, 44, 88);
