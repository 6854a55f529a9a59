#include "core/plist/PropertyList.h"

#include "support/FixtureFiles.h"
#include "support/PlistWriter.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimeZone>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace nubo;
using nubo::test::plistBytes;
using nubo::test::PlistFormat;

namespace {

// Every kind of value a property list holds, negative integers and text beyond Latin-1 included.
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
        {QStringLiteral("When"), QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, QTimeZone::utc())},
        {QStringLiteral("List"), QVariantList{QStringLiteral("a"), qint64(1),
                                              QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}}},
    };
}

} // namespace

TEST(PropertyList, XmlBinaryAndHandWrittenListsGiveTheirValues)
{
    EXPECT_EQ(PropertyList::dictionary(plistBytes(sample(), PlistFormat::xml)), sample());
    EXPECT_EQ(PropertyList::dictionary(plistBytes(sample(), PlistFormat::binary)), sample());
    const QVariantMap shipped =
        PropertyList::dictionary(test::plistDict("\n\t<key>CFBundleName</key>\n\t<string>Tom &amp; Jerry "
                                                 "&lt;3</string>\n\t<key>LSUIElement</key><false/>\n"));
    EXPECT_EQ(shipped, (QVariantMap{{QStringLiteral("CFBundleName"), QStringLiteral("Tom & Jerry <3")},
                                    {QStringLiteral("LSUIElement"), false}}));
}

// A list that is not a dictionary, garbage, a truncated download, a half-written or a damaged
// bundle read as an empty dictionary and never crash the reader: every prefix of a real file and
// thousands of random corruptions give nothing or a dictionary.
TEST(PropertyList, MalformedInputReadsAsAnEmptyDictionaryAndNeverCrashes)
{
    QList<QByteArray> inputs = {
        {}, "not a list at all", "bplist00", "<plist><dict><key>a</key>", QByteArray(4096, '\0')};
    QRandomGenerator random(20261121);
    for (PlistFormat format : {PlistFormat::xml, PlistFormat::binary}) {
        const QByteArray list = plistBytes(QVariantList{QStringLiteral("a"), QStringLiteral("b")}, format);
        EXPECT_EQ(PropertyList::parse(list).toList().size(), 2); // the list itself still parses
        inputs << list << plistBytes(QStringLiteral("just text"), format);
        const QByteArray whole = plistBytes(sample(), format);
        for (qsizetype length = 0; length < whole.size(); ++length) {
            const QVariant value = PropertyList::parse(whole.left(length));
            EXPECT_TRUE(!value.isValid() || value.typeId() == QMetaType::QVariantMap) << "length " << length;
        }
        for (int round = 0; round < 3000; ++round) {
            QByteArray damaged = whole;
            for (int flips = 1 + random.bounded(4); flips > 0; --flips)
                damaged[random.bounded(damaged.size())] = static_cast<char>(random.bounded(256));
            (void)PropertyList::dictionary(damaged);
        }
    }
    for (const QByteArray& bytes : inputs)
        EXPECT_TRUE(PropertyList::dictionary(bytes).isEmpty()) << bytes.toHex().left(64).constData();
    EXPECT_FALSE(PropertyList::parse(QByteArray()).isValid());

    // Absurd nesting is cut, not followed down; text that is not UTF-8 is kept or refused.
    const QByteArray deep = "<plist version=\"1.0\">" + QByteArray("<array>").repeated(200) +
                            "<string>deep</string>" + QByteArray("</array>").repeated(200) + "</plist>";
    EXPECT_EQ(PropertyList::parse(deep).typeId(), QMetaType::QVariantList);
    const QVariantMap latin1 = PropertyList::dictionary(
        "<plist version=\"1.0\"><dict><key>Name</key><string>caf\xe9</string></dict></plist>");
    EXPECT_TRUE(latin1.isEmpty() ||
                latin1.value(QStringLiteral("Name")).toString().startsWith(QStringLiteral("caf")));
}

TEST(PropertyList, FilesThatAreNotListsReadAsEmpty)
{
    QTemporaryDir dir;
    const QString good = dir.filePath(QStringLiteral("Info.plist"));
    nubo::test::writeBytes(good, plistBytes(sample(), PlistFormat::binary));
    EXPECT_EQ(PropertyList::readDictionary(good), sample());

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
