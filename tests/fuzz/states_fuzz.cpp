// Any sequence of calls of what keeps a state between calls: lists, vectors, averages over frames, the filter. What
// they then hold is what the model holds, and nothing is touched outside their memory.
#include <nadir/imgproc.h>
#include <nadir/list.h>
#include <nadir/numeric.h>
#include <nadir/vector.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "tests/fuzz/input.hpp"
#include "tests/models/kalman.hpp"
#include "tests/models/list.hpp"

namespace nadir::test {
namespace {

using Words = std::vector<uint16_t>;

// ---- lists ----

constexpr uint32_t itemSize = 12;

// The pools lie on the heap, so that the sanitizer sees their ends.
struct Storage {
  explicit Storage(uint32_t slots) : nodes(slots), items(size_t{slots} * itemSize) {}
  std::vector<ListNode> nodes;
  std::vector<uint8_t> items;
};

ListNode* nodeAt(const List& list, size_t position) {
  ListNode* node = List_Iter(&list);
  while (position-- > 0) node = node->next;
  return node;
}

void expectItems(const model::List& want, const List& list) {
  expect("nodes", static_cast<uint32_t>(want.items().size()), list.count);
  const ListNode* node = List_Iter(&list);
  const ListNode* before = nullptr;
  for (const model::Item& item : want.items()) {
    expect("a node", true, node != nullptr && node->prev == before);
    expect("an item", 0, std::memcmp(item.data(), node->item, item.size()));
    before = node;
    node = node->next;
  }
  expect("the end", true, node == nullptr && list.tail == before);
}

void change(Input& in, model::List& want, List& list) {
  const size_t count = want.items().size(), position = count ? in.below(static_cast<uint32_t>(count)) : 0;
  const model::Item item = in.values<uint8_t>(itemSize);
  ListNode* const beside = count ? nodeAt(list, position) : nullptr;
  bool inserted = false;
  size_t place = position;
  switch (in.below(6)) {
    case 0:
      inserted = List_Append(&list, item.data(), itemSize);
      place = count;
      break;
    case 1:
      inserted = List_Prepend(&list, item.data(), itemSize);
      place = 0;
      break;
    case 2: inserted = List_InsertBefore(&list, beside, item.data(), itemSize); break;
    case 3:
      inserted = List_InsertAfter(&list, beside, item.data(), itemSize);
      place = count ? position + 1 : 0;
      break;
    default:
      List_Erase(&list, beside);
      if (count) want.erase(position);
      return;
  }
  expect("inserted", want.insert(place, item, false).inserted, inserted);
}

void fuzzList(Input& in) {
  const bool isStatic = in.below(2);
  const uint32_t slots = 1 + in.below(12);
  const int32_t most = isStatic ? static_cast<int32_t>(slots) : static_cast<int32_t>(in.below(14)) - 1;
  Storage storage(slots);
  List list;
  List_Init(&list, most);
  if (isStatic) ListStatic_Init(&list, most, storage.nodes.data(), storage.items.data());
  model::List want(most, isStatic, isStatic ? slots : 0);
  for (uint32_t steps = in.below(80); steps > 0; --steps) {
    change(in, want, list);
    expectItems(want, list);
  }
  List_Clear(&list);
  expect("cleared", true, list.count == 0 && !List_Iter(&list));
}

// ---- vectors ----

void fuzzVector(Input& in) {
  const uint32_t type = in.below(9), bytes = in.below(70);
  constexpr uint32_t sizes[] = {1, 2, 4, 1, 2, 4, 4};
  std::vector<uint32_t> memory((bytes + 3) / 4);
  Vector vec{};
  const uint32_t made = Vector_Init(&vec, type, memory.data(), bytes);
  expect("made", type < 7 ? 1u : 0u, made);
  if (!made) return;
  expect("capacity", bytes / sizes[type], vec.capacity);
  for (uint32_t steps = in.below(8); steps > 0; --steps) {
    const uint32_t value = in.below(3) ? in.values<uint32_t>(1)[0] : 0, before = vec.count;
    const int32_t count = static_cast<int32_t>(in.below(80)) - 8;
    const uint32_t wanted = count < 0 ? before : static_cast<uint32_t>(count);
    const bool good = wanted <= vec.capacity && (type != VECTOR_TYPE_WORD || value == 0);
    expect("filled", good ? 1u : 0u, Vector_Fill(&vec, value, count));
    expect("count", good ? wanted : before, vec.count);
    const auto* element = reinterpret_cast<const uint8_t*>(memory.data());
    for (uint32_t i = 0; good && i < wanted; ++i, element += sizes[type])
      expect("element", 0, std::memcmp(element, &value, sizes[type]));
  }
}

// ---- averages ----

struct Average {
  std::vector<int64_t> sums;
  std::vector<uint32_t> counts;
};

uint16_t meanOf(const Average& a, size_t i, const ImgAvrgState& state) {
  const uint32_t least = state.minValidPercent * state.frameCount / 100;
  return a.counts[i] > least ? static_cast<uint16_t>(a.sums[i] / a.counts[i]) : uint16_t{0};
}

void fuzzAverage(Input& in) {
  const uint32_t width = 1 + in.below(12), height = 1 + in.below(6);
  const size_t pixels = size_t{width} * height;
  Words frame(pixels), count(pixels, 7), out(pixels);
  std::vector<int32_t> sum(pixels, 7);
  Img frameImage, sumImage, countImage, outImage;
  Img_Init(&frameImage, width, height, IMG_TYPE_U16, frame.data());
  Img_Init(&sumImage, width, height, IMG_TYPE_S32, sum.data());
  Img_Init(&countImage, width, height, IMG_TYPE_U16, count.data());
  Img_Init(&outImage, width, height, IMG_TYPE_U16, out.data());
  ImgAvrgState state;
  IP_Utils_ImgAvrgInit(&frameImage, &sumImage, &countImage, &state);
  state.minValidPercent = in.below(101);
  state.invalidValue = in.below(3);
  Average want{std::vector<int64_t>(pixels), std::vector<uint32_t>(pixels)};
  for (uint32_t frames = in.below(20); frames > 0; --frames) {
    const Words next = in.values<uint16_t>(pixels);
    std::transform(next.begin(), next.end(), frame.begin(), [](uint16_t v) { return v & 1 ? v : uint16_t(v >> 13); });
    IP_Utils_ImgAvrgAdd(&frameImage, &sumImage, &countImage, &state);
    for (size_t i = 0; i < pixels; ++i) {
      if (frame[i] == state.invalidValue) continue;
      want.sums[i] += frame[i];
      ++want.counts[i];
    }
    IP_Utils_ImgAvrgProcess(&outImage, &sumImage, &countImage, &state);
    for (size_t i = 0; i < pixels; ++i) expect("mean", meanOf(want, i, state), out[i]);
  }
}

// ---- the filter ----

float anyFloat(Input& in) {
  if (in.below(4)) return static_cast<float>(in.below(4000)) / 16 - 100;
  const uint32_t bits = in.values<uint32_t>(1)[0];
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Processors differ in which of two NaNs an operation hands on, so one is as good as another.
void expectFilter(const Kalman1d& want, const Kalman1d& got) {
  const auto same = [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); };
  expect("estimate", true, same(want.x, got.x) && same(want.v, got.v));
  for (size_t i = 0; i < 4; ++i) expect("covariance", true, same(want.P[i], got.P[i]) && same(want.Q[i], got.Q[i]));
}

void fuzzFilter(Input& in) {
  Kalman1d filter{};
  const float x = anyFloat(in), v = anyFloat(in), sigmaZ = anyFloat(in), sigmaV = anyFloat(in), sigmaA = anyFloat(in);
  Kalman1d want = model::created(filter, x, v, sigmaZ, sigmaV, sigmaA);
  IP_Kalman1d_Create(&filter, x, v, sigmaZ, sigmaV, sigmaA);
  for (uint32_t steps = in.below(30); steps > 0; --steps) {
    const float dt = anyFloat(in), z = anyFloat(in);
    IP_Kalman1d_Predict(&filter, dt);
    want = model::predicted(want, dt);
    expectFilter(want, filter);
    IP_Kalman1d_Update(&filter, z);
    want = model::updated(want, z);
    expectFilter(want, filter);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr void (*targets[])(Input&) = {fuzzList, fuzzVector, fuzzAverage, fuzzFilter};
  Input in(data, size);
  targets[in.below(4)](in);
  return 0;
}

}  // namespace nadir::test
