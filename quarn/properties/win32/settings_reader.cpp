#include "quarn/properties/win32/settings_reader.h"

#include "quarn/properties/win32/bounded_memory.h"
#include "quarn/properties/win32/settings_encoding.h"
#include "quarn/properties/win32/settings_limits.h"
#include "quarn/properties/win32/settings_steps.h"
#include "quarn/properties/win32/xml_text.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Quarn::detail {

namespace {

constexpr XMLCh KeyElement[] = {'K', 'e', 'y', 0};
constexpr XMLCh ValueElement[] = {'V', 'a', 'l', 'u', 'e', 0};
constexpr XMLCh NameAttribute[] = {'N', 'a', 'm', 'e', 0};
constexpr XMLCh TypeAttribute[] = {'T', 'y', 'p', 'e', 0};
constexpr XMLCh SourceName[] = {'s', 'e', 't', 't', 'i', 'n', 'g', 's', 0};

// Leaves the parser; the document is refused.
struct Refusal
{};

constexpr char const* TooDeepElements = "more than 10,000 elements in each other";
constexpr char const* TooDeepKeys = "more than 1,000 levels of keys";
constexpr char const* TooLongName = "a name of more than 16 MiB";
constexpr char const* BesideTheRoot = "a comment or a processing instruction beside the root element";
constexpr char const* DocumentType = "a document type declaration";
constexpr char const* OtherVersion = "another version of XML than 1.0 and 1.1";
constexpr char const* TooLong = "more than 256 MiB";
constexpr char const* UnsoundCharacters =
    "a zero character, half a character, or something behind the last element";
constexpr char const* OtherEncoding = "an encoding that the document does not have";
constexpr char const* NoSuchCharacters = "bytes that are no characters in the document's encoding";
constexpr char const* TooMuchMemory = "more than the XML library may take to read it";
constexpr char const* NoKeyInRoot = "no key in the root element; its first element has no Name";
constexpr char const* NoName = "an element without Name";
constexpr char const* NoType = "a value without Type";
constexpr char const* NoElement = "a comment, a processing instruction or a CDATA section between elements";
constexpr char const* NoCharacter = "a character that the process code page has not";

// How many levels a key path makes: the keys' own path syntax, delimiters in a row counting as one.
std::size_t LevelsOf(std::string_view path)
{
    constexpr std::string_view Delimiters = "\\/;,";
    std::size_t levels = 0;
    while (!path.empty()) {
        ++levels;
        std::size_t const end = std::min(path.find_first_of(Delimiters), path.size());
        path.remove_prefix(std::min(path.find_first_not_of(Delimiters, end), path.size()));
    }
    return levels;
}

class Handler final : public xercesc::DefaultHandler
{
public:
    Handler(SettingsSteps& steps, ReadProblem& problem) : m_steps(steps), m_problem(problem) {}

    ReadResult Result() const
    {
        if (m_depths.empty()) {
            return ReadResult::NoKey;
        }
        return m_stopped || !m_exact ? ReadResult::Partial : ReadResult::Whole;
    }

    void startElement(XMLCh const*, XMLCh const*, XMLCh const* name,
                      xercesc::Attributes const& attributes) override
    {
        if (++m_depth > MaxElementDepth) {
            Refuse(TooDeepElements);
        }
        if (m_depth == 1) {
            m_steps.SetDescription(Convert(name, m_name));
        } else if (m_place == Place::Root) {
            EnterRootKey(attributes);
        } else if (m_place == Place::Key) {
            EnterChild(name, attributes);
        }
    }

    void endElement(XMLCh const*, XMLCh const*, XMLCh const*) override
    {
        if (m_place == Place::Value && m_depth == m_resumeDepth) {
            std::size_t const textSize = Append(m_characters.data(), m_characters.size());
            m_steps.SetValue(m_valueNameSize, m_valueType, textSize);
            m_place = Place::Key;
        } else if (m_place == Place::Ignored && m_depth == m_resumeDepth) {
            m_place = Place::Key;
        } else if (m_place == Place::Key) {
            LeaveKey();
        }
        --m_depth;
    }

    void characters(XMLCh const* text, XMLSize_t count) override
    {
        if (m_place == Place::Value) {
            m_characters.append(text, count);
        }
    }

    void startCDATA() override { MeetNodeWithoutName(); }
    void comment(XMLCh const*, XMLSize_t) override { MeetNodeWithoutName(); }
    void processingInstruction(XMLCh const*, XMLCh const*) override { MeetNodeWithoutName(); }

    void error(xercesc::SAXParseException const& failure) override
    {
        throw xercesc::SAXParseException(failure);
    }
    void fatalError(xercesc::SAXParseException const& failure) override { error(failure); }

    void setDocumentLocator(xercesc::Locator const* locator) override { m_locator = locator; }

