#include "AppleScriptText.h"

namespace nubo::test {

namespace {

class Reader
{
public:
    explicit Reader(const QString& text) : m_text(text) {}

    bool take(QLatin1String word)
    {
        if (!QStringView(m_text).mid(m_at).startsWith(word))
            return false;
        m_at += word.size();
        return true;
    }

    // A string literal: \" \\ \n \t \r are the escapes; anything else after a backslash is an
    // error in AppleScript too. Raw line breaks are allowed inside.
    std::optional<QString> literal()
    {
        if (!take(QLatin1String("\"")))
            return std::nullopt;
        QString value;
        while (m_at < m_text.size()) {
            const QChar c = m_text.at(m_at++);
            if (c == QLatin1Char('"'))
                return value;
            if (c != QLatin1Char('\\')) {
                value += c;
                continue;
            }
            if (m_at >= m_text.size())
                return std::nullopt;
            const QChar escaped = m_text.at(m_at++);
            if (escaped == QLatin1Char('"') || escaped == QLatin1Char('\\'))
                value += escaped;
            else if (escaped == QLatin1Char('n'))
                value += QLatin1Char('\n');
            else if (escaped == QLatin1Char('t'))
                value += QLatin1Char('\t');
            else if (escaped == QLatin1Char('r'))
                value += QLatin1Char('\r');
            else
                return std::nullopt;
        }
        return std::nullopt;
    }

    bool atEnd() const { return m_at == m_text.size(); }

private:
    const QString& m_text;
    qsizetype m_at = 0;
};

// AppleScript's quoted form: single quotes around, each single quote as '\''.
QString quotedForm(QString text)
{
    text.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

} // namespace

std::optional<QString> shellCommandOf(const QString& script)
{
    Reader reader(script);
    if (!reader.take(QLatin1String("do shell script ")))
        return std::nullopt;
    QString command;
    do {
        const bool quoted = reader.take(QLatin1String("quoted form of "));
        const std::optional<QString> value = reader.literal();
        if (!value)
            return std::nullopt;
        command += quoted ? quotedForm(*value) : *value;
    } while (reader.take(QLatin1String(" & ")));
    if (!reader.take(QLatin1String(" with administrator privileges")) || !reader.atEnd())
        return std::nullopt;
    return command;
}

} // namespace nubo::test
