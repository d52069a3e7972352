/* The memory layout of the public records, on 32-bit and on 64-bit processors. Programs are compiled against it, so a
 * change here breaks them. Compiling this file is the test; it is compiled as C and, through records.cpp, as C++. */
#include <nadir/nadir.h>

#include "tests/abi/holds.h"

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

FIELD(ImgAvrgState, uint32_t, invalidValue, 0, 0);
FIELD(ImgAvrgState, uint32_t, minValidPercent, 4, 4);
FIELD(ImgAvrgState, uint32_t, frameCount, 8, 8);
SIZE(ImgAvrgState, 12, 12);

FIELD(ListNode, void*, item, 0, 0);
FIELD(ListNode, ListNode*, prev, 4, 8);
FIELD(ListNode, ListNode*, next, 8, 16);
SIZE(ListNode, 12, 24);

FIELD(List, ListNode*, head, 0, 0);
FIELD(List, ListNode*, tail, 4, 8);
FIELD(List, uint32_t, count, 8, 16);
FIELD(List, uint8_t, isStatic, 12, 20);
FIELD(List, ListNode*, nodePool, 16, 24);
FIELD(List, uint8_t*, itemPool, 20, 32);
FIELD(List, int32_t, maxCount, 24, 40);
SIZE(List, 28, 48);

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

FIELD(Point_s32, int32_t, x, 0, 0);
FIELD(Point_s32, int32_t, y, 4, 4);
SIZE(Point_s32, 8, 8);

FIELD(Point_f32, float, x, 0, 0);
FIELD(Point_f32, float, y, 4, 4);
SIZE(Point_f32, 8, 8);

FIELD(Edge_s32, int32_t, x0, 0, 0);
FIELD(Edge_s32, int32_t, y0, 4, 4);
FIELD(Edge_s32, int32_t, x1, 8, 8);
FIELD(Edge_s32, int32_t, y1, 12, 12);
SIZE(Edge_s32, 16, 16);

FIELD(Edge_f32, float, x0, 0, 0);
FIELD(Edge_f32, float, y0, 4, 4);
FIELD(Edge_f32, float, x1, 8, 8);
FIELD(Edge_f32, float, y1, 12, 12);
SIZE(Edge_f32, 16, 16);

FIELD(Line_s32, int32_t, x, 0, 0);
FIELD(Line_s32, int32_t, y, 4, 4);
FIELD(Line_s32, int32_t, dx, 8, 8);
FIELD(Line_s32, int32_t, dy, 12, 12);
SIZE(Line_s32, 16, 16);

FIELD(Line_f32, float, x, 0, 0);
FIELD(Line_f32, float, y, 4, 4);
FIELD(Line_f32, float, dx, 8, 8);
FIELD(Line_f32, float, dy, 12, 12);
SIZE(Line_f32, 16, 16);

FIELD(Rect_s32, int32_t, x0, 0, 0);
FIELD(Rect_s32, int32_t, y0, 4, 4);
FIELD(Rect_s32, int32_t, x1, 8, 8);
FIELD(Rect_s32, int32_t, y1, 12, 12);
SIZE(Rect_s32, 16, 16);

FIELD(Rect_u32, uint32_t, x0, 0, 0);
FIELD(Rect_u32, uint32_t, y0, 4, 4);
FIELD(Rect_u32, uint32_t, x1, 8, 8);
FIELD(Rect_u32, uint32_t, y1, 12, 12);
SIZE(Rect_u32, 16, 16);

FIELD(Polygon_s32, uint32_t, count, 0, 0);
FIELD(Polygon_s32, Point_s32, vertices[0], 4, 4);
SIZE(Polygon_s32, 4, 4);

FIELD(Polygon_f32, uint32_t, count, 0, 0);
FIELD(Polygon_f32, Point_f32, vertices[0], 4, 4);
SIZE(Polygon_f32, 4, 4);

FIELD(Point3_f32, float, x, 0, 0);
FIELD(Point3_f32, float, y, 4, 4);
FIELD(Point3_f32, float, z, 8, 8);
SIZE(Point3_f32, 12, 12);

FIELD(IntCalibParams, int32_t, baseline, 0, 0);
FIELD(IntCalibParams, int32_t, focalLength, 4, 4);
FIELD(IntCalibParams, int32_t, principalX, 8, 8);
FIELD(IntCalibParams, int32_t, principalY, 12, 12);
SIZE(IntCalibParams, 16, 16);

FIELD(IntCalib, float, baseline, 0, 0);
FIELD(IntCalib, float, focalLength, 4, 4);
FIELD(IntCalib, float, principalX, 8, 8);
FIELD(IntCalib, float, principalY, 12, 12);
SIZE(IntCalib, 16, 16);

FIELD(Orientation, float, height, 0, 0);
FIELD(Orientation, float, tilt, 4, 4);
FIELD(Orientation, float, pan, 8, 8);
SIZE(Orientation, 12, 12);

FIELD(ExtCalib, float, R[0], 0, 0);
FIELD(ExtCalib, float, T[0], 36, 36);
SIZE(ExtCalib, 48, 48);

FIELD(CustomFrameParams, uint32_t, enabled, 0, 0);
FIELD(CustomFrameParams, uint16_t, originX, 4, 4);
FIELD(CustomFrameParams, uint16_t, originY, 6, 6);
FIELD(CustomFrameParams, uint16_t, directionX, 8, 8);
FIELD(CustomFrameParams, uint16_t, directionY, 10, 10);
FIELD(CustomFrameParams, int32_t, offsetX, 12, 12);
FIELD(CustomFrameParams, int32_t, offsetY, 16, 16);
SIZE(CustomFrameParams, 20, 20);

