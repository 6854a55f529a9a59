#include "models/text/Texts.h"

#include "core/format/Bytes.h"
#include "models/text/Counts.h"
#include "models/text/ResultTexts.h"

namespace nubo {

Texts::Texts(QObject* parent) : QObject(parent) {}

QString Texts::deleteVerb() const
{
    return QStringLiteral("Eliminar");
}

QString Texts::cancelLabel() const
{
    return QStringLiteral("Cancelar");
}

QString Texts::cancellingLine() const
{
    return QStringLiteral("Cancelando…");
}

QString Texts::promptNote() const
{
    return QStringLiteral("Si se pide la contraseña de administrador, la petición sigue abierta hasta que la "
                          "respondas o la canceles.");
}

QString Texts::bytes(qint64 count) const
{
    return Bytes::string(count);
}

QString Texts::items(qint64 count) const
{
    return Counts::items(count);
}

QString Texts::confirmationTitle(const QString& verb, qint64 count, qint64 size) const
{
    return ResultTexts::confirmationTitle(verb.isEmpty() ? deleteVerb() : verb, count, size);
}

QString Texts::confirmationMessage() const
{
    return ResultTexts::confirmationMessage();
}

} // namespace nubo
