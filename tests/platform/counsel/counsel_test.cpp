// The advice library: the module's interpretation through the registered
// interpreter, a line of its own for graph panes, and never a byte past the
// caller's size.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "zvcounsel/zvcounsel.h"

namespace {

zv::ProcedureState* gSeenState = nullptr;
int32_t gSeenItem = 0;
const char* gInterpretation = "";

int32_t Interpreter(zv::ProcedureState* state, char* output, int32_t item) {
  gSeenState = state;
  gSeenItem = item;
  std::strcpy(output, gInterpretation);
  return 1;
}

// Any non-null pointer stands for the analysis: the library only passes it on.
zv::ProcedureState* const kState = reinterpret_cast<zv::ProcedureState*>(0x1000);

class CounselTest : public ::testing::Test {
 protected:
  void TearDown() override { CounselSetInterpreter(nullptr); }
  std::string Write(int32_t item, int32_t graph, int32_t size = 8192) {
    std::string buffer(8200, '#');
    CounselWrite(kState, item, buffer.data(), size, 0, graph);
    // Bytes past the size stay as they were.
    EXPECT_EQ(buffer.find_first_not_of('#', static_cast<size_t>(size)), std::string::npos);
    return std::string(buffer.c_str());
  }
};

TEST_F(CounselTest, TextPaneGetsTheModulesInterpretation) {
  CounselSetInterpreter(&Interpreter);
  gInterpretation = "The mean is 180.\r\n";
  EXPECT_EQ(Write(1, 0), "The mean is 180.\r\n");
  EXPECT_EQ(gSeenState, kState);
  EXPECT_EQ(gSeenItem, 1);
  // A text without its last line end gets one.
  gInterpretation = "No line end";
  EXPECT_EQ(Write(2, 0), "No line end\r\n");
  // Nothing to say gives an empty text.
  gInterpretation = "";
  EXPECT_EQ(Write(3, 0), "");
}

TEST_F(CounselTest, GraphPaneAddsGeneralAdvice) {
  std::string alone = Write(8, 1);  // no interpreter registered
  ASSERT_FALSE(alone.empty());
  EXPECT_EQ(alone.substr(alone.size() - 2), "\r\n");
  CounselSetInterpreter(&Interpreter);
  gInterpretation = "Stacks are tall.\r\n";
  EXPECT_EQ(Write(8, 1), "Stacks are tall.\r\n" + alone);
  EXPECT_EQ(gSeenItem, 8);
}

TEST_F(CounselTest, NeverWritesPastTheSize) {
  CounselSetInterpreter(&Interpreter);
  struct Row {
    int line;
    const char* interpretation;
    int32_t size;
    std::string expected;
  };
  const Row rows[] = {
      {__LINE__, "abcdefghijkl\r\n", 5, "abcd"},
      // The cut would fall between "\r" and "\n": the "\r" goes too.
      {__LINE__, "abcdefgh\r\nxyz\r\n", 10, "abcdefgh"},
      {__LINE__, "abcdefgh\r\nxyz\r\n", 11, "abcdefgh\r\n"},
      {__LINE__, "abc\r\n", 1, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    gInterpretation = row.interpretation;
    EXPECT_EQ(Write(1, 0, row.size), row.expected);
  }
  // No room at all: nothing is written.
  std::string buffer(4, '#');
  CounselWrite(kState, 1, buffer.data(), 0, 0, 1);
  CounselWrite(kState, 1, nullptr, 100, 0, 1);
  EXPECT_EQ(buffer, "####");
}

}  // namespace
