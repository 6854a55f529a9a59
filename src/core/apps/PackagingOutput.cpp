#include "core/apps/PackagingOutput.h"

#include <QRegularExpression>

namespace nubo::PackagingOutput {

namespace {

QStringList linesOf(const QString& output)
{
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList words(const QString& line)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    return line.trimmed().split(blanks, Qt::SkipEmptyParts);
}

QString withoutArchitecture(const QString& package)
{
    return package.section(QLatin1Char(':'), 0, 0);
}

} // namespace

QList<FlatpakApp> flatpakApps(const QString& output)
{
    QList<FlatpakApp> apps;
    for (const QString& line : linesOf(output)) {
        const QStringList columns = line.split(QLatin1Char('\t'));
        if (columns.size() < 2 || !isPlainName(columns.at(0).trimmed()) || columns.at(1).trimmed().isEmpty())
            continue;
        apps.append({columns.at(0).trimmed(), columns.at(1).trimmed(), columns.value(2).trimmed()});
    }
    return apps;
}

QList<Snap> snaps(const QString& output)
{
    QList<Snap> found;
    for (const QString& line : linesOf(output)) {
        const QStringList columns = words(line);
        if (columns.size() < 3 || columns.at(0) == QLatin1String("Name") || !isPlainName(columns.at(0)))
            continue;
        bool numeric = false;
        columns.at(2).toLongLong(&numeric);
        // A revision is a number; a local install's is "x1", "x2"…
        if (!numeric && !columns.at(2).startsWith(QLatin1Char('x')))
            continue;
        found.append({columns.at(0), columns.at(1), columns.at(2)});
    }
    return found;
}

QHash<QString, QStringList> owners(const QString& output)
{
    QHash<QString, QStringList> found;
    for (const QString& line : linesOf(output)) {
        if (line.startsWith(QLatin1String("diversion ")))
            continue;
        const qsizetype split = line.indexOf(QLatin1String(": /"));
        if (split <= 0)
            continue;
        QStringList packages;
        for (const QString& package : line.left(split).split(QLatin1String(", "), Qt::SkipEmptyParts)) {
            if (isPlainName(package.trimmed()))
                packages << withoutArchitecture(package.trimmed());
        }
        if (!packages.isEmpty())
            found.insert(line.mid(split + 2), packages);
    }
    return found;
}

QList<Package> packages(const QString& output)
{
    QList<Package> found;
    for (const QString& line : linesOf(output)) {
        const QStringList columns = line.split(QLatin1Char('\t'));
        if (columns.size() < 2 || !isPlainName(columns.at(0)))
            continue;
        bool numeric = false;
        const qint64 size = columns.value(2).trimmed().toLongLong(&numeric);
        found.append({withoutArchitecture(columns.at(0)), columns.at(1).trimmed(),
                      numeric && size >= 0 ? std::optional<qint64>(size) : std::nullopt});
    }
    return found;
}

QStringList removals(const QString& output)
{
    QStringList found;
    for (const QString& line : linesOf(output)) {
        const QStringList columns = words(line);
        if (columns.size() >= 2 && columns.at(0) == QLatin1String("Remv") && isPlainName(columns.at(1)))
            found << withoutArchitecture(columns.at(1));
    }
    return found;
}

bool isPlainName(const QString& name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9+._-]*(:[a-z0-9-]+)?$"));
    return name.size() <= 255 && plain.match(name).hasMatch();
}

} // namespace nubo::PackagingOutput
