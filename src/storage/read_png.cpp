// PNG: the iCCP profile, through the codec module loaded on first use.
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/alloc.h"
#include "platform/module_loader.h"
#include "storage/png_codec.h"
#include "storage/png_codec_abi.h"
#include "storage/readers.h"

namespace kt::storage {
namespace {

constexpr auto kModule = mem::Module::iccload;

modules::DllLoader g_loader;         // constructed when the library loads
std::atomic<int> g_loaderCounter{0};  // the lock around loading and registering

void LockLoader() {
    int expected = 0;
    while (!g_loaderCounter.compare_exchange_weak(expected, 1, std::memory_order_acquire)) {
        expected = 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}
void UnlockLoader() { g_loaderCounter.fetch_sub(1, std::memory_order_release); }

void* CodecAlloc(std::size_t size) { return KT_ALLOC(size); }

}  // namespace

KtStatus ReadPngProfile(file::File& file, Gather& gather) noexcept {
    LockLoader();
    if (!g_loader.IsLoaded() && g_loader.LoadLib(0, 8, KTCLR_PNG_CODEC_MODULE))
        g_loader.AddFunction(KTCLR_PNG_CODEC_FUNCTION);
    // Taken under the lock so no thread reads the table while another fills
    // it; the call itself runs outside.
    auto extract = reinterpret_cast<KtPngExtractICCProfile>(g_loader.GetFunction(KTCLR_PNG_CODEC_FUNCTION));
    UnlockLoader();
    if (!extract) return ERR_CODEC_FUNCTION_MISSING;
    if (!file.Seek(0)) return ERR_FILE_READ;
    uint8_t* buffer = nullptr;
    uint32_t size = 0;
    KtStatus status = extract(file.fd(), CodecAlloc, &buffer, &size);
    if (status == STATUS_OK && buffer && size > 0) {
        uint8_t* data = gather.Take(size);
        if (data) std::memcpy(data, buffer, size);
        else status = ERR_NO_MEMORY;
    }
    KT_FREE(buffer);
    return status;
}

namespace testing {
void ResetPngCodec(const char* dir) noexcept {
    g_loader.Unload();
    g_loader.SetDirForTesting(dir);
}
}  // namespace testing

}  // namespace kt::storage
