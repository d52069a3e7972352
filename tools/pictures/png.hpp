// PNG in memory.
#pragma once

#include "lab/grid.hpp"
#include "tools/files/files.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

using lab::Grid;

struct Rgb {
  uint8_t r, g, b;
};

bool isPng(const Bytes& bytes);

// Palettes become colours, fewer than 8 bits become 8, transparency is dropped. Throws Error with the reason alone, for
// a sentence that names the file.
Raster decodePng(const Bytes& bytes);

Bytes encodePng(const Grid<uint8_t>& picture, const TextChunks& text);
Bytes encodePng(const Grid<uint16_t>& picture, const TextChunks& text);
Bytes encodePng(const Grid<Rgb>& picture, const TextChunks& text);

}  // namespace nadir::tool
