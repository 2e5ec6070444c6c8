// Included before every test: what the tests need of GoogleTest and of the C library where there are no processes.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>

namespace testing {

struct KilledBySignal {
  explicit KilledBySignal(int) {}
};
struct ExitedWithCode {
  explicit ExitedWithCode(int) {}
};

}  // namespace testing

// A test that expects the end of a process goes on without this expectation and is listed as skipped, unless it fails.
#define EXPECT_EXIT(statement, predicate, message) \
  GTEST_AMBIGUOUS_ELSE_BLOCKER_                    \
  if (const auto neverCalled =                     \
          [&] {                                    \
            statement;                             \
            static_cast<void>(predicate);          \
            static_cast<void>(message);            \
          };                                       \
      false)                                       \
    neverCalled();                                 \
  else                                             \
    GTEST_MESSAGE_("needs a process of its own", testing::TestPartResult::kSkip)
#define EXPECT_DEATH(statement, message) EXPECT_EXIT(statement, testing::KilledBySignal(0), message)
