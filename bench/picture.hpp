// An Img with memory of its own.
#pragma once

#include <nadir/image.h>

#include <memory>
#include <vector>

namespace nadir::bench {

template <class T>
struct Picture {
  std::vector<T> pixels;
  Img img;

  Picture(uint32_t width, uint32_t height, uint32_t type, std::vector<T> values) : pixels(std::move(values)) {
    Img_Init(&img, width, height, type, pixels.data());
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
};

template <class T>
std::shared_ptr<Picture<T>> makePicture(uint32_t width, uint32_t height, uint32_t type, std::vector<T> values) {
  return std::make_shared<Picture<T>>(width, height, type, std::move(values));
}

}  // namespace nadir::bench
