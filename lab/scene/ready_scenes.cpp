// The scenes by name: what stands where, before the seed moves it a little.
#include "lab/scene/ready_scenes.hpp"

#include <algorithm>

#include "lab/scene/hash.hpp"
#include "lab/scene/walk.hpp"

namespace nadir::scene {

namespace {

// Puts objects into a scene. Each goes where the ground is seen at a share of the reference picture's width and height.
class Builder {
 public:
  Builder(const Rig& rig, const std::string& name, uint64_t seed, double seconds)
      : camera_(rig.camera(rig.reference)), draws_(seed), seconds_(seconds) {
    scene_ = {
        name, seed, rig.mountingHeight, 0, {{makeGround(rig.mountingHeight), 0, 1, draws_.bits(), "ground", {}, {}}}};
  }

  Scene take() { return std::move(scene_); }

  // Lengths are given for a camera 3 m above the ground.
  double scaled(double length) const { return length * scene_.groundZ / 3000; }

  // A call may have it at most once among its arguments: another machine evaluates them in another order.
  double jitter(double most) { return draws_.between(-most, most); }

  // The site is where the ground is seen; with a height, where a point that high above the site is seen.
  Site site(double across, double down, double degrees = 0, double height = 0) {
    const Ray ray = camera_.ray(across * (camera_.width - 1), down * (camera_.height - 1));
    // Where the picture shows the sky, the object is put on the ground at a moderate distance.
    const double depth = (scene_.groundZ - height) / std::max(ray.direction.z, 0.3);
    const Vec place = ray.at(depth);
    return {place.x, place.y, scene_.groundZ, degrees};
  }

  Site nearby(double across, double down, double degrees, double height = 0) {
    const double right = jitter(0.02), lower = jitter(0.02), turn = jitter(8);
    return site(across + right, down + lower, degrees + turn, height);
  }

  // The regions are numbered in the order of the objects that open them.
  void nextRegion() { ++region_; }

  void box(const Site& s, const Extent& e) { addExtended(makeBox(s, e), "box", s, e); }
  void step(const Site& s, const Extent& e) { addExtended(makeBox(s, e), "step", s, e); }
  void ramp(const Site& s, const Extent& e) { addExtended(makeRamp(s, e), "ramp", s, e); }

  void ridge(const Site& s, const Extent& e, double crest) {
    addExtended(makeRidge(s, e, crest), "ridge", s, e);
    scene_.objects.back().numbers.emplace_back("crest_mm", crest);
  }

  void dome(const Site& s, double radius, double height, double base = 0) {
    add(makeDome(s, radius, height, base), "dome", s, base + height,
        {{"radius_mm", radius}, {"height_mm", height}, {"base_mm", base}});
  }

  void capsule(const Site& s, double radius, double height) {
    add(makeCapsule(s, radius, height), "capsule", s, height, {{"radius_mm", radius}, {"height_mm", height}});
  }

  // The height is that in mid-step, when a walker is tallest.
  void walker(const Walk& walk, double radius, double height) {
    const Footing now = walk.at(seconds_);
    const double stoop = height - now.dip;
    const Site s{now.x, now.y, scene_.groundZ, 0};
    add(makeCapsule(s, radius, stoop), "walker", s, height, {{"radius_mm", radius}, {"height_mm", stoop}});
    scene_.objects.back().anchor = {now.x, now.y, now.dip};
  }

 private:
  using Numbers = std::vector<std::pair<std::string, double>>;

  void addExtended(const Solid& solid, const char* kind, const Site& s, const Extent& e) {
    add(solid, kind, s, e.height,
        {{"width_mm", e.width}, {"depth_mm", e.depth}, {"height_mm", e.height}, {"yaw_deg", s.degrees}});
    scene_.objects.back().footprint = footprint(s, e);
  }

  void add(const Solid& solid, const char* kind, const Site& s, double top, const Numbers& more) {
    Numbers numbers = {{"x_mm", s.x}, {"y_mm", s.y}};
    numbers.insert(numbers.end(), more.begin(), more.end());
    scene_.objects.push_back({solid, region_, draws_.between(0.7, 1.4), draws_.bits(), kind, numbers, {}});
    scene_.tallest = std::max(scene_.tallest, top);
  }

