/* A doubly linked list that keeps copies of what is put into it, on the heap or in memory of the caller's. */
#ifndef NADIR_LIST_H
#define NADIR_LIST_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A caller walks a list by itself: from List_Iter along `next` until null, or from `tail` along `prev`. Items may be
 * changed in place; the links belong to the list. */
typedef struct ListNode ListNode;
struct ListNode {
  void* item;     /* the list's copy of the item; null marks a free node of a pool */
  ListNode* prev; /* null at the head */
  ListNode* next; /* null at the tail */
};

/* Two kinds of storage. A dynamic list allocates each node and each item's copy, and erasing gives them back. A static
 * list takes node i of `nodePool` and the `size` bytes at itemPool + i * size, always with the lowest i that is free,
 * and allocates nothing. */
typedef struct {
  ListNode* head;     /* null when empty */
  ListNode* tail;     /* null when empty */
  uint32_t count;     /* nodes */
  uint8_t isStatic;   /* 1: the pools, 0: the heap */
  ListNode* nodePool; /* static: maxCount nodes */
  uint8_t* itemPool;  /* static: maxCount items */
  int32_t maxCount;   /* the most nodes the list may hold */
} List;

/* Makes `list` empty and dynamic. What it held before is not given back: that is List_Clear's.
 *
 * maxCount  the list is full with this many nodes; 0 keeps it empty, a negative number bounds nothing. */
NADIR_API void List_Init(List* list, int32_t maxCount);

/* Gives a list its pools and makes it static. Head, tail and count stay as they are: call it on a list that List_Init
 * has just made or on a record of zeros.
 *
 * maxCount  nodes in `nodePool`; below 1 every insertion fails.
 * nodePool  the item of each node must be null. The memory must outlive the list.
 * itemPool  maxCount times the item size, aligned for the items. All items of a static list have one size. */
NADIR_API void ListStatic_Init(List* list, int32_t maxCount, ListNode* nodePool, void* itemPool);

/* The first node, or null for an empty list. */
NADIR_API ListNode* List_Iter(const List* list);

/* Puts a copy of an item at the end of the list.
 *
 * item  `size` bytes that are copied; not needed after the call.
 *
 * Returns the new node. Returns null with the list as it was when the list is full, when a static list has no free
 * node, or when memory runs out. */
NADIR_API ListNode* List_Append(List* list, const void* item, uint32_t size);

/* List_Append at the beginning of the list. */
NADIR_API ListNode* List_Prepend(List* list, const void* item, uint32_t size);

/* List_Append in front of `ref` or behind it.
 *
 * ref  a node of this list. It may be null if the list is empty. A null `ref` with a list that is not empty is a
 *      mistake that costs memory: the result is null and the list is as it was, but the node and the copy that the call
 *      took are not given back, a static list's node stays taken. With an empty list `ref` must be null. */
NADIR_API ListNode* List_InsertBefore(List* list, ListNode* ref, const void* item, uint32_t size);
NADIR_API ListNode* List_InsertAfter(List* list, ListNode* ref, const void* item, uint32_t size);

/* Takes a node of this list out and frees its memory or its place in the pool.
 *
 * Returns the node that followed, null at the end of the list, and null with nothing changed for a null `node`. */
NADIR_API ListNode* List_Erase(List* list, ListNode* node);

/* Erases every node. The list can be used again, with the same storage. */
NADIR_API void List_Clear(List* list);

#ifdef __cplusplus
}
#endif

#endif
