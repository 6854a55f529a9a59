#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The texts that views build from plain figures (a size, a count, a confirmation), offered to
/// QML so that no view assembles a Spanish sentence itself. Stateless.
class Texts : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_DISABLE_COPY_MOVE(Texts)
    Q_PROPERTY(QString deleteVerb READ deleteVerb CONSTANT)
    Q_PROPERTY(QString cancelLabel READ cancelLabel CONSTANT)
    Q_PROPERTY(QString cancellingLine READ cancellingLine CONSTANT)
    Q_PROPERTY(QString promptNote READ promptNote CONSTANT)

public:
    explicit Texts(QObject* parent = nullptr);

    /// "Eliminar", the verb of every deletion unless a screen names another ("Desinstalar").
    [[nodiscard]] QString deleteVerb() const;
    [[nodiscard]] QString cancelLabel() const;
    /// Shown once "Cancelar" is pressed, until the work has stopped where it could.
    [[nodiscard]] QString cancellingLine() const;
    /// The administrator's password prompt is the one step no "Cancelar" can stop.
    [[nodiscard]] QString promptNote() const;

    Q_INVOKABLE [[nodiscard]] QString bytes(qint64 count) const;
    Q_INVOKABLE [[nodiscard]] QString items(qint64 count) const;
    Q_INVOKABLE [[nodiscard]] QString confirmationTitle(const QString& verb, qint64 count, qint64 size) const;
    Q_INVOKABLE [[nodiscard]] QString confirmationMessage() const;
};

} // namespace nubo
