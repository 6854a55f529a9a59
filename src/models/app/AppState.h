#pragma once

#include "models/app/Pane.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The one root state of the application, shared by every screen: for now the selected pane.
/// QML sees the pane by its id ("home", "map", …) and its title.
class AppState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("AppState is created once at start-up and handed to the window")
    Q_DISABLE_COPY_MOVE(AppState)
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionTitle READ sectionTitle NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionSymbol READ sectionSymbol NOTIFY sectionChanged)

public:
    explicit AppState(QObject* parent = nullptr);

    [[nodiscard]] Pane pane() const { return m_section; }
    void setPane(Pane pane);

    [[nodiscard]] QString section() const;
    /// Unknown ids are ignored, so a view can never select a pane that does not exist.
    void setSection(const QString& id);
    [[nodiscard]] QString sectionTitle() const;
    [[nodiscard]] QString sectionSymbol() const;

signals:
    void sectionChanged();

private:
    Pane m_section = Pane::Home;
};

} // namespace nubo
