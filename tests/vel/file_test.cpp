// VEL files as a user meets them, from the line that makes one to the sentence about a bad one.
#include "run.h"

namespace vel::test {
namespace {

class File : public RunTest {};

TEST_F(File, SaysWhatIsInside) { expect_transcript("file.txt"); }
TEST_F(File, PassesToModules) { expect_transcript("call.txt"); }

TEST_F(File, NothingIsLeftBehind) {
    EXPECT_EQ(run("vel save f.vel a=1 b=none.csv 2>/dev/null; echo $?; ls").out, "3\n");
    // Stopped while it waits for a pipe to be filled. (A shell lets its background processes ignore
    // the interrupt of Ctrl-C; both signals take the same way.)
    EXPECT_EQ(run("mkfifo p.csv; '" VEL_TOOL "' save f.vel a=1 b=p.csv & "
                  "for k in $(seq 1000); do ls f.vel.* >/dev/null 2>&1 && break; sleep 0.01; done; "
                  "kill -TERM $!; wait $! 2>/dev/null; ls")
                  .out,
              "p.csv\n");
}

} // namespace
} // namespace vel::test
