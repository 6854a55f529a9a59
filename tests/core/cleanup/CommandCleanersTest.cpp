#include "CleanFixture.h"

#include "core/cleanup/CommandCleaners.h"
#include "core/shell/ShellToolRunner.h"

#include <QFile>
#include <algorithm>

using namespace nubo;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using nubo::testing::CleanFixture;

namespace {

const QString kDevices = u"/usr/bin/xcrun simctl list devices unavailable -j"_s;
const QString kRuntimes = u"/usr/bin/xcrun simctl runtime list -j"_s;
const QString kDocker = u"/usr/local/bin/docker"_s;
const QString kDockerDf = kDocker + u" system df --format {{.Type}}\t{{.Reclaimable}}"_s;
const QString kUdid1 = u"1C7C9C16-8D4E-4A3B-9F0E-2B5D0C3A4E11"_s;
const QString kUdid2 = u"AB12CD34-0000-4000-8000-00000000BEEF"_s;

// Scripts the answer to one command line: the program, then its arguments separated by single spaces.
void script(ScriptedToolRunner& tools, const QString& commandLine, const ShellResult& result)
{
    QStringList words = commandLine.split(u' ');
    const QString program = words.takeFirst();
    tools.answer(program, words, result);
}

ShellResult ok(const QString& output)
{
    return {0, output};
}

QList<CleanItem> byId(QList<CleanItem> items)
{
    std::sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.id < b.id; });
    return items;
}

CleanItem::Command xcrun(const QStringList& arguments)
{
    return {u"/usr/bin/xcrun"_s, QStringList{u"simctl"_s} + arguments};
}

class CommandCleanersTest : public CleanFixture
{
protected:
    void SetUp() override
    {
        CleanFixture::SetUp();
        m_context->findTool = [this](const QString& name) -> std::optional<QString> {
            return name == u"docker"_s && m_dockerInstalled ? std::optional(kDocker) : std::nullopt;
        };
    }
    bool m_dockerInstalled = true;
};

} // namespace

// A udid goes straight into "simctl delete": one that would widen or redirect the command must
// never come back, nor a device whose folder is gone.
TEST_F(CommandCleanersTest, UnavailableDevicesBecomeDeleteCommandsOnlyForPlainUdids)
{
    for (const QString& udid : {kUdid1, kUdid2})
        file(u"home/Library/Developer/CoreSimulator/Devices/"_s + udid + u"/data"_s, 40960);
    script(m_tools, kDevices, ok(uR"({"devices": {
        "com.apple.CoreSimulator.SimRuntime.iOS-16-0": [
          {"udid": "%1", "name": "iPhone 14", "isAvailable": false, "state": "Shutdown"},
          {"name": "no udid"}, {"udid": "all", "name": "everything"},
          {"udid": "../../../elsewhere", "name": "escape"}, {"udid": "-h", "name": "option"}, 42
        ],
        "com.apple.CoreSimulator.SimRuntime.watchOS-9-0": [ {"udid": "%2", "name": 7},
            {"udid": "00000000-1111-4222-8333-444444444444", "name": "folder gone"} ],
        "broken": "not a list"
    }})"_s.arg(kUdid1, kUdid2)));

    const QList<CleanItem> items = byId(CommandCleaners::unavailableSimulators(*m_context));
    ASSERT_EQ(items.size(), 2);
    EXPECT_GE(items[0].size, 40960);
    EXPECT_EQ(items[0], CleanItem(u"sim-"_s + kUdid1, u"iPhone 14 (no disponible)"_s,
                                  u"~/Library/Developer/CoreSimulator/Devices/"_s + kUdid1, items[0].size,
                                  xcrun({u"delete"_s, kUdid1})));
    EXPECT_EQ(items[1].name, u"Simulador (no disponible)"_s); // a name that is not text
    ASSERT_EQ(m_tools.calls().size(), 1);
    EXPECT_EQ(m_tools.calls().first().timeout, 20s);
}

TEST_F(CommandCleanersTest, OnlyDeletableRuntimesWithAPlainIdentifierAndASizeAreOffered)
{
    script(m_tools, kRuntimes, ok(uR"({
      "0A1B2C3D-0000-4000-8000-000000000001": {"build": "20E247", "deletable": true, "version": "16.4",
          "platformIdentifier": "com.apple.platform.iphonesimulator", "sizeBytes": 7035043850, "state": "Ready"},
      "0A1B2C3D-0000-4000-8000-000000000003": {"build": "x", "deletable": false, "version": "9.0",
          "platformIdentifier": "com.apple.platform.watchsimulator", "sizeBytes": 5000},
      "0A1B2C3D-0000-4000-8000-000000000004": {"build": "y", "version": "17.0", "sizeBytes": 2000},
      "0A1B2C3D-0000-4000-8000-000000000005": {"version": "17.1", "sizeBytes": "lots",
          "platformIdentifier": "com.apple.platform.appletvsimulator"},
      "all": {"version": "1", "sizeBytes": 9, "platformIdentifier": "com.apple.platform.iphonesimulator"}
    })"_s));

    const QList<CleanItem> items = byId(CommandCleaners::simulatorRuntimes(*m_context));
    const QString first = u"0A1B2C3D-0000-4000-8000-000000000001"_s;
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0], CleanItem(u"rt-"_s + first, u"iOS 16.4 (simulador)"_s, u"20E247"_s, 7035043850,
                                  xcrun({u"runtime"_s, u"delete"_s, first})));
    EXPECT_EQ(items[1].name, u"Runtime 17.0 (simulador)"_s); // no platform named
}