    // The place where the XML library stands, and the reason, unless there is one already.
    void Note(char const* reason)
    {
        if (m_problem.reason.empty()) {
            if (m_locator != nullptr) {
                m_problem.line = m_locator->getLineNumber();
                m_problem.column = m_locator->getColumnNumber();
            }
            m_problem.reason = reason;
        }
    }
    // Once the document is refused, why counts alone.
    [[noreturn]] void Refuse(char const* reason)
    {
        m_problem.reason.clear();
        Note(reason);
        throw Refusal();
    }

private:
    enum class Place
    {
        Root,    // before the root's key, in it or in front of it
        Key,     // in a key, between its children
        Value,   // in a value, at any depth
        Ignored, // in an element that leaves nothing
        Done,    // behind all that counts; the rest must be well-formed, no more
    };

    // Both attributes that count, null where there is none.
    struct NameAndType
    {
        XMLCh const* name = nullptr;
        XMLCh const* type = nullptr;

        explicit NameAndType(xercesc::Attributes const& attributes)
        {
            for (XMLSize_t i = 0, count = attributes.getLength(); i < count; ++i) {
                XMLCh const* const attribute = attributes.getQName(i);
                if (xercesc::XMLString::equals(attribute, NameAttribute)) {
                    name = attributes.getValue(i);
                } else if (xercesc::XMLString::equals(attribute, TypeAttribute)) {
                    type = attributes.getValue(i);
                }
            }
        }
    };

    void EnterRootKey(xercesc::Attributes const& attributes)
    {
        if (XMLCh const* const name = NameAndType(attributes).name) {
            m_steps.SetRootName(ConvertName(name));
            m_levels = 1;
            m_depths.push_back(0);
            m_place = Place::Key;
        } else {
            Note(NoKeyInRoot);
            m_place = Place::Done;
        }
    }

    void EnterChild(XMLCh const* element, xercesc::Attributes const& attributes)
    {
        auto const [name, type] = NameAndType(attributes);
        bool const isValue = xercesc::XMLString::equals(element, ValueElement);
        if (name == nullptr || (isValue && type == nullptr)) {
            Stop(name == nullptr ? NoName : NoType);
        } else if (isValue) {
            m_valueNameSize = Append(name, CheckedNameSize(name));
            m_valueType = PropertyData::GetType(Convert(type, m_type));
            m_characters.clear();
            Skip(Place::Value);
        } else if (xercesc::XMLString::equals(element, KeyElement)) {
            ConvertName(name);
            std::size_t const levels = LevelsOf(m_name);
            if (m_levels + levels > MaxTreeDepth) {
                Refuse(TooDeepKeys);
            }
            m_levels += levels;
            m_depths.push_back(levels);
            m_steps.EnterKey(m_name);
        } else {
            Skip(Place::Ignored);
        }
    }

    void LeaveKey()
    {
        m_levels -= m_depths.back();
        if (m_depths.size() == 1) {
            m_place = Place::Done;
        } else {
            m_depths.pop_back();
            m_steps.LeaveKey();
        }
    }

    // What is no element and no text has no name: it ends the reading of its key, and so of all keys around
    // it. In a value it is a part of the text or nothing.
    void MeetNodeWithoutName()
    {
        if (m_depth == 0) {
            Refuse(BesideTheRoot);
        }
        if (m_place == Place::Key) {
            Stop(NoElement);
        } else if (m_place == Place::Root) {
            Note(NoKeyInRoot);
            m_place = Place::Done;
        }
    }

    void Stop(char const* reason)
    {
        Note(reason);
        m_stopped = true;
        m_place = Place::Done;
    }

    // Until the end of the element that has just begun.
    void Skip(Place place)
    {
        m_place = place;
        m_resumeDepth = m_depth;
    }

    string const& Convert(XMLCh const* characters, string& text)
    {
        text.clear();
        AppendTo(text, characters, xercesc::XMLString::stringLen(characters));
        return text;
    }

    std::size_t CheckedNameSize(XMLCh const* name)
    {
        std::size_t const size = xercesc::XMLString::stringLen(name);
        if (size > MaxNameSize) {
            Refuse(TooLongName);
        }
        return size;
    }

    string const& ConvertName(XMLCh const* name)
    {
        CheckedNameSize(name);
        return Convert(name, m_name);
    }

    // To the texts of the next step; returns how many bytes that makes.
    std::size_t Append(XMLCh const* characters, std::size_t count)
    {
        std::string& texts = m_steps.Texts();
        std::size_t const start = texts.size();
        AppendTo(texts, characters, count);
        return texts.size() - start;
    }

    void AppendTo(std::string& text, XMLCh const* characters, std::size_t count)
    {
        if (!AppendFromUtf16(characters, count, text)) {
            m_exact = false;
            Note(NoCharacter);
        }
    }

