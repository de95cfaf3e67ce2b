#include "quarn/properties/win32/settings_writer.h"

#include "quarn/properties/property_collection.h"
#include "quarn/properties/property_key.h"
#include "quarn/properties/property_value.h"
#include "quarn/properties/win32/settings_limits.h"
#include "quarn/properties/win32/xml_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Quarn::detail {

namespace {

enum class Use
{
    Text,
    Attribute,
};

// What stands for a byte in a document: itself (empty), a reference, or nothing at all (null).
using Escapes = std::array<char const*, 256>;

constexpr Escapes MakeEscapes(Use use)
{
    Escapes escapes{};
    for (std::size_t c = 0x20; c < escapes.size(); ++c) {
        escapes[c] = "";
    }
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['\r'] = "&#xD;";
    if (use == Use::Text) {
        escapes['>'] = "&gt;";
        escapes['\t'] = "";
        escapes['\n'] = "";
    } else {
        escapes['"'] = "&quot;";
        escapes['\t'] = "&#x9;";
        escapes['\n'] = "&#xA;";
    }
    return escapes;
}

constexpr Escapes TextEscapes = MakeEscapes(Use::Text);
constexpr Escapes AttributeEscapes = MakeEscapes(Use::Attribute);

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

class Writer
{
public:
    explicit Writer(std::string& document) : m_document(document) {}

    bool WriteRoot(PropertyCollection const& collection)
    {
        std::string name;
        if (!IsRootElementName(collection.GetDocumentDescription()) ||
            !ToUtf8(collection.GetDocumentDescription(), name)) {
            return false;
        }
        m_document = "\n<" + name + ">\n";
        if (!WriteKey(collection, 1)) {
            return false;
        }
        EndLine();
        m_document += "\n</" + name + ">";
        return m_document.size() <= MaxDocumentSize;
    }

private:
    // The root element is level 0. The depth is bounded.
    // NOLINTNEXTLINE(misc-no-recursion)
    bool WriteKey(PropertyKey const& key, std::size_t level)
    {
        if (level > MaxTreeDepth) {
            return false;
        }
        EndLine();
        Indent(level);
        m_document += "<Key Name=\"";
        if (!WriteName(key.GetName())) {
            return false;
        }
        if (key.GetValueCount() == 0 && key.GetKeyCount() == 0) {
            m_document += "\"/>";
            return true;
        }
        m_document += "\">";
        for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
            if (!WriteValue(*key.GetValue(i), level + 1)) {
                return false;
            }
        }
        for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
            if (!WriteKey(*key.GetSubKey(i), level + 1)) {
                return false;
            }
        }
        EndLine();
        Indent(level);
        m_document += "</Key>";
        return true;
    }

    bool WriteValue(PropertyValue const& value, std::size_t level)
    {
        EndLine();
        Indent(level);
        m_document += "<Value Name=\"";
        if (!WriteName(value.GetName())) {
            return false;
        }
        m_document += "\" Type=\"";
        m_document += value.GetDatatypeName();
        m_document += "\">";
        string const text = value.GetValueString();
        if (!WriteEscaped(text, TextEscapes)) {
            return false;
        }
        m_document += "</Value>";
        NoteLineBreak(text);
        return true;
    }

    // The document writer takes a blank text with a line break for the break before the next tag, and its
    // blanks for a part of the indent there.
    void NoteLineBreak(std::string_view text)
    {
        m_atLineStart = false;
        m_indented = 0;
        if (text.find_first_not_of(" \t\r\n") != text.npos) {
            return;
        }
        std::size_t pos = text.rfind('\n');
        if (pos == text.npos) {
            pos = text.rfind('\r');
        }
        if (pos != text.npos) {
            m_atLineStart = true;
            m_indented = text.size() - pos;
        }
    }

    void EndLine()
    {
        if (!m_atLineStart) {
            m_document += '\n';
        }
        m_atLineStart = false;
    }

    void Indent(std::size_t level)
    {
        m_document.append(2 * (level - std::min(level, m_indented / 2)), ' ');
        m_indented = 0;
    }

    bool WriteName(std::string_view name)
    {
        return name.size() <= MaxNameSize && WriteEscaped(name, AttributeEscapes);
    }

    bool WriteEscaped(std::string_view text, Escapes const& escapes)
    {
        if (m_document.size() + text.size() > MaxDocumentSize) {
            return false;
        }
        if (!IsAscii(text)) {
            if (!ToUtf8(text, m_utf8)) {
                return false;
            }
            text = m_utf8;
        }
        char const* run = text.data();
        char const* const end = run + text.size();
        for (char const* c = run; c != end; ++c) {
            char const* const escape = escapes[static_cast<unsigned char>(*c)];
            if (escape == nullptr) {
                return false;
            }
            if (*escape != '\0') {
                m_document.append(run, c);
                m_document += escape;
                run = c + 1;
                if (m_document.size() > MaxDocumentSize) {
                    return false;
                }
            }
        }
        m_document.append(run, end);
        return true;
    }

    std::string& m_document;
    std::string m_utf8;
    bool m_atLineStart = false;
    std::size_t m_indented = 0;
};

} // namespace

bool WriteSettings(PropertyCollection const& collection, std::string& document)
{
    return Writer(document).WriteRoot(collection);
}

} // namespace Quarn::detail
