#include "CleanFixture.h"

#include "core/cleanup/CommandCleaners.h"
#include "core/shell/ShellToolRunner.h"

#include <QFile>

using namespace nubo;
using namespace std::chrono_literals;
using nubo::testing::CleanFixture;

namespace {

const QString kDevices = QStringLiteral("/usr/bin/xcrun simctl list devices unavailable -j");
const QString kRuntimes = QStringLiteral("/usr/bin/xcrun simctl runtime list -j");
const QString kDocker = QStringLiteral("/usr/local/bin/docker");
const QString kDockerDf = kDocker + QStringLiteral(" system df --format {{.Type}}\t{{.Reclaimable}}");
const QString kUdid1 = QStringLiteral("1C7C9C16-8D4E-4A3B-9F0E-2B5D0C3A4E11");
const QString kUdid2 = QStringLiteral("AB12CD34-0000-4000-8000-00000000BEEF");

// Scripts the answer to one command line: the program, then its arguments separated by single spaces.
void script(ScriptedToolRunner& tools, const QString& commandLine, const ShellResult& result)
{
    QStringList words = commandLine.split(QLatin1Char(' '));
    const QString program = words.takeFirst();
    tools.answer(program, words, result);
}

ShellResult ok(const QString& output)
{
    return {0, output};
}

class CommandCleanersTest : public CleanFixture
{
protected:
    void SetUp() override
    {
        CleanFixture::SetUp();
        m_context->findTool = [this](const QString& name) -> std::optional<QString> {
            if (name == QLatin1String("docker") && m_dockerInstalled)
                return kDocker;
            return std::nullopt;
        };
    }
    bool m_dockerInstalled = true;
};

} // namespace

// A udid goes straight into "simctl delete": one that would widen or redirect the command must never come
// back.
TEST_F(CommandCleanersTest, UnavailableDevicesBecomeDeleteCommandsOnlyForPlainUdids)
{
    for (const QString& udid : {kUdid1, kUdid2})
        file(QStringLiteral("home/Library/Developer/CoreSimulator/Devices/") + udid + QStringLiteral("/data"),
             40960);
    script(m_tools, kDevices,
           ok(QStringLiteral(R"({"devices": {
        "com.apple.CoreSimulator.SimRuntime.iOS-16-0": [
          {"udid": "%1", "name": "iPhone 14", "isAvailable": false, "state": "Shutdown"},
          {"name": "no udid"}, {"udid": "all", "name": "everything"},
          {"udid": "../../../elsewhere", "name": "escape"}, {"udid": "-h", "name": "option"}, 42
        ],
        "com.apple.CoreSimulator.SimRuntime.watchOS-9-0": [ {"udid": "%2", "name": 7},
            {"udid": "00000000-1111-4222-8333-444444444444", "name": "folder gone"} ],
        "broken": "not a list"
    }})")
                  .arg(kUdid1, kUdid2)));

    QList<CleanItem> items = CommandCleaners::unavailableSimulators(*m_context);
    std::sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.id < b.id; });

    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].id, QStringLiteral("sim-") + kUdid1);
    EXPECT_EQ(items[0].name, QStringLiteral("iPhone 14 (no disponible)"));
    EXPECT_EQ(items[0].detail, QStringLiteral("~/Library/Developer/CoreSimulator/Devices/") + kUdid1);
    EXPECT_GE(items[0].size, 40960);
    EXPECT_EQ(items[0].action, CleanItem::Action(CleanItem::Command{
                                   QStringLiteral("/usr/bin/xcrun"),
                                   {QStringLiteral("simctl"), QStringLiteral("delete"), kUdid1}}));
    EXPECT_EQ(items[1].name, QStringLiteral("Simulador (no disponible)")); // a name that is not text
    ASSERT_EQ(m_tools.calls().size(), 1);
    EXPECT_EQ(m_tools.calls().first().timeout, 20s);
}

