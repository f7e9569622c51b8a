// Status names and sentences: every status the header declares has its own,
// values that are no status have none.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "ktclr/status.h"

namespace {

// A status added to the header without words would answer UNKNOWN_STATUS.
TEST(StatusNames, EveryDeclaredStatusHasItsName) {
    const char* source = std::getenv("KTCLR_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    std::ifstream header(std::string(source) + "/include/ktclr/status.h");
    int seen = 0;
    for (std::string line; std::getline(header, line);) {
        // "    NAME = value, /* ... */" with NAME an ERR_, WARN_ or STATUS_ name.
        char name[64];
        int value;
        if (std::sscanf(line.c_str(), " %63[A-Z0-9_] = %d", name, &value) != 2) continue;
        const std::string n = name;
        if (n.rfind("ERR_", 0) && n.rfind("WARN_", 0) && n.rfind("STATUS_", 0)) continue;
        EXPECT_EQ(Vx_ClrGetStatusName(value), n);
        EXPECT_STRNE(Vx_ClrGetStatusText(value), "unknown status") << n;
        ++seen;
    }
    EXPECT_GT(seen, 30);
    EXPECT_STREQ(Vx_ClrGetStatusText(ERR_FILE_NOT_FOUND), "no such file, or its path is longer than 259 characters");
    for (const KtStatus none : {0, -2, 2, INT_MIN, INT_MAX}) {
        EXPECT_STREQ(Vx_ClrGetStatusName(none), "UNKNOWN_STATUS") << none;
        EXPECT_STREQ(Vx_ClrGetStatusText(none), "unknown status") << none;
    }
}

}  // namespace
