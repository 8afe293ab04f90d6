// The Error library: contexts per thread, posted codes and messages, their
// copies into callers' buffers, and the standing texts of codes.
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Error.h"

namespace {

std::string MessageOf(Voxtrel_ErrorContext context) {
  uint32_t size = 0;
  Voxtrel_ErrorGetErrorMessageSize(context, &size);
  if (size == 0) return {};
  std::string buffer(size, '\0');
  Voxtrel_ErrorGetErrorMessage(context, buffer.data(), size);
  EXPECT_EQ(buffer.back(), '\0');
  buffer.pop_back();
  return buffer;
}

void Post(uint32_t code, const char* text) { Voxtrel_ErrorPostError(code, text, __FILE__, __LINE__); }

TEST(ErrorContext, InnerPostsStayInTheInnerContext) {
  const Voxtrel_ErrorContext outer = Voxtrel_ErrorEnterContex(1);
  Post(0x20001, "outer first");
  const Voxtrel_ErrorContext inner = Voxtrel_ErrorEnterContex(1);
  EXPECT_NE(inner, outer);
  Post(0x140002, "inner");
  EXPECT_EQ(MessageOf(inner), "inner");
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(inner), 0x140002u);
  Voxtrel_ErrorExitContex(inner);

  Post(0, "outer second");
  EXPECT_EQ(MessageOf(outer), "outer first; outer second");
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(outer), 0x20001u);
  Voxtrel_ErrorExitContex(outer);
  EXPECT_EQ(MessageOf(outer), "");
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(outer), 0u);
}

TEST(ErrorContext, KeepsTheFirstCodeAndTheNonEmptyTexts) {
  struct Post {
    uint32_t code;
    const char* text;
  };
  struct Case {
    std::vector<Post> posts;
    uint32_t code;
    std::string message;
  };
  const Case cases[] = {
      {{}, 0, ""},
      {{{0x20009, ""}}, 0x20009, ""},
      {{{0x20009, nullptr}}, 0x20009, ""},
      {{{0, "text without a code"}}, 0, "text without a code"},
      {{{0, "a"}, {0x20002, "b"}, {0x20003, "c"}}, 0x20002, "a; b; c"},
      {{{0x2000a, ""}, {0x20000, "only text"}}, 0x2000a, "only text"},
  };
  for (const Case& test : cases) {
    const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
    for (const Post& post : test.posts) Voxtrel_ErrorPostError(post.code, post.text, nullptr, 0);
    EXPECT_EQ(Voxtrel_ErrorGetErrorCode(context), test.code) << test.message;
    EXPECT_EQ(MessageOf(context), test.message);
    Voxtrel_ErrorExitContex(context);
  }
}

TEST(ErrorContext, PostingWithoutAContextIsHarmless) {
  Post(0x20000, "nowhere");
  const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(context), 0u);
  EXPECT_EQ(MessageOf(context), "");
  Voxtrel_ErrorExitContex(context);
}

TEST(ErrorContext, ExitingAnOuterContextClosesWhatWasLeftOpenInsideIt) {
  const Voxtrel_ErrorContext outer = Voxtrel_ErrorEnterContex(1);
  const Voxtrel_ErrorContext middle = Voxtrel_ErrorEnterContex(1);
  const Voxtrel_ErrorContext inner = Voxtrel_ErrorEnterContex(1);
  Post(0x20002, "inner");
  Voxtrel_ErrorExitContex(middle);
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(inner), 0u);

  Voxtrel_ErrorExitContex(inner);  // No longer open: nothing happens
  Voxtrel_ErrorExitContex(0);
  Voxtrel_ErrorExitContex(~uint64_t{0});
  Post(0x20003, "outer");
  EXPECT_EQ(MessageOf(outer), "outer");
  Voxtrel_ErrorExitContex(outer);
}

// Contexts nest as deep as operations call operations; the first few are
// kept apart from deeper ones, so the nesting crosses that line both ways.
TEST(ErrorContext, DeepNestingKeepsEachContextsOwnPosts) {
  constexpr int kDepth = 20;
  for (const int closeAt : {3, 8, 12}) {
    std::vector<Voxtrel_ErrorContext> open;
    for (int depth = 0; depth < kDepth; ++depth) {
      open.push_back(Voxtrel_ErrorEnterContex(1));
      if (depth % 2 == 0) Post(0x20000 + depth, std::to_string(depth).c_str());
    }
    Voxtrel_ErrorExitContex(open[closeAt]);  // Closes it and all inside it
    for (int depth = 0; depth < kDepth; ++depth) {
      const bool kept = depth < closeAt && depth % 2 == 0;
      EXPECT_EQ(MessageOf(open[depth]), kept ? std::to_string(depth) : "") << closeAt << " " << depth;
      EXPECT_EQ(Voxtrel_ErrorGetErrorCode(open[depth]), kept ? 0x20000u + depth : 0u) << closeAt << " " << depth;
    }
    Post(0x20001, "again");
    const int innermost = closeAt - 1;
    EXPECT_EQ(MessageOf(open[innermost]), innermost % 2 == 0 ? std::to_string(innermost) + "; again" : "again");
    const Voxtrel_ErrorContext reopened = Voxtrel_ErrorEnterContex(1);
    Post(0x20002, "reopened");
    EXPECT_EQ(MessageOf(reopened), "reopened");
    Voxtrel_ErrorExitContex(reopened);
    for (int depth = closeAt; depth-- > 0;) Voxtrel_ErrorExitContex(open[depth]);
    EXPECT_EQ(MessageOf(open[0]), "");
  }
}

