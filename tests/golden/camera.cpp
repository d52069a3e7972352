// Results of the camera's functions.
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

struct Mounting {
  IntCalibParams inner;
  Orientation orientation;
  ElevMapParams map;
};

constexpr int rounds = 200;

float angle(lab::Random& random, int32_t reach) {
  return static_cast<float>(random.between(-reach * 8, reach * 8)) / 8.0f;
}

Mounting anyMounting(lab::Random& random) {
  return {{random.between(50, 200) * 256, random.between(300, 900) * 256 + 17, 160 * 16 + 5, 120 * 16 - 3},
          {static_cast<float>(random.between(1500, 4000)), angle(random, 40) - 45, angle(random, 30)},
          {static_cast<uint16_t>(random.between(20, 100)), static_cast<uint16_t>(random.between(20, 100)), 50, 40}};
}

StereoCtx anyContext(lab::Random& random) {
  const Mounting mounting = anyMounting(random);
  StereoCtx ctx;
  ip_stereo_init(&ctx, &mounting.inner, &mounting.orientation, &mounting.map);
  return ctx;
}

Point_f32 anyPixel(lab::Random& random) {
  return {static_cast<float>(random.between(0, 640)) / 2.0f, static_cast<float>(random.between(0, 480)) / 2.0f};
}

Point3_f32 anyWorldPoint(lab::Random& random) {
  const auto any = [&] { return static_cast<float>(random.between(-30000, 30000)) / 7.0f; };
  return {any(), any(), any()};
}

Fingerprint& add(Fingerprint& hash, const Point_f32& p) { return hash.add(p.x).add(p.y); }
Fingerprint& add(Fingerprint& hash, const Point3_f32& p) { return hash.add(p.x).add(p.y).add(p.z); }
Fingerprint& add(Fingerprint& hash, const Point_s32& p) { return hash.add(p.x).add(p.y); }
Fingerprint& add(Fingerprint& hash, const Point3_s32& p) { return hash.add(p.x).add(p.y).add(p.z); }

void add(Fingerprint& hash, const ExtCalib& ext) {
  for (const float value : ext.R) hash.add(value);
  for (const float value : ext.T) hash.add(value);
}

Fingerprint contexts() {
  Fingerprint hash;
  lab::Random random(1);
  for (int i = 0; i < rounds; ++i) {
    const StereoCtx ctx = anyContext(random);
    const IntCalib& inner = ctx.intCalib;
    hash.add(inner.baseline).add(inner.focalLength).add(inner.principalX).add(inner.principalY);
    add(hash, ctx.extCalib);
    add(hash, ctx.lowerLeft);
  }
  return hash;
}

Fingerprint spaceToPicture() {
  Fingerprint hash;
  lab::Random random(2);
  for (int i = 0; i < rounds; ++i) {
    const StereoCtx ctx = anyContext(random);
    const Point3_f32 world = anyWorldPoint(random);
    Point3_f32 cam, back;
    Point_f32 img, projected, cell, overCell;
    hash.done(ip_stereo_world2cam(&ctx, &world, &cam)).done(ip_stereo_cam2world(&ctx, &cam, &back));
    hash.add(ip_stereo_cam2img(&ctx, &cam, &img)).add(ip_stereo_world2img(&ctx, &world, &projected));
    hash.done(ip_stereo_world2elev(&ctx, &world, &cell));
    hash.add(ip_stereo_elev2img(&ctx, &cell, &overCell, world.z));
    add(add(add(add(add(add(hash, cam), back), img), projected), cell), overCell);
  }
  return hash;
}

Fingerprint pictureToSpace() {
  Fingerprint hash;
  lab::Random random(3);
  for (int i = 0; i < rounds; ++i) {
    const StereoCtx ctx = anyContext(random);
    const Point_f32 img = anyPixel(random);
    const float disparity = static_cast<float>(random.between(1, 1000)) / 16.0f;
    Point3_f32 cam, world, matched, ofCell;
    Point_f32 cell;
    hash.done(ip_stereo_img2cam(&ctx, &img, &cam, 1000)).done(ip_stereo_disp2world(&ctx, &img, &matched, disparity));
    hash.done(ip_stereo_img2world(&ctx, &img, &world, ctx.orientation.height));
    hash.done(ip_stereo_img2elev(&ctx, &img, &cell, ctx.orientation.height));
    hash.done(ip_stereo_elev2world(&ctx, &cell, &ofCell, 12));
    add(add(add(add(add(hash, cam), world), matched), cell), ofCell);
  }
  return hash;
}

