// Calls of every exported function with fixed inputs, for the emulator to count their instructions.
//
// Each of these makes the calls of one part of the interface. Inputs are set up without the library where that can be
// done, since those calls would be counted too.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace nadir::test::counts {

void callImages();
void callStereo();
void callSegments();
void callGeometry();
void callCamera();
void callNumbers();
void callGround();
void callRectify();
void callCheck();

// A refused call would have a count too, and nobody would see that it says nothing.
inline void done(int64_t status, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (status == 1) return;
  std::fprintf(stderr, "%s:%d: the call was refused\n", file, line);
  std::abort();
}

}  // namespace nadir::test::counts
