// Calls of check.h: a small pair, matched 33 times and four times more.
#include "lab/checker.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {

void callCheck() {
  const lab::TexturedPair textured = lab::texturedPair(96, 64);
  const NadirPlane left{textured.first.data(), 192, 96, 64}, right{textured.reference.data(), 192, 96, 64};
  const NadirPair pair{sizeof pair, 16, NADIR_RANGE_61, 0, left, right};
  NadirChecker* checker;
  NadirCheckup checkup = lab::emptyRecord<NadirCheckup>();
  done(nadir_checker_bytes(96, 64) > 0);
  done(nadir_checker_create(96, 64, &checker, nullptr) == NADIR_OK);
  done(nadir_checker_process(checker, &pair, &checkup) == NADIR_OK);
  done(nadir_verdict_name(checkup.verdict) != nullptr);
  done(nadir_verdict_advice(checkup.verdict) != nullptr);
  nadir_checker_destroy(checker);
}

}  // namespace nadir::test::counts
