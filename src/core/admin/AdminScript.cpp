#include "core/admin/AdminScript.h"

#include "core/admin/ShellQuote.h"
#include "core/files/NativePath.h"

#include <cstring>

namespace nubo::AdminScript {

namespace {

const QString kDoShellScript = QStringLiteral("do shell script ");
const QString kWithAdministrator = QStringLiteral(" with administrator privileges");
const QString kRemoveCommand = QStringLiteral("/bin/rm -rf -- ");
const QString kQuotedFormOf = QStringLiteral("quoted form of \"");
// A one-space string literal between two quoted paths: " & \" \" & ".
const QString kScriptSeparator = QStringLiteral(" & \" \" & ");

// The bytes of a path as a printf format that writes exactly them: letters, digits and a few
// harmless signs as they are, every other byte (quotes, "%", "\\", line breaks, bytes that are
// not UTF-8) as a three-digit octal escape, so nothing in it means anything to the shell.
QString printfFormat(const QByteArray& bytes)
{
    QString format;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9') || (byte != 0 && std::strchr("/._-+,:@=", c));
        format += plain ? QString(QLatin1Char(c)) : QStringLiteral("\\%1").arg(uint(byte), 3, 8, QLatin1Char('0'));
    }
    return format;
}

QString literal(const QString& text)
{
    return QLatin1Char('"') + escapeForLiteral(text) + QLatin1Char('"');
}

} // namespace

QString escapeForLiteral(const QString& text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return escaped;
}

AdminRequest forCommand(const QString& command)
{
    return {kDoShellScript + literal(command) + kWithAdministrator, command};
}

AdminRequest forRemoval(const QStringList& paths)
{
    QStringList fragments;
    QString preamble;
    QStringList words;
    for (const QString& path : paths) {
        fragments << kQuotedFormOf + escapeForLiteral(path) + QLatin1Char('"');
        if (!NativePath::hasEscapedBytes(path)) {
            words << shellQuote(path);
            continue;
        }
        // Command substitution drops final line breaks: the "x" printed after the path keeps
        // them, and is taken off again.
        const QString name = QStringLiteral("nubo%1").arg(words.size() + 1);
        preamble += QStringLiteral("%1=$(printf '%2x'); %1=${%1%x}; ")
                        .arg(name, printfFormat(NativePath::encode(path)));
        words << QStringLiteral("\"$%1\"").arg(name);
    }
    const QString script =
        kDoShellScript + literal(kRemoveCommand) + QStringLiteral(" & ") + fragments.join(kScriptSeparator) +
        kWithAdministrator;
    return {script, preamble + kRemoveCommand + words.join(QLatin1Char(' '))};
}

} // namespace nubo::AdminScript
