// The linked list, with memory of its own and with pools.
#include <gtest/gtest.h>
#include <nadir/list.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "lab/random.hpp"
#include "tests/models/list.hpp"
#include "tests/support/guarded.hpp"

// Present under AddressSanitizer only.
extern "C" {
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace nadir::test {
namespace {

using model::Item;
using Texts = std::vector<std::string>;

// While it lives, memory that the library does not give back, as documented, is not reported.
class DocumentedLeak {
 public:
  DocumentedLeak() {
    if (__lsan_disable) __lsan_disable();
  }
  ~DocumentedLeak() {
    if (__lsan_enable) __lsan_enable();
  }
};

struct Dynamic {
  explicit Dynamic(int32_t maxCount) { List_Init(&list, maxCount); }
  ~Dynamic() { List_Clear(&list); }
  List list;
};

// The pools end, or begin, at a page that must not be touched. The free nodes' links and the items' bytes hold
// anything beforehand.
struct Static {
  explicit Static(int32_t maxCount, size_t slots, uint32_t itemSize, Guard side = Guard::behind)
      : size(itemSize), nodes(slots, side), items(slots * itemSize, side) {
    for (ListNode& node : nodes) node = {nullptr, &stranger, &stranger};
    std::memset(items.data(), 0xEE, items.size());
    List_Init(&list, maxCount);
    ListStatic_Init(&list, maxCount, nodes.data(), items.data());
  }
  uint8_t* itemOf(size_t slot) const { return items.data() + slot * size; }

  uint32_t size;
  Guarded<ListNode> nodes;
  Guarded<uint8_t> items;
  ListNode stranger{};
  List list;
};

ListNode* append(List& list, const char* text) { return List_Append(&list, text, 4); }
ListNode* prepend(List& list, const char* text) { return List_Prepend(&list, text, 4); }

std::string textOf(const ListNode* node) { return std::string(static_cast<const char*>(node->item), 3); }

// All nodes from the head on; every link, the tail and the count must agree with that walk.
std::vector<ListNode*> nodesOf(const List& list) {
  std::vector<ListNode*> nodes;
  ListNode* before = nullptr;
  for (ListNode* node = List_Iter(&list); node; node = node->next) {
    EXPECT_EQ(node->prev, before);
    nodes.push_back(node);
    before = node;
    if (nodes.size() > list.count) break;
  }
  EXPECT_EQ(list.head, nodes.empty() ? nullptr : nodes.front());
  EXPECT_EQ(list.tail, before);
  EXPECT_EQ(list.count, nodes.size());
  return nodes;
}

Texts texts(const List& list) {
  Texts all;
  for (const ListNode* node : nodesOf(list)) all.push_back(textOf(node));
  return all;
}

bool sameRecord(const List& a, const List& b) {
  return a.head == b.head && a.tail == b.tail && a.count == b.count && a.isStatic == b.isStatic &&
         a.nodePool == b.nodePool && a.itemPool == b.itemPool && a.maxCount == b.maxCount;
}

List garbage() {
  List list;
  std::memset(&list, 0xA5, sizeof list);
  return list;
}

}  // namespace

// ---- making a list ----

TEST(List, InitMakesAnyRecordAnEmptyDynamicList) {
  for (int32_t maxCount : {0, 1, 77, -1, INT32_MAX, INT32_MIN}) {
    List list = garbage();
    List_Init(&list, maxCount);
    EXPECT_TRUE(sameRecord(list, List{nullptr, nullptr, 0, 0, nullptr, nullptr, maxCount})) << maxCount;
  }
}

TEST(List, StaticInitStoresThePoolsAndLeavesTheRest) {
  ListNode nodes[3] = {}, head{}, tail{};
  uint8_t items[12];
  for (int32_t maxCount : {0, 3, -1}) {
    List list{&head, &tail, 2, 0, nullptr, nullptr, 9};
    ListStatic_Init(&list, maxCount, nodes, items);
    EXPECT_TRUE(sameRecord(list, List{&head, &tail, 2, 1, nodes, items, maxCount})) << maxCount;
  }
}

TEST(List, StaticInitLeavesThePools) {
  const Static s(3, 3, 4);
  for (const ListNode& node : s.nodes) {
    EXPECT_EQ(node.item, nullptr);
    EXPECT_EQ(node.prev, &s.stranger);
    EXPECT_EQ(node.next, &s.stranger);
  }
  EXPECT_EQ(s.items.values(), std::vector<uint8_t>(12, 0xEE));
}

TEST(List, StaticInitTakesARecordOfZeros) {
  ListNode nodes[1] = {};
  char items[4];
  List list{};
  ListStatic_Init(&list, 1, nodes, items);
  EXPECT_EQ(append(list, "one"), &nodes[0]);
  EXPECT_EQ(texts(list), (Texts{"one"}));
}

TEST(List, IterIsNullForAnEmptyList) {
  const Dynamic d(3);
  EXPECT_EQ(List_Iter(&d.list), nullptr);
}

TEST(List, IterIsTheHead) {
  Dynamic d(3);
  ListNode* first = append(d.list, "one");
  append(d.list, "two");
  EXPECT_EQ(List_Iter(&d.list), first);
}

// ---- inserting ----

TEST(List, AFirstNodeIsHeadAndTail) {
  for (auto insert : {List_Append, List_Prepend}) {
    Dynamic d(3);
    ListNode* node = insert(&d.list, "one", 4);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(d.list.head, node);
    EXPECT_EQ(d.list.tail, node);
    EXPECT_EQ(texts(d.list), (Texts{"one"}));
  }
}

TEST(List, AFirstNodeMayBeInsertedNextToNothing) {
  for (auto insert : {List_InsertBefore, List_InsertAfter}) {
    Dynamic d(3);
    ListNode* node = insert(&d.list, nullptr, "one", 4);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(d.list.head, node);
    EXPECT_EQ(d.list.tail, node);
    EXPECT_EQ(texts(d.list), (Texts{"one"}));
  }
}

TEST(List, AppendInsertsBehindTheTail) {
  Dynamic d(3);
  append(d.list, "one");
  append(d.list, "two");
  EXPECT_EQ(append(d.list, "end"), d.list.tail);
  EXPECT_EQ(texts(d.list), (Texts{"one", "two", "end"}));
}

TEST(List, PrependInsertsBeforeTheHead) {
  Dynamic d(3);
  prepend(d.list, "one");
  prepend(d.list, "two");
  EXPECT_EQ(prepend(d.list, "top"), d.list.head);
  EXPECT_EQ(texts(d.list), (Texts{"top", "two", "one"}));
}

TEST(List, InsertsBeforeHeadMiddleAndTail) {
  const std::vector<Texts> wanted{
      {"new", "one", "two", "end"}, {"one", "new", "two", "end"}, {"one", "two", "new", "end"}};
  for (size_t at = 0; at < 3; ++at) {
    Dynamic d(4);
    ListNode* nodes[] = {append(d.list, "one"), append(d.list, "two"), append(d.list, "end")};
    EXPECT_EQ(textOf(List_InsertBefore(&d.list, nodes[at], "new", 4)), "new");
    EXPECT_EQ(texts(d.list), wanted[at]);
  }
}

TEST(List, InsertsAfterHeadMiddleAndTail) {
  const std::vector<Texts> wanted{
      {"one", "new", "two", "end"}, {"one", "two", "new", "end"}, {"one", "two", "end", "new"}};
  for (size_t at = 0; at < 3; ++at) {
    Dynamic d(4);
    ListNode* nodes[] = {append(d.list, "one"), append(d.list, "two"), append(d.list, "end")};
    EXPECT_EQ(textOf(List_InsertAfter(&d.list, nodes[at], "new", 4)), "new");
    EXPECT_EQ(texts(d.list), wanted[at]);
  }
}

TEST(List, CopiesTheItem) {
  char item[] = "one";
  ListNode pool[1] = {};
  char items[4];
  Dynamic dynamic(1);
  List inPool{};
  ListStatic_Init(&inPool, 1, pool, items);
  List_Append(&dynamic.list, item, 4);
  List_Append(&inPool, item, 4);
  std::memcpy(item, "two", 4);
  EXPECT_EQ(texts(dynamic.list), (Texts{"one"}));
  EXPECT_EQ(texts(inPool), (Texts{"one"}));
}

TEST(List, TakesACopyOfAnItemOfItsOwn) {
  Dynamic d(2);
  List_Append(&d.list, append(d.list, "one")->item, 4);
  EXPECT_EQ(texts(d.list), (Texts{"one", "one"}));
  EXPECT_NE(d.list.head->item, d.list.tail->item);
}

TEST(List, DynamicItemsMayDifferInSize) {
  Dynamic d(-1);
  lab::Random random(1);
  std::vector<Item> wanted;
  for (uint32_t size = 1; size < 300; size += 13) {
    wanted.push_back(random.values<uint8_t>(size, 256));
    const Guarded<uint8_t> item(wanted.back(), size % 2 ? Guard::before : Guard::behind);
    ASSERT_NE(List_Append(&d.list, item.data(), size), nullptr);
  }
  size_t at = 0;
  for (const ListNode* node : nodesOf(d.list)) {
    EXPECT_EQ(std::memcmp(node->item, wanted[at].data(), wanted[at].size()), 0) << at;
    ++at;
  }
}

// ---- how many nodes ----

TEST(List, AMaximumOf0RejectsEveryInsertion) {
  Dynamic dynamic(0);
  Static inPool(0, 2, 4);
  for (List* list : {&dynamic.list, &inPool.list}) {
    const List before = *list;
    EXPECT_EQ(List_Append(list, "one", 4), nullptr);
    EXPECT_EQ(List_Prepend(list, "one", 4), nullptr);
    EXPECT_EQ(List_InsertBefore(list, nullptr, "one", 4), nullptr);
    EXPECT_EQ(List_InsertAfter(list, nullptr, "one", 4), nullptr);
    EXPECT_TRUE(sameRecord(before, *list));
  }
  EXPECT_EQ(inPool.nodes[0].item, nullptr);
}

TEST(List, AFullListRejectsEveryInsertionAndStaysAsItIs) {
  Dynamic dynamic(2);
  Static inPool(2, 3, 4);
  for (List* list : {&dynamic.list, &inPool.list}) {
    append(*list, "one");
    append(*list, "two");
    const List before = *list;
    EXPECT_EQ(List_Append(list, "new", 4), nullptr);
    EXPECT_EQ(List_Prepend(list, "new", 4), nullptr);
    EXPECT_EQ(List_InsertBefore(list, list->tail, "new", 4), nullptr);
    EXPECT_EQ(List_InsertAfter(list, list->head, "new", 4), nullptr);
    EXPECT_EQ(List_InsertAfter(list, nullptr, "new", 4), nullptr);
    EXPECT_TRUE(sameRecord(before, *list));
    EXPECT_EQ(list->count, 2u);
    EXPECT_EQ(texts(*list), (Texts{"one", "two"}));
  }
  EXPECT_EQ(inPool.nodes[2].item, nullptr);
}

TEST(List, AFullListTakesANodeAgainAfterErasingOne) {
  Dynamic d(2);
  append(d.list, "one");
  append(d.list, "two");
  List_Erase(&d.list, d.list.head);
  EXPECT_NE(append(d.list, "new"), nullptr);
  EXPECT_EQ(texts(d.list), (Texts{"two", "new"}));
}

TEST(List, ANegativeMaximumDoesNotBoundADynamicList) {
  for (int32_t maxCount : {-1, -5, INT32_MIN}) {
    Dynamic d(maxCount);
    for (int i = 0; i < 100; ++i) ASSERT_NE(append(d.list, "one"), nullptr) << maxCount << ", node " << i;
    EXPECT_EQ(nodesOf(d.list).size(), 100u);
  }
}

// Only a count equal to the maximum counts as full.
TEST(List, ADynamicListWithMoreNodesThanItsMaximumTakesFurtherOnes) {
  Dynamic d(3);
  for (const char* text : {"one", "two", "end"}) append(d.list, text);
  d.list.maxCount = 2;
  EXPECT_NE(append(d.list, "new"), nullptr);
  EXPECT_EQ(texts(d.list), (Texts{"one", "two", "end", "new"}));
}

TEST(List, AStaticListWithANegativeMaximumRejectsEveryInsertion) {
  for (int32_t maxCount : {-1, INT32_MIN}) {
    Static s(maxCount, 2, 4);
    EXPECT_EQ(append(s.list, "one"), nullptr);
    EXPECT_EQ(prepend(s.list, "one"), nullptr);
    EXPECT_EQ(texts(s.list), Texts{});
    EXPECT_EQ(s.nodes[0].item, nullptr);
    EXPECT_EQ(s.nodes[0].next, &s.stranger);
    EXPECT_EQ(s.items.values(), std::vector<uint8_t>(8, 0xEE));
  }
}

// ---- the pools ----

TEST(List, AStaticListTakesItsNodesAndItemsInOrder) {
  Static s(3, 3, 4);
  for (size_t slot = 0; slot < 3; ++slot) {
    EXPECT_EQ(prepend(s.list, "any"), &s.nodes[slot]);
    EXPECT_EQ(s.nodes[slot].item, s.itemOf(slot));
  }
  EXPECT_EQ(nodesOf(s.list), (std::vector<ListNode*>{&s.nodes[2], &s.nodes[1], &s.nodes[0]}));
}

TEST(List, AStaticListReusesTheLowestSlotThatIsFree) {
  Static s(4, 4, 4);
  for (const char* text : {"one", "two", "end", "non"}) append(s.list, text);
  List_Erase(&s.list, &s.nodes[2]);
  List_Erase(&s.list, &s.nodes[1]);
  EXPECT_EQ(append(s.list, "new"), &s.nodes[1]);
  EXPECT_EQ(s.nodes[1].item, s.itemOf(1));
  EXPECT_EQ(append(s.list, "now"), &s.nodes[2]);
  EXPECT_EQ(texts(s.list), (Texts{"one", "non", "new", "now"}));
}

TEST(List, ItemsInAPoolLieOneItemSizeApart) {
  for (uint32_t size : {1u, 2u, 3u, 4u, 7u, 16u, 100u}) {
    for (Guard side : {Guard::behind, Guard::before}) {
      Static s(5, 5, size, side);
      std::vector<uint8_t> wanted;
      for (uint8_t i = 0; i < 5; ++i) {
        const Guarded<uint8_t> item(Item(size, i), side);
        ASSERT_EQ(List_Append(&s.list, item.data(), size), &s.nodes[i]);
        EXPECT_EQ(s.nodes[i].item, s.itemOf(i));
        wanted.insert(wanted.end(), size, i);
      }
      EXPECT_EQ(s.items.values(), wanted) << size;
    }
  }
}

TEST(List, ErasingInAPoolClearsTheNodesItemAndNothingElse) {
  Static s(3, 3, 4);
  for (const char* text : {"one", "two", "end"}) append(s.list, text);
  const std::vector<uint8_t> before = s.items.values();
  List_Erase(&s.list, &s.nodes[1]);
  EXPECT_EQ(s.nodes[1].item, nullptr);
  EXPECT_EQ(s.nodes[1].prev, &s.nodes[0]);
  EXPECT_EQ(s.nodes[1].next, &s.nodes[2]);
  EXPECT_EQ(s.items.values(), before);
}

// The pool's length is the maximum, whatever lies behind it.
TEST(List, AStaticListLooksForFreeNodesInItsPoolOnly) {
  Static s(2, 3, 4);
  List_InsertAfter(&s.list, append(s.list, "one"), "two", 4);
  List_Erase(&s.list, &s.nodes[0]);
  s.nodes[0].item = s.itemOf(0);  // a slot that somebody else took
  EXPECT_EQ(append(s.list, "new"), nullptr);
  EXPECT_EQ(s.nodes[2].item, nullptr);
  EXPECT_EQ(texts(s.list), (Texts{"two"}));
}

// ---- inserting next to nothing into a list that is not empty ----
// ---------------------------------------------------------

TEST(List, InsertingNextToNothingFailsAndLeavesTheList) {
  const DocumentedLeak leak;
  for (auto insert : {List_InsertBefore, List_InsertAfter}) {
    Dynamic d(5);
    append(d.list, "one");
    append(d.list, "two");
    const List before = d.list;
    EXPECT_EQ(insert(&d.list, nullptr, "new", 4), nullptr);
    EXPECT_TRUE(sameRecord(before, d.list));
    EXPECT_EQ(texts(d.list), (Texts{"one", "two"}));
  }
}

TEST(List, InsertingNextToNothingKeepsTheSlotOccupied) {
  for (auto insert : {List_InsertBefore, List_InsertAfter}) {
    Static s(4, 4, 4);
    append(s.list, "one");
    const List before = s.list;
    EXPECT_EQ(insert(&s.list, nullptr, "new", 4), nullptr);
    EXPECT_TRUE(sameRecord(before, s.list));
    EXPECT_EQ(s.nodes[1].item, s.itemOf(1));
    EXPECT_EQ(textOf(&s.nodes[1]), "new");
    EXPECT_EQ(s.nodes[1].prev, nullptr);
    EXPECT_EQ(s.nodes[1].next, nullptr);
    EXPECT_EQ(append(s.list, "two"), &s.nodes[2]);
  }
}

TEST(List, AStaticListFailsWithoutAFreeSlotAlthoughItIsNotFull) {
  Static s(2, 2, 4);
  append(s.list, "one");
  List_InsertAfter(&s.list, nullptr, "new", 4);
  EXPECT_EQ(append(s.list, "two"), nullptr);
  EXPECT_EQ(texts(s.list), (Texts{"one"}));
}

TEST(List, ClearDoesNotFreeASlotLostThatWay) {
  Static s(3, 3, 4);
  append(s.list, "one");
  List_InsertAfter(&s.list, nullptr, "new", 4);
  List_Clear(&s.list);
  EXPECT_EQ(append(s.list, "two"), &s.nodes[0]);
  EXPECT_EQ(append(s.list, "end"), &s.nodes[2]);
}

// ---- erasing ----

TEST(List, ErasingTheHeadOfTwoMakesTheOtherHeadAndTail) {
  Dynamic d(2);
  ListNode* first = prepend(d.list, "one");
  ListNode* second = append(d.list, "two");
  EXPECT_EQ(d.list.head, first);
  EXPECT_EQ(d.list.tail, second);
  EXPECT_EQ(List_Erase(&d.list, first), second);
  EXPECT_EQ(d.list.head, second);
  EXPECT_EQ(d.list.tail, second);
  EXPECT_EQ(texts(d.list), (Texts{"two"}));
}

TEST(List, EraseReturnsTheNodeThatFollowed) {
  const std::vector<Texts> wanted{{"two", "end"}, {"one", "end"}, {"one", "two"}};
  for (size_t at = 0; at < 3; ++at) {
    Dynamic dynamic(3);
    Static inPool(3, 3, 4);
    for (List* list : {&dynamic.list, &inPool.list}) {
      ListNode* nodes[] = {append(*list, "one"), append(*list, "two"), append(*list, "end"), nullptr};
      EXPECT_EQ(List_Erase(list, nodes[at]), nodes[at + 1]);
      EXPECT_EQ(texts(*list), wanted[at]);
    }
  }
}

TEST(List, ErasingTheOnlyNodeEmptiesTheList) {
  Dynamic d(2);
  const List empty = d.list;
  EXPECT_EQ(List_Erase(&d.list, append(d.list, "one")), nullptr);
  EXPECT_TRUE(sameRecord(empty, d.list));
}

TEST(List, ErasingNothingChangesNothing) {
  Dynamic dynamic(3);
  Static inPool(3, 3, 4);
  for (List* list : {&dynamic.list, &inPool.list}) {
    EXPECT_EQ(List_Erase(list, nullptr), nullptr);
    append(*list, "one");
    append(*list, "two");
    const List before = *list;
    EXPECT_EQ(List_Erase(list, nullptr), nullptr);
    EXPECT_TRUE(sameRecord(before, *list));
    EXPECT_EQ(texts(*list), (Texts{"one", "two"}));
  }
}

TEST(List, ClearLeavesAnEmptyListAlone) {
  Dynamic dynamic(3);
  Static inPool(3, 3, 4);
  for (List* list : {&dynamic.list, &inPool.list}) {
    const List before = *list;
    List_Clear(list);
    EXPECT_TRUE(sameRecord(before, *list));
  }
}

TEST(List, ClearErasesEveryNodeAndKeepsTheStorage) {
  Dynamic dynamic(3);
  Static inPool(3, 3, 4);
  for (List* list : {&dynamic.list, &inPool.list}) {
    const List empty = *list;
    for (const char* text : {"one", "two", "end"}) append(*list, text);
    List_Clear(list);
    EXPECT_TRUE(sameRecord(empty, *list));
    EXPECT_NE(append(*list, "new"), nullptr);
    EXPECT_EQ(texts(*list), (Texts{"new"}));
  }
  EXPECT_EQ(List_Iter(&inPool.list), &inPool.nodes[0]);
}

// ---- any sequence of calls ----

namespace {

constexpr uint32_t bytesOfItem = 5;

// Does the same to a list and to its model and compares all that callers can see.
class Twins {
 public:
  Twins(List& list, model::List wanted, const Static* pools) : list_(list), wanted_(std::move(wanted)), pools_(pools) {}

  void anyCall(lab::Random& random) {
    const uint32_t kind = random.below(20);
    const bool empty = wanted_.items().empty();
    const size_t at = empty ? 0 : random.below(static_cast<uint32_t>(wanted_.items().size()));
    if (kind < 3) insert(random, wanted_.items().size(), false, [&](const uint8_t* i) { return append(i); });
    if (kind >= 3 && kind < 6) insert(random, 0, false, [&](const uint8_t* i) { return prepend(i); });
    if (kind >= 6 && kind < 9) insert(random, at, false, [&](const uint8_t* i) { return before(nodeAt(at), i); });
    if (kind >= 9 && kind < 12)
      insert(random, empty ? 0 : at + 1, false, [&](const uint8_t* i) { return after(nodeAt(at), i); });
    if (kind == 12) insert(random, 0, !empty, [&](const uint8_t* i) { return before(nullptr, i); });
    if (kind > 12 && !empty) erase(at);
    if (random.below(200) == 0) clear();
  }

  void compare() const {
    const std::vector<ListNode*> nodes = nodesOf(list_);
    ASSERT_EQ(nodes, nodes_);
    for (size_t i = 0; i < nodes.size(); ++i) {
      ASSERT_EQ(std::memcmp(nodes[i]->item, wanted_.items()[i].data(), bytesOfItem), 0) << "item " << i;
    }
    if (pools_) comparePools();
  }

 private:
  ListNode* append(const uint8_t* item) { return List_Append(&list_, item, bytesOfItem); }
  ListNode* prepend(const uint8_t* item) { return List_Prepend(&list_, item, bytesOfItem); }
  ListNode* before(ListNode* ref, const uint8_t* item) { return List_InsertBefore(&list_, ref, item, bytesOfItem); }
  ListNode* after(ListNode* ref, const uint8_t* item) { return List_InsertAfter(&list_, ref, item, bytesOfItem); }
  ListNode* nodeAt(size_t position) const { return nodes_.empty() ? nullptr : nodes_[position]; }

  template <class Call>
  void insert(lab::Random& random, size_t position, bool lost, Call call) {
    const Item item = random.values<uint8_t>(bytesOfItem, 256);
    ListNode* node = call(item.data());
    const model::List::Outcome outcome = wanted_.insert(position, item, lost);
    ASSERT_EQ(node != nullptr, outcome.inserted);
    if (!outcome.inserted) return;
    if (pools_) {
      ASSERT_EQ(node, &pools_->nodes[outcome.slot]);
    }
    nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(position), node);
  }

  void erase(size_t position) {
    ListNode* following = position + 1 < nodes_.size() ? nodes_[position + 1] : nullptr;
    ASSERT_EQ(List_Erase(&list_, nodes_[position]), following);
    wanted_.erase(position);
    nodes_.erase(nodes_.begin() + static_cast<std::ptrdiff_t>(position));
  }

  void clear() {
    List_Clear(&list_);
    while (!wanted_.items().empty()) wanted_.erase(0);
    nodes_.clear();
  }

  void comparePools() const {
    for (size_t slot = 0; slot < pools_->nodes.size(); ++slot) {
      ASSERT_EQ(pools_->nodes[slot].item, wanted_.isTaken(slot) ? pools_->itemOf(slot) : nullptr) << "slot " << slot;
    }
  }

  List& list_;
  model::List wanted_;
  const Static* pools_;
  std::vector<ListNode*> nodes_;
};

void expectAnySequence(Twins& twins, lab::Random& random, uint32_t calls) {
  for (uint32_t call = 0; call < calls; ++call) {
    SCOPED_TRACE(testing::Message() << "call " << call);
    twins.anyCall(random);
    twins.compare();
    if (testing::Test::HasFatalFailure()) return;
  }
}

}  // namespace

TEST(List, AnySequenceOfCallsGivesWhatAListMustHoldOnTheHeap) {
  const DocumentedLeak leak;
  for (int32_t maxCount : {0, 1, 2, 3, 10, -1, -2}) {
    SCOPED_TRACE(testing::Message() << "at most " << maxCount << ", seed " << maxCount + 100);
    lab::Random random(static_cast<uint64_t>(maxCount + 100));
    Dynamic d(maxCount);
    Twins twins(d.list, model::List(maxCount, false, 0), nullptr);
    expectAnySequence(twins, random, 400);
  }
}

TEST(List, AnySequenceOfCallsGivesWhatAListMustHoldInPools) {
  for (uint32_t slots = 0; slots < 12; ++slots) {
    for (uint64_t seed = slots * 10; seed < slots * 10 + 4; ++seed) {
      SCOPED_TRACE(testing::Message() << slots << " slots, seed " << seed);
      lab::Random random(seed);
      Static s(static_cast<int32_t>(slots), slots, bytesOfItem, seed % 2 ? Guard::before : Guard::behind);
      Twins twins(s.list, model::List(slots, true, slots), &s);
      expectAnySequence(twins, random, 150);
    }
  }
}

}  // namespace nadir::test
