#include "show.h"

#include "quarn/stream/dump_streams.h"

#include <cstdio>

namespace station {

namespace {

void ShowKey(Quarn::PropertyKey const& key, int depth)
{
    int const indent = 2 * depth;
    std::printf("%*s[%s]\n", indent, "", key.GetName().c_str());
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        Quarn::PropertyValue const& value = *key.GetValue(i);
        bool const quoted = value.GetDataType() == Quarn::PropertyData::TypeString;
        char const* const quote = quoted ? "\"" : "";
        std::printf("%*s%s = %s%s%s (%s)\n", indent + 2, "", value.GetName().c_str(), quote,
                    value.GetValueString().c_str(), quote, value.GetDatatypeName().c_str());
    }
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        ShowKey(*key.GetSubKey(i), depth + 1);
    }
}

} // namespace

void Show(Quarn::PropertyCollection const& settings)
{
    std::printf("%s\n", settings.GetDocumentDescription().c_str());
    ShowKey(settings, 1);
}

JournalSummary ListJournal(std::string const& path)
{
    return ReadJournal(path, [](Record const& record) {
        Quarn::statdumpstream counter(false);
        counter << record;
        Quarn::memorydumpstream listing(counter.GetSize());
        listing << record;
        std::fwrite(listing.GetMemory(), 1, counter.GetSize(), stdout);
    });
}

} // namespace station
