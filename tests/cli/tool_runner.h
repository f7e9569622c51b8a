// Runs the built ktclr tool and the independent readers in a scratch
// folder, capturing exit status, standard output and standard error.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace ktcli::test {

struct Outcome {
    int status;
    std::string out, err;
};

// Expects each of the '|'-separated parts of `wanted` in `text`.
inline void ExpectParts(const std::string& text, const std::string& wanted) {
    for (size_t at = 0, bar; at <= wanted.size(); at = bar + 1) {
        bar = std::min(wanted.find('|', at), wanted.size());
        EXPECT_NE(text.find(wanted.substr(at, bar - at)), std::string::npos) << wanted.substr(at, bar - at) << "\n" << text;
    }
}

class ToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("ktclr-cli-" + std::to_string(getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
        setenv("KTCLR", KTCLR_TOOL_PATH, 1);
        setenv("CHART", KTCLR_SOURCE_PATH "/data/chart.png", 1);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    // Runs a shell command line in the scratch folder; $KTCLR is the built
    // tool and $CHART the project's color chart.
    Outcome Sh(const std::string& cmd) const {
        const std::string full = "cd '" + dir_.string() + "' && (" + cmd + "\n) > .out 2> .err < /dev/null";
        const int raw = std::system(full.c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Slurp(".out"), Slurp(".err")};
    }
    // Runs and expects success.
    std::string Ok(const std::string& line) const {
        const Outcome r = Sh(line);
        EXPECT_EQ(r.status, 0) << line << "\n" << r.err;
        return r.out;
    }
    // The bytes of a file, by its name in the scratch folder or its full path.
    std::string Slurp(const std::string& name) const {
        std::ifstream f(dir_ / name, std::ios::binary);
        std::ostringstream s;
        s << f.rdbuf();
        return s.str();
    }

    std::filesystem::path dir_;
};

}  // namespace ktcli::test
