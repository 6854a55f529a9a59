#pragma once

#include "core/launch/LaunchItem.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The texts of the performance screen that depend on data: the header's count, a launch item's
/// second line, its switch and removal confirmation, the snapshot line and the outcome icon of a
/// maintenance task. The static functions are the builders; the QML singleton hands them to the
/// views unchanged.
class PerformanceTexts : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_DISABLE_COPY_MOVE(PerformanceTexts)
    Q_PROPERTY(QString removeMessage READ removeMessageText CONSTANT)
    Q_PROPERTY(QString adminNote READ adminNote CONSTANT)

public:
    explicit PerformanceTexts(QObject* parent = nullptr);

    /// "<count> ítems de inicio activos".
    [[nodiscard]] static QString activeCount(qint64 enabled);
    /// The second line of a launch item: its scope label, then whatever tells it apart from its
    /// name (the job's label, or the program's file name when the name is the label), then
    /// "Desactivado" for a switched-off item, joined with " · ".
    [[nodiscard]] static QString details(const LaunchItem& item);
    /// "Desactivar" for an enabled item, "Activar" for a disabled one.
    [[nodiscard]] static QString toggleAction(bool enabled);
    /// "¿Eliminar «<name>»?".
    [[nodiscard]] static QString removeTitle(const QString& name);
    [[nodiscard]] static QString removeMessage();
    /// "1 instantánea en el disco. ", "3 instantáneas en el disco. ", and for none (or a count
    /// that makes no sense) "No hay instantáneas locales ahora mismo.".
    [[nodiscard]] static QString snapshots(int count);
    /// "checkmark.circle.fill" for a run that succeeded, "xmark.circle.fill" otherwise.
    [[nodiscard]] static QString outcomeSymbol(bool ok);

    Q_INVOKABLE [[nodiscard]] QString activeCountText(qint64 enabled) const { return activeCount(enabled); }
    Q_INVOKABLE [[nodiscard]] QString toggleActionText(bool enabled) const { return toggleAction(enabled); }
    Q_INVOKABLE [[nodiscard]] QString removeTitleText(const QString& name) const { return removeTitle(name); }
    Q_INVOKABLE [[nodiscard]] QString snapshotsText(int count) const { return snapshots(count); }
    Q_INVOKABLE [[nodiscard]] QString outcomeSymbolName(bool ok) const { return outcomeSymbol(ok); }
    [[nodiscard]] QString removeMessageText() const { return removeMessage(); }
    /// Under the maintenance title, one sentence with the padlock the tasks' rows show.
    [[nodiscard]] QString adminNote() const;
};

} // namespace nubo
