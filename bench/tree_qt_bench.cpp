// Values in QSettings, which keeps them in a sorted map of its own; nothing is written while they are
// measured.
#include "bench/tree_bench.h"

#include <QFile>
#include <QSettings>

namespace {

bool WriteNothing(QIODevice& /*device*/, QSettings::SettingsMap const& /*map*/)
{
    return true;
}

bool ReadNothing(QIODevice& /*device*/, QSettings::SettingsMap& /*map*/)
{
    return true;
}

// A file of its own for each tree, of a format that leaves it empty: objects of one file share their values.
QString NextFile()
{
    static int number = 0;
    return QStringLiteral("tree_bench_%1.none").arg(number++);
}

struct Qt
{
    struct Tree
    {
        Tree() : settings(NextFile(), Format()) {}
        Tree(Tree const&) = delete;
        Tree& operator=(Tree const&) = delete;
        ~Tree()
        {
            settings.clear();
            settings.sync();
            QFile::remove(settings.fileName());
        }
        QSettings settings;
    };
    using Path = QString;
    static QSettings::Format Format()
    {
        static QSettings::Format const format =
            QSettings::registerFormat(QStringLiteral("none"), ReadNothing, WriteNothing);
        return format;
    }
    static Path MakePath(Bench::Address const& address) { return QString::fromStdString(address.Path("/")); }
    static void Set(Tree& tree, Path const& path, long number)
    {
        tree.settings.setValue(path, static_cast<int>(number));
    }
    static long Get(Tree const& tree, Path const& path) { return tree.settings.value(path).toInt(); }
};

[[maybe_unused]] int const g_registered = (Bench::Register<Qt>("QSettings"), 0);

} // namespace
