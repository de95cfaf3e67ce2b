// A client of the installed library. It writes a record, reads it back, and catches what the library throws
// by its own type and by each base: the types are the same on both sides of the library's boundary.
#include <cstdio>
#include <exception>
#include <stdexcept>

#include <quarn/platform/module.h>
#include <quarn/platform/resource_strings.h>
#include <quarn/platform/version_info.h>
#include <quarn/platform/win32_api.h>
#include <quarn/registry/registry_key.h>
#include <quarn/stream/header_block.h>
#include <quarn/stream/memory_stream.h>
#include <quarn/stream/stream_exception.h>
#include <quarn/text/exception.h>
#include <quarn/text/string.h>

namespace {

constexpr unsigned long recordId = 0x00010003;
constexpr unsigned long foreignId = 0x00010002;
char const* const refusal = "Stream type check failed, expecting 0x00010002 found 0x00010003";

int failures = 0;

void Check(bool good, char const* what)
{
    std::printf("%s: %s\n", good ? "good" : "BAD", what);
    if (!good) {
        ++failures;
    }
}

void ReadForeignRecord()
{
    Quarn::memorystream stream(sizeof(Quarn::Stream::HeaderBlock));
    stream << Quarn::Stream::HeaderBlock{recordId, 1};
    stream.seekg(0);
    stream.ReadAndVerifyHeader(foreignId, 1);
}

// True when the refusal arrives as exactly this type's handler would want it.
template<class Exception>
bool CaughtAs()
{
    try {
        ReadForeignRecord();
    } catch (Exception const& exception) {
        return std::string(exception.what()) == refusal;
    } catch (...) {
        return false;
    }
    return false;
}

bool IsCaughtByNoSibling()
{
    try {
        ReadForeignRecord();
    } catch (Quarn::StreamVersionException const&) {
        return false;
    } catch (Quarn::StreamVerifyIdException const&) {
        return true;
    }
    return false;
}

} // namespace

int main()
{
    Quarn::string text;
    text.Format("%s=%d", "answer", 42);
    Check(text == "answer=42", "a text is formatted");

    Check(CaughtAs<Quarn::StreamVerifyIdException>(), "the refusal is caught as StreamVerifyIdException");
    Check(CaughtAs<Quarn::StreamException>(), "the refusal is caught as StreamException");
    Check(CaughtAs<Quarn::QuarnException>(), "the refusal is caught as QuarnException");
    Check(CaughtAs<std::runtime_error>(), "the refusal is caught as std::runtime_error");
    Check(CaughtAs<std::exception>(), "the refusal is caught as std::exception");
    Check(IsCaughtByNoSibling(), "the refusal is not caught as StreamVersionException");

    Check(Win32Quarn::LoadQuarnString(114, QuarnUtil::GetLibraryInstance()) == "unknown",
          "the library has its texts");
#if defined(CLIENT_HAS_RESOURCES)
    Check(Win32Quarn::LoadQuarnString(7, nullptr) == "seven", "the client has its texts");
    Check(Win32Quarn::CVersionInfo().GetProductName() == "Client", "the client has its version block");
    char library[MAX_PATH] = "";
    ::GetModuleFileNameA(QuarnUtil::GetLibraryInstance(), library, MAX_PATH);
    Check(Win32Quarn::CVersionInfo(library).GetProductVersion() == PACKAGE_VERSION,
          "the library is of the package's version");
    Check(Win32Quarn::UserKey("Acme").GetPath("") == "Software\\Acme\\Client",
          "the client has its registry key");
#endif
    return failures == 0 ? 0 : 1;
}
