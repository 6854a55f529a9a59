#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The texts of the activity screen that depend on figures: processor shares, memory, the count
/// of open apps, the hide/show action of a row and the force-quit confirmation. The static
/// functions are the builders; the QML singleton hands them to the views unchanged.
class ActivityTexts : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_DISABLE_COPY_MOVE(ActivityTexts)
    Q_PROPERTY(QString forceQuitMessage READ forceQuitMessageText CONSTANT)

public:
    explicit ActivityTexts(QObject* parent = nullptr);

    /// The machine's processor use with no decimals, "37 %"; may pass 100 on several cores.
    /// A share that is not a finite, non-negative number reads "0 %".
    [[nodiscard]] static QString totalCpu(double percent);
    /// One application's share with one decimal, "12.5 %".
    [[nodiscard]] static QString appCpu(double percent);
    /// "<used> de <total>", both through the byte formatter.
    [[nodiscard]] static QString memory(qint64 used, qint64 total);
    /// How full the memory is, from 0 to 1; 0 while the total is unknown.
    [[nodiscard]] static double memoryFraction(qint64 used, qint64 total);
    /// "accent" while memory is comfortable, "warning" above 75 % in use, "critical" above 90 %.
    [[nodiscard]] static QString memoryTone(qint64 used, qint64 total);
    /// "Mostrar" for a hidden application, "Ocultar" otherwise, with the matching symbol.
    [[nodiscard]] static QString hideAction(bool hidden);
    [[nodiscard]] static QString hideSymbol(bool hidden);
    /// "¿Forzar la salida de <name>?", "la app" standing in for a missing name.
    [[nodiscard]] static QString forceQuitTitle(const QString& name);
    [[nodiscard]] static QString forceQuitMessage();

    Q_INVOKABLE [[nodiscard]] QString totalCpuText(double percent) const { return totalCpu(percent); }
    Q_INVOKABLE [[nodiscard]] QString appCpuText(double percent) const { return appCpu(percent); }
    Q_INVOKABLE [[nodiscard]] QString memoryText(qint64 used, qint64 total) const
    {
        return memory(used, total);
    }
    Q_INVOKABLE [[nodiscard]] double memoryFractionOf(qint64 used, qint64 total) const
    {
        return memoryFraction(used, total);
    }
    Q_INVOKABLE [[nodiscard]] QString memoryToneOf(qint64 used, qint64 total) const
    {
        return memoryTone(used, total);
    }
    Q_INVOKABLE [[nodiscard]] QString bytesText(qint64 bytes) const;
    Q_INVOKABLE [[nodiscard]] QString hideActionText(bool hidden) const { return hideAction(hidden); }
    Q_INVOKABLE [[nodiscard]] QString hideSymbolName(bool hidden) const { return hideSymbol(hidden); }
    Q_INVOKABLE [[nodiscard]] QString forceQuitTitleText(const QString& name) const
    {
        return forceQuitTitle(name);
    }
    [[nodiscard]] QString forceQuitMessageText() const { return forceQuitMessage(); }
};

} // namespace nubo