TEST_F(CommandCleanersTest, OutputOfAnyOtherShapeGivesNoItems)
{
    const QString device = uR"({"udid": "%1", "name": "x"})"_s.arg(kUdid1);
    const QList<ShellResult> listings = {
        {}, // the tool did not run, or timed out
        {1, uR"({"devices": {"r": [%1]}})"_s.arg(device)}, // it failed
        ok(QString()),
        ok(u"xcrun: error: unable to find utility \"simctl\""_s),
        ok(uR"({"devices": {"r": [%1)"_s.arg(device)), // cut short
        ok(u"[1, 2]"_s),
        ok(uR"({"devices": [%1]})"_s.arg(device)),
        ok(uR"({"devices": null})"_s),
        ok(uR"({"0A1B2C3D-0000-4000-8000-000000000001": {"sizeBytes": 5}, "other": 3})"_s),
        ok(QStringLiteral("\xff\xfe not text")),
    };
    for (const ShellResult& listing : listings) {
        ScriptedToolRunner tools;
        script(tools, kDevices, listing);
        script(tools, kRuntimes, listing);
        const CleanContext scripted(*m_safety, *m_privacy, *m_naming, tools, m_roots);
        EXPECT_TRUE(CommandCleaners::unavailableSimulators(scripted).isEmpty() &&
                    CommandCleaners::simulatorRuntimes(scripted).isEmpty())
            << listing.output.toStdString();
    }
}

// Nothing to reclaim, a failed report, one no disk could hold (no overflow) or no docker at all
// (not even asked): no item.
TEST_F(CommandCleanersTest, DockerSizesAreDecimalAndAddedUpAndNothingToReclaimOrNoDockerGivesNoItem)
{
    const std::pair<const char*, qint64> sizes[] = {
        {"2.5GB", 2'500'000'000}, {"512kB", 512'000}, {"512KB", 512'000}, {"3B", 3}, {"0B", 0},
        {"1.5TB", 1'500'000'000'000}, {"12.34MB", 12'340'000}, {"1e3B", 1000}, {"n/a", 0}, {"", 0},
        {"GB", 0}, {"-5GB", 0}, {"nanGB", 0}, {"infB", 0}, {"99999999TB", 0}, {"2.5gb", 0},
    };
    for (const auto& [text, bytes] : sizes)
        EXPECT_EQ(CommandCleaners::parseDockerSize(QString::fromUtf8(text)), bytes) << text;

    script(m_tools, kDockerDf, ok(u"Images\t2.5GB (80%)\nContainers\t0B (0%)\r\nLocal Volumes\t512kB\n"
                                  u"Build Cache\t0B\nno tab here\nthree\tfields\there\n\n"_s));
    const QList<CleanItem> items = CommandCleaners::dockerItems(*m_context);
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(std::pair(items[0].size, items[0].action),
              std::pair(qint64(2'500'512'000), CleanItem::Action(CleanItem::Command{
                                                   kDocker, {u"system"_s, u"prune"_s, u"-a"_s, u"-f"_s}})));
    EXPECT_EQ(m_tools.calls().first().timeout, 8s);

    QString flood;
    for (int line = 0; line < 20; ++line)
        flood += u"Images\t999999TB (100%)\n"_s;
    for (const ShellResult& report : {ok(u"Images\t0B (0%)\nBuild Cache\t0B\n"_s), ok(flood),
                                      ShellResult{1, u"Images\t2GB\n"_s}}) {
        script(m_tools, kDockerDf, report);
        EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty()) << report.output.left(40).toStdString();
    }
    m_dockerInstalled = false;
    const qsizetype callsBefore = m_tools.calls().size();
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());
    EXPECT_EQ(m_tools.calls().size(), callsBefore);
}

// Real tools: two that succeed, one that fails, one that is missing, and a path item. Each runs
// after the previous one ended, the path item is left to the deleter, and a bad size frees nothing.
TEST_F(CommandCleanersTest, CommandsRunOneAfterAnotherAndOnlySuccessesCountAsFreed)
{
    const QString log = base(u"order.log"_s);
    const auto shell = [&log](const QString& name, const QString& script, qint64 size) {
        const CleanItem::Command command{u"/bin/sh"_s, {u"-c"_s, script, u"sh"_s, log}};
        return CleanItem(name, name, QString(), size, command);
    };
    const QList<CleanItem> items = {
        shell(u"first"_s, u"echo start1 >> \"$1\"; sleep 0.3; echo end1 >> \"$1\""_s, 100),
        CleanItem::atPath(file(u"keep/me"_s), m_roots.home),
        shell(u"fails"_s, u"echo fail >> \"$1\"; exit 1"_s, 1000),
        CleanItem(u"missing"_s, u"missing"_s, QString(), 10000, CleanItem::Command{base(u"no-such-tool"_s), {}}),
        shell(u"second"_s, u"echo start2 >> \"$1\"; exit 0"_s, 5),
        shell(u"negative"_s, u"exit 0"_s, -7),
    };

    EXPECT_EQ(CommandCleaners::runCommands(ShellToolRunner(), items),
              (CommandCleaners::CommandOutcome{105, {u"first"_s, u"second"_s, u"negative"_s},
                                               {u"fails"_s, u"missing"_s}}));
    QFile written(log);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), QByteArray("start1\nend1\nfail\nstart2\n"));
    EXPECT_TRUE(QFile::exists(base(u"keep/me"_s)));
}
