// Running a part of a test in a process of its own with fewer rights or less space.
#pragma once

#include <csignal>
#include <functional>

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

// Runs the body in a process of its own, which may lose rights that the test must keep. True when it gives
// true.
inline bool InChild(std::function<bool()> const& body)
{
    ::pid_t const child = ::fork();
    if (child == 0) {
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// From now on the superuser lacks these capabilities.
inline void GiveUp(unsigned int capabilities)
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    ASSERT_EQ(::syscall(SYS_capget, &header, data), 0);
    data[0].effective &= ~capabilities;
    data[0].permitted &= ~capabilities;
    ASSERT_EQ(::syscall(SYS_capset, &header, data), 0);
}

// From now on permissions count for the superuser too.
inline void GiveUpOverrides()
{
    GiveUp(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
}

// Files of this process end here.
inline void LimitFileSize(::rlim_t size)
{
    ::signal(SIGXFSZ, SIG_IGN);
    ::rlimit const limit{size, size};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}
