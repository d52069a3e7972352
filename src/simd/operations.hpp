// The vector operations that kernels are written in: what each of them does, and which of them a level must have.
//
// A level is a type `Simd` with vectors of its own: U8 holds as many bytes as a register does, U16 as many 16-bit
// words. Arithmetic wraps around, comparisons are unsigned and give lanes with all bits set or none. Functions are
// found through the vectors' namespace. Two flags tell which operations a level has beyond those that all have:
//
//   findsEight  it finds the winners of eight pixels together
//   looksUp     it has a look-up in 16 bytes that beats counting bits, which it has otherwise
//
// Each level's header ends with a static_assert on hasItsOperations: an operation that is missing, or gives another
// type, is named there by the compiler and not somewhere in a kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace nadir {

template <class Given, class Wanted>
constexpr bool gives = std::is_same_v<Given, Wanted>;

template <class Simd>
struct OperationsOfAll {
  using U8 = typename Simd::U8;
  using U16 = typename Simd::U16;
  using Four = typename Simd::Four;
  using WordBytes = typename Simd::WordBytes;

  // The operands below. They are only named, so that none of them needs a definition.
  static U8 a, b;
  static const U8 (&blocks)[4], (&indices)[4];
  static U16 v, w;
  static uint8_t* bytes;
  static uint16_t* words;
  static uint32_t* doubleWords;

  // ---- bytes ----

  static_assert(U8::lanes == sizeof(U8));
  static_assert(gives<decltype(U8::load(bytes)), U8>);   // from any address
  static_assert(gives<decltype(a.store(bytes)), void>);  // to any address
  static_assert(gives<decltype(U8::all(uint8_t{0})), U8>);
  static_assert(gives<decltype(U8::allOf(bytes)), U8>);  // all lanes as the byte at an address
  static_assert(gives<decltype(a + b), U8>);
  static_assert(gives<decltype(a - b), U8>);
  static_assert(gives<decltype(a ^ b), U8>);
  static_assert(gives<decltype(a | b), U8>);
  static_assert(gives<decltype(min(a, b)), U8>);
  static_assert(gives<decltype(atMost(a, b)), U8>);

  // Bit i is set where lane i of a is at most that of b.
  static_assert(gives<decltype(lanesAtMost(a, b)), uint64_t>);

  // movedUp(below, a) is the lanes moved up by one: the last lane of `below`, then all but the last of a.
  // movedDown(a, above) moves them down: all but the first of a, then the first lane of `above`.
  static_assert(gives<decltype(movedUp(a, b)), U8>);
  static_assert(gives<decltype(movedDown(a, b)), U8>);

  // These move what lies at an address, loaded already, up or down by one lane and put 255 into the free one.
  // Processors that load from any address in no time do better to load again, from the byte before that address or
  // behind it.
  static_assert(gives<decltype(againMovedUp(bytes, a)), U8>);
  static_assert(gives<decltype(againMovedDown(bytes, a)), U8>);

  // zipped is a pair of vectors with one lane of a, one of b, and so on; unzipped is the way back.
  static_assert(gives<decltype(zipped(a, b).first), U8> && gives<decltype(zipped(a, b).second), U8>);
  static_assert(gives<decltype(unzipped(a, b).first), U8> && gives<decltype(unzipped(a, b).second), U8>);

  static_assert(gives<decltype(allZero(a)), bool>);
  static_assert(gives<decltype(firstLane(a)), uint8_t>);

  // The smallest lane, in every lane; and that of each of four vectors.
  static_assert(gives<decltype(smallestInAll(a)), U8>);
  static_assert(gives<decltype(smallestInEach(a, a, b, b)), Four>);
  static_assert(gives<decltype(Four::v), U8[4]>);

  // Four bytes, each in every lane of a vector.
  static_assert(gives<decltype(Four::of(bytes)), Four>);

  // How many lanes of all blocks are at most those of a bound.
  static_assert(gives<decltype(countAtMost(blocks, b)), unsigned>);

  // The smallest 256 * value + index of all lanes of values and indices.
  static_assert(gives<decltype(smallestKey(blocks, indices)), unsigned>);

