#pragma once

#include "host/services/service_base.h"
#include "vtr_settingsinterface.h"

#include <QVariantMap>

/// Settings that are kept in memory only.
class MemorySettings : public ServiceBase<VTSettingsInterface>
{
public:
    QVariant Value(const QString& key, const QVariant& fallback) override
    {
        return values.value(key, fallback);
    }
    void SetValue(const QString& key, const QVariant& value) override { values.insert(key, value); }

    QVariantMap values;
};
