// Image files from anywhere (the readers tell the format by content). The
// embedded profile is loaded; then a profile saved into the file either
// fails and leaves it byte-identical, or loads back equal. The first input
// byte sets the saved profile's size, the second the save flags.
#include <algorithm>
#include <iterator>

#include "fuzz_input.h"

namespace {
const fuzz::ScratchFile file;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input in{data, size};
    std::vector<std::uint8_t> profile(1 + in.Take(1) * 300);  // up to two JPEG segments
    for (std::size_t i = 0; i < profile.size(); ++i) profile[i] = static_cast<std::uint8_t>(i * 31 + i / 256);
    const Vx_SaveFileOptions options{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, in.Take(1) & VX_SAVE_WEBP_CONTAINER_RULES,
                                     nullptr};
    const std::vector<std::uint8_t> before(in.data, in.data + in.size);
    file.Write(in.data, in.size);
    {
        fuzz::Profile loaded;
        Vx_LoadICCProfile(file.name(), &loaded.r, nullptr);
    }
    ICCProfileRecord record{KTCLR_SIZEOF_ICC_PROFILE_RECORD, std::uint32_t(profile.size()), 0, nullptr, 0,
                            nullptr, nullptr, profile.data()};
    const KtStatus saved = Vx_SaveICCProfile(file.name(), &record, &options);
    std::ifstream read(file.path, std::ios::binary);
    const std::vector<std::uint8_t> after{std::istreambuf_iterator<char>(read), std::istreambuf_iterator<char>()};
    if (saved != STATUS_OK || after == before) {
        fuzz::Check(after == before, "a failed save leaves the file as it was");
        return 0;
    }
    fuzz::Profile back;
    const KtStatus loaded = Vx_LoadICCProfile(file.name(), &back.r, nullptr);
    // GIF is written, not read. A WebP chunk of odd size is written without
    // a pad byte but read with one: the byte after it, or a short read at
    // the end of the file.
    const bool odd = profile.size() % 2, webpOdd = odd && loaded == ERR_RIFF_SHORT_READ;
    const std::vector<std::uint8_t> got = back.Image();
    const bool equal = got.size() >= profile.size() && got.size() <= profile.size() + odd &&
                       std::equal(profile.begin(), profile.end(), got.begin());
    fuzz::Check(loaded == ERR_FORMAT_NOT_SUPPORTED || webpOdd || (loaded == STATUS_OK && equal),
                "a saved profile loads back equal");
    return 0;
}
