#include "PathClipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace nubo {

void PathClipboard::copy(const QString& path) const
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(path);
}

} // namespace nubo
