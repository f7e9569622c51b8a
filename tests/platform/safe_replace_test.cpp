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
    const test::Bytes b = test::Random(size, 1);
    return {b.begin(), b.end()};
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

// The content replaced, the permissions kept, a backup when asked, a link
// followed to its target; a refusal leaves the folder as it was.
TEST(SafeReplace, ReplacesOrRefusesLeavingNothingElse) {
    const struct {
        std::size_t size, at;
        mode_t mode;
        const char *name, *backup;  // file name given, backup name
        KtStatus status;
    } cases[] = {
        {0, 0, 0644, "image.bin", nullptr, STATUS_OK},     {10, 3, 0600, "image.bin", "image.bak", STATUS_OK},
        {3 << 20, 1 << 20, 0755, "image.bin", "image.bak", STATUS_OK},
        {10, 2, 0644, "link.bin", nullptr, STATUS_OK},     {10, 0, 0644, "missing.bin", nullptr, ERR_FILE_READ},
        {10, 0, 0644, ".", nullptr, ERR_FILE_READ},  // a folder
        {10, 0, 0444, "image.bin", nullptr, ERR_FILE_CREATE},
        {10, 0, 0644, "image.bin", "image.bin", ERR_INVALID_PARAMETER},  // backup onto itself
        {10, 0, 0644, "image.bin", "no/such/folder", ERR_FILE_CREATE},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.size));
        test::ScratchDir dir;
        const std::string path = dir.File("image.bin"), before = Pattern(c.size);
        WriteFile(path, before);
        chmod(path.c_str(), c.mode);
        ASSERT_EQ(symlink("image.bin", dir.File("link.bin").c_str()), 0);
        const std::u16string backup = Wide(dir.File(c.backup ? c.backup : ""));
        ASSERT_EQ(Splice(dir.File(c.name), c.at, "NEW", c.backup ? backup.c_str() : nullptr), c.status);
        const bool done = c.status == STATUS_OK;
        EXPECT_EQ(ReadFile(path), done ? before.substr(0, c.at) + "NEW" + before.substr(c.at) : before);
        struct stat st;
        ASSERT_EQ(stat(path.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, c.mode);
        EXPECT_EQ(dir.Entries().size(), done && c.backup ? 3u : 2u);
        EXPECT_TRUE(!done || !c.backup || ReadFile(dir.File(c.backup)) == before);
    }
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
