// Typed vectors over memory of the caller.
#include <gtest/gtest.h>
#include <nadir/vector.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "lab/random.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouchedByte = 0xA7;

struct Type {
  uint32_t code, bytes;
};
constexpr Type elementTypes[] = {{VECTOR_TYPE_U8, 1},  {VECTOR_TYPE_U16, 2}, {VECTOR_TYPE_U32, 4}, {VECTOR_TYPE_S8, 1},
                                 {VECTOR_TYPE_S16, 2}, {VECTOR_TYPE_S32, 4}, {VECTOR_TYPE_WORD, 4}};

// A vector over marked memory that ends at a guard page.
struct Marked {
  Marked(uint32_t type, uint32_t bytes) : memory(Bytes(bytes, untouchedByte)) {
    EXPECT_EQ(Vector_Init(&vector, type, memory.data(), bytes), 1u);
  }

  Guarded<uint8_t> memory;
  Vector vector{};
};

// The bytes of `count` elements of this value in the processor's order, then marks.
Bytes filled(const Type& type, uint32_t value, uint32_t count, uint32_t bytes) {
  Bytes out(bytes, untouchedByte);
  const uint8_t value8 = static_cast<uint8_t>(value);
  const uint16_t value16 = static_cast<uint16_t>(value);
  const void* element = type.bytes == 1 ? &value8 : type.bytes == 2 ? static_cast<const void*>(&value16) : &value;
  for (uint32_t i = 0; i < count; ++i) std::memcpy(&out[i * type.bytes], element, type.bytes);
  return out;
}

bool equal(const Vector& a, const Vector& b) {
  return a.count == b.count && a.capacity == b.capacity && a.elementType == b.elementType && a.data == b.data;
}

// The call answers 0 and changes neither the record nor its memory.
template <class Call>
::testing::AssertionResult refuses(Marked& marked, Call call) {
  const Vector before = marked.vector;
  const Bytes bytes = marked.memory.values();
  if (call(&marked.vector) != 0) return ::testing::AssertionFailure() << "not refused";
  if (!equal(before, marked.vector)) return ::testing::AssertionFailure() << "changed the record";
  return same(bytes, marked.memory.values());
}

}  // namespace

// ---- Vector_Init ----

TEST(VectorInit, HoldsAsManyWholeElementsAsThereAreBytesFor) {
  for (const Type& type : elementTypes) {
    for (uint32_t bytes = 0; bytes <= 20; ++bytes) {
      Vector vector{7, 7, 7, nullptr};
      uint8_t memory[20];
      EXPECT_EQ(Vector_Init(&vector, type.code, memory, bytes), 1u);
      EXPECT_TRUE(equal(vector, {0, bytes / type.bytes, type.code, memory})) << type.code << ", " << bytes << " bytes";
    }
  }
}

TEST(VectorInit, Gives4096WordsOf8192Bytes) { EXPECT_EQ(Marked(VECTOR_TYPE_U16, 8192).vector.capacity, 4096u); }

TEST(VectorInit, CountsBytesIn32Bits) {
  Vector vector;
  EXPECT_EQ(Vector_Init(&vector, VECTOR_TYPE_U8, nullptr, 0xFFFFFFFFu), 1u);
  EXPECT_EQ(vector.capacity, 0xFFFFFFFFu);
}

TEST(VectorInit, LeavesTheMemoryAsItWas) {
  const Marked marked(VECTOR_TYPE_U32, 64);
  EXPECT_EQ(marked.memory.values(), Bytes(64, untouchedByte));
}

TEST(VectorInit, RefusesOtherTypes) {
  for (const uint32_t type : {uint32_t{VECTOR_TYPE_INVALID}, 8u, 9u, 255u, 256u, 0x80000001u, 0xFFFFFFFFu}) {
    Marked marked(VECTOR_TYPE_U16, 8);
    uint8_t other[8];
    EXPECT_TRUE(refuses(marked, [&](Vector* v) { return Vector_Init(v, type, other, 4); })) << type;
  }
}

// ---- Vector_Clear ----

TEST(VectorClear, EmptiesTheVectorAndLeavesItsBytes) {
  Marked marked(VECTOR_TYPE_U8, 6);
  EXPECT_EQ(Vector_Fill(&marked.vector, 9, 6), 1u);
  EXPECT_EQ(Vector_Clear(&marked.vector), 1u);
  EXPECT_TRUE(equal(marked.vector, {0, 6, VECTOR_TYPE_U8, marked.memory.data()}));
  EXPECT_EQ(marked.memory.values(), Bytes(6, 9));
}

TEST(VectorClear, OfAnEmptyVectorSucceeds) {
  Marked marked(VECTOR_TYPE_U8, 6);
  EXPECT_EQ(Vector_Clear(&marked.vector), 1u);
  EXPECT_EQ(marked.vector.count, 0u);
}

// ---- Vector_Fill ----

