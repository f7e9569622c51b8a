// Status names and sentences: a few literal rows, the edges of the table
// and values that are no status.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "ktclr/status.h"

namespace {

struct Row {
    KtStatus status;
    const char* name;
    const char* text;
};

TEST(StatusNames, NamesAndSentences) {
    const Row rows[] = {
        {1, "STATUS_OK", "success"},
        {-8, "ERR_FILE_NOT_FOUND", "no such file, or its path is longer than 259 characters"},
        {-786, "ERR_BAD_METHOD", "the method is unknown, not prepared or not available for this pair"},
        {-1151, "WARN_UNKNOWN_TAG_TYPE", "done; the tag type has no codec and was kept as bytes"},
        {-1859, "ERR_CHUNK_TOO_LARGE", "a RIFF chunk runs past the end of the file"},
        {-1872, "ERR_TIFF_NOT_TIFF", "the table file is not a TIFF file"},
        {0, "UNKNOWN_STATUS", "unknown status"},
        {-2, "UNKNOWN_STATUS", "unknown status"},
        {2, "UNKNOWN_STATUS", "unknown status"},
        {INT_MIN, "UNKNOWN_STATUS", "unknown status"},
        {INT_MAX, "UNKNOWN_STATUS", "unknown status"},
    };
    for (const Row& r : rows) {
        EXPECT_STREQ(Vx_ClrGetStatusName(r.status), r.name) << r.status;
        EXPECT_STREQ(Vx_ClrGetStatusText(r.status), r.text) << r.status;
    }
}

// A status added to the header without words would answer UNKNOWN_STATUS:
// every enumerator the header declares has its own name.
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
}

}  // namespace
