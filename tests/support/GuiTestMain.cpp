#include <QGuiApplication>

#include <gtest/gtest.h>

#if defined(__SANITIZE_THREAD__)
// Qt is not built with ThreadSanitizer. The view tests draw through Qt's graphics and QML
// libraries and QtCore beneath them, whose own threads (a pool scales and converts images for
// the painted scene) hand work over through locks the sanitizer cannot see, so memory Qt
// allocates on one thread and frees on another reads as a race. Only stacks through those libraries are silenced, and only
// in the view tests; the core and model suites run with no suppression at all.
extern "C" const char* __tsan_default_suppressions()
{
    return "race:libQt6Core.so\n"
           "race:libQt6Gui.so\n"
           "race:libQt6Quick.so\n"
           "race:libQt6Qml.so\n"
           "race:libQt6QuickControls2\n"
           "race:QRunnable::create\n"
           "race:QThreadPool\n";
}
#endif

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