TEST(ErrorContext, MessageCopiesAreCutToTheBufferAndTerminated) {
  const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
  Post(0x20000, "abcdef");
  uint32_t size = 0;
  Voxtrel_ErrorGetErrorMessageSize(context, &size);
  EXPECT_EQ(size, 7u);
  Voxtrel_ErrorGetErrorMessageSize(context, nullptr);

  const std::pair<uint32_t, std::string> cases[] = {{1, ""}, {2, "a"}, {4, "abc"}, {7, "abcdef"}, {20, "abcdef"}};
  for (const auto& [bufferSize, expected] : cases) {
    std::vector<char> buffer(bufferSize + 1, '#');
    Voxtrel_ErrorGetErrorMessage(context, buffer.data(), bufferSize);
    EXPECT_STREQ(buffer.data(), expected.c_str()) << bufferSize;
    EXPECT_EQ(buffer[bufferSize], '#') << "wrote past the size " << bufferSize;
  }
  char untouched = '#';
  Voxtrel_ErrorGetErrorMessage(context, &untouched, 0);
  EXPECT_EQ(untouched, '#');
  Voxtrel_ErrorGetErrorMessage(context, nullptr, 10);
  Voxtrel_ErrorExitContex(context);
}

TEST(ErrorContext, ThreadsEachSeeOnlyTheirOwnContexts) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 500;
  std::vector<std::thread> threads;
  std::vector<std::vector<Voxtrel_ErrorContext>> ids(kThreads);
  std::vector<int> failures(kThreads, 0);
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      const std::string text = "thread " + std::to_string(t);
      for (int round = 0; round < kRounds; ++round) {
        const Voxtrel_ErrorContext outer = Voxtrel_ErrorEnterContex(1);
        const Voxtrel_ErrorContext inner = Voxtrel_ErrorEnterContex(1);
        ids[t].push_back(outer);
        ids[t].push_back(inner);
        Post(0x20000 + t, text.c_str());
        Voxtrel_ErrorExitContex(inner);
        if (MessageOf(outer) != "" || Voxtrel_ErrorGetErrorCode(outer) != 0) ++failures[t];
        Post(0x20000 + t, text.c_str());
        if (MessageOf(outer) != text || Voxtrel_ErrorGetErrorCode(outer) != 0x20000u + t) ++failures[t];
        Voxtrel_ErrorExitContex(outer);
        Voxtrel_ErrorGetDefaultMessage(0x7700000 + round);
      }
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
  std::set<Voxtrel_ErrorContext> unique;
  for (const auto& perThread : ids) unique.insert(perThread.begin(), perThread.end());
  EXPECT_EQ(unique.size(), size_t{kThreads * kRounds * 2});
  EXPECT_EQ(unique.count(0), 0u);
}

TEST(ErrorContext, ContextsOfAnotherThreadAreNotVisible) {
  Voxtrel_ErrorContext elsewhere = 0;
  std::thread([&] {
    elsewhere = Voxtrel_ErrorEnterContex(1);
    Post(0x20002, "elsewhere");
  }).join();
  uint32_t size = 99;
  Voxtrel_ErrorGetErrorMessageSize(elsewhere, &size);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(elsewhere), 0u);
}

TEST(DefaultMessage, CodesHaveTheirStandingTexts) {
  const std::pair<uint32_t, const char*> cases[] = {
      {0x0, "Success"},
      {0x2000a, "Structure size not initialized"},
      {0xffffffff, "Unspecified failure"},
      // Codes without a standing text
      {0x2000c, "Unknown error 0x0002000c"},
      {0x80000001, "Unknown error 0x80000001"},
      {0x1, "Unknown error 0x00000001"},
  };
  for (const auto& [code, text] : cases) EXPECT_STREQ(Voxtrel_ErrorGetDefaultMessage(code), text) << code;
}

TEST(DefaultMessage, TextsOfUnknownCodesStayValid) {
  const char* first = Voxtrel_ErrorGetDefaultMessage(0x123456);
  for (uint32_t code = 0x990000; code < 0x990400; ++code) Voxtrel_ErrorGetDefaultMessage(code);
  EXPECT_EQ(Voxtrel_ErrorGetDefaultMessage(0x123456), first);
  EXPECT_STREQ(first, "Unknown error 0x00123456");
}

}  // namespace
