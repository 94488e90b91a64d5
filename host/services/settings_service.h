#pragma once

#include "host/services/service_base.h"
#include "vtr_settingsinterface.h"

#include <QSettings>
#include <QTimer>

/// The settings store: one INI file, written atomically.
class SettingsService : public ServiceBase<VTSettingsInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTSettingsInterface)

public:
    /// @param file path of the INI file; it and its folder are created at the first write.
    explicit SettingsService(const QString& file, QObject* parent = nullptr);

    QVariant Value(const QString& key, const QVariant& fallback) override;

    /// Announces a changed value by SettingsUpdated, once for all values set before control returns to the event loop.
    void SetValue(const QString& key, const QVariant& value) override;

private:
    void Save();

    QSettings m_store;
    QTimer m_saving;
};
