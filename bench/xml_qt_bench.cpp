// The settings file by Qt's stream reader and writer, which keep no tree: what they read is counted, what
// they write comes from the generated values in Qt's texts.
#include "bench/xml_bench.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

Bench::Seen Load(char const* path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&file);
    Bench::Seen seen;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != QLatin1String("Value")) {
            continue;
        }
        QXmlStreamAttributes const attributes = reader.attributes();
        int const name = attributes.value(QLatin1String("Name")).size();
        int const type = attributes.value(QLatin1String("Type")).size();
        seen.Add(static_cast<std::size_t>(name), static_cast<std::size_t>(type),
                 static_cast<std::size_t>(reader.readElementText().size()));
    }
    return seen;
}

struct Value
{
    QString name;
    QString type;
    QString text;
};

struct Key
{
    QString name;
    std::vector<Value> values;
};

std::vector<Key> MakeKeys()
{
    std::vector<Key> keys;
    for (Bench::Key const& key : Bench::Keys()) {
        Key made{QString::fromStdString(key.name), {}};
        for (Bench::Value const& value : key.values) {
            made.values.push_back({QString::fromStdString(value.name), QString::fromStdString(value.type),
                                   QString::fromStdString(value.text)});
        }
        keys.push_back(std::move(made));
    }
    return keys;
}

void Write(char const* path, std::vector<Key> const& keys)
{
    QString const keyElement = QStringLiteral("Key");
    QString const valueElement = QStringLiteral("Value");
    QString const nameAttribute = QStringLiteral("Name");
    QString const typeAttribute = QStringLiteral("Type");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&file);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartElement(Bench::DocumentName);
    writer.writeStartElement(keyElement);
    writer.writeAttribute(nameAttribute, Bench::RootName);
    for (Key const& key : keys) {
        writer.writeStartElement(keyElement);
        writer.writeAttribute(nameAttribute, key.name);
        for (Value const& value : key.values) {
            writer.writeStartElement(valueElement);
            writer.writeAttribute(nameAttribute, value.name);
            writer.writeAttribute(typeAttribute, value.type);
            writer.writeCharacters(value.text);
            writer.writeEndElement();
        }
        writer.writeEndElement();
    }
    writer.writeEndDocument();
}

[[maybe_unused]] int const g_registered = [] {
    Bench::RegisterLoad("QXmlStreamReader", [](benchmark::State& state) {
        Bench::MeasureLoad(state, Load, [](Bench::Seen const& seen) { return seen; });
    });
    Bench::RegisterSave("QXmlStreamWriter", [](benchmark::State& state) {
        Bench::SettingsFile const file;
        std::vector<Key> const keys = MakeKeys();
        Bench::MeasureWrite(state, [&](char const* path) { Write(path, keys); });
    });
    return 0;
}();

} // namespace
