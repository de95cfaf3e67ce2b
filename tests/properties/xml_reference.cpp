#include "xml_reference.h"

#include <memory>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

using namespace xercesc;

namespace reference {

namespace {

class Wide
{
public:
    Wide(char const* text) : m_text(XMLString::transcode(text)) {}
    Wide(Quarn::string const& text) : Wide(text.c_str()) {}
    Wide(Wide const&) = delete;
    Wide& operator=(Wide const&) = delete;
    ~Wide() { XMLString::release(&m_text); }
    operator XMLCh const*() const { return m_text; }

private:
    XMLCh* m_text;
};

Quarn::string Narrow(XMLCh const* text)
{
    char* const bytes = XMLString::transcode(text);
    Quarn::string const result = bytes;
    char* owned = bytes;
    XMLString::release(&owned);
    return result;
}

struct Release
{
    template<typename T>
    void operator()(T* object) const
    {
        object->release();
    }
};

DOMNode* Attribute(DOMNode* node, char const* name)
{
    DOMNamedNodeMap* const attributes = node->getAttributes();
    return attributes == nullptr ? nullptr : attributes->getNamedItem(Wide(name));
}

bool IsText(DOMNode* node)
{
    return XMLString::equals(node->getNodeName(), Wide("#text"));
}

bool ReadKey(DOMNode* element, Quarn::PropertyKey& key)
{
    for (DOMNode* child = element->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (IsText(child)) {
            continue;
        }
        DOMNode* const name = Attribute(child, "Name");
        if (name == nullptr) {
            return false;
        }
        Quarn::string const nameText = Narrow(name->getNodeValue());
        if (XMLString::equals(child->getNodeName(), Wide("Key"))) {
            Quarn::PropertyKey* const subKey = key.AddSubKey(nameText.c_str());
            if (subKey == nullptr || !ReadKey(child, *subKey)) {
                return false;
            }
        } else if (XMLString::equals(child->getNodeName(), Wide("Value"))) {
            XMLCh const* const text = child->getTextContent();
            DOMNode* const type = Attribute(child, "Type");
            if (text == nullptr || type == nullptr) {
                return false;
            }
            key.SetValue(nameText, Quarn::PropertyData::Create(Narrow(type->getNodeValue()), Narrow(text)),
                         true);
        }
    }
    return true;
}

void WriteKey(DOMDocument* document, DOMElement* parent, Quarn::PropertyKey const& key)
{
    DOMElement* const element = document->createElement(Wide("Key"));
    element->setAttribute(Wide("Name"), Wide(key.GetName()));
    parent->appendChild(element);
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        Quarn::PropertyValue const& source = *key.GetValue(i);
        DOMElement* const value = document->createElement(Wide("Value"));
        value->setAttribute(Wide("Name"), Wide(source.GetName()));
        value->setAttribute(Wide("Type"), Wide(source.GetDatatypeName()));
        value->appendChild(document->createTextNode(Wide(source.GetValueString())));
        element->appendChild(value);
    }
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        WriteKey(document, element, *key.GetSubKey(i));
    }
}

} // namespace

Result Read(std::string const& document, Quarn::PropertyCollection& collection)
{
    // Behind the root element the parser takes one for the end. The documents in two bytes a character have
    // none.
    if (document.find('\0') != document.npos && document.find("\xFF\xFE") != 0) {
        return Result::Refused;
    }
    HandlerBase quiet;
    XercesDOMParser parser;
    parser.setValidationScheme(XercesDOMParser::Val_Auto);
    parser.setDoNamespaces(false);
    parser.setDoSchema(false);
    parser.setValidationSchemaFullChecking(false);
    parser.setLoadExternalDTD(false);
    parser.setDisableDefaultEntityResolution(true);
    // The default handler throws at a fatal error.
    parser.setErrorHandler(&quiet);
    MemBufInputSource const source(reinterpret_cast<XMLByte const*>(document.data()), document.size(),
                                   "test");
    try {
        parser.parse(source);
    } catch (...) {
        return Result::Refused;
    }
    DOMDocument* const tree = parser.getDocument();
    if (parser.getErrorCount() != 0 || tree == nullptr || tree->getFirstChild() == nullptr ||
        tree->getFirstChild() != tree->getLastChild()) {
        return Result::Refused;
    }
    collection.SetDocumentDescription(Narrow(tree->getFirstChild()->getNodeName()));
    DOMNode* child = tree->getFirstChild()->getFirstChild();
    while (child != nullptr && IsText(child)) {
        child = child->getNextSibling();
    }
    DOMNode* const name = child == nullptr ? nullptr : Attribute(child, "Name");
    if (name == nullptr) {
        return Result::NoKey;
    }
    collection.SetName(Narrow(name->getNodeValue()));
    return ReadKey(child, collection) ? Result::Whole : Result::Partial;
}

std::optional<std::string> Write(Quarn::PropertyCollection const& collection)
{
    try {
        DOMImplementation* const core = DOMImplementationRegistry::getDOMImplementation(Wide("Core"));
        std::unique_ptr<DOMDocument, Release> const document(
            core->createDocument(nullptr, Wide(collection.GetDocumentDescription()), nullptr));
        WriteKey(document.get(), document->getDocumentElement(), collection);
        std::unique_ptr<DOMLSSerializer, Release> const writer(core->createLSSerializer());
        writer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        MemBufFormatTarget target;
        std::unique_ptr<DOMLSOutput, Release> const output(core->createLSOutput());
        output->setByteStream(&target);
        if (!writer->write(document->getDocumentElement(), output.get())) {
            return std::nullopt;
        }
        return std::string(reinterpret_cast<char const*>(target.getRawBuffer()), target.getLen());
    } catch (DOMException const&) {
        return std::nullopt;
    }
}

} // namespace reference
