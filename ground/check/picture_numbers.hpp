// What a picture says of itself, without the other one: light, noise, texture and blur.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ground/records/arena.hpp"

namespace nadir::ground {

constexpr uint32_t levels = 65536;     // of 16 bits
constexpr uint32_t squareSide = 16;    // pixels
constexpr uint32_t quantileCount = 9;  // a tenth of the pixels, two tenths, ...

// Mean squares over a square of pixels.
struct Square {
  float noise;      // variance of the noise, if there were nothing but noise
  float gradient;   // half the difference of a pixel's neighbours, in its row and in its column
  float curvature;  // twice the pixel less its neighbours, likewise
  float relief;     // variance
};

struct NumberMemory {
  uint32_t* histogram;  // levels
  Square* squares;      // as many as the picture holds
  float* sorted;        // likewise
};

NumberMemory numberMemory(Arena& arena, uint32_t width, uint32_t height);

// Not-a-number where there is nothing to measure.
struct PictureNumbers {
  double mean;           // intensity of the pixels with data
  double dark, clipped;  // shares of all pixels
  double noise, texture, blur;
  uint32_t quantiles[quantileCount];  // the intensities that so many of the pixels with data do not exceed
  uint32_t clipLevel;                 // from here on pixels are clipped; beyond all levels where none are
};

PictureNumbers pictureNumbers(const NumberMemory& memory, const uint16_t* picture, uint32_t width, uint32_t height);

// How many times as bright as the first picture the second one is: the median over the quantiles of both, without those
// that are clipped. 1 where all are.
double gainBetween(const PictureNumbers& first, const PictureNumbers& second);

}  // namespace nadir::ground
