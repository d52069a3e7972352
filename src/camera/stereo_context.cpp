// A stereo context keeps a camera and a map together; its functions call those for single records.
#include <nadir/camera.h>

uint32_t ip_stereo_init(StereoCtx* ctx, const IntCalibParams* params, const Orientation* orientation,
                        const ElevMapParams* map) {
  ctx->intParams = *params;
  ctx->orientation = *orientation;
  ctx->mapParams = *map;
  ip_params2internalCalib(params, &ctx->intCalib);
  ip_orientation2externalCalib(orientation, &ctx->extCalib);
  ip_calcMapRectLowerLeft(&ctx->extCalib, &ctx->intCalib, map, &ctx->lowerLeft, orientation->height);
  return 1;
}

void ip_calcMapRectLowerLeft(const ExtCalib* ext, const IntCalib* calib, const ElevMapParams* map, Point_f32* lowerLeft,
                             float h) {
  const Point_f32 principal = {calib->principalX, calib->principalY};
  Point3_f32 centre;
  ip_img2world(&principal, &centre, ext, calib, h);
  const float half = static_cast<float>((map->width >> 1) * map->cellSizeX);
  *lowerLeft = {centre.x - half, centre.y - half};
}

uint32_t ip_world2elev(const Point_f32* world, Point_f32* map, const ElevMapParams* params,
                       const Point_f32* lowerLeft) {
  *map = {(world->x - lowerLeft->x) / static_cast<float>(params->cellSizeX),
          (world->y - lowerLeft->y) / static_cast<float>(params->cellSizeY)};
  return 1;
}

uint32_t ip_elev2world(const Point_f32* map, Point_f32* world, const ElevMapParams* params,
                       const Point_f32* lowerLeft) {
  *world = {lowerLeft->x + static_cast<float>(params->cellSizeX) * map->x,
            lowerLeft->y + static_cast<float>(params->cellSizeY) * map->y};
  return 1;
}

uint32_t ip_stereo_world2cam(const StereoCtx* ctx, const Point3_f32* world, Point3_f32* cam) {
  return ip_world2cam(world, cam, &ctx->extCalib);
}

uint32_t ip_stereo_cam2world(const StereoCtx* ctx, const Point3_f32* cam, Point3_f32* world) {
  return ip_cam2world(cam, world, &ctx->extCalib);
}

uint32_t ip_stereo_cam2img(const StereoCtx* ctx, const Point3_f32* cam, Point_f32* img) {
  return ip_cam2img(cam, img, &ctx->intCalib);
}

uint32_t ip_stereo_world2img(const StereoCtx* ctx, const Point3_f32* world, Point_f32* img) {
  return ip_world2img(world, img, &ctx->extCalib, &ctx->intCalib);
}

uint32_t ip_stereo_img2cam(const StereoCtx* ctx, const Point_f32* img, Point3_f32* cam, float z) {
  return ip_img2cam(img, cam, &ctx->intCalib, z);
}

uint32_t ip_stereo_img2world(const StereoCtx* ctx, const Point_f32* img, Point3_f32* world, float h) {
  return ip_img2world(img, world, &ctx->extCalib, &ctx->intCalib, h);
}

uint32_t ip_stereo_disp2world(const StereoCtx* ctx, const Point_f32* img, Point3_f32* world, float disparity) {
  return ip_disp2world(img, world, &ctx->extCalib, &ctx->intCalib, disparity);
}

uint32_t ip_stereo_world2elev(const StereoCtx* ctx, const Point3_f32* world, Point_f32* map) {
  const Point_f32 ground = {world->x, world->y};
  return ip_world2elev(&ground, map, &ctx->mapParams, &ctx->lowerLeft);
}

uint32_t ip_stereo_elev2world(const StereoCtx* ctx, const Point_f32* map, Point3_f32* world, float z) {
  Point_f32 ground;
  ip_elev2world(map, &ground, &ctx->mapParams, &ctx->lowerLeft);
  *world = {ground.x, ground.y, z};
  return 1;
}

uint32_t ip_stereo_img2elev(const StereoCtx* ctx, const Point_f32* img, Point_f32* map, float h) {
  Point3_f32 world;
  ip_stereo_img2world(ctx, img, &world, h);
  return ip_stereo_world2elev(ctx, &world, map);
}

uint32_t ip_stereo_elev2img(const StereoCtx* ctx, const Point_f32* map, Point_f32* img, float z) {
  Point3_f32 world;
  ip_stereo_elev2world(ctx, map, &world, z);
  return ip_stereo_world2img(ctx, &world, img);
}
