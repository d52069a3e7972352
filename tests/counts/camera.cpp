// Calls of camera.h.
#include <nadir/camera.h>

#include <vector>

#include "lab/random.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

constexpr IntCalibParams innerParams{100 * 256, 600 * 256, 160 * 16, 120 * 16};
constexpr Orientation orientation{2500, -40, 10};
constexpr ElevMapParams mapParams{80, 60, 50, 40};
constexpr CustomFrameParams customFrame{1, 100, 120, 170, 150, 500, -300};
constexpr Point3_f32 worldPoint{300, -1000, 2400};
constexpr Point_f32 seenPixel{150, 110};

void callCalibration() {
  IntCalib inner;
  ExtCalib outer, custom;
  Point_f32 corner;
  ip_params2internalCalib(&innerParams, &inner);
  done(ip_orientation2externalCalib(&orientation, &outer));
  done(ip_params2extCalibCustom(&innerParams, &orientation, &customFrame, &custom));
  ip_calcMapRectLowerLeft(&outer, &inner, &mapParams, &corner, 0);
  Point3_f32 cam, out;
  Point_f32 img, cell;
  done(ip_world2cam(&worldPoint, &cam, &outer));
  done(ip_cam2world(&cam, &out, &outer));
  done(ip_world2custom(&worldPoint, &out, &custom));
  done(ip_cam2img(&cam, &img, &inner));
  done(ip_img2cam(&seenPixel, &out, &inner, 1000));
  done(ip_img2world(&seenPixel, &out, &outer, &inner, 2400));
  done(ip_world2img(&worldPoint, &img, &outer, &inner));
  done(ip_disp2cam(&seenPixel, &out, &inner, 20));
  done(ip_disp2world(&seenPixel, &out, &outer, &inner, 20));
  done(ip_world2elev(&seenPixel, &cell, &mapParams, &corner));
  done(ip_elev2world(&cell, &img, &mapParams, &corner));
}

void callContext() {
  StereoCtx ctx;
  done(ip_stereo_init(&ctx, &innerParams, &orientation, &mapParams));
  Point3_f32 cam, out;
  Point_f32 img, cell;
  done(ip_stereo_world2cam(&ctx, &worldPoint, &cam));
  done(ip_stereo_cam2world(&ctx, &cam, &out));
  done(ip_stereo_cam2img(&ctx, &cam, &img));
  done(ip_stereo_world2img(&ctx, &worldPoint, &img));
  done(ip_stereo_img2cam(&ctx, &seenPixel, &out, 1000));
  done(ip_stereo_img2world(&ctx, &seenPixel, &out, 2400));
  done(ip_stereo_disp2world(&ctx, &seenPixel, &out, 20));
  done(ip_stereo_world2elev(&ctx, &worldPoint, &cell));
  done(ip_stereo_elev2world(&ctx, &cell, &out, 2400));
  done(ip_stereo_img2elev(&ctx, &seenPixel, &cell, 2400));
  done(ip_stereo_elev2img(&ctx, &cell, &img, 50));
}

void callElevationMask() {
  StereoCtx ctx;
  done(ip_stereo_init(&ctx, &innerParams, &orientation, &mapParams));
  const uint32_t polygon[] = {5, 40, 30, 280, 40, 300, 200, 150, 230, 20, 180};  // a count and five vertices
  auto heights = lab::Random(1).values<uint16_t>(320 * 240, 40);
  for (uint16_t& height : heights) height = static_cast<uint16_t>(1500 + height);
  std::vector<uint8_t> cells(size_t{mapParams.width} * mapParams.height);
  const ImgC values{320, 240, 2, IMG_TYPE_U16, heights.data()};
  Img mask{mapParams.width, mapParams.height, 1, IMG_TYPE_U8, cells.data()};
  done(IP_Utils_CreateElevMaskFromImgPoly(reinterpret_cast<const Polygon_s32*>(polygon), &ctx, &values, &mask));
}

void callFixedPoint() {
  TrafoParams trafo;
  ExtCalibFixed fixed;
  ExtCalib outer;
  IntCalib inner;
  done(ip_orientation2trafo(&orientation, &fixed));
  done(ip_createTrafoParams(&orientation, &innerParams, &trafo));
  done(ip_trafoParams2calib(&trafo, &outer, &inner));
  const Point3_s32 world{20000, 30000, 10000};
  const Point_s32 pixel{2400, 1700};
  Point3_s32 cam, onPlane, corners[4];
  Point3_f32 out;
  Point_s32 img;
  ip_world2cam_s32(&cam, &world, &trafo);
  ip_world2img_s32(&img, &world, &trafo);
  ip_img2groundplane_s32(&onPlane, &pixel, 40000, &trafo);
  done(ip_img2world_f32(&out, &seenPixel, &trafo, 2400));
  done(ip_calcMapRect_s32(corners, 80001, 40000, &trafo));
  ip_millimeter2CalibCoord_s32(12345);
  ip_calibCoord2Millimeter_s32(12345);
  ip_gridCoord2Coord_s32(77, -500, 50);
  ip_coord2GridCoord_s32(12345, -500, 50);
}

}  // namespace

void callCamera() {
  callCalibration();
  callContext();
  callElevationMask();
  callFixedPoint();
}

}  // namespace nadir::test::counts
