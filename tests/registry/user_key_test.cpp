// The keys named after a program with a version block: company Acme, product Tool.
#include "quarn/platform/version_info.h"
#include "quarn/registry/registry_key.h"

#include <gtest/gtest.h>

namespace {

using Quarn::string;
using Win32Quarn::CVersionInfo;
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
    string const version = CVersionInfo().GetProductVersion();
    ASSERT_NE(version, "");
    ASSERT_NE(version, "???");
    EXPECT_EQ(UserVersionKey().GetPath(""), string("Software\\Acme\\Tool\\").append(version));
    EXPECT_EQ(UserVersionKey("Beta").GetPath(""), string("Software\\Beta\\Tool\\").append(version));
    EXPECT_EQ(UserVersionKey("", "", "7").GetPath(""), "Software\\Acme\\Tool\\7");
}

} // namespace
