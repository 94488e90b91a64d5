#include "host/services/settings_service.h"

#include <QDebug>

SettingsService::SettingsService(const QString& file, QObject* parent)
    : ServiceBase<VTSettingsInterface>(parent)
    , m_store(file, QSettings::IniFormat)
{
    m_saving.setSingleShot(true);
    connect(&m_saving, &QTimer::timeout, this, &SettingsService::Save);
    if (m_store.status() != QSettings::NoError)
        qWarning().noquote() << "cannot read the settings file" << m_store.fileName();
}

QVariant SettingsService::Value(const QString& key, const QVariant& fallback)
{
    return m_store.value(key, fallback);
}

void SettingsService::SetValue(const QString& key, const QVariant& value)
{
    if (m_store.contains(key) && m_store.value(key) == value)
        return;
    m_store.setValue(key, value);
    m_saving.start(0);
}

void SettingsService::Save()
{
    m_store.sync();
    if (m_store.status() != QSettings::NoError)
        qWarning().noquote() << "cannot save the settings to" << m_store.fileName();
    emit SettingsUpdated();
}
