#include "profile_cmd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "image.h"
#include "profile_info.h"
#include "profiles.h"
#include "report.h"
#include "spaces.h"

namespace ktcli {
namespace {

bool LooksLikeProfile(const Bytes& b) { return b.size() >= 132 && memcmp(b.data() + 36, "acsp", 4) == 0; }

Bytes LoadFromImage(const std::string& image) {
    ProfileRecord p;
    const std::u16string name = Wide(image);
    const KtStatus s = Vx_LoadICCProfile(reinterpret_cast<const KtChar16*>(name.c_str()), &p.r, nullptr);
    if (s != STATUS_OK) throw Failure(s == ERR_NO_ICC_PROFILE ? "holds no ICC profile" : "cannot read a profile from it", s);
    return Bytes(p.r.profileData, p.r.profileData + p.r.profileSize);
}

// Writes the bytes to a temporary file beside `path`, renamed over it when
// complete; "-" is standard output; a device or a pipe is written directly.
void WriteWhole(const std::string& path, const Bytes& bytes) {
    if (path == "-") {
        if (fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || fflush(stdout) != 0)
            throw Failure("cannot write to standard output");
        return;
    }
    if (IsSpecialFile(path)) {
        const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        const bool ok = fd >= 0 && write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
        if (fd >= 0) close(fd);
        if (!ok) throw Failure(std::string("cannot write the file: ") + strerror(errno), ERR_FILE_WRITE);
        return;
    }
    std::string temp = path + ".ktclr-XXXXXX";
    const int fd = mkstemp(temp.data());
    if (fd < 0) throw Failure(std::string("cannot create a file beside it: ") + strerror(errno), ERR_FILE_CREATE);
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, 0644 & ~mask);
    const bool ok = write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) && fsync(fd) == 0;
    close(fd);
    if (!ok || rename(temp.c_str(), path.c_str()) != 0) {
        unlink(temp.c_str());
        throw Failure(std::string("cannot write the file: ") + strerror(errno), ERR_FILE_WRITE);
    }
}

template <typename F>
int Guarded(const std::string& file, F body) {
    try {
        body();
        return 0;
    } catch (const Failure& e) {
        ReportError(file, e.what(), e.status);
    } catch (const std::exception& e) {
        ReportError(file, e.what());
    }
    return 1;
}

}  // namespace

int ProfileInfo(const std::string& file, bool json) {
    return Guarded(file, [&] {
        Bytes bytes = ReadFile(file);
        if (!LooksLikeProfile(bytes)) {
            if (file == "-") throw Failure("standard input is not an ICC profile");
            bytes = LoadFromImage(file);
        }
        PrintProfileInfo(file, bytes, json, stdout);
    });
}

int ProfileExtract(const std::string& image, const std::string& out) {
    return Guarded(image, [&] { WriteWhole(out, LoadFromImage(image)); });
}

int ProfileEmbed(const std::string& image, const std::string& profile, const std::string& backup) {
    ProfileRecord p;
    if (Guarded(profile, [&] {
            const std::u16string name = Wide(profile);
            const KtStatus s = Vx_FillICCProfileFromICCFile(reinterpret_cast<const KtChar16*>(name.c_str()), &p.r);
            if (s != STATUS_OK) throw Failure("not a valid ICC profile file", s);
        }))
        return 1;
    return Guarded(image, [&] {
        const std::u16string name = Wide(image), backupName = Wide(backup);
        Vx_SaveFileOptions options = {KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0,
                                      backup.empty() ? nullptr : reinterpret_cast<const KtChar16*>(backupName.c_str())};
        struct stat before {}, after {};
        stat(image.c_str(), &before);
        const KtStatus s = Vx_SaveICCProfile(reinterpret_cast<const KtChar16*>(name.c_str()), &p.r, &options);
        if (s != STATUS_OK) throw Failure("cannot embed the profile", s);
        // A GIF or WebP writer that fails answers STATUS_OK and leaves the
        // file in place; a successful save always puts a new file there.
        if (stat(image.c_str(), &after) == 0 && after.st_ino == before.st_ino && after.st_dev == before.st_dev)
            throw Failure("cannot embed the profile: the file's structure is damaged; it is unchanged");
    });
}

int ProfileBuiltin(const std::string& name, const std::string& out) {
    return Guarded(out, [&] { WriteWhole(out, BuiltinProfile(BuiltinSelector(name))); });
}

int ListSpaces() {
    int count = 0;
    const SpaceInfo* all = AllSpaces(&count);
    printf("%-8s %4s %5s  %s\n", "space", "id", "bits", "bytes of a pixel");
    for (int i = 0; i < count; ++i) printf("%-8s %4d %5d  %s\n", all[i].name, all[i].id, all[i].bits, all[i].layout);
    printf("\nmethods and the pairs they convert:\n");
    for (Method m : kMethods) {
        std::string pairs;
        int served = 0;
        for (int a = 0; a < count; ++a)
            for (int b = 0; b < count; ++b)
                if (a != b && Serves(m, all[a].id, all[b].id)) {
                    pairs += std::string(pairs.empty() ? "" : ", ") + all[a].name + ">" + all[b].name;
                    ++served;
                }
        printf("  %-16s %s\n", MethodName(m), served == count * (count - 1) ? "every pair" : pairs.c_str());
    }
    printf("\nconvert's default: icc where both spaces have a profile (rgb, bgr, cmyk, cmy, lab), builtin otherwise;\n"
           "custom-icc when a profile is given or the input embeds one.\n");
    return 0;
}

}  // namespace ktcli
