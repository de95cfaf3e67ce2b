// The process in a German locale, with a decimal comma; the "C" locale comes back at the end. Outside Windows
// the locale is one that the build has made: quarn_use_german_locale().
#pragma once

#include <locale.h>
#include <stdlib.h>

class GermanLocale
{
public:
    GermanLocale()
    {
#if defined(_WIN32)
        m_found = ::setlocale(LC_ALL, "German_Germany.1252") != nullptr;
#else
        ::setenv("LOCPATH", QUARN_TEST_LOCALES, 1);
        m_found = ::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
#endif
    }
    GermanLocale(GermanLocale const&) = delete;
    GermanLocale& operator=(GermanLocale const&) = delete;
    ~GermanLocale()
    {
        ::setlocale(LC_ALL, "C");
#if !defined(_WIN32)
        ::unsetenv("LOCPATH");
#endif
    }

    bool Found() const
    {
        return m_found;
    }

private:
    bool m_found = false;
};
