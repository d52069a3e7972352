// Which vector instructions this processor has.
#pragma once

namespace nadir {

// One bit per level. On x86 a level is only set together with all below it.
enum Cpu : unsigned {
  cpuScalar = 0,
  cpuNeon = 1u << 0,
  cpuSse41 = 1u << 1,
  cpuAvx2 = 1u << 2,
  cpuAvx512 = 1u << 3,  // F, BW, DQ, VL and BITALG
};

// The levels this processor has and this build contains. Asked of the processor once, then remembered.
unsigned cpu();

// Makes cpu() answer `levels` from now on: a test or benchmark runs the whole library at a lower level. The caller
// must not add levels that the processor lacks.
void setCpu(unsigned levels);

// The name of the highest of these levels.
const char* cpuName(unsigned levels);

}  // namespace nadir
