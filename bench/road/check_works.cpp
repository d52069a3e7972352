// Works of check.h: a pair that is as it should be.
#include <memory>

#include "bench/work.hpp"
#include "lab/checker.hpp"

namespace nadir::bench {

void addCheckWorks(Works& works, const lab::TexturedPair& pair) {
  const auto checker = std::make_shared<lab::Checker>(pair.width, pair.height);
  const auto pictures = std::make_shared<lab::TexturedPair>(pair);
  const uint64_t pixels = pair.first.size();
  works.push_back({"nadir_checker_process", pixels, 4 * pixels, [=] {
                     const size_t stride = 2 * size_t{pictures->width};
                     const NadirPlane left{pictures->first.data(), stride, pictures->width, pictures->height};
                     const NadirPlane right{pictures->reference.data(), stride, pictures->width, pictures->height};
                     checker->checkup({sizeof(NadirPair), 16, NADIR_RANGE_61, 0, left, right});
                   }});
  works.push_back({"nadir_checker_create and destroy", pixels, 4 * pixels,
                   [pair] { const lab::Checker made(pair.width, pair.height); }});
}

}  // namespace nadir::bench
