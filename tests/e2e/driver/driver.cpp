// Where the driver comes to life: preloaded into the program, it waits until the program makes its
// QApplication and then connects to the script that started it.
#include "actions.h"
#include "channel.h"

#include <QCoreApplication>
#include <cstdlib>

namespace {

void start()
{
    const QByteArray socket = qgetenv("TARVELO_DRIVER");
    if (socket.isEmpty()) {
        return;
    }
    // Programs that this one starts are no business of ours.
    qunsetenv("TARVELO_DRIVER");
    qunsetenv("LD_PRELOAD");
    new Channel(socket, carryOut, QCoreApplication::instance());
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(start)
