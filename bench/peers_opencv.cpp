// OpenCV on one thread. Its matchers take 8-bit pictures and have other costs, paths and checks than ours, so that
// these are comparisons of speed at the same task, not of the same computation.
#include <nadir/imgproc.h>

#include <algorithm>
#include <memory>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/contents.hpp"
#include "bench/matching.hpp"
#include "bench/peers.hpp"
#include "bench/picture.hpp"
#include "bench/road/road_frame.hpp"
#include "bench/segment_calls.hpp"
#include "bench/star.hpp"
#include "geometry/polygon_cells.hpp"
#include "lab/rectifier.hpp"

namespace nadir::bench {
namespace {

cv::Mat picture16(const lab::TexturedPair& pair, const std::vector<uint16_t>& pixels) {
  return cv::Mat(static_cast<int>(pair.height), static_cast<int>(pair.width), CV_16U,
                 const_cast<uint16_t*>(pixels.data()))
      .clone();
}

cv::Mat picture8(const lab::TexturedPair& pair, const std::vector<uint16_t>& pixels) {
  cv::Mat out;
  picture16(pair, pixels).convertTo(out, CV_8U, 1.0 / 16);
  return out;
}

using Matchings = std::shared_ptr<Matching>;

Peer matcher(const std::string& name, cv::Ptr<cv::StereoMatcher> theirs, const std::string& ourName,
             const Matchings& matching, const Call& ours) {
  const lab::TexturedPair& pair = matching->pair;
  const cv::Mat left = picture8(pair, pair.first), right = picture8(pair, pair.reference);
  return {name, ourName, ours, [=] {
            cv::Mat disparity;
            theirs->compute(left, right, disparity);
          }};
}

// Theirs runs without its speckle filter, while our whole frame runs with ours.
cv::Ptr<cv::StereoMatcher> semiGlobal(int mode) {
  constexpr int block = 5, p1 = 8 * block * block, p2 = 32 * block * block;
  return cv::StereoSGBM::create(0, Matching::disparities, block, p1, p2, 1, 0, 10, 0, 0, mode);
}

// Takes a disparity of 1 to (x, y, focal length, 1 / baseline).
cv::Matx44d reprojection(const IntCalib& c) {
  return cv::Matx44d(1, 0, 0, -c.principalX, 0, 1, 0, -c.principalY, 0, 0, 0, c.focalLength, 0, 0, 1.0 / c.baseline, 0);
}

// The highest point over each cell, row 2 of R being the way down.
void keepHighest(const cv::Mat& points, const StereoCtx& context, std::vector<float>& map) {
  const float *r = context.extCalib.R, *t = context.extCalib.T;
  const ElevMapParams& m = context.mapParams;
  std::fill(map.begin(), map.end(), 0.0f);
  for (int y = 0; y < points.rows; ++y) {
    const auto* row = points.ptr<cv::Vec3f>(y);
    for (int x = 0; x < points.cols; ++x) {
      const float px = row[x][0] - t[0], py = row[x][1] - t[1], pz = row[x][2] - t[2];
      const float column = (r[0] * px + r[1] * py + r[2] * pz - context.lowerLeft.x) / m.cellSizeX;
      const float line = (r[3] * px + r[4] * py + r[5] * pz - context.lowerLeft.y) / m.cellSizeY;
      if (!(row[x][2] > 0 && column >= 0 && line >= 0 && column < m.width && line < m.height)) continue;
      float& cell = map[static_cast<size_t>(line) * m.width + static_cast<size_t>(column)];
      cell = std::max(cell, context.orientation.height - (r[6] * px + r[7] * py + r[8] * pz));
    }
  }
}

// Theirs ends at the map: no trust, regions or areas.
Peer wholeRoad(const lab::TexturedPair& pair, const cv::Ptr<cv::StereoMatcher>& theirs) {
  const auto road = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_ALL, 90);
  const StereoCtx& context = road->context;
  const cv::Mat left = picture8(pair, pair.first), right = picture8(pair, pair.reference);
  const auto map = std::make_shared<std::vector<float>>(size_t{context.mapParams.width} * context.mapParams.height);
  return {"StereoSGBM MODE_SGBM_3WAY, reprojectImageTo3D, highest point per cell", "nadir_road_process",
          [=] { road->road.findings(road->matched()); },
          [=] {
            cv::Mat disparity, pixels, points;
            theirs->compute(left, right, disparity);
            disparity.convertTo(pixels, CV_32F, 1.0 / 16);
            cv::reprojectImageTo3D(pixels, points, reprojection(road->context.intCalib));
            keepHighest(points, road->context, *map);
          }};
}

Peer filter(const lab::TexturedPair& pair, const char* theirName, void (*theirs)(const cv::Mat&, cv::Mat&),
            const char* ourName, void (*ours)(const Img*, Img*)) {
  const auto src = makePicture(pair.width, pair.height, pair.reference);
  const auto dst = makePicture(pair.width, pair.height, pair.reference);
  const cv::Mat picture = picture16(pair, pair.reference);
  return {theirName, ourName, [=] { ours(&src->image, &dst->image); },
          [=, out = picture.clone()]() mutable { theirs(picture, out); }};
}

Peer median(const lab::TexturedPair& pair) {
  return filter(
      pair, "medianBlur 3x3, 16 bits", [](const cv::Mat& src, cv::Mat& dst) { cv::medianBlur(src, dst, 3); },
      "IP_Median3x3", [](const Img* src, Img* dst) { IP_Median3x3(src, dst); });
}

// The kernel that OpenCV takes for 5 x 5 pixels without a width of its own is ours: 1 4 6 4 1.
Peer gauss(const lab::TexturedPair& pair) {
  return filter(
      pair, "GaussianBlur 5x5, 16 bits",
      [](const cv::Mat& src, cv::Mat& dst) { cv::GaussianBlur(src, dst, cv::Size(5, 5), 0, 0, cv::BORDER_REPLICATE); },
      "IP_Gauss", [](const Img* src, Img* dst) { IP_Gauss(src, dst, 0); });
}

// Theirs takes the maximum as it is; ours knows pixels without data.
Peer dilate(const lab::TexturedPair& pair) {
  return filter(
      pair, "dilate 3x3, 16 bits",
      [](const cv::Mat& src, cv::Mat& dst) {
        cv::dilate(src, dst, cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3)));
      },
      "IP_Morph3x3 dilate", [](const Img* src, Img* dst) { IP_Morph3x3(src, dst, MORPH_DILATE); });
}

