// The stages of the camera.
#include <cmath>

#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

StereoCtx contextOf(const Material& m) {
  StereoCtx context;
  ip_stereo_init(&context, &m.calibration, &m.orientation, &m.map);
  return context;
}

Fingerprint& add(Fingerprint& print, const Point3_f32& p) { return print.add(p.x).add(p.y).add(p.z); }
Fingerprint& add(Fingerprint& print, const Point_f32& p) { return print.add(p.x).add(p.y); }
Fingerprint& add(Fingerprint& print, const Point3_s32& p) { return print.add(p.x).add(p.y).add(p.z); }
Fingerprint& add(Fingerprint& print, const ExtCalib& c) { return print.add(c.R, 9).add(c.T, 3); }

template <class Use>
void forEachSeen(const Material& m, Use use) {
  for (uint32_t y = 0; y < m.disparity.height; ++y)
    for (uint32_t x = 0; x < m.disparity.width; ++x)
      if (m.disparity.at(x, y) != 0)
        use(Point_f32{static_cast<float>(x), static_cast<float>(y)},
            static_cast<float>(m.disparity.at(x, y)) / SGM_DISP_SCALE);
}

Fingerprint calibration(const Material& m) {
  const StereoCtx context = contextOf(m);
  const CustomFrameParams frame{1, 60, 100, 140, 90, 250, -100};
  ExtCalib custom;
  Fingerprint print;
  print.done(ip_params2extCalibCustom(&m.calibration, &m.orientation, &frame, &custom));
  print.add(context.intCalib.baseline).add(context.intCalib.focalLength).add(context.intCalib.principalX);
  add(add(print, context.extCalib), custom);
  return add(print, context.lowerLeft);
}

// There and back again, without a context.
Fingerprint transforms(const Material& m) {
  IntCalib inner;
  ExtCalib outer;
  Fingerprint print;
  ip_params2internalCalib(&m.calibration, &inner);
  print.done(ip_orientation2externalCalib(&m.orientation, &outer));
  forEachSeen(m, [&](const Point_f32& pixel, float disparity) {
    Point3_f32 camera{}, world{}, again{}, ray{}, ground{};
    Point_f32 image{}, seen{};
    print.add(ip_disp2cam(&pixel, &camera, &inner, disparity)).add(ip_cam2world(&camera, &world, &outer));
    print.add(ip_world2cam(&world, &again, &outer)).add(ip_cam2img(&again, &image, &inner));
    print.add(ip_img2cam(&pixel, &ray, &inner, 1000)).add(ip_img2world(&pixel, &ground, &outer, &inner, 2900));
    print.add(ip_world2img(&ground, &seen, &outer, &inner));
    for (const Point3_f32* p : {&camera, &world, &again, &ray, &ground}) add(print, *p);
    add(add(print, image), seen);
    print.add(ip_disp2world(&pixel, &world, &outer, &inner, disparity));
    add(print, world);
  });
  return print;
}

// The road from disparities to the map's cells and back to the picture.
Fingerprint worldPoints(const Material& m) {
  const StereoCtx context = contextOf(m);
  Fingerprint print;
  forEachSeen(m, [&](const Point_f32& pixel, float disparity) {
    Point3_f32 world{}, camera{};
    Point_f32 cell{}, image{};
    print.done(ip_stereo_disp2world(&context, &pixel, &world, disparity));
    print.add(ip_stereo_world2cam(&context, &world, &camera)).add(ip_stereo_world2elev(&context, &world, &cell));
    print.add(ip_stereo_elev2img(&context, &cell, &image, world.z));
    add(add(add(add(print, world), camera), cell), image);
  });
  return print;
}

Fingerprint groundPoints(const Material& m) {
  const StereoCtx context = contextOf(m);
  Fingerprint print;
  forEachSeen(m, [&](const Point_f32& pixel, float) {
    Point3_f32 world{};
    Point_f32 cell{};
    print.add(ip_stereo_img2world(&context, &pixel, &world, 3000));
    print.add(ip_stereo_img2elev(&context, &pixel, &cell, 2500));
    add(add(print, world), cell);
  });
  return print;
}

