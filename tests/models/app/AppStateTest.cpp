#include "models/app/AppState.h"
#include "models/app/Pane.h"
#include "models/app/PaneListModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace nubo;

TEST(Panes, SidebarOrderIdsTitlesAndSymbols)
{
    PaneListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const char* expected[][3] = {
        {"home", "Resumen", "sparkles"},
        {"map", "Mapa", "circle.hexagongrid.fill"},
        {"clean", "Limpieza", "bubbles.and.sparkles.fill"},
        {"apps", "Apps", "square.stack.3d.up.fill"},
        {"activity", "Actividad", "gauge.with.dots.needle.67percent"},
        {"performance", "Rendimiento", "speedometer"},
    };
    ASSERT_EQ(model.rowCount(), 6);
    for (int row = 0; row < 6; ++row) {
        const QModelIndex index = model.index(row);
        EXPECT_EQ(index.data(int(PaneListModel::Role::Id)).toString(), QString::fromUtf8(expected[row][0]));
        EXPECT_EQ(index.data(int(PaneListModel::Role::Title)).toString(), QString::fromUtf8(expected[row][1]));
        EXPECT_EQ(index.data(int(PaneListModel::Role::Symbol)).toString(), QString::fromUtf8(expected[row][2]));
        EXPECT_EQ(Panes::fromId(QString::fromUtf8(expected[row][0])), Panes::all[size_t(row)]);
    }
    EXPECT_EQ(model.rowCount(model.index(0)), 0);
    EXPECT_EQ(Panes::fromId(QStringLiteral("Home")), std::nullopt);
}

TEST(AppState, SectionNotifiesOnlyOnARealChange)
{
    AppState state;
    QSignalSpy changed(&state, &AppState::sectionChanged);
    EXPECT_EQ(state.section(), QStringLiteral("home"));

    state.setSection(QStringLiteral("home"));
    state.setSection(QStringLiteral("nowhere"));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(state.pane(), Pane::Home);

    state.setSection(QStringLiteral("performance"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(state.sectionTitle(), QStringLiteral("Rendimiento"));
    EXPECT_EQ(state.sectionSymbol(), QStringLiteral("speedometer"));
}
