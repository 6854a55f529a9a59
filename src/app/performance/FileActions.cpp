#include "FileActions.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>

namespace nubo {

FileActions::FileActions(QObject* parent) : QObject(parent) {}

void FileActions::copyText(const QString& text) const
{
    if (text.isEmpty())
        return;
    if (QClipboard* clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
}

void FileActions::reveal(const QString& path) const
{
    if (path.isEmpty() || !QDir::isAbsolutePath(path))
        return;
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

} // namespace nubo
