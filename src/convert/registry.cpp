#include "convert/registry.h"

#include <cstdint>
#include <mutex>
#include <new>

#include "platform/alloc.h"

namespace kt::convert::registry {
namespace {

constexpr auto kModule = mem::Module::ktclr;

struct Node {
    Node* next;
    Node* prev;
    ClrHandle* handle;
    Node* chain;  // next node in the same hash bucket
};

constexpr std::size_t kInlineBuckets = 64;

struct State {
    std::mutex lock;
    Node* head = nullptr;
    Node* tail = nullptr;
    std::size_t count = 0;
    Node* inlineBuckets[kInlineBuckets] = {};
    Node** buckets = inlineBuckets;
    std::size_t bucketCount = kInlineBuckets;
};

// Never destroyed: the unload sweep runs after static destructors.
State& S() {
    alignas(State) static unsigned char storage[sizeof(State)];
    static State* state = new (storage) State();
    return *state;
}

std::size_t Bucket(const ClrHandle* h, std::size_t n) {
    auto v = reinterpret_cast<std::uintptr_t>(h);
    v ^= v >> 17;
    v *= 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>(v >> 32) & (n - 1);
}

Node* Find(State& s, const ClrHandle* h, Node*** link) {
    Node** at = &s.buckets[Bucket(h, s.bucketCount)];
    while (*at && (*at)->handle != h) at = &(*at)->chain;
    if (link) *link = at;
    return *at;
}

// Grows the index when it is full. A failed allocation keeps the old index:
// lookups stay correct, only longer.
void MaybeGrow(State& s) {
    if (s.count < s.bucketCount) return;
    const std::size_t n = s.bucketCount * 2;
    auto** fresh = static_cast<Node**>(KT_ALLOC_ZERO(n * sizeof(Node*)));
    if (!fresh) return;
    for (Node* node = s.head; node; node = node->next) {
        Node** b = &fresh[Bucket(node->handle, n)];
        node->chain = *b;
        *b = node;
    }
    if (s.buckets != s.inlineBuckets) KT_FREE(s.buckets);
    s.buckets = fresh;
    s.bucketCount = n;
}

void Unlink(State& s, Node* node, Node** link) {
    *link = node->chain;
    if (node->prev) node->prev->next = node->next;
    else s.head = node->next;
    if (node->next) node->next->prev = node->prev;
    else s.tail = node->prev;
    --s.count;
    if (s.count == 0 && s.buckets != s.inlineBuckets) {
        KT_FREE(s.buckets);
        s.buckets = s.inlineBuckets;
        s.bucketCount = kInlineBuckets;
        for (auto& b : s.inlineBuckets) b = nullptr;
    }
    KT_FREE(node);
}

}  // namespace

bool Append(ClrHandle* h) noexcept {
    auto* node = static_cast<Node*>(KT_ALLOC(sizeof(Node)));
    if (!node) return false;
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    node->handle = h;
    node->next = nullptr;
    if (!s.head) {
        s.head = s.tail = node;
        node->prev = nullptr;
    } else {
        s.tail->next = node;
        node->prev = s.tail;
        s.tail = node;
    }
    ++s.count;
    Node** b = &s.buckets[Bucket(h, s.bucketCount)];
    node->chain = *b;
    *b = node;
    // Growing rebuilds the index from the list, this node included.
    MaybeGrow(s);
    return true;
}

void Remove(ClrHandle* h) noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    Node** link = nullptr;
    if (Node* node = s.head ? Find(s, h, &link) : nullptr) Unlink(s, node, link);
}

bool Contains(const ClrHandle* h) noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    return s.head && Find(s, h, nullptr) && h->structSize == KTCLR_SIZEOF_CLR_HANDLE;
}

bool Take(ClrHandle* h) noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    Node** link = nullptr;
    Node* node = s.head ? Find(s, h, &link) : nullptr;
    if (!node || h->structSize != KTCLR_SIZEOF_CLR_HANDLE) return false;
    Unlink(s, node, link);
    return true;
}

ClrHandle* Head() noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    return s.head ? s.head->handle : nullptr;
}

ClrHandle* Tail() noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    return s.tail ? s.tail->handle : nullptr;
}

std::size_t Count() noexcept {
    State& s = S();
    std::lock_guard<std::mutex> guard(s.lock);
    return s.count;
}

}  // namespace kt::convert::registry
