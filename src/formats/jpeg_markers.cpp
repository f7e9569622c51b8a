#include "formats/jpeg_markers.h"

#include <cstring>

#include "ktclr/status.h"

namespace kt::formats::jpeg {

struct MarkerList {
    mem::Module module;
    std::size_t count;
    std::size_t capacity;
    Marker* markers;
    std::int64_t scanOffset;
};

namespace {

bool IsStandalone(uint8_t code) { return code == 0x01 || (code >= 0xD0 && code <= 0xD7); }

// Reads from a file through a small buffer, keeping the offset.
class Bytes {
public:
    explicit Bytes(file::File& f) : file_(f) {}
    bool Get(uint8_t* out, std::size_t n) {
        while (n > 0) {
            if (pos_ == end_ && !Refill()) return false;
            std::size_t take = end_ - pos_ < n ? end_ - pos_ : n;
            std::memcpy(out, buffer_ + pos_, take);
            pos_ += take;
            offset_ += static_cast<std::int64_t>(take);
            out += take;
            n -= take;
        }
        return true;
    }
    std::int64_t offset() const { return offset_; }

private:
    bool Refill() {
        std::int64_t got = file_.Read(buffer_, sizeof buffer_);
        if (got <= 0) return false;
        pos_ = 0;
        end_ = static_cast<std::size_t>(got);
        return true;
    }
    file::File& file_;
    uint8_t buffer_[4096];
    std::size_t pos_ = 0, end_ = 0;
    std::int64_t offset_ = 0;
};

}  // namespace

MarkerList* Create(mem::Module module) noexcept {
    auto* list = static_cast<MarkerList*>(mem::AllocZero(sizeof(MarkerList), module, __LINE__));
    if (!list) return nullptr;
    list->module = module;
    list->scanOffset = -1;
    return list;
}

void Free(MarkerList* list) noexcept {
    if (!list) return;
    for (std::size_t i = 0; i < list->count; ++i) mem::Free(list->markers[i].data, list->module, __LINE__);
    mem::Free(list->markers, list->module, __LINE__);
    mem::Free(list, list->module, __LINE__);
}

namespace {
KtStatus Add(MarkerList* list, std::size_t at, uint8_t code, bool standalone, uint32_t length, uint8_t* owned) {
    if (list->count == list->capacity) {
        std::size_t grown = list->capacity ? list->capacity * 2 : 16;
        void* p = mem::Realloc(list->markers, grown * sizeof(Marker), list->module, __LINE__);
        if (!p) return ERR_NO_MEMORY;
        list->markers = static_cast<Marker*>(p);
        list->capacity = grown;
    }
    std::memmove(list->markers + at + 1, list->markers + at, (list->count - at) * sizeof(Marker));
    list->markers[at] = Marker{code, standalone, length, owned};
    ++list->count;
    return STATUS_OK;
}
}  // namespace

KtStatus Insert(MarkerList* list, int position, uint8_t code, uint32_t length, const uint8_t* bytes) noexcept {
    if (!list || length > kMaxSegmentData || (length && !bytes)) return ERR_INVALID_PARAMETER;
    std::size_t at = position < 0 ? list->count : static_cast<std::size_t>(position);
    if (at > list->count) return ERR_INVALID_PARAMETER;
    uint8_t* copy = nullptr;
    if (length) {
        copy = static_cast<uint8_t*>(mem::Alloc(length, list->module, __LINE__));
        if (!copy) return ERR_NO_MEMORY;
        std::memcpy(copy, bytes, length);
    }
    KtStatus s = Add(list, at, code, false, length, copy);
    if (s != STATUS_OK) mem::Free(copy, list->module, __LINE__);
    return s;
}

KtStatus Read(file::File& file, mem::Module module, MarkerList** out) noexcept {
    if (!out) return ERR_INVALID_PARAMETER;
    *out = nullptr;
    std::int64_t size = file.Size();
    if (size < 0 || !file.Seek(0)) return ERR_FILE_READ;
    Bytes in(file);
    uint8_t soi[2];
    if (!in.Get(soi, 2) || soi[0] != 0xFF || soi[1] != 0xD8) return ERR_FILE_READ;
    MarkerList* list = Create(module);
    if (!list) return ERR_NO_MEMORY;
    KtStatus status = STATUS_OK;
    for (;;) {
        uint8_t b;
        if (!in.Get(&b, 1) || b != 0xFF) { status = ERR_FILE_READ; break; }
        std::int64_t at = in.offset() - 1;
        do {
            if (!in.Get(&b, 1)) { status = ERR_FILE_READ; break; }
        } while (b == 0xFF);
        if (status != STATUS_OK) break;
        if (b == kSos || b == kEoi) {
            list->scanOffset = at;
            break;
        }
        if (IsStandalone(b)) {
            if ((status = Add(list, list->count, b, true, 0, nullptr)) != STATUS_OK) break;
            continue;
        }
        uint8_t len[2];
        if (!in.Get(len, 2)) { status = ERR_FILE_READ; break; }
        uint32_t field = static_cast<uint32_t>(len[0] << 8 | len[1]);
        if (field < 2 || in.offset() + field - 2 > size) { status = ERR_FILE_READ; break; }
        uint32_t length = field - 2;
        uint8_t* data = nullptr;
        if (length) {
            data = static_cast<uint8_t*>(mem::Alloc(length, module, __LINE__));
            if (!data) { status = ERR_NO_MEMORY; break; }
            if (!in.Get(data, length)) {
                mem::Free(data, module, __LINE__);
                status = ERR_FILE_READ;
                break;
            }
        }
        if ((status = Add(list, list->count, b, false, length, data)) != STATUS_OK) {
            mem::Free(data, module, __LINE__);
            break;
        }
    }
    if (status != STATUS_OK) {
        Free(list);
        return status;
    }
    *out = list;
    return STATUS_OK;
}

std::size_t Count(const MarkerList* list) noexcept { return list ? list->count : 0; }
const Marker* At(const MarkerList* list, std::size_t i) noexcept {
    return list && i < list->count ? &list->markers[i] : nullptr;
}
std::int64_t ScanOffset(const MarkerList* list) noexcept { return list ? list->scanOffset : -1; }

KtStatus Enumerate(const MarkerList* list, Callback callback, void* context) noexcept {
    if (!list || !callback) return ERR_INVALID_PARAMETER;
    for (std::size_t i = 0; i < list->count; ++i) {
        const Marker& m = list->markers[i];
        int r = callback(m.code, m.length, m.data, context);
        if (r < 1) return r;
    }
    return STATUS_OK;
}

bool Write(const MarkerList* list, file::File& out) noexcept {
    if (!list) return false;
    for (std::size_t i = 0; i < list->count; ++i) {
        const Marker& m = list->markers[i];
        uint32_t field = m.length + 2;
        uint8_t head[4] = {0xFF, m.code, static_cast<uint8_t>(field >> 8), static_cast<uint8_t>(field)};
        if (!out.WriteAll(head, m.standalone ? 2 : 4)) return false;
        if (m.length && !out.WriteAll(m.data, m.length)) return false;
    }
    return true;
}

}  // namespace kt::formats::jpeg