  // The four bytes of double words, as many as U8 has lanes.
  static_assert(gives<decltype(WordBytes::load(doubleWords)), WordBytes>);
  static_assert(gives<decltype(WordBytes::low), U8> && gives<decltype(WordBytes::mid), U8>);
  static_assert(gives<decltype(WordBytes::high), U8> && gives<decltype(WordBytes::top), U8>);

  // ---- words ----

  static_assert(2 * U16::lanes == U8::lanes);
  static_assert(gives<decltype(U16::load(words)), U16>);
  static_assert(gives<decltype(v.store(words)), void>);
  static_assert(gives<decltype(U16::all(uint16_t{0})), U16>);
  static_assert(gives<decltype(v + w), U16>);
  static_assert(gives<decltype(v - w), U16>);
  static_assert(gives<decltype(v & w), U16>);
  static_assert(gives<decltype(v * w), U16>);  // the low 16 bits
  static_assert(gives<decltype(min(v, w)), U16>);
  static_assert(gives<decltype(max(v, w)), U16>);
  static_assert(gives<decltype(absoluteDifference(v, w)), U16>);
  static_assert(gives<decltype(dividedBy16(v)), U16>);
  static_assert(gives<decltype(dividedBy256(v)), U16>);
  static_assert(gives<decltype(equal(v, w)), U16>);
  static_assert(gives<decltype(less(v, w)), U16>);
  static_assert(gives<decltype(select(v, v, w)), U16>);  // by a mask: the second where it is set, else the third

  // storeWords(p, low, high) stores the double words high << 16 | low.
  static_assert(gives<decltype(storeWords(doubleWords, v, w)), void>);

  // The lanes of v, then those of w, as bytes: 255 for what is more. At most 2^15 - 1 comes in.
  static_assert(gives<decltype(saturatedBytes(v, w)), U8>);
};

// Each pixel's numbers fill four vectors. Their searches fill each other's gaps and end in one vector together, with a
// lane for each pixel.
template <class Simd>
struct OperationsForEight : OperationsOfAll<Simd> {
  using All = OperationsOfAll<Simd>;
  using typename All::U16, typename All::U8;
  static const U8 (&counts)[8];
  static const U16 (&keys)[8];

  // The smallest 256 * value + index: what remains of a pixel in eight lanes, and the end of eight such searches.
  // Indices grow from block to block.
  static_assert(gives<decltype(smallestKeys(All::blocks, All::indices)), U16>);
  static_assert(gives<decltype(smallestInEach(keys)), U16>);

  // How many lanes of all blocks are at most a bound: less than none in each lane, and the end of eight such counts.
  static_assert(gives<decltype(countsAtMost(All::blocks, All::b)), U8>);
  static_assert(gives<decltype(countOfEach(counts)), U16>);
};

template <class Simd>
struct OperationsForLookUps : OperationsOfAll<Simd> {
  using All = OperationsOfAll<Simd>;
  using typename All::U8;

  // The 16 bytes at an address, again and again.
  static_assert(gives<decltype(U8::repeated16(All::bytes)), U8>);

  // lookedUp(table, index): within every 16 lanes, the lane of `table` that the lower four bits of `index` name, or 0
  // where its top bit is set. The three bits between are 0.
  static_assert(gives<decltype(lookedUp(All::a, All::b)), U8>);

  // Two lanes each are taken for a word and divided by 16: what is in a lane's upper four bits comes into its lower
  // ones, the rest of it is anything.
  static_assert(gives<decltype(wordsDividedBy16(All::a)), U8>);
  static_assert(gives<decltype(All::a & All::b), U8>);
};

template <class Simd>
struct OperationsForBitCounts : OperationsOfAll<Simd> {
  using All = OperationsOfAll<Simd>;
  using typename All::U8;

  static_assert(gives<decltype(bitCount(All::a)), U8>);  // the number of bits that are set, in each lane
  static_assert(gives<decltype(max(All::a, All::b)), U8>);
};

template <class Simd>
constexpr bool hasItsOperations() {
  using Eight = std::conditional_t<Simd::findsEight, OperationsForEight<Simd>, OperationsOfAll<Simd>>;
  using Codes = std::conditional_t<Simd::looksUp, OperationsForLookUps<Simd>, OperationsForBitCounts<Simd>>;
  return sizeof(Eight) > 0 && sizeof(Codes) > 0;  // NOLINT(bugprone-sizeof-expression): instantiates them
}

}  // namespace nadir
