#include "hotsync/forms/Tray.h"

#include "core/Catalogue.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"

Tray::Tray(const std::function<void()>& open, const std::function<void()>& exit) {
    const auto entry = [this](MessageId caption, const std::function<void()>& deed) {
        connect(menu_.addAction(QString::fromStdString(CatalogueCaption(caption))), &QAction::triggered, this,
                deed);
    };
    entry(msg::HSTrayOpen, open);
    entry(msg::cmdHSExit, exit);
    connect(&icon_, &QSystemTrayIcon::activated, this, [open](QSystemTrayIcon::ActivationReason reason) {
        if (reason != QSystemTrayIcon::Context) open();
    });
    icon_.setIcon(Picture("Hotsync16-256"));
    icon_.setToolTip(ToQt(Text(msg::frmHSManager)));
    icon_.setContextMenu(&menu_);
    icon_.show();
}

bool Tray::IsThere() const {
    return QSystemTrayIcon::isSystemTrayAvailable() && icon_.isVisible();
}
