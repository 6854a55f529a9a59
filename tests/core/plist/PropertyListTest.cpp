#include "core/plist/PropertyList.h"

#include "support/FixtureFiles.h"
#include "support/PlistWriter.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace nubo;
using nubo::test::plistBytes;
using nubo::test::PlistFormat;

namespace {

QVariantMap sample()
{
    return {
        {QStringLiteral("CFBundleIdentifier"), QStringLiteral("com.acme.writer")},
        {QStringLiteral("CFBundleDisplayName"), QStringLiteral("Écrivain ✍️")},
        {QStringLiteral("Count"), qint64(42)},
        {QStringLiteral("Negative"), qint64(-7)},
        {QStringLiteral("Enabled"), true},
        {QStringLiteral("Ratio"), 0.5},
        {QStringLiteral("Blob"), QByteArray("\x00\x01\xff", 3)},
        {QStringLiteral("When"), QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC)},
        {QStringLiteral("List"), QVariantList{QStringLiteral("a"), qint64(1),
                                              QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}}},
    };
}

void expectSample(const QVariantMap& map)
{
    EXPECT_EQ(map.value(QStringLiteral("CFBundleIdentifier")).toString(), QStringLiteral("com.acme.writer"));
    EXPECT_EQ(map.value(QStringLiteral("CFBundleDisplayName")).toString(),
              QStringLiteral("Écrivain ✍️"));
    EXPECT_EQ(map.value(QStringLiteral("Count")).toLongLong(), 42);
    EXPECT_EQ(map.value(QStringLiteral("Negative")).toLongLong(), -7);
    EXPECT_EQ(map.value(QStringLiteral("Enabled")).typeId(), QMetaType::Bool);
    EXPECT_TRUE(map.value(QStringLiteral("Enabled")).toBool());
    EXPECT_DOUBLE_EQ(map.value(QStringLiteral("Ratio")).toDouble(), 0.5);
    EXPECT_EQ(map.value(QStringLiteral("Blob")).toByteArray(), QByteArray("\x00\x01\xff", 3));
    EXPECT_EQ(map.value(QStringLiteral("When")).toDateTime().toSecsSinceEpoch(), 1'700'000'000);
    const QVariantList list = map.value(QStringLiteral("List")).toList();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list.at(2).toMap().value(QStringLiteral("k")).toString(), QStringLiteral("v"));
}

} // namespace

TEST(PropertyList, XmlAndBinaryGiveTheSameValues)
{
    expectSample(PropertyList::dictionary(plistBytes(sample(), PlistFormat::xml)));
    expectSample(PropertyList::dictionary(plistBytes(sample(), PlistFormat::binary)));
}

TEST(PropertyList, HandWrittenXmlAsAppsShipIt)
{
    const QByteArray xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>CFBundleName</key>
	<string>Tom &amp; Jerry &lt;3</string>
	<key>LSUIElement</key>
	<false/>
</dict>
</plist>
)";
    const QVariantMap map = PropertyList::dictionary(xml);
    EXPECT_EQ(map.value(QStringLiteral("CFBundleName")).toString(), QStringLiteral("Tom & Jerry <3"));
    EXPECT_EQ(map.value(QStringLiteral("LSUIElement")), QVariant(false));
}

TEST(PropertyList, ARootThatIsNotADictionaryReadsAsAnEmptyDictionary)
{
    const QVariantList list{QStringLiteral("a"), QStringLiteral("b")};
    for (PlistFormat format : {PlistFormat::xml, PlistFormat::binary}) {
        const QByteArray bytes = plistBytes(list, format);
        EXPECT_EQ(PropertyList::parse(bytes).toList().size(), 2);
        EXPECT_TRUE(PropertyList::dictionary(bytes).isEmpty());
        EXPECT_TRUE(PropertyList::dictionary(plistBytes(QStringLiteral("just text"), format)).isEmpty());
    }
}

