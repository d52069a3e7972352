// This states what the row kernels of the road do, and declares the table that holds one instruction set's.
//
// Kernels check nothing. Each reads and writes exactly what is stated here, for any n including 0, at any alignment of
// the elements' own. Every level gives the same bits.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

// Pixels of a caller's picture, whose rows may begin at any address, even an odd one for 16 bits: strides are bytes.
// Writes n pixels as the matcher takes them. 8-bit pixels are multiplied by 16, and their 0, which is black, becomes 1:
// in 16 bits 0 means that there is no data. Source and destination must not overlap.
using PictureRow = void (*)(const void* src, uint16_t* dst, size_t n);
using MaskRow = void (*)(const uint8_t* src, uint8_t* dst, size_t n);
using CodeRow = void (*)(const uint32_t* src, uint32_t* dst, size_t n);

// A row of blocks of 2 x 2 pixels, whose rows are top and bottom, 2 * n pixels each: half becomes the mean of those
// with data (not 0), halves rounded up, and 0 without any.
using HalveRow = void (*)(const uint16_t* top, const uint16_t* bottom, uint16_t* half, size_t n);

// ---- opinions on disparities, 1/16 pixel each, 0 for none ----

// Two opinions on a pixel agree if they differ by no more than this.
constexpr uint16_t agreement = 24;

// own becomes the mean of own and other, halves to the even neighbour, where both are known and agree, and 0 elsewhere.
using AgreeRow = void (*)(const uint16_t* other, uint16_t* own, size_t n);

// Neighbours whose disparities differ by no more than this lie on one surface.
constexpr uint16_t closeness = 12;

// A pixel's neighbourhood reaches so far in all directions.
constexpr int nearby = 3, nearbySide = 2 * nearby + 1;

// For each pixel of a row, how many pixels of its stretch of nearbySide columns are known and close to it, itself
// included, and the sum of what they say more than it does, modulo 2^16. Both are 0 for a pixel that is not known.
//
// row  n + 2 * nearby disparities, of which the first and the last `nearby` are neighbours only.
using CloseRow = void (*)(const uint16_t* row, size_t n, uint16_t* more, uint16_t* count);

// Rows around one of n pixels, nearbySide of each: the row itself stands in the middle.
struct NearRows {
  const uint16_t* disparity[nearbySide];
  const uint16_t* more[nearbySide];   // CloseRow's of each row
  const uint16_t* count[nearbySide];  // likewise
};

// The mean of all pixels that are close to those in a pixel's column which are close to it, halves to the even
// neighbour; 0 where the pixel is not known or these are fewer than `least`.
using MeanRow = void (*)(const NearRows& rows, size_t n, uint16_t least, uint16_t* mean);

// Rows of opinions that two passes agree on, around one of n pixels: nearbySide of them, each with n + 2 * nearby, of
// which the first and the last `nearby` are neighbours only. 0 where they agree on none.
struct AgreedRows {
  const uint16_t* row[nearbySide];
};

// own becomes what is agreed on. Where that is nothing, it becomes own or other, whichever more of the 7 x 7 agreed
// ones around it are close to, as long as these are at least `least`; 0 where they are fewer, or as many for either.
//
// least  more than 0
using SupportRow = void (*)(const AgreedRows& agreed, const uint16_t* other, size_t n, uint16_t least, uint16_t* own);

// ---- pictures compared again ----

// What both pictures show of one thing where disparities are known, n pixels of a row each.
struct ComparedRow {
  float* known;       // 1, or 0 where that cannot be told: the others are then 0 too
  float* slope;       // the reference's pixel on the right minus the one on the left
  float* difference;  // the first picture, at the place that the disparity names, minus the reference, times 16
};

// The pictures' row between two pixels of the first one is a straight line. It can be told where the pixels that it
// takes, two of the first picture and three of the reference, lie inside and have data (not 0).
using CompareRow = void (*)(const uint16_t* first, const uint16_t* reference, const uint16_t* disparity, size_t n,
                            const ComparedRow& compared);

// The neighbourhood that decides on a pixel has so many rows, and reaches so far to both sides.
constexpr int comparedRows = 3, comparedBeside = 2;

// Rows of n + 2 * comparedBeside pixels around one of n, of which the first and the last `comparedBeside` are
// neighbours only: the row itself stands in the middle.
struct ComparedRows {
  const float *known[comparedRows], *slope[comparedRows], *difference[comparedRows];
};

// Where fewer can be told, none of both directions is sure.
constexpr float leastCompared = 4;

