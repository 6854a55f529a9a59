#include <QGuiApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Tests render without a display, through the software scene graph, the same on every machine,
    // unless a suite asks for another backend in its environment.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
