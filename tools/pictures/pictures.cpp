// Files of pictures are decoded, checked and made what the caller works on.
#include "tools/pictures/pictures.hpp"

#include <cmath>
#include <cstdlib>

#include "tools/base/error.hpp"
#include "tools/base/known_values.hpp"
#include "tools/base/text.hpp"
#include "tools/files/files.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/formats.hpp"

namespace nadir::tool {

namespace {

constexpr float lowestHeight = 1;  // mm: what nadir ground stores for the bare ground, because 0 means unseen

Raster readRaster(const std::string& path) {
  const Bytes bytes = readFile(path);
  try {
    return decodedPicture(bytes);
  } catch (const Error& reason) {
    throw UnusableFile("cannot use " + path + ": " + reason.what());
  }
}

uint32_t luminance(const uint16_t* rgb, uint32_t factor) {
  return ((299u * rgb[0] + 587u * rgb[1] + 114u * rgb[2]) * factor + 500) / 1000;
}

double ownNumber(const Raster& raster, const char* name, double fallback) {
  const auto found = raster.text.find(name);
  return found == raster.text.end() ? fallback : std::strtod(found->second.c_str(), nullptr);
}

double ownScale(const Raster& raster, const std::string& path, double fallback) {
  const double scale = ownNumber(raster, chunks::scale, fallback);
  if (scale >= 1e-6 && scale <= 1e6) return scale;
  throw Error(path + " holds a text \"" + chunks::scale + "\" that is not a positive number up to 1e6");
}

Raster readMeasurements(const std::string& path, const char* what) {
  Raster raster = readRaster(path);
  if (raster.channels != 1 || raster.bits != 16) throw Error(path + " is not a 16-bit grey picture of " + what);
  return raster;
}

MapPlace placeIn(const Raster& raster) {
  const double unknown = std::nan("");
  return {ownNumber(raster, chunks::cell, unknown), ownNumber(raster, chunks::left, unknown),
          ownNumber(raster, chunks::top, unknown)};
}

// For a picture of one channel.
Grid<uint16_t> gridOf(Raster raster) {
  Grid<uint16_t> grid;
  grid.width = raster.width;
  grid.height = raster.height;
  grid.pixels = std::move(raster.samples);
  return grid;
}

// Every value times `factor`, but not less than `least`.
Grid<uint16_t> scaledGrid(Raster raster, uint32_t factor, uint32_t least) {
  Grid<uint16_t> grid = gridOf(std::move(raster));
  for (uint16_t& value : grid.pixels) value = static_cast<uint16_t>(std::max(value * factor, least));
  return grid;
}

// What 0 becomes: of 8 bits it is a measurement, unless the picture says of itself that it stands for none.
uint32_t blackOf(const Raster& raster) { return raster.bits == 8 && raster.text.count(chunks::noValue) == 0 ? 1 : 0; }

// Samples of 8 bits times `factor`.
Grid<uint16_t> greyGrid(Raster raster, uint32_t factorOf8Bits) {
  if (raster.channels == 1 && raster.bits == 16) return gridOf(std::move(raster));
  const uint32_t factor = raster.bits == 8 ? factorOf8Bits : 1;
  const uint32_t black = blackOf(raster);
  if (raster.channels == 1) return scaledGrid(std::move(raster), factor, black);
  Grid<uint16_t> picture(raster.width, raster.height);
  const uint16_t* in = raster.samples.data();
  for (uint16_t& out : picture.pixels) {
    out = static_cast<uint16_t>(std::max(luminance(in, factor), black));
    in += raster.channels;
  }
  return picture;
}

}  // namespace

Grid<uint16_t> readIntensity(const std::string& path) { return greyGrid(readRaster(path), 16); }

GreyPicture readGrey(const std::string& path) {
  Raster raster = readRaster(path);
  const uint32_t bits = raster.bits;
  return {greyGrid(std::move(raster), 1), bits};
}

Grid<uint8_t> readMask(const std::string& path) {
  const Raster raster = readRaster(path);
  if (raster.channels != 1 || raster.bits != 8) throw Error("the mask " + path + " is not an 8-bit grey picture");
  Grid<uint8_t> mask(raster.width, raster.height);
  std::copy(raster.samples.begin(), raster.samples.end(), mask.pixels.begin());
  return mask;
}

Grid<float> readDisparity(const std::string& path, double scale, double fallback) {
  Raster raster = readMeasurements(path, "disparities");
  const double divisor = scale > 0 ? scale : ownScale(raster, path, fallback);
  return unpacked(gridOf(std::move(raster)), divisor);
}

std::optional<View> gridOfDisparity(const std::string& path) {
  const Raster raster = readRaster(path);
  const auto grid = raster.text.find(chunks::grid);
  for (const View view : {View::left, View::right})
    if (grid != raster.text.end() && grid->second == nameOf(view)) return view;
  return {};
}

Warnings gridWarnings(const std::string& path, View taken, const std::string& teller) {
  const View own = gridOfDisparity(path).value_or(taken);
  if (own == taken) return {};
  return {{"grid-contradicts",
           format("%s says of itself (%s) that its pixels are those of the %s picture, but they are taken for the %s "
                  "one's (%s)",
                  path.c_str(), chunks::grid, nameOf(own), nameOf(taken), teller.c_str()),
           {}}};
}

PictureKind pictureKind(const std::string& path) {
  const Raster raster = readRaster(path);
  if (raster.channels != 1) return PictureKind::colours;
  if (raster.bits != 16) return PictureKind::intensities;
  const auto found = raster.text.find(chunks::units);
  const std::string units = found == raster.text.end() ? "" : found->second;
  if (units == elevationUnits) return PictureKind::elevationMap;
  if (units == regionUnits) return PictureKind::regionMap;
  if (units.find(elevationUnits) != std::string::npos) return PictureKind::heights;  // stored finer
  return raster.text.count(chunks::scale) ? PictureKind::disparities : PictureKind::intensities;
}

Grid<uint16_t> readElevation(const std::string& path) { return gridOf(readMeasurements(path, "heights")); }

HeightPicture readHeights(const std::string& path) {
  const Raster raster = readMeasurements(path, "heights");
  const double none = ownNumber(raster, chunks::noValue, 0);
  const auto scale = static_cast<float>(ownScale(raster, path, 1));
  HeightPicture picture{{raster.width, raster.height, std::nanf("")}, placeIn(raster)};
  for (size_t i = 0; i < raster.samples.size(); ++i)
    if (raster.samples[i] != none) picture.heights.pixels[i] = std::max(raster.samples[i] / scale, lowestHeight);
  return picture;
}

LabelPicture readLabels(const std::string& path) {
  Raster raster = readMeasurements(path, "regions");
  const MapPlace place = placeIn(raster);
  return {gridOf(std::move(raster)), place};
}

}  // namespace nadir::tool