TEST_F(CommandCleanersTest, OnlyDeletableRuntimesWithAPlainIdentifierAndASizeAreOffered)
{
    script(m_tools, kRuntimes, ok(QStringLiteral(R"({
      "0A1B2C3D-0000-4000-8000-000000000001": {"build": "20E247", "deletable": true, "version": "16.4",
          "platformIdentifier": "com.apple.platform.iphonesimulator", "sizeBytes": 7035043850, "state": "Ready"},
      "0A1B2C3D-0000-4000-8000-000000000003": {"build": "x", "deletable": false, "version": "9.0",
          "platformIdentifier": "com.apple.platform.watchsimulator", "sizeBytes": 5000},
      "0A1B2C3D-0000-4000-8000-000000000004": {"build": "y", "version": "17.0", "sizeBytes": 2000},
      "0A1B2C3D-0000-4000-8000-000000000005": {"version": "17.1", "sizeBytes": "lots",
          "platformIdentifier": "com.apple.platform.appletvsimulator"},
      "all": {"version": "1", "sizeBytes": 9, "platformIdentifier": "com.apple.platform.iphonesimulator"}
    })")));

    QList<CleanItem> items = CommandCleaners::simulatorRuntimes(*m_context);
    std::sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.id < b.id; });

    ASSERT_EQ(items.size(), 2);
    const QString first = QStringLiteral("0A1B2C3D-0000-4000-8000-000000000001");
    EXPECT_EQ(items[0], CleanItem(QStringLiteral("rt-") + first, QStringLiteral("iOS 16.4 (simulador)"),
                                  QStringLiteral("20E247"), 7035043850,
                                  CleanItem::Command{QStringLiteral("/usr/bin/xcrun"),
                                                     {QStringLiteral("simctl"), QStringLiteral("runtime"),
                                                      QStringLiteral("delete"), first}}));
    EXPECT_EQ(items[1].name, QStringLiteral("Runtime 17.0 (simulador)")); // no platform named
}

TEST_F(CommandCleanersTest, OutputOfAnyOtherShapeGivesNoItems)
{
    const QString device = QStringLiteral(R"({"udid": "%1", "name": "x"})").arg(kUdid1);
    const QList<ShellResult> listings = {
        {},                                                             // the tool did not run, or timed out
        {1, QStringLiteral(R"({"devices": {"r": [%1]}})").arg(device)}, // it failed
        ok(QString()),
        ok(QStringLiteral("xcrun: error: unable to find utility \"simctl\"")),
        ok(QStringLiteral(R"({"devices": {"r": [%1)").arg(device)), // cut short
        ok(QStringLiteral("[1, 2]")),
        ok(QStringLiteral(R"({"devices": [%1]})").arg(device)),
        ok(QStringLiteral(R"({"devices": null})")),
        ok(QStringLiteral(R"({"0A1B2C3D-0000-4000-8000-000000000001": {"sizeBytes": 5}, "other": 3})")),
        ok(QStringLiteral("\xff\xfe not text")),
    };
    for (const ShellResult& listing : listings) {
        ScriptedToolRunner tools;
        script(tools, kDevices, listing);
        script(tools, kRuntimes, listing);
        const CleanContext scripted(*m_safety, *m_privacy, *m_naming, tools, m_roots);
        EXPECT_TRUE(CommandCleaners::unavailableSimulators(scripted).isEmpty())
            << listing.output.toStdString();
        EXPECT_TRUE(CommandCleaners::simulatorRuntimes(scripted).isEmpty()) << listing.output.toStdString();
    }
}