TEST(PropertyList, EmptyAndGarbageGiveNothing)
{
    EXPECT_FALSE(PropertyList::parse(QByteArray()).isValid());
    EXPECT_TRUE(PropertyList::dictionary(QByteArray("not a list at all")).isEmpty());
    EXPECT_TRUE(PropertyList::dictionary(QByteArray("bplist00")).isEmpty());
    EXPECT_TRUE(PropertyList::dictionary(QByteArray("<plist><dict><key>a</key>")).isEmpty());
    EXPECT_TRUE(PropertyList::dictionary(QByteArray(4096, '\0')).isEmpty());
}

// Every prefix of a real file, in both formats: a truncated download or a half-written bundle
// must never crash the reader. Whatever comes back is either nothing or a dictionary.
TEST(PropertyList, EveryTruncationIsSurvived)
{
    for (PlistFormat format : {PlistFormat::xml, PlistFormat::binary}) {
        const QByteArray whole = plistBytes(sample(), format);
        for (qsizetype length = 0; length < whole.size(); ++length) {
            const QVariant value = PropertyList::parse(whole.left(length));
            EXPECT_TRUE(!value.isValid() || value.typeId() == QMetaType::QVariantMap) << "length " << length;
        }
    }
}

TEST(PropertyList, CorruptedBytesAreSurvived)
{
    QRandomGenerator random(20261121);
    for (PlistFormat format : {PlistFormat::xml, PlistFormat::binary}) {
        const QByteArray whole = plistBytes(sample(), format);
        for (int round = 0; round < 3000; ++round) {
            QByteArray damaged = whole;
            const int flips = 1 + random.bounded(4);
            for (int i = 0; i < flips; ++i)
                damaged[random.bounded(damaged.size())] = static_cast<char>(random.bounded(256));
            (void)PropertyList::dictionary(damaged);
        }
    }
    SUCCEED();
}

TEST(PropertyList, AbsurdNestingIsCut)
{
    QByteArray xml = "<plist version=\"1.0\">";
    for (int i = 0; i < 200; ++i)
        xml += "<array>";
    xml += "<string>deep</string>";
    for (int i = 0; i < 200; ++i)
        xml += "</array>";
    xml += "</plist>";
    const QVariant value = PropertyList::parse(xml);
    EXPECT_EQ(value.typeId(), QMetaType::QVariantList);
}

TEST(PropertyList, StringsThatAreNotUtf8ComeBackReplacedNotDropped)
{
    const QByteArray xml =
        "<plist version=\"1.0\"><dict><key>Name</key><string>caf\xe9</string></dict></plist>";
    const QVariantMap map = PropertyList::dictionary(xml);
    // Either the parser rejects the text or it keeps it with a replacement character; never a crash.
    if (!map.isEmpty()) {
        EXPECT_TRUE(map.value(QStringLiteral("Name")).toString().startsWith(QStringLiteral("caf")));
    }
}

TEST(PropertyList, FilesThatAreNotListsReadAsEmpty)
{
    QTemporaryDir dir;
    const QString good = dir.filePath(QStringLiteral("Info.plist"));
    nubo::test::writeBytes(good, plistBytes(sample(), PlistFormat::binary));
    expectSample(PropertyList::readDictionary(good));

    EXPECT_TRUE(PropertyList::readDictionary(dir.filePath(QStringLiteral("missing.plist"))).isEmpty());
    EXPECT_TRUE(PropertyList::readDictionary(dir.path()).isEmpty());

    // A FIFO must not block the reader waiting for a writer that never comes.
    const QString fifo = dir.filePath(QStringLiteral("fifo.plist"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    EXPECT_TRUE(PropertyList::readDictionary(fifo).isEmpty());

    // Above the size limit the file is not read at all.
    EXPECT_TRUE(PropertyList::readFile(QFile::encodeName(good), 16).isEmpty());
    EXPECT_FALSE(PropertyList::readFile(QFile::encodeName(good)).isEmpty());
}
