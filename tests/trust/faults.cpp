// Each fault is made from a good pair by arithmetic on its pixels or on its camera's numbers.
#include "tests/trust/faults.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lab/scene/ready_scenes.hpp"

namespace nadir::ground::test {

namespace {

using lab::Grid;

template <class Change>
Pair changed(Pair pair, Change change) {
  for (Grid<uint16_t>* picture : {&pair.left, &pair.right})
    for (uint16_t& pixel : picture->pixels) pixel = static_cast<uint16_t>(change(pixel));
  return pair;
}

template <class Change>
Pair leftChanged(const Pair& pair, Change change) {
  return {changed(pair, change).left, pair.right};
}

int overexposed(int pixel) { return std::min(4080, 4 * pixel); }
int underexposed(int pixel) { return (pixel + 8) / 16; }
int underexposedIn8Bits(int pixel) { return std::max(1, pixel / 256 * 16); }
int eightBits(int pixel) { return pixel / 16 * 16; }
int faint(int pixel) { return 2000 + (pixel - 2000) / 64; }

// Every pixel becomes the mean of its row's neighbours, then of its column's: twice, which is close to a lens out of
// focus.
Grid<uint16_t> outOfFocus(Grid<uint16_t> picture, int reach) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  for (int pass = 0; pass < 4; ++pass) {
    const Grid<uint16_t> before = picture;
    const int dx = pass % 2 == 0, dy = 1 - dx;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        int sum = 0;
        for (int k = -reach; k <= reach; ++k)
          sum += before.at(static_cast<uint32_t>(std::clamp(x + k * dx, 0, width - 1)),
                           static_cast<uint32_t>(std::clamp(y + k * dy, 0, height - 1)));
        picture.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) = static_cast<uint16_t>(sum / (2 * reach + 1));
      }
  }
  return picture;
}

Rendered renderedOf(const scene::Scene& what, const scene::Rig& rig, const scene::CameraSettings& s, double height) {
  CameraNumbers camera{s.baseline, s.focal, (s.width - 1) / 2.0, (s.height - 1) / 2.0, height, s.tilt, s.pan};
  return {{picture(what, rig, scene::Side::left, {}, [] {}), picture(what, rig, scene::Side::right, {}, [] {})},
          camera};
}

void addBox(scene::Scene& what, double x, double y, double width, double depth, double height) {
  scene::Object box;
  box.solid = scene::makeBox({x, y, what.groundZ, 0}, {width, depth, height});
  box.pattern = what.seed * 101 + what.objects.size();
  what.objects.push_back(box);
}

scene::CameraSettings settingsOf(uint32_t width, uint32_t height) {
  scene::CameraSettings s;
  s.width = width;
  s.height = height;
  s.focal *= width / 640.0;
  return s;
}

}  // namespace

std::vector<Fault> spoiltPictures(const Rendered& good) {
  const Pair& p = good.pair;
  const auto flat = [](int) { return 2000; };
  const auto black = [](int) { return 0; };
  std::vector<Fault> faults;
  const auto add = [&](const char* name, const char* warning, Pair pair) {
    faults.push_back({name, warning, std::move(pair), good.camera});
  };
  add("swapped", "left-and-right-swapped", {p.right, p.left});
  add("left twice", "same-picture-twice", {p.left, p.left});
  add("right twice", "same-picture-twice", {p.right, p.right});
  add("left twice, noise", "same-picture-twice", noisy({p.left, p.left}, 20, 1));
  add("left twice, 8 bits", "same-picture-twice", {p.left, changed(p, eightBits).left});
  add("overexposed", "pictures-overexposed", changed(p, overexposed));
  add("left overexposed", "pictures-overexposed", leftChanged(p, overexposed));
  add("underexposed", "pictures-too-dark", changed(p, underexposed));
  add("underexposed, 8 bits", "pictures-too-dark", changed(p, underexposedIn8Bits));
  add("left underexposed", "pictures-too-dark", leftChanged(p, underexposed));
  add("lens cap", "pictures-too-dark", changed(p, black));
  add("lens cap, noise", "pictures-too-dark", noisy(changed(p, black), 10, 1));
  add("left lens cap", "pictures-too-dark", leftChanged(p, black));
  add("blank wall", "low-density", changed(p, flat));
  add("blank wall, noise", "low-density", noisy(changed(p, flat), 5, 1));
  add("faint texture, noise", "low-density", noisy(changed(p, faint), 20, 1));
  add("out of focus, noise", "low-density", noisy({outOfFocus(p.left, 20), outOfFocus(p.right, 20)}, 20, 1));
  return faults;
}

std::vector<Fault> spoiltCameras(const Rendered& good, bool smallPans) {
  std::vector<Fault> faults;
  const auto add = [&](const std::string& name, const char* warning, const CameraNumbers& camera) {
    faults.push_back({name, warning, good.pair, camera});
  };
  const auto ground = [&](const std::string& name, double height, double tilt, double pan) {
    CameraNumbers camera = good.camera;
    camera.height *= height;
    camera.tilt += tilt;
    camera.pan += pan;
    if (std::abs(camera.tilt) >= 90) return;  // no camera is mounted like that, and no road made for it
    add(name, "ground-elsewhere", camera);
  };
  for (const int degrees : {-20, -10, -5, 5, 10, 20, 45}) ground("tilt " + std::to_string(degrees), 1, degrees, 0);
  for (const int degrees : {-20, 10, 20, 45}) ground("pan " + std::to_string(degrees), 1, 0, degrees);
  if (smallPans)
    for (const int degrees : {-5, 5}) ground("pan " + std::to_string(degrees), 1, 0, degrees);
  for (const int percent : {60, 80, 90, 110, 120, 140})
    ground("height " + std::to_string(percent) + " %", percent / 100.0, 0, 0);
  ground("sign of the tilt", 1, -2 * good.camera.tilt, 0);
  const auto map = [&](const std::string& name, double x, double y) {
    CameraNumbers camera = good.camera;
    camera.offsetX += x;
    camera.offsetY += y;
    add(name, "map-elsewhere", camera);
  };
  map("map to the left", -8000, 0);
  map("map to the right", 6000, 0);
  map("map behind", 0, 8000);
  return faults;
}

// Four boxes around the hole are the floor.
Rendered pit(uint32_t width, uint32_t height, double depth, double side, uint64_t seed) {
  scene::CameraSettings s = settingsOf(width, height);
  s.mountingHeight += depth;
  const scene::Rig rig = scene::makeRig(s);
  scene::Scene what = scene::makeScene("empty-floor", rig, seed);
  constexpr double x = 0, y = -1732,
                   far = 20000;  // where the optical axis meets the floor; beyond what the picture shows
  const double aside = (side + far) / 2;
  addBox(what, x - aside, y, far, 2 * far, depth);
  addBox(what, x + aside, y, far, 2 * far, depth);
  addBox(what, x, y - aside, side, far, depth);
  addBox(what, x, y + aside, side, far, depth);
  return renderedOf(what, rig, s, s.mountingHeight - depth);
}

Rendered nearBox(uint32_t width, uint32_t height, double top, double side, uint64_t seed) {
  scene::CameraSettings s = settingsOf(width, height);
  s.tilt = 0;
  const scene::Rig rig = scene::makeRig(s);
  scene::Scene what = scene::makeScene("empty-floor", rig, seed);
  addBox(what, 100, 0, side, side, top);
  return renderedOf(what, rig, s, s.mountingHeight);
}

}  // namespace nadir::ground::test
