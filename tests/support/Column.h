#pragma once

#include <QList>
#include <QStringList>

namespace nubo::test {

/// One text field of every row, in order: the ids or names a test compares as one list.
template <typename Row>
QStringList column(const QList<Row>& rows, QString Row::*field)
{
    QStringList out;
    out.reserve(rows.size());
    for (const Row& row : rows)
        out.append(row.*field);
    return out;
}

} // namespace nubo::test
