// Results of the functions of numbers and of lists.
#include <nadir/nadir.h>
#include <unistd.h>

#include <cstdio>

#include "lab/random.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

std::vector<float> floats(lab::Random& random, size_t count) {
  std::vector<float> values(count);
  for (float& value : values) value = static_cast<float>(random.between(-100000, 100000)) / 37.0f;
  return values;
}

Fingerprint matrices() {
  Fingerprint hash;
  lab::Random random(1);
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

Fingerprint covariances() {
  Fingerprint hash;
  lab::Random random(2);
  for (int32_t count = 2; count < 60; ++count) {
    const auto points = random.values<uint16_t>(2 * static_cast<size_t>(count), count % 2 ? 300 : 65536);
    std::vector<float> covariance(4), values(2), vectors(4);
    hash.done(IP_Alg_Covar_2x2(points.data(), count, covariance.data())).add(covariance);
    hash.done(IP_Alg_Eigen_2x2(covariance.data(), values.data(), vectors.data())).add(values).add(vectors);
  }
  return hash;
}

Fingerprint medians() {
  Fingerprint hash;
  lab::Random random(3);
  for (uint32_t count = 1; count < 200; ++count) {
    auto values = random.values<uint16_t>(count, count % 2 ? 65536 : 12);
    uint16_t median = 0;
    hash.done(IP_Utl_Median_u16(values.data(), count, &median)).add(median).add(values);
  }
  return hash;
}

Fingerprint radixSort(uint32_t mode) {
  Fingerprint hash;
  lab::Random random(4);
  for (uint32_t count = 0; count < 200; ++count) {
    const auto keys = random.values<uint16_t>(count + 1, count % 2 ? 65536 : 12);
    std::vector<uint16_t> indices(count + 1);
    hash.done(IP_Utl_RadixIdxSort(keys.data(), indices.data(), count, mode)).add(indices);
  }
  return hash;
}

// A value that moves, measured with errors at uneven times.
Fingerprint tracking() {
  Fingerprint hash;
  lab::Random random(5);
  for (int run = 0; run < 20; ++run) {
    const auto sigmas = floats(random, 3);
    Kalman1d filter = {};
    IP_Kalman1d_Create(&filter, 100, 0, sigmas[0], sigmas[1], sigmas[2]);
    for (int step = 0; step < 20; ++step) {
      const auto errors = floats(random, 1);
      IP_Kalman1d_Predict(&filter, static_cast<float>(random.between(0, 90)) / 30.0f);
      hash.add(filter.x).add(filter.v).add(std::vector<float>(filter.P, filter.P + 4));
      hash.add(std::vector<float>(filter.Q, filter.Q + 4));
      IP_Kalman1d_Update(&filter, static_cast<float>(100 + 3 * step) + errors[0]);
      hash.add(filter.x).add(filter.v).add(std::vector<float>(filter.P, filter.P + 4));
    }
  }
  return hash;
}

// The functions searched are parabolas: the last bits of a function of the mathematics library are its own.
double parabola(void* top, double x) { return -(x - *static_cast<double*>(top)) * (x - *static_cast<double*>(top)); }

Fingerprint searches() {
  Fingerprint hash;
  lab::Random random(6);
  for (uint32_t maxEval = 0; maxEval < 60; ++maxEval) {
    double top = random.between(-1000, 1000) / 7.0;
    const GsFunc function{parabola, &top};
    std::vector<double> xs(62), fs(62);
    GsResult result;
    IP_Optim_GsSearch(&function, maxEval, xs.data(), fs.data(), &result, -150, 150, maxEval % 2 ? 1e-6 : 1.0);
    hash.add(xs).add(fs).add(result.iterations).add(result.evaluations).add(result.bestX).add(result.bestF);
  }
  return hash;
}

// Everything that a list of random insertions and erasures holds, after each of them.
Fingerprint lists(bool isStatic) {
  Fingerprint hash;
  lab::Random random(7);
  std::vector<ListNode> nodes(20);
  std::vector<uint32_t> items(20);
  List list;
  List_Init(&list, 20);
  if (isStatic) ListStatic_Init(&list, 20, nodes.data(), items.data());
  for (uint32_t i = 0; i < 300; ++i) {
    ListNode* at = List_Iter(&list);
    for (uint32_t steps = random.below(list.count + 1); at && at->next && steps > 0; --steps) at = at->next;
    switch (random.below(6)) {
      case 0: List_Append(&list, &i, sizeof i); break;
      case 1: List_Prepend(&list, &i, sizeof i); break;
      case 2: List_InsertBefore(&list, at, &i, sizeof i); break;
      case 3: List_InsertAfter(&list, at, &i, sizeof i); break;
      default: List_Erase(&list, at);
    }
    hash.add(list.count);
    for (const ListNode* node = List_Iter(&list); node; node = node->next)
      hash.add(*static_cast<uint32_t*>(node->item));
    for (const ListNode* node = list.tail; node; node = node->prev) hash.add(*static_cast<uint32_t*>(node->item));
  }
  List_Clear(&list);
  return hash;
}

// The text that `print` writes to standard output.
template <class Print>
std::vector<char> printed(Print print) {
  std::fflush(stdout);
  const int terminal = dup(STDOUT_FILENO);
  std::FILE* file = std::tmpfile();
  dup2(fileno(file), STDOUT_FILENO);
  print();
  std::fflush(stdout);
  dup2(terminal, STDOUT_FILENO);
  close(terminal);
  std::vector<char> text(static_cast<size_t>(std::ftell(file)));
  std::rewind(file);
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  return text;
}

Fingerprint digits() {
  Fingerprint hash;
  for (const uint32_t number : {0u, 7u, 42u, 123u, 456u, 789u, 999u, 1000u}) {
    int32_t result = 0;
    hash.add(printed([&] { result = IP_Utils_PrintNumAsAscii(number); })).add(result);
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
      {"Tracking", tracking},
      {"Searches", searches},
      {"Digits", digits},
      {"Lists", [] { return lists(false); }},
      {"ListsInPools", [] { return lists(true); }},
  };
}

}  // namespace nadir::test::golden
