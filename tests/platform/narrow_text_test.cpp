// Narrow strings in the locale's encoding and their UTF-16 forms: the
// compiler's own u"" literals are the reference. (The parameter fields'
// conversions both ways: tests/convert/narrow_params_test.cpp.)
#include "platform/narrow_text.h"

#include <gtest/gtest.h>

#include <string>

#include "ktclr/status.h"
#include "support/support.h"

namespace kt::text {
namespace {

using test::ScopedLocale;
constexpr std::size_t kCap = kNarrowFieldCapacity;

// Each row both ways where it converts; a failed conversion leaves "" (to
// wide) or "?" for each character the locale lacks (to narrow).
TEST(NarrowText, BothWays) {
    const std::string a262(262, 'a');
    const struct {
        const char* locale;
        std::string narrow;
        std::u16string wide;
        KtStatus toWide, toNarrow;
    } rows[] = {
        {"C.UTF-8", "caf\xC3\xA9/\xE8\x89\xB2\xF0\x9F\x8E\xA8", u"café/色🎨", STATUS_OK, STATUS_OK},
        {"C.UTF-8", a262 + "a", std::u16string(263, u'a'), STATUS_OK, STATUS_OK},
        {"C.UTF-8", a262 + "aa", u"", ERR_BUFFER_TOO_SMALL, STATUS_OK},
        // A surrogate pair whose second half would be unit 264.
        {"C.UTF-8", a262 + "\xF0\x9F\x8E\xA8", u"", ERR_BUFFER_TOO_SMALL, STATUS_OK},
        {"C.UTF-8", "bad\xC3(", u"", ERR_NO_UNICODE_TRANSLATION, STATUS_OK},
        {"C.UTF-8", "cut\xE6\xBC", u"", ERR_NO_UNICODE_TRANSLATION, STATUS_OK},
        {"C.UTF-8", "\xED\xA0\x80", u"", ERR_NO_UNICODE_TRANSLATION, STATUS_OK},  // an encoded surrogate
        {"C", "caf\xC3\xA9", u"", ERR_NO_UNICODE_TRANSLATION, STATUS_OK},
        {"C.UTF-8", "", std::u16string(262, u'a') + u"é", STATUS_OK, ERR_BUFFER_TOO_SMALL},
        {"C.UTF-8", "a?b", std::u16string(u"a") + char16_t(0xD800) + u"b", STATUS_OK, ERR_DEFAULT_CHAR_USED},
        {"POSIX", "caf?/?", u"café/🎨", STATUS_OK, ERR_DEFAULT_CHAR_USED},  // one character, one "?"
    };
    for (const auto& r : rows) {
        ScopedLocale locale(r.locale);
        ASSERT_TRUE(locale.ok()) << r.locale;
        if (r.toNarrow == STATUS_OK) {
            char16_t out[kCap];
            EXPECT_EQ(NarrowToWide(r.narrow.c_str(), r.narrow.size() + 1, out, kCap), r.toWide) << r.narrow;
            EXPECT_EQ(std::u16string(out), r.wide) << r.narrow;
        }
        if (r.toWide == STATUS_OK) {
            char out[kCap];
            EXPECT_EQ(WideToNarrow(r.wide.c_str(), r.wide.size() + 1, out, kCap), r.toNarrow) << r.narrow;
            EXPECT_EQ(std::string(out), r.narrow);
        }
    }
}

TEST(NarrowText, UnterminatedAndNulls) {
    ScopedLocale locale("C.UTF-8");
    char16_t out[kCap] = {u'x'};
    const char field[4] = {'a', 'b', 'c', 'd'};  // no terminator within its bytes
    EXPECT_EQ(NarrowToWide(field, sizeof field, out, kCap), ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(NarrowToWide(nullptr, 4, out, kCap), ERR_INVALID_PARAMETER);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(NarrowToWide("a", 2, nullptr, kCap), ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace kt::text
