// The keys named after a program with a version block: company Acme, product Tool, version 4.2.
#include "quarn/registry/registry_key.h"

#include <gtest/gtest.h>

namespace {

using Win32Quarn::UserKey;
using Win32Quarn::UserVersionKey;

TEST(UserKey, IsNamedAfterTheProgramsVersionBlock)
{
    EXPECT_EQ(UserKey().GetPath(""), "Software\\Acme\\Tool");
    EXPECT_EQ(UserKey("Beta").GetPath(""), "Software\\Beta\\Tool");
    EXPECT_EQ(UserKey("", "Other").GetPath(""), "Software\\Acme\\Other");
}

TEST(UserKey, AVersionIsTheProductVersionOfTheBlock)
{
    EXPECT_EQ(UserVersionKey().GetPath(""), "Software\\Acme\\Tool\\4.2");
    EXPECT_EQ(UserVersionKey("Beta").GetPath(""), "Software\\Beta\\Tool\\4.2");
    EXPECT_EQ(UserVersionKey("", "Other").GetPath(""), "Software\\Acme\\Other\\4.2");
    EXPECT_EQ(UserVersionKey("", "", "7").GetPath(""), "Software\\Acme\\Tool\\7");
}

} // namespace
