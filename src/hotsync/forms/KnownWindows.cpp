#include "hotsync/forms/KnownWindows.h"

void BeKnownAs(const char* title, QWidget& window) {
    window.setWindowTitle(QString::fromLatin1(title));
}
