#pragma once

#include "host/services/service_base.h"
#include "vtr_settingsinterface.h"

#include <QSettings>
#include <QTimer>

/// Keeps the settings in one INI file, which is written atomically.
class SettingsService : public ServiceBase<VTSettingsInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTSettingsInterface)

public:
    /// @param file path of the INI file. The file and its folder are created with the first change.
    explicit SettingsService(const QString& file, QObject* parent = nullptr);

    QVariant Value(const QString& key, const QVariant& fallback) override;

    /// Emits SettingsUpdated later, once for all values changed before control returns to the event loop.
    void SetValue(const QString& key, const QVariant& value) override;

private:
    void Save();

    QSettings m_store;
    QTimer m_saving;
};
