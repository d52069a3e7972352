// The map's cells are projected into the picture.
#include "ground/trust/map_view.hpp"

#include <cmath>

namespace nadir::ground {

namespace {

// Nearer than this the ground's disparity is not found. The same limit ends the places that a map is offered at.
constexpr double leastDisparity = 2;

// A share of the map is known to a hundredth with fewer than all cells; the same number along x and y.
constexpr uint32_t samples = 32;

// Places that are tried for a better map, along each side of the picture.
constexpr uint32_t places = 12;

struct Viewer {
  const StereoCtx& context;
  double columnShift, largestDisparity;
  uint32_t width, height;

  bool shows(const Point3_f32& world) const {
    Point_f32 p;
    if (!ip_stereo_world2img(&context, &world, &p)) return false;
    return p.x >= -0.5f && p.y >= -0.5f && p.x < static_cast<float>(width) - 0.5f &&
           p.y < static_cast<float>(height) - 0.5f;
  }

  // False where the column shift leaves no disparity above 0, and for a camera that looks above the horizon, which
  // nothing comes nearer to by rising.
  bool measuresTops() const { return largestDisparity + columnShift > 0 && context.extCalib.R[8] > 0; }

  // Column 2 of R is the optical axis: a depth is the product with it. A point may rise until its depth is that of the
  // largest disparity.
  double topAt(const Point3_f32& ground) const {
    const float* r = context.extCalib.R;
    const double nearest =
        double{context.intCalib.focalLength} * context.intCalib.baseline / (largestDisparity + columnShift);
    const double depth = double{r[2]} * ground.x + double{r[5]} * ground.y + double{r[8]} * ground.z;
    const double top = (depth - nearest) / r[8];
    return top < context.orientation.height ? top : context.orientation.height;
  }
};

// The sample's place, in cells, of `cells`.
float sampleAt(uint32_t i, uint16_t cells) {
  return (static_cast<float>(i) + 0.5f) * static_cast<float>(cells) / static_cast<float>(samples);
}

// Calls use(ground point) for samples of a map that is moved by so many mm.
template <class Use>
void forEachSample(const StereoCtx& context, float moveX, float moveY, Use use) {
  for (uint32_t y = 0; y < samples; ++y)
    for (uint32_t x = 0; x < samples; ++x) {
      const Point_f32 cell = {sampleAt(x, context.mapParams.width), sampleAt(y, context.mapParams.height)};
      Point3_f32 ground;
      ip_stereo_elev2world(&context, &cell, &ground, context.orientation.height);
      ground.x += moveX;
      ground.y += moveY;
      use(ground);
    }
}

double shareOf(uint32_t seen) { return static_cast<double>(seen) / (samples * samples); }

uint32_t seenSamples(const Viewer& viewer, float moveX, float moveY) {
  uint32_t seen = 0;
  forEachSample(viewer.context, moveX, moveY, [&](const Point3_f32& ground) { seen += viewer.shows(ground); });
  return seen;
}

// Where the ground shows in the picture, near enough to be measured.
bool groundUnder(const Viewer& viewer, float x, float y, Point3_f32& ground) {
  const Point_f32 pixel = {x, y};
  const StereoCtx& c = viewer.context;
  ip_stereo_img2world(&c, &pixel, &ground, c.orientation.height);
  const float* r = c.extCalib.R;
  const double depth = double{r[2]} * ground.x + double{r[5]} * ground.y + double{r[8]} * ground.z;
  return depth > 0 &&
         double{c.intCalib.focalLength} * c.intCalib.baseline >= (leastDisparity + viewer.columnShift) * depth;
}

// What is offered shows at least so much of what the best place shows. Far away a small map is seen whole by every
// camera that looks ahead, and of no use there.
constexpr double nearlyMost = 0.9;

struct Place {
  float moveX, moveY;
  double distance;  // of the map's middle from the camera, along the ground, squared
};

// Calls use(place) for maps whose middle is put on the ground at places all over the picture.
template <class Use>
void forEachPlace(const Viewer& viewer, Use use) {
  const StereoCtx& c = viewer.context;
  const float middleX = c.lowerLeft.x + 0.5f * static_cast<float>(c.mapParams.width) * c.mapParams.cellSizeX;
  const float middleY = c.lowerLeft.y + 0.5f * static_cast<float>(c.mapParams.height) * c.mapParams.cellSizeY;
  for (uint32_t j = 0; j < places; ++j)
    for (uint32_t i = 0; i < places; ++i) {
      const float x = (static_cast<float>(i) + 0.5f) * static_cast<float>(viewer.width) / static_cast<float>(places);
      const float y = (static_cast<float>(j) + 0.5f) * static_cast<float>(viewer.height) / static_cast<float>(places);
      Point3_f32 ground;
      if (!groundUnder(viewer, x, y, ground)) continue;
      use(Place{ground.x - middleX, ground.y - middleY, double{ground.x} * ground.x + double{ground.y} * ground.y});
    }
}

void findBetterPlace(const Viewer& viewer, MapView& view) {
  uint32_t seen[places * places], most = 0, index = 0;
  forEachPlace(viewer, [&](const Place& place) {
    const uint32_t here = seenSamples(viewer, place.moveX, place.moveY);
    seen[index++] = here;
    most = here > most ? here : most;
  });
  double nearest = INFINITY;
  index = 0;
  forEachPlace(viewer, [&](const Place& place) {
    const uint32_t here = seen[index++];
    if (here < nearlyMost * most || !(place.distance < nearest)) return;
    nearest = place.distance;
    view.bestSeen = shareOf(here);
    view.offsetX = std::floor(double{place.moveX} + 0.5);
    view.offsetY = std::floor(double{place.moveY} + 0.5);
  });
}

// What is seen of the map where it lies, and how high it is measured there.
MapView topsOf(const Viewer& viewer) {
  MapView view{0, NAN, NAN, 0, 0, 0};
  uint32_t seen = 0;
  forEachSample(viewer.context, 0, 0, [&](const Point3_f32& ground) {
    if (!viewer.shows(ground)) return;
    ++seen;
    if (!viewer.measuresTops()) return;
    const double top = viewer.topAt(ground);
    if (!(view.leastTop <= top)) view.leastTop = top;  // nothing is less than or equal to not-a-number
    if (!(view.mostTop >= top)) view.mostTop = top;
  });
  view.seen = shareOf(seen);
  return view;
}

}  // namespace

double leastTop(const StereoCtx& context, double columnShift, double largestDisparity, uint32_t width,
                uint32_t height) {
  return topsOf({context, columnShift, largestDisparity, width, height}).leastTop;
}

MapView mapView(const StereoCtx& context, double columnShift, double largestDisparity, uint32_t width,
                uint32_t height) {
  const Viewer viewer{context, columnShift, largestDisparity, width, height};
  MapView view = topsOf(viewer);
  findBetterPlace(viewer, view);
  return view;
}

}  // namespace nadir::ground
