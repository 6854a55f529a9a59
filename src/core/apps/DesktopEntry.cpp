#include "core/apps/DesktopEntry.h"

#include <QFile>

namespace nubo {

namespace {

// No real desktop entry comes near this; a larger file is something else named ".desktop".
constexpr qint64 kLargestEntry = 1 << 20;

// The escapes of a string value: "\s" space, "\n" newline, "\t" tab, "\r" return, "\\" backslash.
// Any other escaped character stays as written, backslash included, for the command line's own
// quoting to read.
QString unescaped(const QString& raw)
{
    QString out;
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw.at(i);
        if (c != QLatin1Char('\\') || i + 1 == raw.size()) {
            out.append(c);
            continue;
        }
        switch (raw.at(++i).unicode()) {
        case 's': out.append(QLatin1Char(' ')); break;
        case 'n': out.append(QLatin1Char('\n')); break;
        case 't': out.append(QLatin1Char('\t')); break;
        case 'r': out.append(QLatin1Char('\r')); break;
        case '\\': out.append(QLatin1Char('\\')); break;
        default: out.append(QLatin1Char('\\')).append(raw.at(i)); break;
        }
    }
    return out;
}

// A field code stands for what the launcher passes in (files, URLs, the icon…); none of it is
// part of the program. "%%" is a literal percent sign.
QString withoutFieldCodes(const QString& word)
{
    QString out;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word.at(i) == QLatin1Char('%') && i + 1 < word.size()) {
            if (word.at(++i) == QLatin1Char('%'))
                out.append(QLatin1Char('%'));
            continue;
        }
        out.append(word.at(i));
    }
    return out;
}

bool isAssignment(const QString& word)
{
    const qsizetype equals = word.indexOf(QLatin1Char('='));
    return equals > 0 && !word.left(equals).contains(QLatin1Char('/'));
}

} // namespace

DesktopEntry DesktopEntry::parse(const QByteArray& bytes)
{
    DesktopEntry entry;
    bool inMainGroup = false;
    for (const QByteArray& rawLine : bytes.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inMainGroup || equals <= 0)
            continue;
        const QString key = QString::fromUtf8(line.left(equals).trimmed());
        entry.m_keys.insert(key, unescaped(QString::fromUtf8(line.mid(equals + 1).trimmed())));
    }
    return entry;
}

std::optional<DesktopEntry> DesktopEntry::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestEntry)
        return std::nullopt;
    return parse(file.read(kLargestEntry));
}

QString DesktopEntry::localized(const QString& key, const QString& locale) const
{
    QString language = locale.section(QLatin1Char('.'), 0, 0).section(QLatin1Char('@'), 0, 0);
    for (const QString& tag : {language, language.section(QLatin1Char('_'), 0, 0)}) {
        if (tag.isEmpty())
            continue;
        const auto found = m_keys.constFind(key + QLatin1Char('[') + tag + QLatin1Char(']'));
        if (found != m_keys.cend() && !found->isEmpty())
            return *found;
    }
    return value(key);
}

QStringList DesktopEntry::command() const
{
    const QString line = value(QStringLiteral("Exec"));
    QStringList words;
    QString word;
    bool quoted = false;
    bool inWord = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (quoted) {
            if (c == QLatin1Char('\\') && i + 1 < line.size())
                word.append(line.at(++i));
            else if (c == QLatin1Char('"'))
                quoted = false;
            else
                word.append(c);
        } else if (c == QLatin1Char('"')) {
            quoted = inWord = true;
        } else if (c == QLatin1Char(' ') || c == QLatin1Char('\t')) {
            if (inWord)
                words.append(withoutFieldCodes(word));
            word.clear();
            inWord = false;
        } else {
            word.append(c);
            inWord = true;
        }
    }
    if (quoted)
        return {};
    if (inWord)
        words.append(withoutFieldCodes(word));
    words.removeAll(QString());
    if (!words.isEmpty() && words.first() == QLatin1String("env")) {
        words.removeFirst();
        while (!words.isEmpty() && isAssignment(words.first()))
            words.removeFirst();
    }
    return words;
}

QString DesktopEntry::program() const
{
    const QStringList words = command();
    return words.isEmpty() ? QString() : words.first();
}

} // namespace nubo
