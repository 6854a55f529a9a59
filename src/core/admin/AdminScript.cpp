#include "core/admin/AdminScript.h"

#include "core/admin/ShellQuote.h"

namespace nubo::AdminScript {

namespace {

const QString kDoShellScript = QStringLiteral("do shell script ");
const QString kWithAdministrator = QStringLiteral(" with administrator privileges");
const QString kRemoveCommand = QStringLiteral("/bin/rm -rf -- ");
const QString kQuotedFormOf = QStringLiteral("quoted form of \"");
// A one-space string literal between two quoted paths: " & \" \" & ".
const QString kScriptSeparator = QStringLiteral(" & \" \" & ");

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
    QStringList words;
    for (const QString& path : paths) {
        fragments << kQuotedFormOf + escapeForLiteral(path) + QLatin1Char('"');
        words << shellQuote(path);
    }
    const QString script =
        kDoShellScript + literal(kRemoveCommand) + QStringLiteral(" & ") + fragments.join(kScriptSeparator) +
        kWithAdministrator;
    return {script, kRemoveCommand + words.join(QLatin1Char(' '))};
}

} // namespace nubo::AdminScript
