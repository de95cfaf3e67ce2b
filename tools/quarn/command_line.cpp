#include "command_line.h"

#include "file_commands.h"
#include "registry_commands.h"
#include "settings_commands.h"

#include <functional>

#include <CLI/CLI.hpp>

namespace tool {

namespace {

// What the options are stored in; each command uses its own.
struct Arguments
{
    std::string file;
    std::string other;
    std::string address;
    std::string value;
    std::string type;
    std::vector<std::string> files;
    RecordView record;
    LogView log;
    bool noFollow = false;
    bool json = false;
};

// CLI11 takes -1 for the greatest number.
std::string RefuseNegative(std::string const& text)
{
    return text.starts_with('-') ? "must not be negative" : "";
}

class CommandLine
{
public:
    CommandLine();

    int Run(int argc, char** argv);

private:
    using Work = std::function<ExitCode()>;

    // A command with its work and its help. Each has --json.
    CLI::App& Add(CLI::App& parent, std::string const& name, std::string const& description,
                  std::string const& examples, Work work);
    CLI::App& AddGroup(std::string const& name, std::string const& description);

    void AddSettings();
    void AddRegistry();
    void AddFiles();
    void AddUnits();
    void AddLog();

    CLI::App m_app{"Looks into what programs on QuarnUtil keep: settings, records, registries, logs."};
    Arguments m_arguments;
    Work m_work;
};

CommandLine::CommandLine()
{
    m_app.name("quarn");
    m_app.allow_windows_style_options(false); // "/" begins a path
    m_app.set_version_flag("--version", "quarn " QUARN_VERSION);
    m_app.require_subcommand(1);
    m_app.footer("Exit codes: 0 done; 1 the answer is no (files differ, a file would not load, there is no "
                 "such value);\n2 wrong usage; 3 something could not be read; 4 something could not be "
                 "written.\n`quarn COMMAND --help` shows examples.");
    AddSettings();
    AddRegistry();
    AddFiles();
    AddUnits();
    AddLog();
}

CLI::App& CommandLine::Add(CLI::App& parent, std::string const& name, std::string const& description,
                           std::string const& examples, Work work)
{
    CLI::App& command = *parent.add_subcommand(name, description);
    command.footer("Examples:\n" + examples);
    command.add_flag("--json", m_arguments.json, "Print JSON");
    command.callback([this, work = std::move(work)] { m_work = work; });
    return command;
}

CLI::App& CommandLine::AddGroup(std::string const& name, std::string const& description)
{
    CLI::App& group = *m_app.add_subcommand(name, description);
    group.require_subcommand(1);
    return group;
}

void CommandLine::AddSettings()
{
    Arguments& given = m_arguments;
    CLI::App& settings = AddGroup("settings", "Settings files");
    auto const addFile = [&given](CLI::App& command) {
        command.add_option("FILE", given.file, "Settings file")->required();
    };
    auto const addAddress = [&given](CLI::App& command) {
        command.add_option("ADDRESS", given.address, R"(A value: key\sub:name)")->required();
    };

    CLI::App& show = Add(settings, "show", "List the values",
                         "  quarn settings show Station.xml\n"
                         "  quarn settings show Station.xml 'Limits\\Disk' --json\n",
                         [&given] { return ShowSettings(given.file, given.other, given.json); });
    addFile(show);
    show.add_option("KEY", given.other, "This key and those below alone");

    CLI::App& get = Add(settings, "get", "Print one value",
                        "  quarn settings get Station.xml Runs:Count\n"
                        "  quarn settings get Station.xml 'Display\\Colors:Border'\n",
                        [&given] { return GetSetting(given.file, given.address, given.json); });
    addFile(get);
    addAddress(get);

    CLI::App& set =
        Add(settings, "set", "Change a value, or add one",
            "  quarn settings set Station.xml Runs:Count 0\n"
            "  quarn settings set Station.xml Link:Port 4001 --type int32\n"
            "  quarn settings set Station.xml Link:Name -- -north-\n"
            "A value keeps its type; a new one is a string unless --type says otherwise. A file "
            "that does not load whole is not changed.\n",
            [&given] { return SetSetting(given.file, given.address, given.value, given.type, given.json); });
    addFile(set);
    addAddress(set);
    set.add_option("VALUE", given.value, "Text, decimal number or hexadecimal digits")->required();
    set.add_option("--type", given.type, "The value's type")
        ->check(CLI::IsMember({"string", "int32", "binary"}));

    CLI::App& unset =
        Add(settings, "unset", "Remove a value", "  quarn settings unset Station.xml Link:Name\n",
            [&given] { return UnsetSetting(given.file, given.address, given.json); });
    addFile(unset);
    addAddress(unset);

    CLI::App& diff = Add(settings, "diff", "List what one file has otherwise than another",
                         "  quarn settings diff Station_2311b04e.xml Station.xml\n"
                         "+ added, - removed, ~ changed; the order does not count.\n",
                         [&given] { return DiffSettings(given.file, given.other, given.json); });
    diff.add_option("BEFORE", given.file, "Settings file")->required();
    diff.add_option("AFTER", given.other, "Settings file")->required();

    CLI::App& check =
        Add(settings, "check", "Tell whether files would load, or line and reason",
            "  quarn settings check *.xml\n", [&given] { return CheckSettings(given.files, given.json); });
    check.add_option("FILE", given.files, "Settings files")->required();

    CLI::App& backup = Add(settings, "backup", "Copy a file to a backup beside it, and print its name",
                           "  quarn settings backup Station.xml\n",
                           [&given] { return BackupSettings(given.file, given.json); });
    addFile(backup);

    CLI::App& restore = Add(settings, "restore", "Put a backup's content back",
                            "  quarn settings restore Station.xml\n"
                            "  quarn settings restore Station.xml Station_2311b04e.xml\n"
                            "Without a name, the newest backup that loads. The content before is backed up "
                            "first.\n",
                            [&given] { return RestoreSettings(given.file, given.other, given.json); });
    addFile(restore);
    restore.add_option("BACKUP", given.other, "Backup, or any other settings file");
}

void CommandLine::AddRegistry()
{
    Arguments& given = m_arguments;
    CLI::App& registry = AddGroup("registry", "Registry keys");
    auto const addKey = [&given](CLI::App& command) {
        command.add_option("PATH", given.address, R"(A key: HKLM\SOFTWARE\Acme)")->required();
    };

    CLI::App& show = Add(registry, "show", "List a key and all below",
                         "  quarn registry show 'HKLM\\SOFTWARE\\Acme\\Station'\n"
                         "HKCU, HKLM, HKCR and HKU stand for the roots.\n",
                         [&given] { return ShowRegistry(given.address, given.json); });
    addKey(show);

    CLI::App& take = Add(registry, "export", "Save a key as the settings that it would seed",
                         "  quarn registry export 'HKLM\\SOFTWARE\\Acme\\Station' seed.xml\n"
                         "  quarn settings diff seed.xml Station.xml\n"
                         "What settings cannot hold is named, and left out.\n",
                         [&given] { return ExportRegistry(given.address, given.file, given.json); });
    addKey(take);
    take.add_option("FILE", given.file, "Settings file; one that does not load is not replaced")->required();

    CLI::App& give = Add(registry, "import", "Add the values of settings to a key",
                         "  quarn registry import 'HKLM\\SOFTWARE\\Acme\\Station' seed.xml\n"
                         "Values of the same name are replaced; nothing is removed.\n",
                         [&given] { return ImportRegistry(given.address, given.file, given.json); });
    addKey(give);
    give.add_option("FILE", given.file, "Settings file")->required();
}

void CommandLine::AddFiles()
{
    Arguments& given = m_arguments;
    CLI::App& record = AddGroup("record", "Stored records");
    CLI::App& show = Add(record, "show", "Show a record's header blocks, its strings and its bytes",
                         "  quarn record show Station.journal\n"
                         "  quarn record show Station.journal --header 120 --header 0xF0\n"
                         "  quarn record show Station.journal --from 0x400 --bytes 256\n",
                         [&given] { return ShowRecord(given.file, given.record, given.json); });
    show.add_option("FILE", given.file, "File of any size")->required();
    show.add_option("--header", given.record.headers, "Offset of a further header block")
        ->allow_extra_args(false)
        ->check(RefuseNegative);
    show.add_option("--from", given.record.from, "Where the bytes begin that are shown; 0 without it")
        ->check(RefuseNegative);
    show.add_option("--bytes", given.record.bytes, "How many bytes are shown; 512 without it")
        ->check(RefuseNegative);

    CLI::App& crc = Add(m_app, "crc", "Print the CRC-32, the size and the name of files",
                        "  quarn crc Station.journal\n"
                        "The checksum is that of zlib, PKZIP and the library's CRC32.\n",
                        [&given] { return PrintChecksums(given.files, given.json); });
    crc.add_option("FILE", given.files, "Files of any size")->required();

    CLI::App& version = Add(m_app, "version", "Print the version blocks of modules",
                            "  quarn version QuarnUtil.dll station.exe\n",
                            [&given] { return PrintVersions(given.files, given.json); });
    version.add_option("FILE", given.files, "Programs and libraries of either system")->required();
}

void CommandLine::AddUnits()
{
    Arguments& given = m_arguments;
    CLI::App& units =
        Add(m_app, "units", "Convert a distance, or list the units",
            "  quarn units\n"
            "  quarn units 2.5 miles km\n",
            [&given] { return ConvertUnits(given.value, given.type, given.other, given.json); });
    CLI::Option* const value = units.add_option("VALUE", given.value, "A number");
    CLI::Option* const from =
        units.add_option("FROM", given.type, "Its unit: a name, a plural, an abbreviation");
    CLI::Option* const to = units.add_option("TO", given.other, "The unit wanted");
    value->needs(from);
    from->needs(to);
}

void CommandLine::AddLog()
{
    Arguments& given = m_arguments;
    CLI::App& log = Add(m_app, "log", "Show the end of a log, and what is written to it from then on",
                        "  quarn log Station.log\n"
                        "  quarn log Station.log --lines 100 --no-follow\n"
                        "  quarn log Station.log --lines 0 --end-after 1    # waits for a message\n"
                        "Ends with Ctrl+C. A file that has become shorter is read from its beginning.\n",
                        [&given] {
                            given.log.follow = !given.noFollow;
                            return ShowLog(given.file, given.log, given.json);
                        });
    log.add_option("FILE", given.file, "Text file")->required();
    log.add_option("--lines", given.log.lines, "How many lines of the end are shown first; 10 without it")
        ->check(RefuseNegative);
    log.add_flag("--no-follow", given.noFollow, "End there");
    log.add_option("--end-after", given.log.endAfter, "End after so many lines in all")
        ->check(RefuseNegative);
}

int CommandLine::Run(int argc, char** argv)
{
    try {
        m_app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return m_app.exit(error) == 0 ? Done : WrongUsage;
    }
    return m_work();
}

} // namespace

int RunCommandLine(int argc, char** argv)
{
    return CommandLine().Run(argc, argv);
}

} // namespace tool