Fingerprint elevationMap(const Material& m) {
  const StereoCtx context = contextOf(m);
  Grid<uint16_t> map(m.map.width, m.map.height);
  forEachSeen(m, [&](const Point_f32& pixel, float disparity) {
    Point3_f32 world{};
    Point_f32 cell{};
    ip_stereo_disp2world(&context, &pixel, &world, disparity);
    ip_stereo_world2elev(&context, &world, &cell);
    if (!(cell.x >= 0 && cell.y >= 0 && cell.x < m.map.width && cell.y < m.map.height)) return;
    uint16_t& highest = map.at(static_cast<uint32_t>(cell.x), static_cast<uint32_t>(cell.y));
    highest = std::max(highest, static_cast<uint16_t>(std::max(1.0f, std::floor(3000.5f - world.z))));
  });
  return Fingerprint().add(map);
}

Fingerprint mapPlaces(const Material& m) {
  const StereoCtx context = contextOf(m);
  Point_f32 corner{};
  Fingerprint print;
  ip_calcMapRectLowerLeft(&context.extCalib, &context.intCalib, &m.map, &corner, 2800);
  add(print, corner);
  for (int i = 0; i < 200; ++i) {
    const Point_f32 place{static_cast<float>(17 * i - 1500), static_cast<float>(29 * i - 4000)};
    Point_f32 cell{}, again{};
    print.done(ip_world2elev(&place, &cell, &m.map, &corner)).done(ip_elev2world(&cell, &again, &m.map, &corner));
    add(add(print, cell), again);
  }
  return print;
}

Fingerprint fixedCalibration(const Material& m) {
  ExtCalibFixed fixed;
  TrafoParams trafo;
  ExtCalib outer;
  IntCalib inner;
  Fingerprint print;
  print.done(ip_orientation2trafo(&m.orientation, &fixed)).add(fixed.R, 9).add(fixed.T, 3);
  print.done(ip_createTrafoParams(&m.orientation, &m.calibration, &trafo));
  print.done(ip_trafoParams2calib(&trafo, &outer, &inner)).add(inner.baseline).add(inner.focalLength);
  add(print, outer);
  for (int i = 0; i < 100; ++i) {
    const Point_f32 pixel{static_cast<float>(2 * i), static_cast<float>(150 - i)};
    Point3_f32 world{};
    print.add(ip_img2world_f32(&world, &pixel, &trafo, 2700));
    add(print, world);
  }
  return print;
}

Fingerprint fixedPoint(const Material& m) {
  TrafoParams trafo;
  Point3_s32 corners[4];
  Fingerprint print;
  print.done(ip_createTrafoParams(&m.orientation, &m.calibration, &trafo));
  print.add(trafo.ext.R, 9).add(trafo.ext.T, 3);
  print.done(ip_calcMapRect_s32(corners, 2000 * 16, 3000 * 16, &trafo));
  for (const Point3_s32& corner : corners) add(print, corner);
  for (int32_t y = 0; y < 150; y += 7)
    for (int32_t x = 0; x < 200; x += 7) {
      const Point_s32 pixel{x * 16, y * 16};
      Point3_s32 world{}, camera{};
      Point_s32 image{};
      ip_img2groundplane_s32(&world, &pixel, 2000 * 16, &trafo);
      ip_world2cam_s32(&camera, &world, &trafo);
      ip_world2img_s32(&image, &world, &trafo);
      add(add(print, world), camera).add(image.x).add(image.y);
      print.add(ip_coord2GridCoord_s32(world.x, -1000 * 16, 800));
    }
  return print;
}

Fingerprint elevationMask(const Material& m) {
  const StereoCtx context = contextOf(m);
  const int32_t words[] = {5, 30, 40, 170, 30, 150, 130, 100, 90, 20, 140};
  const auto* polygon = reinterpret_cast<const Polygon_s32*>(words);
  ImgC depth;
  ImgC_Init(&depth, m.groundDepth.width, m.groundDepth.height, IMG_TYPE_U16, m.groundDepth.pixels.data());
  Picture<uint8_t> mask(m.map.width, m.map.height);
  Fingerprint print;
  return print.done(IP_Utils_CreateElevMaskFromImgPoly(polygon, &context, &depth, &mask.image)).add(mask.grid);
}

}  // namespace

Stages cameraStages() {
  return {{"calibration", calibration},
          {"transforms", transforms},
          {"world points", worldPoints},
          {"ground points", groundPoints},
          {"elevation map", elevationMap},
          {"map places", mapPlaces},
          {"fixed calibration", fixedCalibration},
          {"fixed point", fixedPoint},
          {"elevation mask", elevationMask}};
}

}  // namespace nadir::verify
