#include "driver/Driver.h"

#include <QGenericPlugin>

/// What Qt loads for QT_QPA_GENERIC_PLUGINS=trambledriver:<socket path>.
class DriverPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "trambledriver.json")

public:
    QObject* create(const QString& key, const QString& socketPath) override {
        if (key.compare(QLatin1String("trambledriver"), Qt::CaseInsensitive) != 0) return nullptr;
        // A program that this one starts must not come up on the same socket.
        qunsetenv("QT_QPA_GENERIC_PLUGINS");
        return new Driver(socketPath);
    }
};

#include "DriverPlugin.moc"
