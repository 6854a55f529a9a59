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

// Scripts the answer to one command line, written as the program followed by its arguments
// separated by single spaces.
void script(ScriptedToolRunner& tools, const QString& commandLine, const ShellResult& result)
{
    QStringList words = commandLine.split(QLatin1Char(' '));
    const QString program = words.takeFirst();
    tools.answer(program, words, result);
}

constexpr const char* kUdid1 = "1C7C9C16-8D4E-4A3B-9F0E-2B5D0C3A4E11";
constexpr const char* kUdid2 = "AB12CD34-0000-4000-8000-00000000BEEF";

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

TEST_F(CommandCleanersTest, UnavailableDevicesBecomeDeleteCommands)
{
    // GIVEN the tool's listing: devices keyed by runtime, one without a name, one without a udid,
    // and udids that would widen or redirect the delete command
    for (const char* udid : {kUdid1, kUdid2}) {
        file(QStringLiteral("home/Library/Developer/CoreSimulator/Devices/") + QLatin1String(udid) + QStringLiteral("/data"),
             40960);
    }
    script(m_tools, kDevices, ok(QStringLiteral(R"({"devices": {
        "com.apple.CoreSimulator.SimRuntime.iOS-16-0": [
          {"udid": "%1", "name": "iPhone 14", "isAvailable": false, "state": "Shutdown"},
          {"name": "no udid"},
          {"udid": "all", "name": "everything"},
          {"udid": "../../../elsewhere", "name": "escape"},
          {"udid": "-h", "name": "option"},
          42
        ],
        "com.apple.CoreSimulator.SimRuntime.watchOS-9-0": [ {"udid": "%2", "name": 7},
                                                            {"udid": "%3", "name": "folder gone"} ],
        "broken": "not a list"
    }})")
                                      .arg(QLatin1String(kUdid1), QLatin1String(kUdid2),
                                           QStringLiteral("00000000-1111-4222-8333-444444444444"))));

    const QList<CleanItem> items = CommandCleaners::unavailableSimulators(*m_context);

    ASSERT_EQ(items.size(), 2);
    const CleanItem& phone = items[0].name.startsWith(QLatin1String("iPhone")) ? items[0] : items[1];
    const CleanItem& other = &phone == &items[0] ? items[1] : items[0];
    EXPECT_EQ(phone.id, QStringLiteral("sim-") + QLatin1String(kUdid1));
    EXPECT_EQ(phone.name, QStringLiteral("iPhone 14 (no disponible)"));
    EXPECT_EQ(phone.detail, QStringLiteral("~/Library/Developer/CoreSimulator/Devices/") + QLatin1String(kUdid1));
    EXPECT_GE(phone.size, 40960);
    EXPECT_EQ(phone.action, CleanItem::Action(CleanItem::Command{
                                QStringLiteral("/usr/bin/xcrun"),
                                {QStringLiteral("simctl"), QStringLiteral("delete"), QLatin1String(kUdid1)}}));
    EXPECT_EQ(other.name, QStringLiteral("Simulador (no disponible)"));
    EXPECT_EQ(other.id, QStringLiteral("sim-") + QLatin1String(kUdid2));
    ASSERT_EQ(m_tools.calls().size(), 1);
    EXPECT_EQ(m_tools.calls().first().timeout, 20s);
}