FIELD(ElevMapParams, uint16_t, width, 0, 0);
FIELD(ElevMapParams, uint16_t, height, 2, 2);
FIELD(ElevMapParams, uint16_t, cellSizeX, 4, 4);
FIELD(ElevMapParams, uint16_t, cellSizeY, 6, 6);
SIZE(ElevMapParams, 8, 8);

FIELD(StereoCtx, IntCalib, intCalib, 0, 0);
FIELD(StereoCtx, ExtCalib, extCalib, 16, 16);
FIELD(StereoCtx, Point_f32, lowerLeft, 64, 64);
FIELD(StereoCtx, IntCalibParams, intParams, 72, 72);
FIELD(StereoCtx, Orientation, orientation, 88, 88);
FIELD(StereoCtx, ElevMapParams, mapParams, 100, 100);
SIZE(StereoCtx, 108, 108);

FIELD(Point3_s32, int32_t, x, 0, 0);
FIELD(Point3_s32, int32_t, y, 4, 4);
FIELD(Point3_s32, int32_t, z, 8, 8);
SIZE(Point3_s32, 12, 12);

FIELD(ExtCalibFixed, int32_t, R[0], 0, 0);
FIELD(ExtCalibFixed, int32_t, T[0], 36, 36);
SIZE(ExtCalibFixed, 48, 48);

FIELD(TrafoParams, int32_t, reserved, 0, 0);
FIELD(TrafoParams, IntCalibParams, intParams, 4, 4);
FIELD(TrafoParams, ExtCalibFixed, ext, 20, 20);
SIZE(TrafoParams, 68, 68);

FIELD(Vector, uint32_t, count, 0, 0);
FIELD(Vector, uint32_t, capacity, 4, 4);
FIELD(Vector, uint32_t, elementType, 8, 8);
FIELD(Vector, void*, data, 12, 16);
SIZE(Vector, 16, 24);

FIELD(Position_u16, uint16_t, x, 0, 0);
FIELD(Position_u16, uint16_t, y, 2, 2);
SIZE(Position_u16, 4, 4);

FIELD(ComponentEntry, uint16_t, label, 0, 0);
FIELD(ComponentEntry, Position_u16*, positions, 4, 8);
FIELD(ComponentEntry, uint16_t*, values, 8, 16);
FIELD(ComponentEntry, uint32_t, pixelCount, 12, 24);
FIELD(ComponentEntry, uint16_t*, contour, 16, 32);
FIELD(ComponentEntry, uint32_t, contourCount, 20, 40);
FIELD(ComponentEntry, int32_t, xMin, 24, 44);
FIELD(ComponentEntry, int32_t, yMin, 28, 48);
FIELD(ComponentEntry, int32_t, xEnd, 32, 52);
FIELD(ComponentEntry, int32_t, yEnd, 36, 56);
SIZE(ComponentEntry, 40, 64);

FIELD(ComponentList, uint32_t, count, 0, 0);
FIELD(ComponentList, ComponentEntry, entries[0], 4, 8);
FIELD(ComponentList, Position_u16, positionPool[0], 655364, 1048584);
FIELD(ComponentList, uint16_t, valuePool[0], 917508, 1310728);
FIELD(ComponentList, uint16_t, contourPool[0], 1048580, 1441800);
SIZE(ComponentList, 1179652, 1572872);

FIELD(RgeParams, int32_t, x0, 0, 0);
FIELD(RgeParams, int32_t, y0, 4, 4);
FIELD(RgeParams, int32_t, x1, 8, 8);
FIELD(RgeParams, int32_t, y1, 12, 12);
FIELD(RgeParams, int32_t, maxStep, 16, 16);
FIELD(RgeParams, int32_t, minValue, 20, 20);
SIZE(RgeParams, 24, 24);

FIELD(RegionEntry, uint16_t, label, 0, 0);
FIELD(RegionEntry, uint32_t, pixelCount, 4, 4);
FIELD(RegionEntry, Position_u16*, positions, 8, 8);
FIELD(RegionEntry, uint16_t*, values, 12, 16);
FIELD(RegionEntry, int32_t, xMin, 16, 24);
FIELD(RegionEntry, int32_t, yMin, 20, 28);
FIELD(RegionEntry, int32_t, xEnd, 24, 32);
FIELD(RegionEntry, int32_t, yEnd, 28, 36);
SIZE(RegionEntry, 32, 40);

FIELD(RegionList, uint32_t, count, 0, 0);
FIELD(RegionList, RegionEntry, entries[0], 4, 8);
FIELD(RegionList, Position_u16, positionPool[0], 524292, 655368);
FIELD(RegionList, uint16_t, valuePool[0], 589828, 720904);
SIZE(RegionList, 622596, 753672);

FIELD(Kalman1d, float, x, 0, 0);
FIELD(Kalman1d, float, v, 4, 4);
FIELD(Kalman1d, float, P[0], 8, 8);
FIELD(Kalman1d, float, Q[0], 24, 24);
FIELD(Kalman1d, float, R, 40, 40);
FIELD(Kalman1d, float, sigmaZ, 44, 44);
FIELD(Kalman1d, float, sigmaV, 48, 48);
FIELD(Kalman1d, float, sigmaA, 52, 52);
SIZE(Kalman1d, 56, 56);

typedef double (*Objective)(void*, double);
FIELD(GsFunc, Objective, evaluate, 0, 0);
FIELD(GsFunc, void*, context, 4, 8);
SIZE(GsFunc, 8, 16);

FIELD(GsResult, uint32_t, iterations, 0, 0);
FIELD(GsResult, uint32_t, evaluations, 4, 4);
FIELD(GsResult, double, bestX, 8, 8);
FIELD(GsResult, double, bestF, 16, 16);
SIZE(GsResult, 24, 24);
