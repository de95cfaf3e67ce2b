// Counts the narrowing reports while it lives, in place of showing them.
#pragma once

#include "quarn/platform/message.h"

class CapturedReports
{
public:
    CapturedReports() : m_before(Quarn::SetMessageHandler(&Count)) { s_count = 0; }
    ~CapturedReports() { Quarn::SetMessageHandler(m_before); }
    CapturedReports(CapturedReports const&) = delete;
    CapturedReports& operator=(CapturedReports const&) = delete;

    int Number() const { return s_count; }

private:
    static void Count(char const* /*text*/, char const* /*caption*/) { ++s_count; }

    inline static int s_count = 0;
    Quarn::MessageHandler m_before;
};
