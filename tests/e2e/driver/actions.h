// What a script can have the driver do; see ../README.md for the requests.
#pragma once

#include <QJsonObject>

/// Carries out one request. Anything that may open a modal dialog is only put into the event queue,
/// so that the answer does not wait for the dialog's end.
QJsonObject carryOut(const QJsonObject &request);
