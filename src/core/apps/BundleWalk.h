#pragma once

#include <QByteArray>

#include <functional>

namespace nubo::BundleWalk {

/// One entry met by `walk`.
struct Entry
{
    QByteArray path; ///< as the system spells it, so names that are not UTF-8 stay reachable
    QByteArray name; ///< the last component of `path`
    int depth = 0;   ///< 1 for the root's own children
    bool isDirectory = false;
    bool isSymlink = false;
};

/// Whether a folder is a package (an application, a plug-in, a framework…) that an enumerator
/// skipping package contents treats as one opaque item. The test is by extension, ignoring case
/// as the Mac does.
[[nodiscard]] bool isPackage(const QByteArray& name);

/// Walks the tree under `root` and calls `visit` for every entry down to `maxDepth` (entries
/// deeper than that are never read). Hidden entries (a leading ".") are skipped with all they
/// hold; symbolic links are reported but never followed; packages are entered only when
/// `intoPackages` is true. A root or a folder that cannot be read adds nothing; the walk never
/// fails. Folders are visited in the order the file system lists them.
void walk(const QByteArray& root, int maxDepth, bool intoPackages, const std::function<void(const Entry&)>& visit);

} // namespace nubo::BundleWalk
