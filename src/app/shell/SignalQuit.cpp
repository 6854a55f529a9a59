#include "app/shell/SignalQuit.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace nubo {

namespace {

// The pipe's two ends; the handler may touch nothing but a write to the second.
int g_pipe[2] = {-1, -1};

extern "C" void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], &byte, 1);
}

} // namespace

void SignalQuit::catchSignals()
{
    if (g_pipe[0] >= 0 || ::pipe(g_pipe) != 0)
        return; // caught already, or no pipe: the signals keep their defaults
    for (const int end : g_pipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

SignalQuit::SignalQuit(QObject* parent) : QObject(parent)
{
    catchSignals();
    if (g_pipe[0] < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [] {
        char bytes[16];
        while (::read(g_pipe[0], bytes, sizeof bytes) > 0) {
        }
        QCoreApplication::quit();
    });
}

SignalQuit::~SignalQuit()
{
    if (!m_notifier)
        return;
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
    m_notifier.reset();
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

} // namespace nubo
