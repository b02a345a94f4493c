// Runs of the vel tool as a user starts it.
#pragma once
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vel::test {

struct Outcome {
    int status;
    std::string out; // stdout, then stderr where the command line joins it (2>&1)
};

// A folder of its own for each test; commands run inside of it.
class RunTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / ("vel_test_" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    // A shell command line in which vel, MODULES and DATA stand for the tool, the folder of the
    // example modules, and that of the example data.
    Outcome run(const std::string &line) const {
        const std::string shell = "cd '" + folder_.string() +
                                  "' && vel() { '" VEL_TOOL "' \"$@\"; }; "
                                  "MODULES='" VEL_MODULES "' DATA='" OX_SOURCE_DIR
                                  "/examples/data'; " +
                                  line;
        FILE *pipe = popen(shell.c_str(), "r");
        std::string out;
        for (int c; (c = getc(pipe)) != EOF;) out += static_cast<char>(c);
        const int status = pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
    }
    // Runs the lines of a file beside this one that begin with "$ "; what they print, and [STATUS]
    // if that is not 0, are the lines behind them. Lines that begin with "# " are notes.
    void expect_transcript(const std::string &name) const {
        std::ifstream in(OX_SOURCE_DIR "/tests/vel/" + name);
        ASSERT_TRUE(in) << name;
        std::string expected, actual;
        for (std::string line; std::getline(in, line);) {
            if (line.starts_with("# ")) continue;
            for (std::string more; line.ends_with('\\') && std::getline(in, more);)
                line += '\n' + more;
            expected += line + '\n';
            if (!line.starts_with("$ ")) continue;
            const Outcome o = run("{ " + line.substr(2) + "\n} 2>&1");
            actual += line + '\n' + o.out;
            if (!o.out.empty() && o.out.back() != '\n') actual += '\n';
            if (o.status != 0) actual += '[' + std::to_string(o.status) + "]\n";
        }
        EXPECT_EQ(actual, expected);
    }
    void write(const std::string &name, const std::string &bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
    }
    std::string bytes_of(const std::string &name) const {
        std::ifstream in(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::filesystem::path folder_;
};

} // namespace vel::test
