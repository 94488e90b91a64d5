#include "host/mainform/form_follower.h"

#include "common/vtr_columns.h"
#include "host/mainform/column_widths.h"
#include "host/mainform/main_form.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QPixmap>
#include <QStyle>
#include <QTableWidget>
#include <QTabWidget>

namespace {

constexpr int SettlingTime = 120; // ms

struct Columns
{
    const char* table;
    std::vector<int> usual; ///< shares of the table's width: names, times and paths need most room
    std::vector<int> left;  ///< columns with left-aligned contents, such as names beside check boxes
};

/// The last column of the downloads is always empty; that of the local tasks shows the progress of an upload.
const Columns tables[] = {
    {"twtMyRender", {9, 14, 15, 10, 10, 9}, {}},
    {"twtLocalTask", {15, 13, 12, 10, 12, 10}, {VTIdColumn, VTTaskColumn::Warn}},
    {"twtDownload", {13, 14, 16, 11, 10, 7}, {VTIdColumn}},
};

/// Aligns the headers with the contents of their columns.
void AlignHeaders(const QTableWidget* table, const std::vector<int>& left)
{
    for (const int column : left) {
        if (QTableWidgetItem* header = table->horizontalHeaderItem(column))
            header->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    // Check boxes shift the centred texts of their column; an empty icon shifts the header by the same amount.
    QTableWidgetItem* header = table->horizontalHeaderItem(VTIdColumn);
    if (header && left.empty()) {
        QPixmap space(table->style()->pixelMetric(QStyle::PM_SmallIconSize), 1);
        space.fill(Qt::transparent);
        header->setIcon(QIcon(space));
    }
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
    for (const Columns& columns : tables) {
        QTableWidget* table = FindTable(QLatin1String(columns.table));
        if (!table)
            continue;
        AlignHeaders(table, columns.left);
        m_columns.push_back(std::make_unique<ColumnWidths>(table, columns.usual, m_settings));
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
