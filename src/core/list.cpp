// This is a doubly linked list whose nodes come from the heap or from a pool of the caller's.
#include <nadir/list.h>

#include <cstring>

#include "core/memory.hpp"

namespace nadir {
namespace {

enum class Side { before, after };

// A node with room for an item, linked to nothing; null where there is none.
ListNode* takeFromPool(const List& list, uint32_t size) {
  for (int32_t i = 0; i < list.maxCount; ++i) {
    ListNode* node = &list.nodePool[i];
    if (node->item) continue;
    *node = {list.itemPool + size_t{size} * static_cast<size_t>(i), nullptr, nullptr};
    return node;
  }
  return nullptr;
}

ListNode* takeFromHeap(uint32_t size) {
  ListNode* node = static_cast<ListNode*>(allocate(sizeof(ListNode)));
  if (!node) return nullptr;
  *node = {allocate(size), nullptr, nullptr};
  if (node->item) return node;
  std::free(node);
  return nullptr;
}

ListNode* makeNode(const List& list, const void* item, uint32_t size) {
  ListNode* node = list.isStatic ? takeFromPool(list, size) : takeFromHeap(size);
  if (node && size) std::memmove(node->item, item, size);  // an erased item may still lie in its place
  return node;
}

// Makes `node` a neighbour of `ref`; null neighbours are the list's ends.
void attach(List& list, ListNode* node, ListNode* ref, Side side) {
  node->prev = side == Side::before ? ref->prev : ref;
  node->next = side == Side::before ? ref : ref->next;
  (node->prev ? node->prev->next : list.head) = node;
  (node->next ? node->next->prev : list.tail) = node;
}

void detach(List& list, const ListNode* node) {
  (node->prev ? node->prev->next : list.head) = node->next;
  (node->next ? node->next->prev : list.tail) = node->prev;
}

ListNode* insert(List* list, ListNode* ref, const void* item, uint32_t size, Side side) {
  if (list->count == static_cast<uint32_t>(list->maxCount)) return nullptr;
  ListNode* node = makeNode(*list, item, size);
  if (!node) return nullptr;
  if (ref) {
    attach(*list, node, ref, side);
  } else if (list->count == 0) {
    list->head = list->tail = node;
  } else {
    return nullptr;  // the node stays taken: programs know how many of a static list are left
  }
  ++list->count;
  return node;
}

}  // namespace
}  // namespace nadir

void List_Init(List* list, int32_t maxCount) {
  *list = {};
  list->maxCount = maxCount;
}

void ListStatic_Init(List* list, int32_t maxCount, ListNode* nodePool, void* itemPool) {
  list->isStatic = 1;
  list->nodePool = nodePool;
  list->itemPool = static_cast<uint8_t*>(itemPool);
  list->maxCount = maxCount;
}

ListNode* List_Iter(const List* list) { return list->head; }

ListNode* List_Append(List* list, const void* item, uint32_t size) {
  return insert(list, list->tail, item, size, nadir::Side::after);
}

ListNode* List_Prepend(List* list, const void* item, uint32_t size) {
  return insert(list, list->head, item, size, nadir::Side::before);
}

ListNode* List_InsertBefore(List* list, ListNode* ref, const void* item, uint32_t size) {
  return insert(list, ref, item, size, nadir::Side::before);
}

ListNode* List_InsertAfter(List* list, ListNode* ref, const void* item, uint32_t size) {
  return insert(list, ref, item, size, nadir::Side::after);
}

ListNode* List_Erase(List* list, ListNode* node) {
  if (!node) return nullptr;
  ListNode* next = node->next;
  nadir::detach(*list, node);
  --list->count;
  if (list->isStatic) {
    node->item = nullptr;
  } else {
    std::free(node->item);
    std::free(node);
  }
  return next;
}

void List_Clear(List* list) {
  while (list->head) List_Erase(list, list->head);
}
