// A locale that knows a letter outside ASCII, on either system. The former locale comes back at the end.
#pragma once

#include <string>

#include <locale.h>

class TestLocale
{
public:
    TestLocale() : m_former(::setlocale(LC_ALL, nullptr))
    {
        for (Candidate const& candidate : candidates) {
            if (::setlocale(LC_ALL, candidate.name) != nullptr) {
                m_chosen = &candidate;
                break;
            }
        }
        UseC();
    }
    ~TestLocale() { ::setlocale(LC_ALL, m_former.c_str()); }
    TestLocale(TestLocale const&) = delete;
    TestLocale& operator=(TestLocale const&) = delete;

    bool Found() const { return m_chosen != nullptr; }
    // A and O with diaeresis, in the encoding of the locale.
    char const* UpperA() const { return m_chosen->upperA; }
    char const* LowerA() const { return m_chosen->lowerA; }
    char const* UpperO() const { return m_chosen->upperO; }
    char const* LowerO() const { return m_chosen->lowerO; }

    void Use() const { ::setlocale(LC_ALL, m_chosen->name); }
    static void UseC() { ::setlocale(LC_ALL, "C"); }

private:
    struct Candidate
    {
        char const* name;
        char const* upperA;
        char const* lowerA;
        char const* upperO;
        char const* lowerO;
    };
    static constexpr Candidate candidates[] = {
        {"C.UTF-8", "\xc3\x84", "\xc3\xa4", "\xc3\x96", "\xc3\xb6"},
        {"English_United States.1252", "\xc4", "\xe4", "\xd6", "\xf6"},
    };

    std::string m_former;
    Candidate const* m_chosen = nullptr;
};
