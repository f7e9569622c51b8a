#include "platform/safe_replace.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "ktclr/status.h"
#include "support/support.h"

namespace kt {
namespace {

using test::ReadFile;
using test::Wide;
using test::WriteFile;

std::string Pattern(std::size_t size) {
    std::string s(size, '\0');
    for (std::size_t i = 0; i < size; ++i) s[i] = static_cast<char>((i * 131u + i / 251u) & 0xFF);
    return s;
}

// Inserts `insert` after the first `at` bytes of the file, through a temporary.
int Splice(const std::string& path, std::size_t at, const std::string& insert, const char16_t* backup = nullptr) {
    file::SafeReplace edit(mem::Module::iccsave);
    KtStatus status = edit.Begin(Wide(path).c_str());
    if (status != STATUS_OK) return status;
    if ((status = edit.Copy(0, static_cast<std::int64_t>(at))) != STATUS_OK) return status;
    if (!edit.Temp().WriteAll(insert.data(), insert.size())) return ERR_FILE_WRITE;
    status = edit.Copy(static_cast<std::int64_t>(at), edit.OriginalSize() - static_cast<std::int64_t>(at));
    return status != STATUS_OK ? status : edit.Commit(backup);
}

TEST(SafeReplace, ReplacesContentKeepingPermissionsAndOptionalBackup) {
    struct Case {
        std::size_t size, at;
        mode_t mode;
        bool backup;
    } cases[] = {{0, 0, 0644, false}, {10, 3, 0600, true}, {3 << 20, 1 << 20, 0755, true}};
    for (const Case& c : cases) {
        test::ScratchDir dir;
        const std::string path = dir.File("image.bin"), before = Pattern(c.size);
        WriteFile(path, before);
        chmod(path.c_str(), c.mode);
        const std::u16string backup = Wide(dir.File("image.bak"));
        ASSERT_EQ(Splice(path, c.at, "NEW", c.backup ? backup.c_str() : nullptr), STATUS_OK);
        EXPECT_EQ(ReadFile(path), before.substr(0, c.at) + "NEW" + before.substr(c.at));
        struct stat st;
        ASSERT_EQ(stat(path.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, c.mode);
        EXPECT_EQ(dir.Entries().size(), c.backup ? 2u : 1u);
        if (c.backup) {
            EXPECT_EQ(ReadFile(dir.File("image.bak")), before);
        }
    }
}

TEST(SafeReplace, ThroughSymbolicLinkEditsTheTarget) {
    test::ScratchDir dir;
    WriteFile(dir.File("target.bin"), "abcdef");
    ASSERT_EQ(symlink("target.bin", dir.File("link.bin").c_str()), 0);
    ASSERT_EQ(Splice(dir.File("link.bin"), 2, "--"), STATUS_OK);
    EXPECT_EQ(ReadFile(dir.File("target.bin")), "ab--cdef");
    struct stat st;
    ASSERT_EQ(lstat(dir.File("link.bin").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
}

TEST(SafeReplace, RefusalsLeaveEverythingAsItWas) {
    test::ScratchDir dir;
    const std::string path = dir.File("image.bin");
    WriteFile(path, "content");
    EXPECT_EQ(Splice(dir.File("missing.bin"), 0, "x"), ERR_FILE_READ);
    EXPECT_EQ(Splice(dir.path(), 0, "x"), ERR_FILE_READ);  // a folder
    chmod(path.c_str(), 0444);
    EXPECT_EQ(Splice(path, 0, "x"), ERR_FILE_CREATE);
    chmod(path.c_str(), 0644);
    EXPECT_EQ(Splice(path, 0, "x", Wide(path).c_str()), ERR_INVALID_PARAMETER);  // backup onto itself
    EXPECT_EQ(Splice(path, 0, "x", Wide(dir.File("no/such/folder")).c_str()), ERR_FILE_CREATE);
    EXPECT_EQ(ReadFile(path), "content");
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"image.bin"});
}

// A filesystem of 256 KB that a 200 KB file plus its temporary overflows.
// Needs the right to mount (root in CI); skipped otherwise.
TEST(SafeReplace, FullFilesystemLeavesTheOriginal) {
    test::ScratchDir dir;
    const std::string mnt = dir.File("small");
    mkdir(mnt.c_str(), 0755);
    if (mount("tmpfs", mnt.c_str(), "tmpfs", 0, "size=256k") != 0) GTEST_SKIP() << "cannot mount a tmpfs here";
    // A backup on another filesystem is a copy.
    WriteFile(dir.File("small.bin"), "abc");
    ASSERT_EQ(Splice(dir.File("small.bin"), 1, "-", Wide(mnt + "/small.bak").c_str()), STATUS_OK);
    EXPECT_EQ(ReadFile(mnt + "/small.bak"), "abc");
    unlink((mnt + "/small.bak").c_str());

    const std::string path = mnt + "/image.bin", before = Pattern(200000);
    WriteFile(path, before);
    EXPECT_EQ(Splice(path, 5, "NEW"), ERR_FILE_WRITE);
    EXPECT_TRUE(ReadFile(path) == before);
    test::Run("ls -A '" + mnt + "' | wc -l > '" + dir.File("count") + "'");
    EXPECT_EQ(ReadFile(dir.File("count")), "1\n");
    umount(mnt.c_str());
}

}  // namespace
}  // namespace kt
