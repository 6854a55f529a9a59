#include "core/files/NativePath.h"

#include "support/TempTree.h"

#include <QFile>
#include <gtest/gtest.h>

namespace NativePath = nubo::NativePath;

// Every sequence of up to two bytes (ASCII, Latin-1, valid pairs, an overlong "/"...) and samples
// of longer broken UTF-8 come back exactly and never as U+FFFD: names that differ in a byte stay apart.
TEST(NativePath, EveryByteSequenceComesBackExactly)
{
    QList<QByteArray> samples = {
        "\xf0\x9f\x93\x81 folder", // valid UTF-8 of 4 bytes
        "\xff\xfe\x80",            // never valid
        "\xed\xa0\x80",            // an encoded surrogate
        "\xf4\x90\x80\x80",        // above U+10FFFF
        "cut \xe2\x82",            // truncated sequence at the end
        "\xf0\x9f\x93\x81\xff",    // a real pair followed by a bad byte
    };
    for (int first = 1; first < 256; ++first) {
        for (int second = 0; second < 256; ++second)
            samples << QByteArray(1, char(first)) + (second ? QByteArray(1, char(second)) : QByteArray());
    }
    for (const QByteArray& bytes : samples) {
        const QString text = NativePath::decode(bytes);
        ASSERT_EQ(NativePath::encode(text), bytes) << bytes.toHex().constData();
        ASSERT_FALSE(text.contains(QChar(0xFFFD))) << bytes.toHex().constData();
    }
    EXPECT_EQ(NativePath::decode("caf\xc3\xa9"), QStringLiteral("café"));
    EXPECT_FALSE(NativePath::hasEscapedBytes(NativePath::decode("\xf0\x9f\x93\x81")));
    EXPECT_TRUE(NativePath::hasEscapedBytes(NativePath::decode("caf\xe9")));
}

// A decoded name still reaches its file; what Qt's own conversion would have produced does not.
TEST(NativePath, ADecodedNameStillReachesItsFile)
{
    nubo::test::TempTree tree; // removed by its bytes, which Qt cannot name
    const QByteArray path = tree.bytes("r\xe9sum\xe9 \xff.txt");
    nubo::test::writeBytes(path, {});
    EXPECT_TRUE(nubo::test::exists(NativePath::encode(NativePath::decode(path))));
    EXPECT_FALSE(nubo::test::exists(QFile::encodeName(QFile::decodeName(path))));
}
