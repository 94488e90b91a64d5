#include "host/mainform/column_widths.h"

#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <algorithm>
#include <iterator>
#include <utility>

ColumnWidths::ColumnWidths(
    QTableWidget* table, std::vector<int> usual, VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_tableName(table->objectName())
    , m_usual(std::move(usual))
    , m_fit(table, m_usual, nullptr)
{
    connect(&m_fit, &ColumnFit::Dragged, this, &ColumnWidths::Keep);
}

void ColumnWidths::BeginSession(const QString& userName)
{
    m_userName = userName;
    const QVariantList stored = m_settings->Value(Key(), {}).toList();
    std::vector<int> shares;
    std::transform(stored.cbegin(), stored.cend(), std::back_inserter(shares),
        [](const QVariant& share) { return share.toInt(); });
    if (shares.size() != m_usual.size())
        shares = m_usual;
    m_fit.SetShares(std::move(shares));
}

QString ColumnWidths::Key() const
{
    return SettingKeys::OfAccount(m_userName, "columns.") + m_tableName;
}

void ColumnWidths::Keep(const std::vector<int>& shares)
{
    if (m_userName.isEmpty())
        return;
    QVariantList stored;
    for (const int share : shares)
        stored.append(share);
    m_settings->SetValue(Key(), stored);
}
