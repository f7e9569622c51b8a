#include "convert/handle_draft.h"

#include "convert/emulation_setup.h"
#include "convert/icc_setup.h"
#include "convert/registry.h"
#include "platform/alloc.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;

template <class T>
void FreeField(T*& field) {
    if (field) KT_FREE(field);
    field = nullptr;
}

void FreeProfileMemory(ProfileMemory*& m) {
    if (!m) return;
    if (m->data) KT_FREE(m->data);
    FreeField(m);
}

}  // namespace

void ReleaseHandle(ClrHandle* h) noexcept {
    FreeField(h->cmykOptions);
    FreeField(h->yuvOptions);
    FreeField(h->labTable);
    FreeField(h->rgbToLabTable);
    FreeField(h->ycckTable);
    FreeField(h->iccOptions);
    if (h->preparedMethods & METHOD_ICC) DeleteIccTransform(h->iccTransform);
    if (h->preparedMethods & METHOD_CUSTOM_ICC) DeleteIccTransform(h->customIccTransform);
    FreeCustomEmulationTable(h);
    FreeProfileMemory(h->srcProfileMemory);
    FreeProfileMemory(h->dstProfileMemory);
    KT_FREE(h);
}

HandleDraft::~HandleDraft() {
    if (!h_) return;
    if (registered_) registry::Remove(h_);
    ReleaseHandle(h_);
}

bool HandleDraft::Allocate() noexcept {
    h_ = static_cast<ClrHandle*>(KT_ALLOC_ZERO(sizeof(ClrHandle)));
    if (h_) h_->structSize = KTCLR_SIZEOF_CLR_HANDLE;
    return h_ != nullptr;
}

bool HandleDraft::Register() noexcept {
    registered_ = registry::Append(h_);
    return registered_;
}

KtStatus HandleDraft::Publish(ClrHandle** out) noexcept {
    *out = h_;
    h_ = nullptr;
    return STATUS_OK;
}

KtStatus HandleDraft::Abandon(KtStatus status) noexcept {
    h_ = nullptr;
    return status;
}

}  // namespace kt::convert