TEST(VectorFill, WritesTheLowBitsOfTheValueIntoExactlyTheFirstElements) {
  for (const Type& type : elementTypes) {
    for (const uint32_t value : {0u, 1u, 0x1FFu, 0x12345u, 0x89ABCDEFu, 0xFFFFFFFFu, 0xFFFF0000u, 0x100u}) {
      if (type.code == VECTOR_TYPE_WORD && value != 0) continue;
      for (uint32_t count = 0; count <= 9; ++count) {
        SCOPED_TRACE(testing::Message() << count << " elements of " << value << ", type " << type.code);
        Marked marked(type.code, 9 * type.bytes);
        EXPECT_EQ(Vector_Fill(&marked.vector, value, static_cast<int32_t>(count)), 1u);
        EXPECT_TRUE(equal(marked.vector, {count, 9, type.code, marked.memory.data()}));
        EXPECT_EQ(marked.memory.values(), filled(type, value, count, 9 * type.bytes));
      }
    }
  }
}

TEST(VectorFill, WithANegativeCountKeepsTheCount) {
  for (const int32_t count : {-1, -2, INT32_MIN}) {
    Marked marked(VECTOR_TYPE_U8, 8);
    EXPECT_EQ(Vector_Fill(&marked.vector, 1, 3), 1u);
    EXPECT_EQ(Vector_Fill(&marked.vector, 0x1FF, count), 1u);
    EXPECT_EQ(marked.vector.count, 3u);
    EXPECT_EQ(marked.memory.values(), filled({VECTOR_TYPE_U8, 1}, 0xFF, 3, 8));
  }
}

TEST(VectorFill, WithANegativeCountLeavesAnEmptyVectorEmpty) {
  Marked marked(VECTOR_TYPE_S32, 16);
  EXPECT_EQ(Vector_Fill(&marked.vector, 5, -1), 1u);
  EXPECT_EQ(marked.vector.count, 0u);
  EXPECT_EQ(marked.memory.values(), Bytes(16, untouchedByte));
}

TEST(VectorFill, SetsASmallerCount) {
  Marked marked(VECTOR_TYPE_U16, 16);
  EXPECT_EQ(Vector_Fill(&marked.vector, 7, 8), 1u);
  EXPECT_EQ(Vector_Fill(&marked.vector, 0, 2), 1u);
  EXPECT_EQ(marked.vector.count, 2u);
  EXPECT_EQ(marked.memory[3], 0);
  EXPECT_NE(std::count(marked.memory.begin() + 4, marked.memory.end(), 7), 0);
}

TEST(VectorFill, WithACountOfZeroEmptiesAVectorAndLeavesItsBytes) {
  for (const uint32_t value : {0u, 9u}) {
    Marked marked(VECTOR_TYPE_U16, 8);
    EXPECT_EQ(Vector_Fill(&marked.vector, 7, 3), 1u);
    const Bytes before = marked.memory.values();
    EXPECT_EQ(Vector_Fill(&marked.vector, value, 0), 1u);
    EXPECT_EQ(marked.vector.count, 0u) << value;
    EXPECT_EQ(marked.memory.values(), before) << value;
  }
}

TEST(VectorFill, ClearsAllOfItsCapacity) {
  Marked marked(VECTOR_TYPE_U16, 8192);
  EXPECT_EQ(Vector_Fill(&marked.vector, 0, 4096), 1u);
  EXPECT_EQ(marked.vector.count, 4096u);
  EXPECT_EQ(marked.memory.values(), Bytes(8192, 0));
}

TEST(VectorFill, LeavesTheBytesBehindItsLastWholeElement) {
  Marked marked(VECTOR_TYPE_U32, 10);
  EXPECT_EQ(Vector_Fill(&marked.vector, 0, 2), 1u);
  EXPECT_EQ(marked.memory.values(), filled({VECTOR_TYPE_U32, 4}, 0, 2, 10));
}

TEST(VectorFill, RefusesMoreThanTheCapacity) {
  for (const int32_t count : {4097, 65536, INT32_MAX}) {
    for (const uint32_t value : {0u, 3u}) {
      Marked marked(VECTOR_TYPE_U16, 8192);
      EXPECT_EQ(Vector_Fill(&marked.vector, 1, 5), 1u);
      EXPECT_TRUE(refuses(marked, [&](Vector* v) { return Vector_Fill(v, value, count); })) << count;
    }
  }
}

TEST(VectorFill, RefusesAValueForBareWords) {
  for (const int32_t count : {-1, 0, 2, 4}) {
    Marked marked(VECTOR_TYPE_WORD, 16);
    EXPECT_EQ(Vector_Fill(&marked.vector, 0, 3), 1u);
    EXPECT_TRUE(refuses(marked, [&](Vector* v) { return Vector_Fill(v, 5, count); })) << count;
  }
}

TEST(VectorFill, RefusesAValueForATypeItDoesNotKnow) {
  for (const uint32_t type : {7u, 8u, 0xFFFFFFFFu}) {
    Marked marked(VECTOR_TYPE_U8, 16);
    marked.vector.elementType = type;
    EXPECT_TRUE(refuses(marked, [&](Vector* v) { return Vector_Fill(v, 5, 2); })) << type;
  }
}

}  // namespace nadir::test
