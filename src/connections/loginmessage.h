#pragma once

#include <QString>

/// What to tell the user about a failed connect, login or logout.
struct LoginMessage {
    bool failed = false; ///< false: nothing happened, nothing is to be done
    QString box; ///< German text of a message box, empty for none
};

/// Finds the message by the error's description; 530 and unknown hosts are known in any setting.
/// @param number  error number, below 1 = no error
/// @param errorMsg  detailed English messages are on: no box for other failures
[[nodiscard]] LoginMessage loginMessageFor(const QString &description, int number, bool errorMsg);

/// Caption of the main window. @param server  empty without a connection
[[nodiscard]] QString windowCaption(const QString &server);

/// Milliseconds of a time-out in seconds; -1 when they do not fit into 32 bits.
[[nodiscard]] int timeoutMilliseconds(int seconds);
