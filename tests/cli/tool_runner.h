// Runs the built ktclr tool and the independent readers in a scratch
// folder, capturing exit status, standard output and standard error.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace ktcli::test {

struct Outcome {
    int status;
    std::string out, err;
};

inline std::string Slurp(const std::filesystem::path& p) {
    std::ifstream f(p, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream s(text);
    for (std::string l; std::getline(s, l);) lines.push_back(l);
    return lines;
}

class ToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("ktclr-cli-" + std::to_string(getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
        tool_ = KTCLR_TOOL_PATH;
        chart_ = std::string(KTCLR_SOURCE_PATH) + "/data/chart.png";
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    // Runs a shell command line in the scratch folder; $KTCLR is the built
    // tool and $CHART the project's color chart.
    Outcome Sh(const std::string& cmd) const {
        const std::string full = "cd '" + dir_.string() + "' && KTCLR='" + tool_ + "' CHART='" + chart_ + "' " +
                                 "sh -c '" + Escape(cmd) + "' > .out 2> .err < /dev/null";
        const int raw = std::system(full.c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, Slurp(dir_ / ".out"), Slurp(dir_ / ".err")};
    }
    // Runs and expects success.
    std::string Ok(const std::string& line) const {
        const Outcome r = Sh(line);
        EXPECT_EQ(r.status, 0) << line << "\n" << r.err;
        return r.out;
    }
    std::filesystem::path Path(const std::string& name) const { return dir_ / name; }

    std::filesystem::path dir_;
    std::string tool_, chart_;

private:
    static std::string Escape(const std::string& s) {
        std::string out;
        for (char c : s) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return out;
    }
};

}  // namespace ktcli::test
