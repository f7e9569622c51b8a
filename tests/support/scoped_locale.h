// Runs a test's calls under a chosen LC_CTYPE locale (this thread only).
#pragma once

#include <locale.h>

namespace kt::test {

class ScopedLocale {
public:
    explicit ScopedLocale(const char* name)
        : locale_(newlocale(LC_CTYPE_MASK, name, static_cast<locale_t>(0))),
          previous_(locale_ ? uselocale(locale_) : static_cast<locale_t>(0)) {}
    ~ScopedLocale() {
        if (!locale_) return;
        uselocale(previous_);
        freelocale(locale_);
    }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    bool ok() const { return locale_ != static_cast<locale_t>(0); }

private:
    locale_t locale_;
    locale_t previous_;
};

}  // namespace kt::test
