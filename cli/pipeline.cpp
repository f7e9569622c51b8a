#include "pipeline.h"

#include <algorithm>
#include <cstring>

#include "image.h"

namespace ktcli {
namespace {

bool IsRgb(int s) { return s == CS_RGB || s == CS_BGR; }

void CopyPath(KtChar16* field, const std::string& path) {
    const std::u16string w = Wide(path);
    const size_t n = std::min(w.size(), static_cast<size_t>(KTCLR_PARAMS_PATH_UNITS - 1));
    std::copy_n(w.data(), n, field);
    field[n] = 0;
}

}  // namespace

Pipeline::Pipeline(const PipelineSpec& spec) : spec_(spec) {
    try {
        // The formulas convert to and from RGB; a pair without RGB on either
        // side goes through RGB in two handles.
        if (spec.method == Method::Builtin && spec.src != spec.dst && !IsRgb(spec.src) && !IsRgb(spec.dst)) {
            AddHandle(spec.src, CS_RGB);
            AddHandle(CS_RGB, spec.dst);
        } else {
            AddHandle(spec.src, spec.dst);
        }
    } catch (...) {
        FreeAll();
        throw;
    }
}

Pipeline::~Pipeline() { FreeAll(); }

void Pipeline::FreeAll() {
    for (ClrHandle* h : handles_) Vx_ClrFree(h);
    handles_.clear();
}

void Pipeline::AddHandle(int src, int dst) {
    ConversionParams p;
    memset(&p, 0, sizeof p);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    p.method = p.prepareMethods = MethodBit(spec_.method);
    if (spec_.method == Method::Emulation) p.emulationMethod = METHOD_BUILTIN_EMULATION;
    CmykOptions black = {KTCLR_SIZEOF_CMYK_OPTIONS, static_cast<uint32_t>(spec_.black), 0};
    if (spec_.black >= 0) p.cmykOptions = &black;
    ProfileMemory srcMemory = {KTCLR_SIZEOF_PROFILE_MEMORY, spec_.srcProfile.data(),
                               static_cast<uint32_t>(spec_.srcProfile.size())};
    ProfileMemory dstMemory = {KTCLR_SIZEOF_PROFILE_MEMORY, spec_.dstProfile.data(),
                               static_cast<uint32_t>(spec_.dstProfile.size())};
    if (spec_.method == Method::CustomIcc) {
        p.srcProfileMemory = &srcMemory;
        p.dstProfileMemory = &dstMemory;
    }
    if (spec_.method == Method::CustomEmulation) CopyPath(p.emulationTablePath, spec_.table);
    ClrHandle* h = nullptr;
    // Handles may be made and freed from several threads at once.
    const KtStatus s = Vx_ClrInit(&h, src, dst, &p);
    if (s == STATUS_OK) handles_.push_back(h);
    if (s != STATUS_OK)
        throw Failure(std::string("cannot prepare ") + SpaceById(src)->name + " to " + SpaceById(dst)->name +
                          " by " + MethodName(spec_.method),
                      s);
}

void Pipeline::Convert(uint8_t* in, uint8_t* out, int width, int rows) {
    const size_t pixels = static_cast<size_t>(width) * rows;
    // The emulation methods read RGB to CMYK in B,G,R order whatever the
    // source's order.
    if ((spec_.method == Method::Emulation || spec_.method == Method::CustomEmulation) && spec_.src == CS_RGB &&
        spec_.dst == CS_CMYK)
        for (size_t i = 0; i < pixels; ++i) std::swap(in[3 * i], in[3 * i + 2]);
    uint8_t* from = in;
    for (size_t k = 0; k < handles_.size(); ++k) {
        uint8_t* to = out;
        if (k + 1 < handles_.size()) {
            middle_.resize(pixels * 3);
            to = middle_.data();
        }
        const KtStatus s = Vx_ClrConvert(handles_[k], from, to, width, rows, 0, 0);
        if (s != STATUS_OK) throw Failure("conversion failed", s);
        from = to;
    }
}

}  // namespace ktcli
