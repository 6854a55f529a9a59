#include "core/files/MountTable.h"

#include "core/files/NativePath.h"

#include <QFile>

namespace nubo::MountTable {

namespace {

bool isOctal(char c)
{
    return c >= '0' && c <= '7';
}

// "\040" stands for a space in the table, and likewise any byte written as three octal digits.
QByteArray unescaped(QByteArrayView field)
{
    QByteArray out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) && isOctal(field[i + 2]) &&
            isOctal(field[i + 3])) {
            out.append(char(((field[i + 1] - '0') << 6) | ((field[i + 2] - '0') << 3) | (field[i + 3] - '0')));
            i += 3;
        } else {
            out.append(field[i]);
        }
    }
    return out;
}

} // namespace

QStringList parse(QByteArrayView text)
{
    QStringList points;
    for (const QByteArray& line : text.toByteArray().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 5 || !fields.at(4).startsWith('/'))
            continue;
        points << NativePath::decode(unescaped(fields.at(4)));
    }
    return points;
}

QStringList points(const QString& table)
{
    QFile file(table);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // The kernel's tables report a size of 0: read to the end rather than trusting it.
    return parse(file.readAll());
}

} // namespace nubo::MountTable
