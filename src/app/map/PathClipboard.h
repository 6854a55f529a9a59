#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// Puts a path on the system clipboard as plain text, the node menu's "Copiar ruta".
class PathClipboard : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_DISABLE_COPY_MOVE(PathClipboard)

public:
    explicit PathClipboard(QObject* parent = nullptr) : QObject(parent) {}

    /// Clears the clipboard first, so that no richer content of an earlier copy stays beside it.
    Q_INVOKABLE void copy(const QString& path) const;
};

} // namespace nubo