TEST_F(CommandCleanersTest, DockerSizesAreDecimalAndAddedUpAndNothingToReclaimOrNoDockerGivesNoItem)
{
    const std::pair<const char*, qint64> sizes[] = {
        {"2.5GB", 2'500'000'000}, {"512kB", 512'000}, {"512KB", 512'000}, {"3B", 3}, {"0B", 0},
        {"1.5TB", 1'500'000'000'000}, {"12.34MB", 12'340'000}, {"1e3B", 1000}, {"n/a", 0}, {"", 0},
        {"GB", 0}, {"-5GB", 0}, {"nanGB", 0}, {"infB", 0}, {"99999999TB", 0}, {"2.5gb", 0},
    };
    for (const auto& [text, bytes] : sizes)
        EXPECT_EQ(CommandCleaners::parseDockerSize(QString::fromUtf8(text)), bytes) << text;

    script(m_tools, kDockerDf,
           ok(QStringLiteral("Images\t2.5GB (80%)\nContainers\t0B (0%)\r\n"
                             "Local Volumes\t512kB\nBuild Cache\t0B\n"
                             "no tab here\nthree\tfields\there\n\n")));
    const QList<CleanItem> items = CommandCleaners::dockerItems(*m_context);
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].size, 2'500'512'000);
    EXPECT_EQ(items[0].action,
              CleanItem::Action(CleanItem::Command{kDocker,
                                                   {QStringLiteral("system"), QStringLiteral("prune"),
                                                    QStringLiteral("-a"), QStringLiteral("-f")}}));
    EXPECT_EQ(m_tools.calls().first().timeout, 8s);

    // Nothing to reclaim, a failed report, or one no disk could hold: no item, and no overflow.
    QString flood;
    for (int line = 0; line < 20; ++line)
        flood += QStringLiteral("Images\t999999TB (100%)\n");
    for (const ShellResult& report : {ok(QStringLiteral("Images\t0B (0%)\nBuild Cache\t0B\n")), ok(flood),
                                      ShellResult{1, QStringLiteral("Images\t2GB\n")}}) {
        script(m_tools, kDockerDf, report);
        EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty())
            << report.output.left(40).toStdString();
    }

    m_dockerInstalled = false;
    const qsizetype callsBefore = m_tools.calls().size();
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());
    EXPECT_EQ(m_tools.calls().size(), callsBefore);
}

TEST_F(CommandCleanersTest, CommandsRunOneAfterAnotherAndOnlySuccessesCountAsFreed)
{
    // Real tools: two that succeed, one that fails, one that is missing, and a path item.
    const QString log = base(QStringLiteral("order.log"));
    const auto shell = [&log](const QString& name, const QString& script, qint64 size) {
        return CleanItem(name, name, QString(), size,
                         CleanItem::Command{QStringLiteral("/bin/sh"),
                                            {QStringLiteral("-c"), script, QStringLiteral("sh"), log}});
    };
    const QList<CleanItem> items = {
        shell(QStringLiteral("first"),
              QStringLiteral("echo start1 >> \"$1\"; sleep 0.3; echo end1 >> \"$1\""), 100),
        CleanItem::atPath(file(QStringLiteral("keep/me")), m_roots.home),
        shell(QStringLiteral("fails"), QStringLiteral("echo fail >> \"$1\"; exit 1"), 1000),
        CleanItem(QStringLiteral("missing"), QStringLiteral("missing"), QString(), 10000,
                  CleanItem::Command{base(QStringLiteral("no-such-tool")), {}}),
        shell(QStringLiteral("second"), QStringLiteral("echo start2 >> \"$1\"; exit 0"), 5),
        shell(QStringLiteral("negative"), QStringLiteral("exit 0"), -7), // a bad size frees nothing
    };

    const CommandCleaners::CommandOutcome outcome = CommandCleaners::runCommands(ShellToolRunner(), items);

    // Each ran after the previous one ended, and the path item was left to the deleter.
    EXPECT_EQ(outcome, (CommandCleaners::CommandOutcome{
                           105,
                           {QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("negative")},
                           {QStringLiteral("fails"), QStringLiteral("missing")}}));
    QFile written(log);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), QByteArray("start1\nend1\nfail\nstart2\n"));
    EXPECT_TRUE(QFile::exists(base(QStringLiteral("keep/me"))));
}
