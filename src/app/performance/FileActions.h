#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// What the views do with a file's path on the desktop itself: copy the path as text, and show
/// the folder that holds the file in the file manager. Nothing here reads or changes the file.
class FileActions : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_DISABLE_COPY_MOVE(FileActions)

public:
    explicit FileActions(QObject* parent = nullptr);

    /// Puts `text` on the clipboard; an empty text leaves the clipboard as it was.
    Q_INVOKABLE void copyText(const QString& text) const;
    /// Opens the folder that holds `path` in the file manager; a relative or empty path does
    /// nothing, so a half-read item can never open some unrelated folder.
    Q_INVOKABLE void reveal(const QString& path) const;
};

} // namespace nubo
