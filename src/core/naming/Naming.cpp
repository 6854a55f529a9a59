#include "core/naming/Naming.h"

#include "platform/Workspace.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

namespace nubo {

namespace {

const QHash<QString, QString>& knownNames()
{
    static const QHash<QString, QString> names = {
        {QStringLiteral("CloudKit"), QStringLiteral("iCloud")},
        {QStringLiteral("GeoServices"), QStringLiteral("Mapas")},
        {QStringLiteral("com.apple.Safari"), QStringLiteral("Safari")},
        {QStringLiteral("com.apple.dt.Xcode"), QStringLiteral("Xcode")},
        {QStringLiteral("SiriTTS"), QStringLiteral("Voces de Siri")},
        {QStringLiteral("com.apple.amsengagementd"), QStringLiteral("App Store")},
        {QStringLiteral("com.apple.iTunes"), QStringLiteral("Música")},
        {QStringLiteral("com.apple.Music"), QStringLiteral("Música")},
        {QStringLiteral("Homebrew"), QStringLiteral("Homebrew")},
        {QStringLiteral("pip"), QStringLiteral("Python (pip)")},
        {QStringLiteral("ms-playwright"), QStringLiteral("Playwright")},
        {QStringLiteral("node-gyp"), QStringLiteral("Node.js")},
        {QStringLiteral("typescript"), QStringLiteral("TypeScript")},
        {QStringLiteral("JetBrains"), QStringLiteral("JetBrains")},
        {QStringLiteral("deno"), QStringLiteral("Deno")},
        {QStringLiteral("dotslash"), QStringLiteral("DotSlash")},
    };
    return names;
}

// Endings that Library entries add to an identifier and that say nothing about the owner.
const QStringList& bookkeepingSuffixes()
{
    static const QStringList suffixes = {QStringLiteral(".plist"), QStringLiteral(".savedState"),
                                         QStringLiteral(".binarycookies")};
    return suffixes;
}

// First labels of reverse-DNS identifiers.
bool isDomainTop(const QString& label)
{
    static const QSet<QString> tops = {
        QStringLiteral("com"), QStringLiteral("org"), QStringLiteral("net"), QStringLiteral("io"),
        QStringLiteral("app"), QStringLiteral("dev"), QStringLiteral("co"),  QStringLiteral("me"),
        QStringLiteral("de"),  QStringLiteral("uk"),  QStringLiteral("us"),  QStringLiteral("fr"),
        QStringLiteral("es"),  QStringLiteral("jp"),  QStringLiteral("cn"),  QStringLiteral("ai"),
        QStringLiteral("tv"),  QStringLiteral("sh"),  QStringLiteral("it"),  QStringLiteral("nl"),
        QStringLiteral("ch"),  QStringLiteral("se"),  QStringLiteral("eu"),  QStringLiteral("info"),
        QStringLiteral("edu"), QStringLiteral("ru"),  QStringLiteral("ca"),  QStringLiteral("au"),
        QStringLiteral("at"),  QStringLiteral("be"),  QStringLiteral("dk"),  QStringLiteral("fi"),
        QStringLiteral("no"),  QStringLiteral("pl"),  QStringLiteral("cz"),  QStringLiteral("br"),
        QStringLiteral("in"),  QStringLiteral("kr"),  QStringLiteral("tw"),  QStringLiteral("hk"),
        QStringLiteral("ly"),  QStringLiteral("so"),  QStringLiteral("to"),  QStringLiteral("cc"),
        QStringLiteral("xyz"), QStringLiteral("ws"),  QStringLiteral("is"),  QStringLiteral("im"),
    };
    return tops.contains(label.toLower());
}

// Trailing labels that name a part of a product rather than the product.
bool isGenericLabel(const QString& label)
{
    static const QSet<QString> generic = {
        QStringLiteral("client"),  QStringLiteral("helper"),    QStringLiteral("app"),
        QStringLiteral("agent"),   QStringLiteral("daemon"),    QStringLiteral("mac"),
        QStringLiteral("macos"),   QStringLiteral("osx"),       QStringLiteral("desktop"),
        QStringLiteral("launcher"), QStringLiteral("main"),     QStringLiteral("service"),
        QStringLiteral("services"), QStringLiteral("xpc"),      QStringLiteral("plugin"),
        QStringLiteral("extension"), QStringLiteral("shipit"),  QStringLiteral("updater"),
        QStringLiteral("update"),  QStringLiteral("loginitem"), QStringLiteral("launchagent"),
    };
    return generic.contains(label.toLower());
}

QString withoutBookkeepingSuffix(QString name)
{
    for (const QString& suffix : bookkeepingSuffixes()) {
        if (name.size() > suffix.size() && name.endsWith(suffix))
            name.chop(suffix.size());
    }
    return name;
}

bool isAllLower(const QString& word)
{
    return word == word.toLower() && word != word.toUpper();
}

QString capitalised(const QString& word)
{
    if (word.isEmpty() || !isAllLower(word))
        return word;
    return word.left(1).toUpper() + word.mid(1);
}

// "google-chrome" → "Google Chrome", "my_app" → "My App"; a word that already has capitals or
// no letters keeps its spelling.
QString spacedWords(const QString& text)
{
    static const QRegularExpression separators(QStringLiteral("[-_\\s]+"));
    const QStringList words = text.split(separators, Qt::SkipEmptyParts);
    if (words.size() <= 1)
        return words.isEmpty() ? QString() : words.first();
    QStringList shown;
    for (const QString& word : words)
        shown << capitalised(word);
    return shown.join(QLatin1Char(' '));
}

// The product of a reverse-DNS identifier, or empty when the name is not one.
QString productOfIdentifier(const QString& name)
{
    QStringList labels = name.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    if (labels.size() < 3 || !isDomainTop(labels.first()))
        return {};
    labels.removeFirst();
    const QString vendor = labels.first();
    while (labels.size() > 1 && isGenericLabel(labels.last()))
        labels.removeLast();
    QString product = labels.size() > 1 ? labels.last() : vendor;
    // A short code ("us.zoom.xos") or a version label says less than the vendor does.
    static const QRegularExpression codeLike(QStringLiteral("^([a-z]{1,3}|v?\\d[\\w]*)$"));
    if (labels.size() > 1 && codeLike.match(product).hasMatch())
        product = vendor;
    return capitalised(spacedWords(product));
}

} // namespace

Naming::Naming(AppLookup lookup) : m_lookup(std::move(lookup)) {}

Naming::AppLookup Naming::lookupIn(const Workspace& workspace)
{
    return [&workspace](const QString& bundleIdentifier) {
        return workspace.applicationLocation(bundleIdentifier).value_or(QString());
    };
}

QString Naming::tidy(const QString& raw)
{
    QString name = raw.trimmed();
    while (name.startsWith(QLatin1Char('.')))
        name.remove(0, 1);
    name = withoutBookkeepingSuffix(name);
    if (name.isEmpty())
        return raw;
    if (name.startsWith(QLatin1String("group.")))
        name.remove(0, 6);
    if (const QString product = productOfIdentifier(name); !product.isEmpty())
        return product;
    const QString spaced = spacedWords(name);
    return spaced.isEmpty() ? raw : spaced;
}

QString Naming::derivedDataName(const QString& folder)
{
    // The build system appends "-" and a hash of lower-case letters (28 of them today).
    static const QRegularExpression hashed(QStringLiteral("^(.+)-[a-z]{16,}$"));
    const QRegularExpressionMatch match = hashed.match(folder);
    return match.hasMatch() ? match.captured(1) : folder;
}

Naming::Resolved Naming::derivedData(const QString& folder)
{
    return {derivedDataName(folder), QStringLiteral("Proyecto de Xcode"), {}};
}

Naming::Resolved Naming::resolve(const QString& folder) const
{
    const QString key = withoutBookkeepingSuffix(folder);
    const bool apple = key.startsWith(QLatin1String("com.apple."));
    const QString appleSubtitle = apple ? QStringLiteral("Componente de macOS") : QString();

    if (const auto known = knownNames().constFind(key); known != knownNames().constEnd())
        return {*known, appleSubtitle, {}};
    if (apple)
        return {tidy(key), appleSubtitle, {}};

    // A Homebrew service label: the formula is the name people know.
    if (key.startsWith(QLatin1String("homebrew.mxcl.")) && key.size() > 14)
        return {key.mid(14), QStringLiteral("Servicio de Homebrew"), {}};

    if (m_lookup) {
        // Group containers and team-prefixed identifiers carry the app's identifier inside them.
        static const QRegularExpression prefixed(QStringLiteral("^(?:group\\.|[A-Z0-9]{10}\\.)(.+)$"));
        QStringList candidates{key};
        if (const QRegularExpressionMatch match = prefixed.match(key); match.hasMatch())
            candidates << match.captured(1);
        for (const QString& identifier : candidates) {
            if (!identifier.contains(QLatin1Char('.')))
                continue;
            const QString app = m_lookup(identifier);
            if (app.isEmpty())
                continue;
            QString name = app.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
            if (name.endsWith(QLatin1String(".app"), Qt::CaseInsensitive))
                name.chop(4);
            // Linux desktops register an application as a desktop entry named by its identifier.
            if (name.endsWith(QLatin1String(".desktop")))
                name = tidy(name.chopped(8));
            return {name.isEmpty() ? tidy(key) : name, {}, app};
        }
    }
    return {tidy(folder), {}, {}};
}

} // namespace nubo
