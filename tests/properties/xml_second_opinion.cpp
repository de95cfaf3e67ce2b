#include "xml_second_opinion.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include <expat.h>

namespace documents {

namespace {

using Quarn::PropertyData;
using Quarn::PropertyKey;

class Reader
{
public:
    explicit Reader(SecondOpinion& opinion) : m_opinion(opinion) {}

    void StartElement(char const* element, char const** attributes)
    {
        ++m_depth;
        if (m_depth == 1) {
            m_opinion.settings.SetDocumentDescription(element);
        } else if (m_depth == 2) {
            if (m_keys.empty() && Attribute(attributes, "Name") != nullptr) {
                m_opinion.settings.SetName(Attribute(attributes, "Name"));
                m_keys.push_back(&m_opinion.settings);
            } else {
                m_skipFrom = m_skipFrom == 0 ? m_depth : m_skipFrom;
            }
        } else if (m_skipFrom == 0 && m_valueAt == 0) {
            char const* const name = Attribute(attributes, "Name");
            bool const isKey = std::string_view(element) == "Key";
            bool const isValue = std::string_view(element) == "Value";
            if (name != nullptr && isKey) {
                m_keys.push_back(m_keys.back()->AddSubKey(name));
            } else if (name != nullptr && isValue && Attribute(attributes, "Type") != nullptr) {
                m_valueAt = m_depth;
                m_name = name;
                m_type = Attribute(attributes, "Type");
                m_text.clear();
            } else {
                m_skipFrom = m_depth;
            }
        }
    }

    void EndElement()
    {
        if (m_depth == m_valueAt) {
            m_keys.back()->SetValue(m_name, PropertyData::Create(m_type, m_text), true);
            m_valueAt = 0;
        } else if (m_depth == m_skipFrom) {
            m_skipFrom = 0;
        } else if (m_skipFrom == 0 && m_valueAt == 0 && m_depth > 2) {
            m_keys.pop_back();
        }
        --m_depth;
    }

    void Characters(char const* text, int size)
    {
        if (m_valueAt != 0) {
            m_text.append(text, static_cast<std::size_t>(size));
        }
    }

    void CommentOrInstruction()
    {
        if (m_depth == 0) {
            m_opinion.deliberate = "a comment or an instruction outside the root element";
        }
    }

    void DocumentType() { m_opinion.deliberate = "a document type"; }

    void Declaration(char const* version)
    {
        if (version != nullptr && std::string_view(version) != "1.0") {
            m_opinion.deliberate = "another version than 1.0";
        }
    }

private:
    static char const* Attribute(char const** attributes, char const* name)
    {
        for (; *attributes != nullptr; attributes += 2) {
            if (std::strcmp(*attributes, name) == 0) {
                return attributes[1];
            }
        }
        return nullptr;
    }

    SecondOpinion& m_opinion;
    std::size_t m_depth = 0;
    std::size_t m_skipFrom = 0;
    std::size_t m_valueAt = 0;
    std::vector<PropertyKey*> m_keys;
    std::string m_name;
    std::string m_type;
    std::string m_text;
};

Reader& Of(void* context)
{
    return *static_cast<Reader*>(context);
}

// The Latin and Cyrillic alphabet; of the encodings that the library knows and expat does not.
int KnowEncoding(void* /*context*/, char const* name, XML_Encoding* encoding)
{
    if (std::string_view(name) != "ISO-8859-5") {
        return XML_STATUS_ERROR;
    }
    for (int i = 0; i < 256; ++i) {
        bool const isLatin = i < 0xA1 || i == 0xAD;
        encoding->map[i] = isLatin ? i : i == 0xF0 ? 0x2116 : i == 0xFD ? 0xA7 : i - 0xA0 + 0x400;
    }
    encoding->data = nullptr;
    encoding->convert = nullptr;
    encoding->release = nullptr;
    return XML_STATUS_OK;
}

// Whether UTF-16 with a mark or a "<" at its beginning has both halves of each of its pairs: expat does not
// look behind a first half.
bool HasWholePairs(std::string const& document)
{
    std::size_t const first = document.starts_with("\xFE\xFF") || document.starts_with('\0') ? 0 : 1;
    bool const isWide = document.size() > 1 &&
                        (document[first] == '\xFE' || document[first] == '\xFF' || document[first] == '\0');
    bool isSecond = false; // the next one must be
    for (std::size_t at = first; isWide && at < document.size(); at += 2) {
        auto const high = static_cast<unsigned char>(document[at]);
        if ((high >= 0xDC && high < 0xE0) != isSecond) {
            return false;
        }
        isSecond = high >= 0xD8 && high < 0xDC;
    }
    return !isSecond;
}

} // namespace

SecondOpinion Judge(std::string const& document)
{
    SecondOpinion opinion;
    Reader reader(opinion);
    struct Free
    {
        void operator()(XML_Parser parser) const { ::XML_ParserFree(parser); }
    };
    std::unique_ptr<XML_ParserStruct, Free> const parser(::XML_ParserCreate(nullptr));
    ::XML_SetUserData(parser.get(), &reader);
    ::XML_SetElementHandler(
        parser.get(),
        [](void* context, char const* name, char const** attributes) {
            Of(context).StartElement(name, attributes);
        },
        [](void* context, char const* /*name*/) { Of(context).EndElement(); });
    ::XML_SetCharacterDataHandler(
        parser.get(), [](void* context, char const* text, int size) { Of(context).Characters(text, size); });
    ::XML_SetCommentHandler(parser.get(),
                            [](void* context, char const* /*text*/) { Of(context).CommentOrInstruction(); });
    ::XML_SetProcessingInstructionHandler(parser.get(),
                                          [](void* context, char const* /*target*/, char const* /*text*/) {
                                              Of(context).CommentOrInstruction();
                                          });
    ::XML_SetStartDoctypeDeclHandler(parser.get(), [](void* context, char const* /*name*/,
                                                      char const* /*system*/, char const* /*pub*/,
                                                      int /*hasSubset*/) { Of(context).DocumentType(); });
    ::XML_SetXmlDeclHandler(parser.get(), [](void* context, char const* version, char const* /*encoding*/,
                                             int /*standalone*/) { Of(context).Declaration(version); });
    ::XML_SetUnknownEncodingHandler(parser.get(), &KnowEncoding, nullptr);
    opinion.isWellFormed =
        ::XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1) == XML_STATUS_OK;
    if (!opinion.isWellFormed) {
        opinion.error = ::XML_ErrorString(::XML_GetErrorCode(parser.get()));
    } else if (!HasWholePairs(document)) {
        opinion.isWellFormed = false;
        opinion.error = "half a pair";
    }
    return opinion;
}

} // namespace documents
