// Loading and saving a settings file beside the XML library that the store is made with, used bare. The
// limits are the file's bytes alone, from the disk's cache and safely to the disk.
#include "bench/xml_bench.h"

#include <fstream>
#include <iterator>
#include <memory>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileFormatTarget.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

namespace {

using Bench::Seen;
using Bench::SettingsFile;
using xercesc::XMLString;
using xercesc::XMLUni;

void LoadQuarn(benchmark::State& state)
{
    Bench::MeasureLoad(
        state,
        [](char const* path) {
            auto tree = std::make_unique<Quarn::PropertyCollection>();
            Quarn::Win32::XMLPropPersist(path).Populate(tree.get());
            return tree;
        },
        [](auto const& tree) { return Bench::SeenIn(*tree); });
}

std::string ReadWhole(char const* path)
{
    std::string bytes(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios_base::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void LoadLimit(benchmark::State& state)
{
    Bench::MeasureLoad(state, ReadWhole, [](std::string const&) { return Bench::Expected(); });
}

// The library, started and ended.
class Xerces
{
public:
    Xerces() { xercesc::XMLPlatformUtils::Initialize(); }
    Xerces(Xerces const&) = delete;
    Xerces& operator=(Xerces const&) = delete;
    ~Xerces() { xercesc::XMLPlatformUtils::Terminate(); }
};

class Counter : public xercesc::DefaultHandler
{
public:
    void startElement(XMLCh const* /*uri*/, XMLCh const* /*local*/, XMLCh const* /*name*/,
                      xercesc::Attributes const& attributes) override
    {
        m_inValue = attributes.getLength() == 2;
        if (m_inValue) {
            m_seen.Add(XMLString::stringLen(attributes.getValue(XMLSize_t{0})),
                       XMLString::stringLen(attributes.getValue(XMLSize_t{1})), 0);
        }
    }
    void endElement(XMLCh const* /*uri*/, XMLCh const* /*local*/, XMLCh const* /*name*/) override
    {
        m_inValue = false;
    }
    void characters(XMLCh const* /*text*/, XMLSize_t length) override
    {
        m_seen.bytes += m_inValue ? length : 0;
    }
    Seen Counted() const { return m_seen; }

private:
    Seen m_seen;
    bool m_inValue = false;
};

void LoadSax2(benchmark::State& state)
{
    Xerces const library;
    std::unique_ptr<xercesc::SAX2XMLReader> const reader(xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    reader->setFeature(XMLUni::fgXercesSchema, false);
    Bench::MeasureLoad(
        state,
        [&](char const* path) {
            Counter counter;
            reader->setContentHandler(&counter);
            reader->parse(path);
            return counter.Counted();
        },
        [](Seen const& seen) { return seen; });
}

std::unique_ptr<xercesc::XercesDOMParser> Parse(char const* path)
{
    auto parser = std::make_unique<xercesc::XercesDOMParser>();
    parser->setDoNamespaces(false);
    parser->setDoSchema(false);
    parser->setIncludeIgnorableWhitespace(false);
    parser->parse(path);
    return parser;
}

Seen SeenIn(std::unique_ptr<xercesc::XercesDOMParser> const& parser)
{
    static XMLCh const nameAttribute[] = {'N', 'a', 'm', 'e', 0};
    static XMLCh const typeAttribute[] = {'T', 'y', 'p', 'e', 0};
    Seen seen;
    auto const* const root = parser->getDocument()->getDocumentElement()->getFirstElementChild();
    for (auto const* key = root->getFirstElementChild(); key != nullptr; key = key->getNextElementSibling()) {
        for (auto const* value = key->getFirstElementChild(); value != nullptr;
             value = value->getNextElementSibling()) {
            seen.Add(XMLString::stringLen(value->getAttribute(nameAttribute)),
                     XMLString::stringLen(value->getAttribute(typeAttribute)),
                     XMLString::stringLen(value->getTextContent()));
        }
    }
    return seen;
}

void LoadDom(benchmark::State& state)
{
    Xerces const library;
    Bench::MeasureLoad(state, Parse, SeenIn);
}

void SaveQuarn(benchmark::State& state)
{
    SettingsFile const file;
    Bench::MeasureSave(
        state, [&](char const* path) { return Quarn::Win32::XMLPropPersist(path).Persist(&file.tree); });
}

void SaveLimit(benchmark::State& state)
{
    SettingsFile const file;
    std::string const bytes = ReadWhole(SettingsFile::Path());
    Bench::MeasureWrite(state, [&](char const* path) {
        int const written = ::open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        benchmark::DoNotOptimize(::write(written, bytes.data(), bytes.size()));
        ::close(written);
    });
}

// The pretty printer, from a document that is ready.
void SaveDom(benchmark::State& state)
{
    SettingsFile const file;
    Xerces const library;
    auto const parser = Parse(SettingsFile::Path());
    static XMLCh const core[] = {'C', 'o', 'r', 'e', 0};
    auto* const implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(core);
    Bench::MeasureWrite(state, [&](char const* path) {
        xercesc::DOMLSSerializer* const writer = implementation->createLSSerializer();
        writer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        xercesc::DOMLSOutput* const output = implementation->createLSOutput();
        xercesc::LocalFileFormatTarget target(path);
        output->setByteStream(&target);
        writer->write(parser->getDocument()->getDocumentElement(), output);
        output->release();
        writer->release();
    });
}

[[maybe_unused]] int const g_registered = [] {
    Bench::RegisterLoad("quarn", LoadQuarn);
    Bench::RegisterLoad("limit: read the file", LoadLimit);
    Bench::RegisterLoad("Xerces-C SAX2", LoadSax2);
    Bench::RegisterLoad("Xerces-C DOM", LoadDom);
    Bench::RegisterSave("quarn", SaveQuarn);
    Bench::RegisterSave("limit: bytes that are ready", SaveLimit);
    Bench::RegisterSave("Xerces-C DOM", SaveDom);
    return 0;
}();

} // namespace