Fingerprint customFrames() {
  Fingerprint hash;
  lab::Random random(4);
  for (int i = 0; i < rounds; ++i) {
    const Mounting mounting = anyMounting(random);
    const CustomFrameParams frame{1, 100, 120, static_cast<uint16_t>(120 + random.below(100)), 150, 500, -300};
    const Point3_f32 world = anyWorldPoint(random);
    ExtCalib ext;
    Point3_f32 custom;
    hash.done(ip_params2extCalibCustom(&mounting.inner, &mounting.orientation, &frame, &ext));
    hash.done(ip_world2custom(&world, &custom, &ext));
    add(hash, ext);
    add(hash, custom);
  }
  return hash;
}

TrafoParams anyTrafo(lab::Random& random) {
  const Mounting mounting = anyMounting(random);
  TrafoParams trafo;
  ip_createTrafoParams(&mounting.orientation, &mounting.inner, &trafo);
  return trafo;
}

Fingerprint fixedPoint() {
  Fingerprint hash;
  lab::Random random(5);
  for (int i = 0; i < rounds; ++i) {
    const TrafoParams trafo = anyTrafo(random);
    const Point3_s32 world{random.between(-50000, 50000), random.between(-50000, 50000), random.between(0, 60000)};
    const Point_s32 pixel{random.between(0, 5120), random.between(0, 3840)};
    Point3_s32 cam, onPlane, corners[4];
    Point_s32 img;
    ip_world2cam_s32(&cam, &world, &trafo);
    ip_world2img_s32(&img, &world, &trafo);
    ip_img2groundplane_s32(&onPlane, &pixel, 40000, &trafo);
    hash.done(ip_calcMapRect_s32(corners, 80001, 40000, &trafo));
    for (const Point3_s32& corner : corners) add(hash, corner);
    for (const int32_t value : trafo.ext.R) hash.add(value);
    add(add(add(hash, cam), img), onPlane);
  }
  return hash;
}

Fingerprint gridCoordinates() {
  Fingerprint hash;
  lab::Random random(6);
  for (int i = 0; i < rounds; ++i) {
    const int32_t any = random.between(-100000, 100000), origin = random.between(-5000, 5000);
    hash.add(ip_millimeter2CalibCoord_s32(any)).add(ip_calibCoord2Millimeter_s32(any));
    hash.add(ip_gridCoord2Coord_s32(any % 300, origin, random.below(200)));
    hash.add(ip_coord2GridCoord_s32(any, origin, random.below(200)));
  }
  return hash;
}

Fingerprint elevationMasks() {
  Fingerprint hash;
  lab::Random random(7);
  for (int i = 0; i < 20; ++i) {
    const StereoCtx ctx = anyContext(random);
    std::vector<uint32_t> polygon{5};  // a count and five vertices
    for (int k = 0; k < 5; ++k) polygon.insert(polygon.end(), {random.below(320), random.below(240)});
    auto heights = random.values<uint16_t>(320 * 240, 40);
    for (uint16_t& height : heights) height = static_cast<uint16_t>(height ? 1500 + height : 0);
    std::vector<uint8_t> cells(size_t{ctx.mapParams.width} * ctx.mapParams.height, 9);
    ImgC values;
    Img mask;
    ImgC_Init(&values, 320, 240, IMG_TYPE_U16, heights.data());
    Img_Init(&mask, ctx.mapParams.width, ctx.mapParams.height, IMG_TYPE_U8, cells.data());
    const auto* corners = reinterpret_cast<const Polygon_s32*>(polygon.data());
    hash.done(IP_Utils_CreateElevMaskFromImgPoly(corners, &ctx, &values, &mask)).add(cells);
  }
  return hash;
}

}  // namespace

std::vector<Case> cameraCases() {
  return {
      {"Contexts", contexts},
      {"SpaceToPicture", spaceToPicture},
      {"PictureToSpace", pictureToSpace},
      {"CustomFrames", customFrames},
      {"FixedPoint", fixedPoint},
      {"GridCoordinates", gridCoordinates},
      {"ElevationMasks", elevationMasks},
  };
}

}  // namespace nadir::test::golden
