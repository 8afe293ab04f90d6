// The stream every trace line of a thread is rendered into.
#include "frame/LineStream.h"

#include <gtest/gtest.h>

#include <iomanip>

namespace vxt::frame {
namespace {

TEST(LineStreamTest, EachLineStartsAsANewStreamAndHoldsOnlyItsOwnText) {
  {
    LineStream first;
    first.stream() << std::hex << std::setfill('0') << std::setw(6) << 255 << std::showbase << " and a long tail";
    EXPECT_STREQ(first.c_str(), "0000ff and a long tail");
  }
  LineStream second;
  second.stream() << 42 << std::setw(3) << 'x' << 1.5;
  EXPECT_STREQ(second.c_str(), "42  x1.5");
}

TEST(LineStreamTest, ALineRenderedWhileAnotherIsBeingRenderedHasItsOwnStream) {
  LineStream outer;
  outer.stream() << "outer ";
  {
    LineStream inner;
    inner.stream() << "inner";
    EXPECT_STREQ(inner.c_str(), "inner");
  }
  outer.stream() << "line";
  EXPECT_STREQ(outer.c_str(), "outer line");
}

}  // namespace
}  // namespace vxt::frame
