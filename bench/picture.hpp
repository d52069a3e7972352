// A picture that several works share.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "lab/image.hpp"

namespace nadir::bench {

template <class T>
std::shared_ptr<lab::Picture<T>> makePicture(uint32_t width, uint32_t height, std::vector<T> pixels) {
  return std::make_shared<lab::Picture<T>>(width, height, std::move(pixels));
}

}  // namespace nadir::bench