  Pinhole camera_;
  SceneDraws draws_;
  double seconds_;
  Scene scene_;
  uint32_t region_ = 0;
};

Extent scaled(const Builder& b, double width, double depth, double height) {
  return {b.scaled(width), b.scaled(depth), b.scaled(height)};
}

void boxes(Builder& b) {
  struct Row {
    double across, down, degrees, width, depth, height;
  };
  static constexpr Row rows[] = {{0.25, 0.80, 10, 500, 400, 350},   {0.52, 0.62, -20, 450, 450, 900},
                                 {0.80, 0.75, 35, 380, 600, 200},   {0.22, 0.42, 0, 900, 350, 600},
                                 {0.75, 0.38, -10, 700, 500, 1200}, {0.50, 0.90, 5, 300, 200, 100}};
  for (const Row& r : rows) {
    b.nextRegion();
    b.box(b.nearby(r.across, r.down, r.degrees), scaled(b, r.width, r.depth, r.height));
  }
}

void people(Builder& b) {
  struct Row {
    double across, down, radius, height;
  };
  static constexpr Row rows[] = {{0.32, 0.76, 230, 1780}, {0.52, 0.92, 220, 1660}, {0.68, 0.72, 240, 1850},
                                 {0.55, 0.62, 160, 1150}, {0.34, 0.50, 230, 1720}, {0.66, 0.50, 220, 1700}};
  for (const Row& r : rows) {
    b.nextRegion();
    const Site foot = b.nearby(r.across, r.down, 0);
    b.capsule(foot, r.radius, r.height + b.jitter(40));
  }
}

// Beside each other, behind each other and on the slant, 500 mm from middle to middle.
void couples(Builder& b) {
  struct Row {
    double across, down, aside, behind;
  };
  static constexpr Row rows[] = {{0.34, 0.52, 500, 0}, {0.66, 0.44, 0, 500}, {0.46, 0.74, 400, -300}};
  for (const Row& r : rows) {
    const Site first = b.nearby(r.across, r.down, 0);
    const Site second{first.x + r.aside, first.y + r.behind, first.groundZ, 0};
    b.nextRegion();
    b.capsule(first, 220, 1680 + b.jitter(60));
    b.nextRegion();
    b.capsule(second, 230, 1760 + b.jitter(60));
  }
}

// Their heads stay in the picture: the corners of their paths are given where the picture shows them.
void walkers(Builder& b) {
  struct Row {
    double radius, height, speed;
    std::vector<std::pair<double, double>> corners;
  };
  static const Row rows[] = {{230, 1780, 900, {{0.22, 0.30}, {0.26, 0.70}}},
                             {220, 1660, 800, {{0.70, 0.25}, {0.88, 0.32}, {0.78, 0.70}}},
                             {160, 1150, 700, {{0.25, 0.12}, {0.75, 0.16}}}};
  for (const Row& r : rows) {
    b.nextRegion();
    Walk walk{{}, r.speed + b.jitter(60), 600, 35, 0};
    for (const auto& [across, down] : r.corners) walk.corners.push_back(b.nearby(across, down, 0, r.height));
    walk.begun = 500 + b.jitter(500);
    b.walker(walk, r.radius, r.height + b.jitter(40));
  }
}

// The treads share their far edge; each is a little less deep than the one below it.
void steps(Builder& b) {
  const Site back = b.nearby(0.36, 0.30, 0);
  for (int tread = 0; tread < 4; ++tread) {
    b.nextRegion();
    const double height = 170 * (tread + 1), depth = 320 * (4 - tread) + 280;
    b.step({back.x, back.y + b.scaled(depth / 2), back.groundZ, 0}, scaled(b, 1600, depth, height));
  }
  b.nextRegion();
  b.step(b.nearby(0.80, 0.65, 0), scaled(b, 900, 1400, 120));
}

void slope(Builder& b) {
  b.nextRegion();
  b.ramp(b.site(0.50, 0.32, 180 + b.jitter(3)), scaled(b, 3200, 2600, 450));
  b.nextRegion();
  b.box(b.nearby(0.60, 0.30, 15), scaled(b, 400, 400, 750));
  b.nextRegion();
  b.ramp(b.nearby(0.22, 0.80, 90), scaled(b, 600, 900, 300));
  b.nextRegion();
  b.dome(b.nearby(0.74, 0.80, 0), b.scaled(380), b.scaled(260));
}

// A row is one region: a ridge of earth with plants on it.
void cropRow(Builder& b, double x) {
  const Site middle = b.site(0.5, 0.5);
  const Extent extent = scaled(b, 380, 6000, 120);
  b.nextRegion();
  b.ridge({middle.x + x, middle.y, middle.groundZ, 0}, extent, b.scaled(240));
  for (double y = -2700; y <= 2700; y += 300) {
    const Site plant{middle.x + x + b.scaled(b.jitter(20)), middle.y + b.scaled(y + b.jitter(40)), middle.groundZ, 0};
    const double radius = 95 + b.jitter(15), height = 75 + b.jitter(15);
    b.dome(plant, b.scaled(radius), b.scaled(height), extent.height);
  }
}

void cropRows(Builder& b) {
  for (int row = -3; row <= 3; ++row) cropRow(b, b.scaled(650.0 * row));
}

void emptyFloor(Builder&) {}

struct SceneRecipe {
  ReadyScene scene;
  void (*build)(Builder&);
};

constexpr SceneRecipe recipes[] = {
    {{"boxes", "six boxes of different heights, turned this way and that"}, boxes},
    {{"people", "six upright capsules of the size of people"}, people},
    {{"couples", "three couples who stand 500 mm apart"}, couples},
    {{"walkers", "two adults and a child who walk to and fro"}, walkers},
    {{"steps", "a flight of four steps and a low kerb"}, steps},
    {{"slope", "a wide ramp with a box on it, a small ramp, a dome"}, slope},
    {{"crop-rows", "seven ridges of earth with a row of plants on each"}, cropRows},
    {{"empty-floor", "nothing but the ground"}, emptyFloor},
};

}  // namespace

const std::vector<ReadyScene>& readyScenes() {
  static const std::vector<ReadyScene> all = [] {
    std::vector<ReadyScene> scenes;
    for (const SceneRecipe& recipe : recipes) scenes.push_back(recipe.scene);
    return scenes;
  }();
  return all;
}

Scene makeScene(const std::string& name, const Rig& rig, uint64_t seed, double seconds) {
  Builder builder(rig, name, seed, seconds);
  for (const SceneRecipe& recipe : recipes)
    if (name == recipe.scene.name) recipe.build(builder);
  return builder.take();
}

}  // namespace nadir::scene