// A quarter of a pixel, in sixteenths: matchers are off by no more on surfaces, and rims pull by more.
constexpr float furthestMove = 4;

// Slopes of 40 levels of 12 bits, 20 from pixel to pixel, count as much as none at all: noise has slopes too.
constexpr float calmSlope = 1600;

// Each disparity that is not 0 moves by the Gauss-Newton step that makes the differences around it least: by twice the
// covariance of slopes and differences over the variance of slopes and calmSlope together, to the other side. Means are
// taken off, so that one picture may be brighter. Sums go down the columns first, then from left to right. The step is
// bounded, rounded to whole sixteenths, halves to the even one, and ends at 1 at least.
//
// disparity  at most 65531
using MoveRow = void (*)(const ComparedRows& rows, size_t n, uint16_t* disparity);

// ---- places on the map ----

// Disparities in pixels, the shift added; 0 where there is none: where `stored`, in 1/16 pixel, is 0, or `given`, in
// pixels, is not a number.
using PixelsOfStored = void (*)(const uint16_t* stored, float shift, float* disparity, size_t n);
using PixelsOfGiven = void (*)(const float* given, float shift, float* disparity, size_t n);

// How disparities become places on the map.
struct Placing {
  const float* rayX;                  // (column - principal x) / focal length, of each of the row's pixels
  float focalTimesBaseline;           // pixels * mm
  float rotation[9], translation[3];  // ExtCalib's
  float left, top;                    // world x and y of the map's corner, mm
  float cellX, cellY;                 // sides of a cell, mm
  uint32_t mapWidth, mapHeight;       // each 1 to 65535, and fewer than 2^32 - 1 cells in all
  float groundZ;                      // world z of the ground, mm
};

constexpr uint32_t noCell = UINT32_MAX;

// What ip_disp2world does with the least of disparities: there is no point up to here.
constexpr float leastDisparity = 1.1920929e-7f;

// Where n points of a row lie: cells receives the cell, row * mapWidth + column, that each lies over, or noCell where
// there is no point or it lies beside the map. heights receives the heights above the ground, rounded to whole mm from
// 1 to 65535; where there is no cell, they mean nothing, but are the same at every level.
//
// The bits are those of ip_stereo_disp2world and ip_world2elev, point by point.
//
// disparity  pixels; not a number and infinity have their ways through the arithmetic like all others.
// rayY       (row - principal y) / focal length.
using PlaceRow = void (*)(const float* disparity, size_t n, float rayY, const Placing& placing, uint32_t* cells,
                          uint16_t* heights);

// The value at place `rank`, counted from 0, of the values in their order. The values stay where they are.
//
// count  1 to 2^25
// rank   less than count
using RankedValue = uint16_t (*)(const uint16_t* values, size_t count, size_t rank);

// ---- pictures of lenses ----

// A source is told in parts of a pixel, this many to each; the part that is none stands for "outside of the picture".
constexpr uint32_t sourceParts = 64;
constexpr uint8_t beyondPicture = 255;

// Where pixels come from. corner has the row of the upper left one of four pixels in its upper 16 bits and the column
// in its lower ones; across and down say how far the source lies towards the right and the lower ones, 0 to
// sourceParts. Where a pixel comes from nowhere, across is beyondPicture and the corner 0.
struct Sources {
  const uint32_t* corner;
  const uint8_t *across, *down;
};

// Rectifies n pixels of 8 or 16 bits, as nadir_rectifier_process states. Rows may begin at any address; all four pixels
// of each corner are read, whether they have a weight or not.
using RectifyRow = void (*)(const void* picture, size_t stride, const Sources& sources, void* rectified, size_t n);

struct RoadKernels {
  PictureRow take16, take8;
  PictureRow mirror16, mirror8;  // the same, the last pixel first
  MaskRow mirrorMask;            // bytes, the last first
  CodeRow mirrorCodes;           // census codes, the last first
  HalveRow halve;
  AgreeRow agree;
  SupportRow support;
  CloseRow close;
  MeanRow mean;
  CompareRow compare;
  MoveRow move;
  PixelsOfStored pixelsOf;
  PixelsOfGiven pixelsGiven;
  PlaceRow place;
  RankedValue ranked;
  RectifyRow rectify16, rectify8;
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const RoadKernels& roadKernels(unsigned cpu);

// Those of the level at which libnadir runs.
const RoadKernels& roadKernels();

extern const RoadKernels roadScalar, roadSse41, roadAvx2, roadAvx512;

}  // namespace nadir::ground