TEST_F(CommandCleanersTest, RuntimesAreNamedByPlatformAndOnlyDeletableOnesOffered)
{
    script(m_tools, kRuntimes, ok(QStringLiteral(R"({
      "0A1B2C3D-0000-4000-8000-000000000001": {"build": "20E247", "deletable": true, "version": "16.4",
          "platformIdentifier": "com.apple.platform.iphonesimulator", "sizeBytes": 7035043850, "state": "Ready"},
      "0A1B2C3D-0000-4000-8000-000000000002": {"build": "21N305", "version": "1.0",
          "platformIdentifier": "com.apple.platform.xrsimulator", "sizeBytes": 1000},
      "0A1B2C3D-0000-4000-8000-000000000003": {"build": "x", "deletable": false, "version": "9.0",
          "platformIdentifier": "com.apple.platform.watchsimulator", "sizeBytes": 5000},
      "0A1B2C3D-0000-4000-8000-000000000004": {"build": "y", "version": "17.0", "sizeBytes": 2000},
      "0A1B2C3D-0000-4000-8000-000000000005": {"version": "17.1", "sizeBytes": "lots",
          "platformIdentifier": "com.apple.platform.appletvsimulator"},
      "all": {"version": "1", "sizeBytes": 9, "platformIdentifier": "com.apple.platform.iphonesimulator"}
    })")));

    QList<CleanItem> items = CommandCleaners::simulatorRuntimes(*m_context);
    std::sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.id < b.id; });

    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items[0], CleanItem(QStringLiteral("rt-0A1B2C3D-0000-4000-8000-000000000001"),
                                  QStringLiteral("iOS 16.4 (simulador)"), QStringLiteral("20E247"), 7035043850,
                                  CleanItem::Command{QStringLiteral("/usr/bin/xcrun"),
                                                     {QStringLiteral("simctl"), QStringLiteral("runtime"),
                                                      QStringLiteral("delete"),
                                                      QStringLiteral("0A1B2C3D-0000-4000-8000-000000000001")}}));
    EXPECT_EQ(items[1].name, QStringLiteral("visionOS 1.0 (simulador)"));
    EXPECT_EQ(items[2].name, QStringLiteral("Runtime 17.0 (simulador)"));
}

TEST_F(CommandCleanersTest, OutputOfAnyOtherShapeGivesNoItems)
{
    const QString device = QStringLiteral(R"({"udid": "%1", "name": "x"})").arg(QLatin1String(kUdid1));
    const QList<ShellResult> listings = {
        {},                                                           // the tool did not run, or timed out
        {1, QStringLiteral(R"({"devices": {"r": [%1]}})").arg(device)}, // it failed
        ok(QString()),
        ok(QStringLiteral("xcrun: error: unable to find utility \"simctl\"")),
        ok(QStringLiteral(R"({"devices": {"r": [%1)").arg(device)),    // cut short
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
        EXPECT_TRUE(CommandCleaners::unavailableSimulators(scripted).isEmpty()) << listing.output.toStdString();
        EXPECT_TRUE(CommandCleaners::simulatorRuntimes(scripted).isEmpty()) << listing.output.toStdString();
    }
}

TEST_F(CommandCleanersTest, DockerSizesAreDecimalAndAddedUp)
{
    const std::pair<const char*, qint64> sizes[] = {
        {"2.5GB", 2'500'000'000}, {"512kB", 512'000}, {"512KB", 512'000}, {"3B", 3}, {"0B", 0},
        {"1.5TB", 1'500'000'000'000}, {"12.34MB", 12'340'000}, {"n/a", 0}, {"", 0}, {"GB", 0},
        {"-5GB", 0}, {"nanGB", 0}, {"infB", 0}, {"99999999TB", 0}, {"2.5gb", 0}, {"1e3B", 1000},
    };
    for (const auto& [text, bytes] : sizes)
        EXPECT_EQ(CommandCleaners::parseDockerSize(QString::fromUtf8(text)), bytes) << text;

    script(m_tools, kDockerDf, ok(QStringLiteral("Images\t2.5GB (80%)\nContainers\t0B (0%)\r\n"
                                                "Local Volumes\t512kB\nBuild Cache\t0B\n"
                                                "no tab here\nthree\tfields\there\n\n")));
    const QList<CleanItem> items = CommandCleaners::dockerItems(*m_context);
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0], CleanItem(QStringLiteral("docker-prune"), QStringLiteral("Datos recuperables de Docker"),
                                  QStringLiteral("docker system prune -a"), 2'500'512'000,
                                  CleanItem::Command{kDocker, {QStringLiteral("system"), QStringLiteral("prune"),
                                                               QStringLiteral("-a"), QStringLiteral("-f")}}));
    EXPECT_EQ(m_tools.calls().first().timeout, 8s);
}