// Theirs takes a map in fixed point, as ours is: 32 places to a pixel, where ours has 64. The pictures are the same but
// for rounding and for borders.
template <class Pixel>
Peer remap(const lab::TexturedPair& pair, const std::string& bits) {
  const auto size = cv::Size(static_cast<int>(pair.width), static_cast<int>(pair.height));
  const auto rectifier = std::make_shared<lab::Rectifier>(lab::lensOf(lab::lensKinds()[2], pair.width, pair.height),
                                                          lab::turnedView(pair.width, pair.height));
  cv::Mat_<float> x(size), y(size);
  for (int v = 0; v < size.height; ++v)
    for (int u = 0; u < size.width; ++u) {
      double fromX = -9, fromY = -9;
      nadir_rectifier_source(rectifier->get(), static_cast<uint32_t>(u), static_cast<uint32_t>(v), &fromX, &fromY);
      x(v, u) = static_cast<float>(fromX);
      y(v, u) = static_cast<float>(fromY);
    }
  cv::Mat places, parts;
  cv::convertMaps(x, y, places, parts, CV_16SC2);
  const std::vector<Pixel> pixels(pair.first.begin(), pair.first.end());
  const cv::Mat src = cv::Mat(size, cv::DataType<Pixel>::type, const_cast<Pixel*>(pixels.data())).clone();
  const auto ours = std::make_shared<cv::Mat>(src.size(), src.type());
  const auto theirs = std::make_shared<cv::Mat>(src.size(), src.type());
  return {"remap INTER_LINEAR, " + bits, "nadir_rectifier_process, " + bits,
          [=] {
            lab::demand(nadir_rectifier_process(rectifier->get(), 8 * sizeof(Pixel), src.data, src.step, ours->data,
                                                ours->step));
          },
          [=] { cv::remap(src, *theirs, places, parts, cv::INTER_LINEAR, cv::BORDER_CONSTANT); }};
}

