// Vx_ClrDlg and SetResModule: record checks, the record turned into the
// module's plain state and back, and the GTK module loaded on first use.
#include <atomic>
#include <cstring>
#include <mutex>
#include <new>

#include "convert/handle_internal.h"
#include "dialog/dialog_state.h"
#include "ktclr/dialog.h"
#include "platform/module_loader.h"
#include "platform/probe.h"
#include "platform/utf16.h"

namespace kt::dialog {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr uint32_t kMethods[] = {METHOD_BUILTIN, METHOD_ICC, METHOD_CUSTOM_ICC, METHOD_BUILTIN_EMULATION,
                                 METHOD_CUSTOM_EMULATION};
constexpr uint32_t kWhitePoints[] = {KTCLR_WHITE_D50, KTCLR_WHITE_D55, KTCLR_WHITE_D65,
                                     KTCLR_WHITE_D75, KTCLR_WHITE_D93, KTCLR_WHITE_CUSTOM};

template <class T, std::size_t N>
int32_t IndexOf(const T (&list)[N], uint32_t value) {
    for (std::size_t i = 0; i < N; ++i)
        if (list[i] == value) return static_cast<int32_t>(i);
    return 0;
}

bool Usable(void* p, std::size_t bytes) {
    return p && !platform::IsBadReadPtr(p, bytes) && !platform::IsBadWritePtr(p, bytes);
}

// The checks of a given record: its extent, then the CMYK and white-point
// sub-records. Every failure is ERR_INVALID_PARAMETER.
bool RecordUsable(ConversionParams* p) {
    if (platform::IsBadReadPtr(p, sizeof p->structSize)) return false;
    const uint32_t size = p->structSize;
    if (size != KTCLR_SIZEOF_CONVERSION_PARAMS && size != KTCLR_SIZEOF_CONVERSION_PARAMS_EX) return false;
    const std::size_t bytes = size == KTCLR_SIZEOF_CONVERSION_PARAMS ? convert::kParamsShortBytes
                                                                     : convert::kParamsLongBytes;
    return Usable(p, bytes) && Usable(p->cmykOptions, sizeof(CmykOptions)) &&
           Usable(p->iccOptions, sizeof(IccOptions));
}

bool ToUtf8(char* dst, const KtChar16* path) {
    text::Utf8 utf8;
    if (!utf8.Assign(path, text::Utf16Length(path, kPathChars), kModule)) return false;
    std::strncpy(dst, utf8.c_str(), kPathBytes - 1);
    dst[kPathBytes - 1] = '\0';
    return true;
}

void ToUtf16(KtChar16* dst, const char* path) {
    std::memset(dst, 0, sizeof(KtChar16) * KTCLR_PARAMS_PATH_UNITS);
    text::Utf8ToUtf16(path, std::strlen(path), dst, kPathChars);
    dst[kPathChars] = 0;
}

double GetDouble(const IccOptions* o, int first) {
    double v;
    std::memcpy(&v, &o->values[first], sizeof v);
    return v;
}

void SetDouble(IccOptions* o, int first, double v) { std::memcpy(&o->values[first], &v, sizeof v); }

// The record's paths in the order of the state: the CMYK dialog shows the
// CMYK-side profile first, the CIELab dialog the source profile; the
// CIELab dialog's table sits under the radio button of its direction.
struct PathSlots {
    KtChar16* slot[kPathCount] = {};
};

PathSlots Slots(ConversionParams* p, const State& s) {
    PathSlots r;
    const bool swap = s.kind == KTCLR_DLG_CMYK && s.fromRgb;
    r.slot[kPathProfile1] = swap ? p->dstProfilePath : p->srcProfilePath;
    r.slot[kPathProfile2] = swap ? p->srcProfilePath : p->dstProfilePath;
    r.slot[s.kind == KTCLR_DLG_LAB && s.labTable ? kPathTable2 : kPathTable1] = p->emulationTablePath;
    return r;
}

KtStatus FromRecord(ConversionParams* p, State& s) {
    s.gcr = KTCLR_DEFAULT_CMYK_BLACK;
    if (!p) return STATUS_OK;
    s.method = IndexOf(kMethods, p->method);
    s.whitePoint = IndexOf(kWhitePoints, p->iccOptions->values[0]);
    if (s.whitePoint == kCustomWhite) {
        s.x = GetDouble(p->iccOptions, 1);
        s.y = GetDouble(p->iccOptions, 3);
    }
    s.gcr = static_cast<int32_t>(p->cmykOptions->value <= 1000 ? p->cmykOptions->value : 1000);
    s.bgrOrder = (p->cmykOptions->validMask & KTCLR_DLG_BGR_ORDER) != 0;
    s.fromRgb = (p->cmykOptions->validMask & KTCLR_DLG_FROM_RGB) != 0;
    s.labTable = s.fromRgb ? 0 : 1;
    const PathSlots slots = Slots(p, s);
    for (int i = 0; i < kPathCount; ++i)
        if (slots.slot[i] && !ToUtf8(s.paths[i], slots.slot[i])) return ERR_ALLOC;
    return STATUS_OK;
}

void ToRecord(const State& s, ConversionParams* p) {
    p->method = kMethods[s.method];
    p->iccOptions->values[0] = kWhitePoints[s.whitePoint];
    SetDouble(p->iccOptions, 1, s.whitePoint == kCustomWhite ? s.x : 0.0);
    SetDouble(p->iccOptions, 3, s.whitePoint == kCustomWhite ? s.y : 0.0);
    CmykOptions* cmyk = p->cmykOptions;
    if (s.kind == KTCLR_DLG_CMYK) {
        cmyk->value = static_cast<uint32_t>(s.gcr);
        cmyk->validMask |= 1u;
    }
    cmyk->validMask &= ~(KTCLR_DLG_BGR_ORDER | KTCLR_DLG_FROM_RGB);
    if (s.bgrOrder) cmyk->validMask |= KTCLR_DLG_BGR_ORDER;
    if (s.fromRgb) cmyk->validMask |= KTCLR_DLG_FROM_RGB;
    const PathSlots slots = Slots(p, s);
    for (int i = 0; i < kPathCount; ++i)
        if (slots.slot[i]) ToUtf16(slots.slot[i], s.paths[i]);
}

// Loaded on the first call and never unloaded, not even at exit: GTK does
// not support being unloaded. A module that failed to load is tried again
// on the next call.
RunFn Runner() {
    alignas(modules::DllLoader) static unsigned char storage[sizeof(modules::DllLoader)];
    static modules::DllLoader* loader = new (storage) modules::DllLoader;
    if (!loader->IsLoaded() && !loader->LoadLib(0, 0, kModuleName)) return nullptr;
    if (!loader->IsFunctionOk(kRunName)) loader->AddFunction(kRunName);
    return reinterpret_cast<RunFn>(loader->GetFunction(kRunName));
}

KtStatus Show(int kind, ConversionParams* p) {
    if (kind != KTCLR_DLG_CMYK && kind != KTCLR_DLG_LAB) return STATUS_OK;
    if (p && !RecordUsable(p)) return ERR_INVALID_PARAMETER;
    static std::mutex lock;  // one dialog at a time; the loader is shared
    std::lock_guard<std::mutex> guard(lock);
    State s{};
    s.kind = kind;
    if (const KtStatus st = FromRecord(p, s); st != STATUS_OK) return st;
    const RunFn run = Runner();
    if (!run) return KTCLR_DLG_UNAVAILABLE;
    const int answer = run(&s);
    if (answer < 0) return KTCLR_DLG_UNAVAILABLE;
    if (answer == 0) return 0;
    if (p) ToRecord(s, p);
    return STATUS_OK;
}

std::atomic<void*> g_resModule{nullptr};

}  // namespace
}  // namespace kt::dialog

extern "C" KTCLR_API KtStatus Vx_ClrDlg(int kind, void* /*parent*/, void* /*reserved*/, ConversionParams* params) {
    try {
        return kt::dialog::Show(kind, params);
    } catch (...) {
        return ERR_ALLOC;
    }
}

extern "C" KTCLR_API void* SetResModule(void* module) {
    kt::dialog::g_resModule.store(module);
    return module;
}
