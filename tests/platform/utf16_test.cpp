// UTF-16 names to UTF-8 for the OS and back (the dialog's); what does not
// encode becomes U+FFFD.
#include <gtest/gtest.h>

#include <string>

#include "platform/utf16.h"

namespace kt {
namespace {

TEST(Utf16, ConvertsBothWays) {
    const char16_t s[] = {u'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 0xD800, u'x', 0xDC00, 0};
    text::Utf8 u;
    ASSERT_TRUE(u.Assign(s, text::Utf16Length(s, 100), mem::Module::ktclr));
    EXPECT_STREQ(u.c_str(), "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\xef\xbf\xbdx\xef\xbf\xbd");
    char16_t back[16];
    EXPECT_EQ(text::Utf8ToUtf16("\xe2\x82\xac\xf0\x9f\x98\x80\xc3(\xf0\x9f", 11, back, 16), 8u);  // the terminator included
    EXPECT_EQ(std::u16string(back), (std::u16string{0x20AC, 0xD83D, 0xDE00, 0xFFFD, u'(', 0xFFFD, 0xFFFD}));
}

}  // namespace
}  // namespace kt
