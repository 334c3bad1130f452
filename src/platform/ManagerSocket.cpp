#include "platform/ManagerSocket.h"

#include "platform/LocalName.h"

QString ManagerSocketName(const QString& folder) {
    return LocalName(QStringLiteral("ZUKHotSync-"), folder);
}
