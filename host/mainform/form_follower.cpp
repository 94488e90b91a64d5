#include "host/mainform/form_follower.h"

#include "host/mainform/column_widths.h"
#include "host/mainform/main_form.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QTableWidget>
#include <QTabWidget>

namespace {

constexpr int SettlingTime = 120; // ms

/// The tables, and how they share their widths out to the columns: times and paths need most room. The last column of the
/// downloads is always empty.
const std::pair<const char*, std::vector<int>> usualColumns[] = {
    {"twtMyRender", {9, 12, 15, 12, 10, 9}},
    {"twtLocalTask", {12, 14, 9, 11, 14, 12}},
    {"twtDownload", {11, 15, 17, 11, 9, 8}},
};

/// Names of files stand beside their check boxes, other texts in the middle of their cells.
void AlignHeader(const QTableWidget* table)
{
    QTableWidgetItem* names = table->horizontalHeaderItem(0);
    if (names && table != FindJobTable())
        names->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QTabWidget* Tabs(const QWidget* form)
{
    return form->findChild<QTabWidget*>(QStringLiteral("tbwContainer"));
}

} // namespace

FormFollower::FormFollower(VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(SettlingTime);
    connect(&m_settling, &QTimer::timeout, this, [] {
        if (QWidget* window = FindMainWindow())
            QMetaObject::invokeMethod(window, "windowSizeChanged");
    });
}

FormFollower::~FormFollower() = default;

void FormFollower::BeginSession(const QString& userName)
{
    QWidget* form = FindMainForm();
    if (!form)
        return;
    const int tab = m_isFirstSession ? m_settings->Value(SettingKeys::Tab, 0).toInt() : 0;
    m_isFirstSession = false;
    if (form != m_form)
        Attach(form);
    for (const auto& columns : m_columns)
        columns->BeginSession(userName);
    if (QTabWidget* tabs = Tabs(form))
        tabs->setCurrentIndex(tab);
    m_settling.start();
}

void FormFollower::Attach(QWidget* form)
{
    m_form = form;
    form->installEventFilter(this);
    if (const QTabWidget* tabs = Tabs(form))
        connect(tabs, &QTabWidget::currentChanged, this, &FormFollower::HandleTabChange);
    m_columns.clear();
    for (const auto& [name, shares] : usualColumns) {
        QTableWidget* table = FindTable(QLatin1String(name));
        if (!table)
            continue;
        AlignHeader(table);
        m_columns.push_back(std::make_unique<ColumnWidths>(table, shares, m_settings));
    }
}

void FormFollower::HandleTabChange(int tab)
{
    m_settings->SetValue(SettingKeys::Tab, tab);
    m_settling.start();
}

bool FormFollower::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_form && event->type() == QEvent::Resize)
        m_settling.start();
    return false;
}
