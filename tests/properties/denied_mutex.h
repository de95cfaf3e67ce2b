// A mutex that this process may not open, as one of another user's.
#pragma once

#include "quarn/platform/win32_api.h"

#if !defined(_WIN32)
#include "quarn/platform/posix/lock_file.h"

#include <sys/stat.h>
#include <unistd.h>
#endif

#include <string>

#include <gtest/gtest.h>

class DeniedMutex
{
public:
    explicit DeniedMutex(std::string const& name)
    {
        Make(name);
        EXPECT_EQ(::CreateMutexA(nullptr, FALSE, name.c_str()), nullptr);
        EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    DeniedMutex(DeniedMutex const&) = delete;
    DeniedMutex& operator=(DeniedMutex const&) = delete;
    ~DeniedMutex() { Close(); }

#if defined(_WIN32)

    void Close()
    {
        if (m_mutex != nullptr) {
            ::CloseHandle(m_mutex);
            m_mutex = nullptr;
        }
    }

private:
    // Nobody has rights to it.
    void Make(std::string const& name)
    {
        ACL nobody = {};
        SECURITY_DESCRIPTOR descriptor = {};
        EXPECT_NE(::InitializeAcl(&nobody, sizeof nobody, ACL_REVISION), FALSE);
        EXPECT_NE(::InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION), FALSE);
        EXPECT_NE(::SetSecurityDescriptorDacl(&descriptor, TRUE, &nobody, FALSE), FALSE);
        SECURITY_ATTRIBUTES security = {sizeof security, &descriptor, FALSE};
        m_mutex = ::CreateMutexA(&security, FALSE, name.c_str());
        EXPECT_NE(m_mutex, nullptr);
    }

    HANDLE m_mutex = nullptr;

#else

    void Close()
    {
        if (!m_file.empty()) {
            EXPECT_EQ(::unlink(m_file.c_str()), 0);
            m_file.clear();
        }
    }

private:
    // What is no plain file is nobody's lock, root's neither.
    void Make(std::string const& name)
    {
        m_file = Quarn::detail::LockFilePath(name);
        EXPECT_EQ(::mkfifo(m_file.c_str(), 0600), 0);
    }

    std::string m_file;

#endif
};
