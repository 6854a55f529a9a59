#pragma once

#include <QString>

#include <functional>

namespace nubo {

class Workspace;

/// Turns the names of Library folders, files and launch labels ("com.spotify.client",
/// "node-gyp", "homebrew.mxcl.postgresql@15") into what a person recognises: the owning
/// application's name where one can be found, a known product name, or a tidied form of the
/// name itself.
class Naming
{
public:
    /// Where the application with a bundle identifier is installed; empty when none is.
    using AppLookup = std::function<QString(const QString& bundleIdentifier)>;

    struct Resolved
    {
        QString name;
        QString subtitle; ///< empty when there is nothing to add
        QString appUrl;   ///< the owning application's bundle, empty when unknown
        friend bool operator==(const Resolved&, const Resolved&) = default;
    };

    explicit Naming(AppLookup lookup = {});

    /// Owners looked up in the system's registry of applications; `workspace` must outlive every
    /// use of the lookup.
    [[nodiscard]] static AppLookup lookupIn(const Workspace& workspace);

    /// The fixed names first, then Apple's own components, then the installed application the
    /// name stands for, then the tidied name.
    [[nodiscard]] Resolved resolve(const QString& folder) const;

    /// The project name of a build-products folder: "MyApp-bqzdhfkeyqxeoj…" gives "MyApp".
    [[nodiscard]] static QString derivedDataName(const QString& folder);
    /// Resolve for a derived-data folder: its project name, marked as an Xcode project.
    [[nodiscard]] static Resolved derivedData(const QString& folder);

    /// A readable form of a raw name: reverse-DNS identifiers give their product
    /// ("com.spotify.client" → "Spotify"), words joined by "-" or "_" are spaced and capitalised
    /// ("google-chrome" → "Google Chrome"), a leading dot and bookkeeping suffixes are dropped.
    [[nodiscard]] static QString tidy(const QString& name);

private:
    AppLookup m_lookup;
};

} // namespace nubo
