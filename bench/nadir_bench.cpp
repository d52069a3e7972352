// Google Benchmark over every exported function, at every level of this processor. Besides Google Benchmark's options:
//   --level=NAME   only this level: scalar, neon, sse4.1, avx2 or avx512
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include "bench/work.hpp"
#include "simd/cpu.hpp"

namespace nadir::bench {
namespace {

void runWork(benchmark::State& state, const Work& work, unsigned level) {
  setCpu(level);
  for (auto _ : state) work.run();
  if (work.pixels == 0) return;
  const double pixels = static_cast<double>(work.pixels) * static_cast<double>(state.iterations());
  state.counters["Mpixel/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsRate);
  state.SetBytesProcessed(static_cast<int64_t>(work.bytes) * state.iterations());
}

void registerWorks(const Works& works, const std::string& size, const Level& level) {
  for (const Work& work : works) {
    const std::string name = work.name + "/" + size + "/" + level.name;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { runWork(state, work, level.cpu); });
  }
}

// The largest size is the road's alone: the others' times grow with the pixels, see docs/measured/benchmarks.md.
Works worksOf(const lab::TexturedPair& pair) {
  if (pair.width <= 640) return allWorks(pair);
  Works road;
  addGroundWorks(road, pair);
  addRectifyWorks(road, pair);
  addCheckWorks(road, pair);
  addLevelWorks(road, pair);
  return road;
}

// Takes --level out of the arguments; empty for all levels.
std::string takeLevel(int& argc, char** argv) {
  std::string wanted;
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], "--level=", 8) == 0) {
      wanted = argv[i] + 8;
    } else {
      argv[kept++] = argv[i];
    }
  }
  argc = kept;
  return wanted;
}

int run(int argc, char** argv) {
  const std::string wanted = takeLevel(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  bool found = false;
  const std::vector<Level> present = levels();
  for (const lab::TexturedPair& pair :
       {lab::texturedPair(320, 240), lab::texturedPair(640, 480), lab::texturedPair(1280, 960)}) {
    const Works works = worksOf(pair);
    for (const Level& level : present) {
      if (!wanted.empty() && wanted != level.name) continue;
      found = true;
      registerWorks(works, lab::sizeText(pair), level);
    }
  }
  if (!found) {
    std::fprintf(stderr, "this processor or build has no level %s\n", wanted.c_str());
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace
}  // namespace nadir::bench

int main(int argc, char** argv) { return nadir::bench::run(argc, argv); }
