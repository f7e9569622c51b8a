// Apart from the rest of the support code, so that suites which do not link
// the color models can use the rest.
#include <gtest/gtest.h>

#include "ktclr/embedded.h"
#include "support/support.h"

namespace kt::test {

Bytes BuiltinProfile(std::int32_t selector) {
    std::int32_t size = 0;
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, nullptr, &size), STATUS_OK);
    Bytes b(static_cast<std::size_t>(size));
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, b.data(), &size), STATUS_OK);
    return b;
}

std::uint32_t DeclaredSize(const Bytes& b) {
    return (std::uint32_t(b[0]) << 24) | (std::uint32_t(b[1]) << 16) | (std::uint32_t(b[2]) << 8) | b[3];
}

}  // namespace kt::test
