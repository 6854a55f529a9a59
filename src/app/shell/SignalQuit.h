#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace nubo {

/// Ends the program the ordinary way when the system asks it to stop (SIGTERM at logout or from
/// `kill`, SIGINT from a terminal, SIGHUP when the terminal goes): the event loop returns, the
/// window and the state go and work in flight is asked to stop, as after "Salir". The signal
/// handler only writes a byte to a pipe; the quit happens on this thread when the byte is read,
/// so a stop asked for during start-up waits there for the event loop. One per program.
class SignalQuit final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SignalQuit)

public:
    /// Catches the signals from the first moment, before the application object exists.
    static void catchSignals();
    /// Quits the application's event loop once a caught signal comes (or came).
    explicit SignalQuit(QObject* parent = nullptr);
    ~SignalQuit() override;

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace nubo
