// Loading and saving a settings file of 10,000 values, beside the XML library used bare. Every save is
// flushed to the disk and replaces the file; every peer's is, too.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileFormatTarget.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>

namespace {

namespace fs = std::filesystem;
using xercesc::XMLUni;

char const* const g_file = "xml_bench_settings.xml";

// 100 keys of 100 values, in three types.
void Fill(Quarn::PropertyCollection& tree)
{
    for (int k = 0; k < 100; ++k) {
        std::string const name = "Key" + std::to_string(k);
        Quarn::PropertyKey* const key = tree.AddSubKey(name.c_str());
        for (int v = 0; v < 100; ++v) {
            std::string const valueName = "Value" + std::to_string(v);
            unsigned char const bytes[4] = {1, 2, 3, static_cast<unsigned char>(v)};
            if (v % 3 == 0) {
                key->SetValue(valueName, Quarn::PropertyData(static_cast<long>(k * v)), true);
            } else if (v % 3 == 1) {
                key->SetValue(valueName, Quarn::PropertyData("a text of a usual length"), true);
            } else {
                key->SetValue(valueName, Quarn::PropertyData(bytes, 4L), true);
            }
        }
    }
}

// The file that every load reads; starts the XML library for the peers.
class File
{
public:
    File() : m_store(g_file)
    {
        Fill(tree);
        if (!m_store.Persist(&tree)) {
            std::fprintf(stderr, "the settings file cannot be written\n");
            std::abort();
        }
    }
    ~File() { fs::remove(g_file); }

    Quarn::PropertyCollection tree{"Bench", "Quarn_Properties"};

private:
    Quarn::Win32::XMLPropPersist m_store;
};

void LoadQuarn(benchmark::State& state)
{
    File const file;
    for (auto _ : state) {
        Quarn::PropertyCollection tree;
        if (!Quarn::Win32::XMLPropPersist(g_file).Populate(&tree) || tree.GetKeyCount() != 100) {
            state.SkipWithError("not loaded");
        }
        benchmark::DoNotOptimize(tree);
    }
}

void LoadSax2(benchmark::State& state)
{
    File const file;
    xercesc::XMLPlatformUtils::Initialize();
    {
        std::unique_ptr<xercesc::SAX2XMLReader> const reader(xercesc::XMLReaderFactory::createXMLReader());
        reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
        reader->setFeature(XMLUni::fgXercesSchema, false);
        xercesc::DefaultHandler handler;
        reader->setContentHandler(&handler);
        for (auto _ : state) {
            reader->parse(g_file);
        }
    }
    xercesc::XMLPlatformUtils::Terminate();
}

void LoadDom(benchmark::State& state)
{
    File const file;
    xercesc::XMLPlatformUtils::Initialize();
    for (auto _ : state) {
        xercesc::XercesDOMParser parser;
        parser.setDoNamespaces(false);
        parser.setDoSchema(false);
        parser.parse(g_file);
        benchmark::DoNotOptimize(parser.getDocument());
    }
    xercesc::XMLPlatformUtils::Terminate();
}

void SaveQuarn(benchmark::State& state)
{
    File const file;
    Quarn::Win32::XMLPropPersist const store(g_file);
    for (auto _ : state) {
        if (!store.Persist(&file.tree)) {
            state.SkipWithError("not saved");
        }
    }
}

// The bare library's pretty printer from its own ready-made document, to a file that nothing flushes.
void SaveDomUnflushed(benchmark::State& state)
{
    File const file;
    xercesc::XMLPlatformUtils::Initialize();
    {
        xercesc::XercesDOMParser parser;
        parser.setDoNamespaces(false);
        parser.setIncludeIgnorableWhitespace(false);
        parser.parse(g_file);
        static XMLCh const core[] = {'C', 'o', 'r', 'e', 0};
        auto* const implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(core);
        for (auto _ : state) {
            xercesc::DOMLSSerializer* const writer = implementation->createLSSerializer();
            writer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
            xercesc::DOMLSOutput* const output = implementation->createLSOutput();
            xercesc::LocalFileFormatTarget target("xml_bench_peer.xml");
            output->setByteStream(&target);
            writer->write(parser.getDocument()->getDocumentElement(), output);
            output->release();
            writer->release();
        }
    }
    xercesc::XMLPlatformUtils::Terminate();
    fs::remove("xml_bench_peer.xml");
}

BENCHMARK(LoadQuarn)->Name("settings load/quarn/10000 values")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadSax2)->Name("settings load/Xerces-C SAX2, bare/10000 values")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDom)->Name("settings load/Xerces-C DOM, bare/10000 values")->Unit(benchmark::kMillisecond);
BENCHMARK(SaveQuarn)
    ->Name("settings save/quarn, flushed to disk/10000 values")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(SaveDomUnflushed)
    ->Name("settings save/Xerces-C DOM writer, not flushed/10000 values")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
