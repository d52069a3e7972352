// Calls of the headers of numbers, of list.h and of api.h.
#include <nadir/api.h>
#include <nadir/list.h>
#include <nadir/matrix.h>
#include <nadir/numeric.h>

#include <vector>

#include "lab/random.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

void callMatrices() {
  const float a[9] = {1, 2, 3, 0.5f, -1, 4, 7, 8, -9}, b[9] = {2, 0, 1, 1.5f, 3, -4, 6, 5, 1};
  float product[9], transposed[9], copied[9], image[3], sum[3], difference[3];
  mmMul(a, b, product);
  mTrans(a, transposed);
  mCopy(a, copied);
  mvMul(a, b, image);
  vvAdd(a, b, sum);
  vvSub(a, b, difference);
  const auto points = lab::Random(1).values<uint16_t>(200, 3000);
  float covariance[4], values[2], vectors[4];
  done(IP_Alg_Covar_2x2(points.data(), 100, covariance));
  done(IP_Alg_Eigen_2x2(covariance, values, vectors));
}

void callSorting() {
  auto values = lab::Random(2).values<uint16_t>(1000, 65536);
  std::vector<uint16_t> indices(values.size());
  uint16_t median;
  done(IP_Utl_RadixIdxSort(values.data(), indices.data(), 1000, RADIX_UNSIGNED));
  done(IP_Utl_RadixIdxSort(values.data(), indices.data(), 1000, RADIX_SIGNED));
  done(IP_Utl_Median_u16(values.data(), 1000, &median));
}

void callTracking() {
  Kalman1d filter;
  IP_Kalman1d_Create(&filter, 100, 0, 3, 2, 1);
  IP_Kalman1d_Predict(&filter, 0.5f);
  IP_Kalman1d_Update(&filter, 103);
}

double parabola(void*, double x) { return -(x - 3) * (x - 3); }

void callSearch() {
  const GsFunc function{parabola, nullptr};
  double xs[42], fs[42];
  GsResult result;
  IP_Optim_GsSearch(&function, 40, xs, fs, &result, -150, 150, 1e-6);
}

void callLists() {
  const uint32_t item = 5;
  List list;
  List_Init(&list, 20);
  ListNode* const middle = List_Append(&list, &item, sizeof item);
  List_Prepend(&list, &item, sizeof item);
  List_InsertBefore(&list, middle, &item, sizeof item);
  List_InsertAfter(&list, middle, &item, sizeof item);
  List_Iter(&list);
  List_Erase(&list, middle);
  List_Clear(&list);
  ListNode nodes[20];
  uint32_t items[20];
  ListStatic_Init(&list, 20, nodes, items);
}

}  // namespace

void callNumbers() {
  callMatrices();
  callSorting();
  callTracking();
  callSearch();
  callLists();
  IP_Utils_GetTimeMS();
  IP_Utils_GetTimeS();
  IP_Utils_PrintNumAsAscii(407);
  nadir_version();
  nadir_simd_level();
}

}  // namespace nadir::test::counts
