#include <nadir/nadir.h>

#include "tests/golden/golden.hpp"
#include "tests/support/random.hpp"

namespace nadir::test::golden {
namespace {

std::vector<float> floats(Random& random, size_t count) {
  std::vector<float> values(count);
  for (float& value : values) value = static_cast<float>(random.between(-100000, 100000)) / 37.0f;
  return values;
}

Hash matrices() {
  Hash hash;
  Random random(1);
  for (int i = 0; i < 50; ++i) {
    const auto a = floats(random, 9), b = floats(random, 9);
    std::vector<float> product(9), transposed(9), copied(9), image(3), sum(3), difference(3);
    mmMul(a.data(), b.data(), product.data());
    mTrans(a.data(), transposed.data());
    mCopy(a.data(), copied.data());
    mvMul(a.data(), b.data(), image.data());
    vvAdd(a.data(), b.data(), sum.data());
    vvSub(a.data(), b.data(), difference.data());
    for (const auto& result : {product, transposed, copied, image, sum, difference}) hash.add(result);
  }
  return hash;
}

Hash covariances() {
  Hash hash;
  Random random(2);
  for (int32_t count = 2; count < 60; ++count) {
    const auto points = random.values<uint16_t>(2 * static_cast<size_t>(count), count % 2 ? 300 : 65536);
    std::vector<float> covariance(4), values(2), vectors(4);
    hash.done(IP_Alg_Covar_2x2(points.data(), count, covariance.data())).add(covariance);
    hash.done(IP_Alg_Eigen_2x2(covariance.data(), values.data(), vectors.data())).add(values).add(vectors);
  }
  return hash;
}

Hash medians() {
  Hash hash;
  Random random(3);
  for (uint32_t count = 1; count < 200; ++count) {
    auto values = random.values<uint16_t>(count, count % 2 ? 65536 : 12);
    uint16_t median = 0;
    hash.done(IP_Utl_Median_u16(values.data(), count, &median)).add(median).add(values);
  }
  return hash;
}

Hash radixSort(uint32_t mode) {
  Hash hash;
  Random random(4);
  for (uint32_t count = 0; count < 200; ++count) {
    const auto keys = random.values<uint16_t>(count + 1, count % 2 ? 65536 : 12);
    std::vector<uint16_t> indices(count + 1);
    hash.done(IP_Utl_RadixIdxSort(keys.data(), indices.data(), count, mode)).add(indices);
  }
  return hash;
}

}  // namespace

std::vector<Case> numberCases() {
  return {
      {"Matrices", matrices},
      {"Covariances", covariances},
      {"Medians", medians},
      {"RadixSortUnsigned", [] { return radixSort(RADIX_UNSIGNED); }},
      {"RadixSortSigned", [] { return radixSort(RADIX_SIGNED); }},
  };
}

}  // namespace nadir::test::golden
