#pragma once

#include <QString>

/// The name of the local socket on which the HotSync Manager of a folder listens: docs/hotsync-socket.md.
QString ManagerSocketName(const QString& folder);