TEST_F(CommandCleanersTest, DockerWithNothingToReclaimOrNotThereGivesNoItem)
{
    script(m_tools, kDockerDf, ok(QStringLiteral("Images\t0B (0%)\nBuild Cache\t0B\n")));
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());

    // A report no disk could hold is not believed, and never overflows the total.
    QString flood;
    for (int line = 0; line < 20; ++line)
        flood += QStringLiteral("Images\t999999TB (100%)\n");
    script(m_tools, kDockerDf, ok(flood));
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());

    script(m_tools, kDockerDf, ShellResult{1, QStringLiteral("Images\t2GB\n")});
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());

    m_dockerInstalled = false;
    const qsizetype callsBefore = m_tools.calls().size();
    EXPECT_TRUE(CommandCleaners::dockerItems(*m_context).isEmpty());
    EXPECT_EQ(m_tools.calls().size(), callsBefore);
}

TEST_F(CommandCleanersTest, CommandsRunOneAfterAnotherAndOnlySuccessesCountAsFreed)
{
    // GIVEN real tools: two that succeed, one that fails, one that is missing, and a path item
    const QString log = base(QStringLiteral("order.log"));
    const auto shell = [&log](const QString& name, const QString& script, qint64 size) {
        return CleanItem(name, name, QString(), size,
                         CleanItem::Command{QStringLiteral("/bin/sh"),
                                            {QStringLiteral("-c"), script, QStringLiteral("sh"), log}});
    };
    const QList<CleanItem> items = {
        shell(QStringLiteral("first"), QStringLiteral("echo start1 >> \"$1\"; sleep 0.3; echo end1 >> \"$1\""), 100),
        CleanItem::atPath(file(QStringLiteral("keep/me")), m_roots.home),
        shell(QStringLiteral("fails"), QStringLiteral("echo fail >> \"$1\"; exit 1"), 1000),
        CleanItem(QStringLiteral("missing"), QStringLiteral("missing"), QString(), 10000,
                  CleanItem::Command{base(QStringLiteral("no-such-tool")), {}}),
        shell(QStringLiteral("second"), QStringLiteral("echo start2 >> \"$1\"; exit 0"), 5),
    };
    const ShellToolRunner tools;

    // WHEN they run
    const CommandCleaners::CommandOutcome outcome = CommandCleaners::runCommands(tools, items);

    // THEN each ran after the previous one ended, and the path item was left alone
    EXPECT_EQ(outcome, (CommandCleaners::CommandOutcome{105, {QStringLiteral("first"), QStringLiteral("second")},
                                                        {QStringLiteral("fails"), QStringLiteral("missing")}}));
    QFile written(log);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(written.readAll()), QStringLiteral("start1\nend1\nfail\nstart2\n"));
    EXPECT_TRUE(QFile::exists(base(QStringLiteral("keep/me"))));
}

TEST_F(CommandCleanersTest, CommandsGetTenMinutesAndANegativeSizeFreesNothing)
{
    script(m_tools, QStringLiteral("/bin/tool a"), ShellResult{0, {}});
    script(m_tools, QStringLiteral("/bin/tool b"), ShellResult{0, {}});
    const auto item = [](const char* name, qint64 size) {
        return CleanItem(QString::fromUtf8(name), QString::fromUtf8(name), {}, size,
                         CleanItem::Command{QStringLiteral("/bin/tool"), {QString::fromUtf8(name)}});
    };
    EXPECT_EQ(CommandCleaners::runCommands(m_tools, {item("a", 1), item("b", -7)}).freed, 1);
    ASSERT_EQ(m_tools.calls().size(), 2);
    for (const ToolCall& call : m_tools.calls())
        EXPECT_EQ(call.timeout, 600s);
}
