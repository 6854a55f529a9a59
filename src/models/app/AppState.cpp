#include "models/app/AppState.h"

namespace nubo {

AppState::AppState(QObject* parent) : QObject(parent) {}

void AppState::setPane(Pane pane)
{
    if (pane == m_section)
        return;
    m_section = pane;
    emit sectionChanged();
}

QString AppState::section() const
{
    return Panes::id(m_section);
}

void AppState::setSection(const QString& id)
{
    if (const auto pane = Panes::fromId(id))
        setPane(*pane);
}

QString AppState::sectionTitle() const
{
    return Panes::title(m_section);
}

QString AppState::sectionSymbol() const
{
    return Panes::symbol(m_section);
}

} // namespace nubo