// Theirs is asked for every cell.
Peer cellsInPolygon() {
  constexpr int32_t side = 1000, cell = 20;
  const auto star = std::make_shared<Star>(12, side * cell);
  std::vector<cv::Point2f> corners;
  for (uint32_t k = 0; k < star->record()->count; ++k)
    corners.emplace_back(static_cast<float>(star->record()->vertices[k].x),
                         static_cast<float>(star->record()->vertices[k].y));
  const auto cells = std::make_shared<std::vector<uint8_t>>(side * side);
  const CellGrid grid = {cell / 2, cell / 2, side, side, cell, cell};
  return {"pointPolygonTest per cell, 12 corners", "elevation mask",
          [=] { markCellsInside(*star->record(), grid, cells->data()); },
          [=] {
            for (int32_t y = 0; y < side; ++y) {
              for (int32_t x = 0; x < side; ++x) {
                const cv::Point2f centre(static_cast<float>(x * cell + cell / 2),
                                         static_cast<float>(y * cell + cell / 2));
                (*cells)[static_cast<size_t>(y * side + x)] = cv::pointPolygonTest(corners, centre, false) >= 0;
              }
            }
          }};
}

// Ours labels and counts; or it lists the pixels of every component besides.
Peer components(const std::string& ours, Call (*prepare)(const Picture16&), const Content& content, uint32_t side) {
  const Picture16 src = makePicture(side, side, content.draw(side));
  const cv::Mat foreground = cv::Mat(src->image.height, src->image.width, CV_16U, src->grid.pixels.data()) > 0;
  return {"connectedComponentsWithStats, " + content.name, ours, prepare(src), [=] {
            cv::Mat labels, stats, centroids;
            cv::connectedComponentsWithStats(foreground, labels, stats, centroids, 8, CV_32S);
          }};
}

}  // namespace

std::vector<Peer> componentPeers(uint32_t side) {
  cv::setNumThreads(1);
  std::vector<Peer> found;
  for (const Content& content : contents()) {
    if (side <= 128) found.push_back(components("IP_CompFind_Process", labelling, content, side));
    found.push_back(components("IP_CompFinder_Process", componentsFound, content, side));
  }
  return found;
}

std::vector<Peer> peers(const lab::TexturedPair& pair) {
  cv::setNumThreads(1);
  const auto matching = std::make_shared<Matching>(pair);
  const Call match = [=] { matching->match(nullptr); }, wholeFrame = [=] { matching->wholeFrame(); };
  const auto threeWay = semiGlobal(cv::StereoSGBM::MODE_SGBM_3WAY), fourPaths = semiGlobal(cv::StereoSGBM::MODE_HH4);
  const auto blocks = cv::StereoBM::create(Matching::disparities, 15);
  return {matcher("StereoSGBM MODE_SGBM_3WAY, 64 disparities", threeWay, "IP_SgmFull", matching, match),
          matcher("StereoSGBM MODE_HH4, 64 disparities", fourPaths, "IP_SgmFull", matching, match),
          matcher("StereoBM, 64 disparities, blocks of 15", blocks, "IP_SgmFull", matching, match),
          matcher("StereoSGBM MODE_SGBM_3WAY, 64 disparities", threeWay, "whole frame", matching, wholeFrame),
          wholeRoad(pair, threeWay),
          median(pair),
          gauss(pair),
          dilate(pair),
          remap<uint8_t>(pair, "8 bits"),
          remap<uint16_t>(pair, "16 bits")};
}

std::vector<Peer> polygonPeers() { return {cellsInPolygon()}; }

}  // namespace nadir::bench
