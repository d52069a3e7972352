// The stages of numbers, lists and vectors.
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

// Nine small numbers from the left picture.
std::vector<float> matrixAt(const Material& m, size_t i) {
  std::vector<float> matrix;
  for (size_t k = 0; k < 9; ++k) matrix.push_back(static_cast<float>(m.left.pixels[9 * i + k] - 2048) / 512);
  return matrix;
}

Fingerprint matrices(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < 200; ++i) {
    const std::vector<float> a = matrixAt(m, i), b = matrixAt(m, i + 1);
    std::vector<float> product(9), turned(9), moved(3), sum(3), difference(3), values(2), vectors(4);
    const float symmetric[] = {a[0], a[1], a[1], a[2]};
    mmMul(a.data(), b.data(), product.data());
    mTrans(product.data(), turned.data());
    mvMul(turned.data(), b.data(), moved.data());
    vvAdd(moved.data(), a.data(), sum.data());
    vvSub(moved.data(), b.data(), difference.data());
    print.done(IP_Alg_Eigen_2x2(symmetric, values.data(), vectors.data()));
    for (const auto* of : {&product, &turned, &moved, &sum, &difference, &values, &vectors}) print.add(*of);
  }
  float covariance[4] = {};
  print.done(IP_Alg_Covar_2x2(m.left.pixels.data(), 1000, covariance));
  return print.add(covariance, 4);
}

Fingerprint medianOfMany(const Material& m) {
  std::vector<uint16_t> values = m.left.pixels;
  uint16_t median = 0;
  Fingerprint print;
  return print.done(IP_Utl_Median_u16(values.data(), static_cast<uint32_t>(values.size()), &median))
      .add(median)
      .add(values);
}

Fingerprint sorting(const Material& m) {
  const auto count = static_cast<uint32_t>(m.left.pixels.size());
  std::vector<uint16_t> indices(count);
  Fingerprint print;
  for (const uint32_t mode : {RADIX_UNSIGNED, RADIX_SIGNED})
    print.done(IP_Utl_RadixIdxSort(m.left.pixels.data(), indices.data(), count, mode)).add(indices);
  return print;
}

// Heights from all over the map, as if they were measured one after the other.
Fingerprint tracking(const Material& m) {
  Kalman1d filter;
  IP_Kalman1d_Create(&filter, 1000, 0, 40, 500, 2000);
  Fingerprint print;
  for (size_t i = 0; i < 2000; ++i) {
    IP_Kalman1d_Predict(&filter, 1.0f / 15);
    const uint16_t height = m.elevation.pixels[i * 37 % m.elevation.pixels.size()];
    if (height != 0) IP_Kalman1d_Update(&filter, height);
    print.add(filter.x).add(filter.v).add(filter.P, 4);
  }
  return print;
}

double parabola(void* peak, double x) {
  const double off = x - *static_cast<double*>(peak);
  return -off * off;
}

Fingerprint search(const Material& m) {
  Fingerprint print;
  for (size_t i = 0; i < 20; ++i) {
    double peak = m.left.pixels[i] / 64.0;
    const GsFunc function{parabola, &peak};
    std::vector<double> xs(40), fs(40);
    GsResult result;
    IP_Optim_GsSearch(&function, 40, xs.data(), fs.data(), &result, 0, 64, 1e-3);
    print.add(result.iterations).add(result.evaluations).add(result.bestX).add(result.bestF);
    print.add(xs.data(), result.evaluations).add(fs.data(), result.evaluations);
  }
  return print;
}

Fingerprint lists(const Material& m) {
  ListNode nodes[64] = {};
  uint16_t items[64];
  List list;
  List_Init(&list, 64);
  ListStatic_Init(&list, 64, nodes, items);
  for (size_t i = 0; i < 60; ++i) {
    const uint16_t value = m.left.pixels[i];
    if (value % 3 == 0)
      List_Prepend(&list, &value, sizeof value);
    else
      List_Append(&list, &value, sizeof value);
    if (value % 5 == 0) List_Erase(&list, list.head);
  }
  Fingerprint print;
  print.add(list.count);
  for (const ListNode* node = List_Iter(&list); node; node = node->next) print.add(*static_cast<uint16_t*>(node->item));
  return print;
}

Fingerprint vectors(const Material& m) {
  std::vector<uint16_t> room(20, m.left.pixels[5]);
  Vector vector;
  Fingerprint print;
  print.done(Vector_Init(&vector, VECTOR_TYPE_U16, room.data(), 40)).done(Vector_Fill(&vector, m.left.pixels[7], 12));
  print.add(vector.count).add(room).done(Vector_Clear(&vector));
  return print.add(vector.count).add(vector.capacity);
}

}  // namespace

Stages numberStages() {
  return {{"matrices", matrices}, {"median of values", medianOfMany},
          {"sorting", sorting},   {"tracking", tracking},
          {"search", search},     {"lists", lists},
          {"vectors", vectors}};
}

}  // namespace nadir::verify