    SettingsSteps& m_steps;
    ReadProblem& m_problem;
    xercesc::Locator const* m_locator = nullptr;
    Place m_place = Place::Root;
    std::size_t m_depth = 0;
    std::size_t m_resumeDepth = 0;
    std::size_t m_levels = 0;
    std::vector<std::size_t> m_depths; // the levels that each open key has made; the root's key stays
    bool m_stopped = false;
    bool m_exact = true;
    string m_name;
    string m_type;
    std::size_t m_valueNameSize = 0;
    PropertyData::DataType m_valueType = PropertyData::TypeUnknown;
    std::basic_string<XMLCh> m_characters;
};

// The XML library's parser, which by itself reports a document type only where that declares something, takes
// every version 1.x, and does not compare some encodings with the bytes.
class Reader final : public xercesc::SAX2XMLReaderImpl
{
public:
    Reader(std::string_view document, Handler& handler, xercesc::MemoryManager* memory)
        : SAX2XMLReaderImpl(memory),
          m_document(document),
          m_handler(handler),
          m_memory(memory)
    {}

    void doctypeDecl(xercesc::DTDElementDecl const&, XMLCh const*, XMLCh const*, bool, bool) override
    {
        m_handler.Refuse(DocumentType);
    }

    void XMLDecl(XMLCh const* version, XMLCh const* encoding, XMLCh const* standalone,
                 XMLCh const* actualEncoding) override
    {
        using xercesc::XMLString;
        using xercesc::XMLUni;
        if (!XMLString::equals(version, XMLUni::fgVersion1_0) &&
            !XMLString::equals(version, XMLUni::fgVersion1_1)) {
            m_handler.Refuse(OtherVersion);
        }
        if (!CanBeEncodingOf(m_document, encoding)) {
            m_handler.Refuse(OtherEncoding);
        }
        if (!HasCharactersOf(m_document, encoding, m_memory)) {
            m_handler.Refuse(NoSuchCharacters);
        }
        SAX2XMLReaderImpl::XMLDecl(version, encoding, standalone, actualEncoding);
    }

private:
    std::string_view m_document;
    Handler& m_handler;
    xercesc::MemoryManager* m_memory;
};

void Configure(Reader& reader)
{
    using xercesc::XMLUni;
    reader.setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    reader.setFeature(XMLUni::fgSAX2CoreNameSpacePrefixes, true);
    reader.setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader.setFeature(XMLUni::fgXercesSchema, false);
    reader.setFeature(XMLUni::fgXercesSchemaFullChecking, false);
    reader.setFeature(XMLUni::fgXercesLoadExternalDTD, false);
    reader.setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
}

// What the XML library says, as the process's text.
string TextOf(XMLCh const* message)
{
    std::string text;
    if (message != nullptr) {
        AppendFromUtf16(message, xercesc::XMLString::stringLen(message), text);
    }
    return text.empty() ? string("no well-formed XML") : string(std::move(text));
}

bool Parse(std::string_view document, Handler& handler, ReadProblem& problem)
{
    BoundedMemory memory(MaxParserMemory);
    try {
        xercesc::SecurityManager security;
        security.setEntityExpansionLimit(1);
        xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(document.data()), document.size(),
                                          SourceName, false, &memory);
        source.setCopyBufToStream(false);
        Reader reader(document, handler, &memory);
        Configure(reader);
        reader.setProperty(xercesc::XMLUni::fgXercesSecurityManager, &security);
        reader.setContentHandler(&handler);
        reader.setLexicalHandler(&handler);
        reader.setErrorHandler(&handler);
        reader.parse(source);
        return true;
    } catch (std::bad_alloc const&) {
        throw;
    } catch (Refusal const&) { // which has told why
    } catch (xercesc::SAXParseException const& failure) {
        problem = {failure.getLineNumber(), failure.getColumnNumber(), TextOf(failure.getMessage())};
    } catch (xercesc::SAXException const& failure) {
        problem = {0, 0, TextOf(failure.getMessage())};
    } catch (xercesc::XMLException const& failure) {
        problem = {failure.getSrcLine(), 0, TextOf(failure.getMessage())};
    } catch (...) {
        // Whatever the XML library throws where it cannot go on; mostly for want of memory.
        problem = {0, 0, TooMuchMemory};
    }
    return false;
}

} // namespace

ReadResult ReadSettings(std::string_view document, PropertyCollection& collection, ReadProblem* problem)
{
    SettingsSteps steps;
    ReadProblem found;
    Handler handler(steps, found);
    bool read = false;
    if (document.size() > MaxDocumentSize) {
        found.reason = TooLong;
    } else if (!HasSoundCharacters(document)) {
        found.reason = UnsoundCharacters;
    } else {
        read = Parse(document, handler, found);
    }
    if (read) {
        steps.Apply(collection);
    }
    ReadResult const result = read ? handler.Result() : ReadResult::Refused;
    if (result == ReadResult::NoKey && found.reason.empty()) {
        found = {0, 0, NoKeyInRoot};
    }
    if (problem != nullptr && result != ReadResult::Whole) {
        *problem = found;
    }
    return result;
}

} // namespace Quarn::detail
