// UTF-16 and UTF-8 conversions (the file names; files themselves are read
// and written by every storage test).
#include <gtest/gtest.h>

#include <string>

#include "platform/utf16.h"

namespace kt {
namespace {

TEST(Utf16, ConvertsBothWays) {
    const char16_t s[] = u"a\u00e9\u20ac\U0001F600z";
    text::Utf8 u;
    ASSERT_TRUE(u.Assign(s, text::Utf16Length(s, 100), mem::Module::ktclr));
    EXPECT_STREQ(u.c_str(), "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80z");
    char16_t back[16];
    const std::size_t units = text::Utf8ToUtf16(u.c_str(), std::char_traits<char>::length(u.c_str()), back, 16);
    EXPECT_EQ(units, 7u);
    EXPECT_EQ(std::u16string(back), std::u16string(s));

    // Lone surrogates and broken bytes become U+FFFD.
    const char16_t lone[] = {0xD800, u'x', 0xDC00, 0};
    ASSERT_TRUE(u.Assign(lone, 3, mem::Module::ktclr));
    EXPECT_STREQ(u.c_str(), "\xef\xbf\xbdx\xef\xbf\xbd");
    const char bad[] = "\xc3(\xf0\x9f";
    EXPECT_EQ(text::Utf8ToUtf16(bad, 4, back, 16), 5u);  // each broken byte is one U+FFFD
    EXPECT_EQ(back[0], 0xFFFD);
    EXPECT_EQ(back[1], u'(');
    EXPECT_EQ(back[2], 0xFFFD);
}

TEST(Utf16, CopyTruncatesAndTerminates) {
    char16_t dst[4];
    text::Utf16Copy(dst, 4, u"abcdef");
    EXPECT_EQ(std::u16string(dst), u"abc");
    EXPECT_EQ(text::Utf16Length(u"abcdef", 3), 3u);
}

}  // namespace
}  // namespace kt
