// The XML library's life in this process: started by its first user, and then kept until the process ends.
#pragma once

namespace Quarn::detail {

// Each successful start is matched by one stop. Any thread may call both. A start fails only where the XML
// library cannot be brought up at all (no memory); nothing is to be stopped then.
bool StartXmlLibrary() noexcept;
void StopXmlLibrary() noexcept;

// One start and its stop as an object.
class XmlLibraryUse
{
public:
    XmlLibraryUse() noexcept : m_started(StartXmlLibrary()) {}
    XmlLibraryUse(XmlLibraryUse const&) = delete;
    XmlLibraryUse& operator=(XmlLibraryUse const&) = delete;
    ~XmlLibraryUse()
    {
        if (m_started) {
            StopXmlLibrary();
        }
    }

    bool Started() const noexcept { return m_started; }

private:
    bool m_started;
};

} // namespace Quarn::detail
