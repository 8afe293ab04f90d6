// libFuzzer's entry: each input is a call sequence; a private code or a
// client left connected ends the run like a crash does.
#include <cstdio>
#include <cstdlib>

#include "CallSequence.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const vxt::fuzz::SequenceOutcome outcome = vxt::fuzz::RunCallSequence(data, size);
  for (const std::string& problem : outcome.problems) std::fprintf(stderr, "fuzz: %s\n", problem.c_str());
  if (!outcome.problems.empty()) std::abort();
  return 0;
}
