#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace nubo::PropertyList {

/// Reads a property list, XML or binary alike (libplist tells them apart by their first bytes),
/// into Qt values: dictionaries become QVariantMap, arrays QVariantList, strings QString, integers
/// qint64, reals double, booleans bool, dates QDateTime (UTC) and data QByteArray. Anything that
/// does not parse (empty, truncated, malformed) gives an invalid QVariant; nothing here throws or
/// aborts, so a damaged file inside some bundle can never take the program down.
[[nodiscard]] QVariant parse(const QByteArray& bytes);

/// The top-level dictionary of `bytes`; a list that is not a dictionary, or no list at all, gives
/// an empty map, which is how every caller treats a bundle without usable information.
[[nodiscard]] QVariantMap dictionary(const QByteArray& bytes);

/// As `dictionary`, read from the file at `path` (a name that is not valid UTF-8 cannot be given
/// here: see `readFile` for the byte form). Missing, unreadable or oversized files give an empty map.
[[nodiscard]] QVariantMap readDictionary(const QString& path);

/// The file's bytes, with the path given as the system spells it. Files above `maxBytes` are not
/// read at all (property lists we care about are a few kilobytes; a huge file named Info.plist
/// is not one). Empty on any failure.
[[nodiscard]] QByteArray readFile(const QByteArray& nativePath, qint64 maxBytes = 16 * 1024 * 1024);

} // namespace nubo::PropertyList
