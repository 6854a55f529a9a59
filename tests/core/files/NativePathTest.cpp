#include "core/files/NativePath.h"

#include "support/TempTree.h"

#include <QFile>
#include <gtest/gtest.h>

namespace NativePath = nubo::NativePath;

TEST(NativePath, EveryByteSequenceComesBackExactly)
{
    const QList<QByteArray> samples = {
        "", "plain/ascii name", "caf\xc3\xa9", "\xf0\x9f\x93\x81 folder", // valid UTF-8, 2 and 4 bytes
        "caf\xe9",                                    // Latin-1
        "\xff\xfe\x80",                               // never valid
        "\xc0\xaf",                                   // overlong "/"
        "\xed\xa0\x80",                               // an encoded surrogate
        "\xf4\x90\x80\x80",                           // above U+10FFFF
        "cut \xe2\x82",                               // truncated sequence at the end
        "\xf0\x9f\x93\x81\xff",                       // a real pair followed by a bad byte
    };
    for (const QByteArray& bytes : samples) {
        const QString text = NativePath::decode(bytes);
        EXPECT_EQ(NativePath::encode(text), bytes) << bytes.toHex().constData();
        EXPECT_FALSE(text.contains(QChar(0xFFFD))) << bytes.toHex().constData();
    }
    EXPECT_EQ(NativePath::decode("caf\xc3\xa9"), QStringLiteral("café"));
    EXPECT_FALSE(NativePath::hasEscapedBytes(NativePath::decode("\xf0\x9f\x93\x81")));
    EXPECT_TRUE(NativePath::hasEscapedBytes(NativePath::decode("caf\xe9")));
    // Two names that differ only in an invalid byte stay different.
    EXPECT_NE(NativePath::decode("a\xff"), NativePath::decode("a\xfe"));
}

TEST(NativePath, ADecodedNameStillReachesItsFile)
{
    nubo::test::TempTree tree; // removed by its bytes, which Qt cannot name
    const QByteArray path = tree.bytes("r\xe9sum\xe9 \xff.txt");
    nubo::test::writeBytes(path, {});
    EXPECT_TRUE(nubo::test::exists(NativePath::encode(NativePath::decode(path))));
    // What Qt's own conversion would have produced does not reach it.
    EXPECT_FALSE(nubo::test::exists(QFile::encodeName(QFile::decodeName(path))));
}
