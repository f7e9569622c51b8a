// Narrow strings in the locale's encoding and their UTF-16 forms: the
// compiler's own u"" literals are the reference.
#include "platform/narrow_text.h"

#include <gtest/gtest.h>

#include <string>

#include "ktclr/status.h"
#include "support/support.h"

namespace kt::text {
namespace {

using test::ScopedLocale;
constexpr std::size_t kCap = kNarrowFieldCapacity;

struct Row {
    const char* locale;
    std::string narrow;
    std::u16string wide;  // expected; unused when status is not STATUS_OK
    KtStatus status;
};

TEST(NarrowText, NarrowToWide) {
    const Row rows[] = {
        {"C.UTF-8", "", u"", STATUS_OK},
        {"C.UTF-8", "/tmp/caf\xC3\xA9/r\xC3\xA9sum\xC3\xA9.icc", u"/tmp/café/résumé.icc", STATUS_OK},
        {"C.UTF-8", "\xE8\x89\xB2\xE5\xBD\xA9/\xE6\xBC\xA2.jpg", u"色彩/漢.jpg", STATUS_OK},
        {"C.UTF-8", "\xF0\x9F\x8E\xA8.tif", u"🎨.tif", STATUS_OK},
        {"C.UTF-8", std::string(263, 'a'), std::u16string(263, u'a'), STATUS_OK},
        {"C.UTF-8", std::string(262, 'a') + "\xC3\xA9", std::u16string(262, u'a') + u"é", STATUS_OK},
        {"C.UTF-8", std::string(264, 'a'), u"", ERR_BUFFER_TOO_SMALL},
        // A surrogate pair whose second half would be unit 264.
        {"C.UTF-8", std::string(262, 'a') + "\xF0\x9F\x8E\xA8", u"", ERR_BUFFER_TOO_SMALL},
        {"C.UTF-8", "bad\xC3(", u"", ERR_NO_UNICODE_TRANSLATION},
        {"C.UTF-8", "cut\xE6\xBC", u"", ERR_NO_UNICODE_TRANSLATION},
        {"C.UTF-8", "\xED\xA0\x80", u"", ERR_NO_UNICODE_TRANSLATION},  // an encoded surrogate
        {"C.UTF-8", "\xC0\xAF", u"", ERR_NO_UNICODE_TRANSLATION},      // overlong
        {"C", "plain.icc", u"plain.icc", STATUS_OK},
        {"C", "caf\xC3\xA9", u"", ERR_NO_UNICODE_TRANSLATION},
    };
    for (const Row& r : rows) {
        ScopedLocale locale(r.locale);
        ASSERT_TRUE(locale.ok()) << r.locale;
        char16_t out[kCap];
        out[0] = u'x';
        EXPECT_EQ(NarrowToWide(r.narrow.c_str(), r.narrow.size() + 1, out, kCap), r.status) << r.narrow;
        EXPECT_EQ(std::u16string(out), r.status == STATUS_OK ? r.wide : u"") << r.narrow;
    }
}

TEST(NarrowText, NarrowToWideLimitsAndNulls) {
    ScopedLocale locale("C.UTF-8");
    char16_t out[kCap];
    const char field[4] = {'a', 'b', 'c', 'd'};  // no terminator within its bytes
    EXPECT_EQ(NarrowToWide(field, sizeof field, out, kCap), ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(NarrowToWide("abcd", 5, out, 4), ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(NarrowToWide("abc", 4, out, 4), STATUS_OK);
    EXPECT_EQ(NarrowToWide(nullptr, 4, out, kCap), ERR_INVALID_PARAMETER);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(NarrowToWide("a", 2, nullptr, kCap), ERR_INVALID_PARAMETER);
    EXPECT_EQ(NarrowToWide("a", 2, out, 0), ERR_INVALID_PARAMETER);
}

TEST(NarrowText, WideToNarrow) {
    const Row rows[] = {
        {"C.UTF-8", "caf\xC3\xA9/\xE6\xBC\xA2\xF0\x9F\x8E\xA8", u"café/漢🎨", STATUS_OK},
        {"C.UTF-8", std::string(263, 'a'), std::u16string(263, u'a'), STATUS_OK},
        {"C.UTF-8", "", std::u16string(264, u'a'), ERR_BUFFER_TOO_SMALL},
        {"C.UTF-8", "", std::u16string(262, u'a') + u"é", ERR_BUFFER_TOO_SMALL},
        {"C.UTF-8", "a?b", std::u16string(u"a") + char16_t(0xD800) + u"b", ERR_DEFAULT_CHAR_USED},
        {"C", "caf?/?", u"café/漢", ERR_DEFAULT_CHAR_USED},
        {"POSIX", "?.icc", u"🎨.icc", ERR_DEFAULT_CHAR_USED},  // one character, one "?"
        {"C", "plain", u"plain", STATUS_OK},
    };
    for (const Row& r : rows) {
        ScopedLocale locale(r.locale);
        ASSERT_TRUE(locale.ok()) << r.locale;
        char out[kCap];
        EXPECT_EQ(WideToNarrow(r.wide.c_str(), r.wide.size() + 1, out, kCap), r.status) << r.narrow;
        EXPECT_EQ(std::string(out), r.narrow);
    }
}

TEST(NarrowText, DuplicateWide) {
    ScopedLocale locale("C.UTF-8");
    char16_t* wide = reinterpret_cast<char16_t*>(1);
    EXPECT_TRUE(DuplicateWide(nullptr, &wide, mem::Module::ktclr));
    EXPECT_EQ(wide, nullptr);
    const std::string longName = std::string(600, 'x') + "\xE6\xBC\xA2";
    ASSERT_TRUE(DuplicateWide(longName.c_str(), &wide, mem::Module::ktclr));
    EXPECT_EQ(std::u16string(wide), std::u16string(600, u'x') + u"漢");
    FreeWide(wide, mem::Module::ktclr);
    EXPECT_FALSE(DuplicateWide("bad\xFF", &wide, mem::Module::ktclr));
    EXPECT_EQ(wide, nullptr);
}

}  // namespace
}  // namespace kt::text
