#include "host/mainform/shortcuts.h"

#include "host/mainform/main_form.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QProgressBar>
#include <QRegularExpression>
#include <QShortcut>
#include <QTableWidget>
#include <QToolTip>

namespace {

constexpr const char* Tables[] = {"twtMyRender", "twtLocalTask", "twtDownload"};

QString TextOfCell(const QTableWidget* table, int row, int column)
{
    const QWidget* widget = table->cellWidget(row, column);
    const auto* bar = qobject_cast<const QProgressBar*>(widget);
    if (!bar && widget)
        bar = widget->findChild<QProgressBar*>();
    if (bar)
        return bar->text();
    const QTableWidgetItem* item = table->item(row, column);
    return item ? item->text() : QString();
}

QTableWidget* ShownTable()
{
    for (const char* name : Tables) {
        QTableWidget* table = FindTable(QLatin1String(name));
        if (table && table->isVisible())
            return table;
    }
    return nullptr;
}

bool TurnsPages(const QKeyEvent& key)
{
    return key.modifiers() & Qt::ControlModifier && (key.key() == Qt::Key_Home || key.key() == Qt::Key_End);
}

} // namespace

QString TextOfRow(const QTableWidget* table, int row)
{
    if (row < 0 || row >= table->rowCount())
        return {};
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
        texts.append(TextOfCell(table, row, column));
    return texts.join(QLatin1Char('\t'));
}

void Shortcuts::BeginSession()
{
    QWidget* form = FindMainForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    m_keys.clear();
    m_controls.clear();
    AddToButton("btnSearch", QKeySequence::Find);
    AddToButton("btnSubmit", QKeySequence::Open);
    AddToButton("btnGroups", Qt::CTRL + Qt::Key_G);
    connect(new QShortcut(QKeySequence::Refresh, form), &QShortcut::activated, this,
        &Shortcuts::RefreshRequested);
    if (QWidget* button = form->findChild<QAbstractButton*>(QStringLiteral("btnDelete"))) {
        m_keys.insert(button, QKeySequence::Delete);
        button->installEventFilter(this);
    }
    // These keys have other meanings in other parts of the form.
    for (const char* name : Tables) {
        if (QTableWidget* table = FindTable(QLatin1String(name)))
            AddListKeys(table);
    }
    // The controls of a list take the focus from its table when they are clicked; the button of the current page also
    // takes it when a key turns the page.
    const auto controls = form->findChildren<QAbstractButton*>(
        QRegularExpression(QStringLiteral("^(chkAll|btn(Page.*|PrePage|NextPage|PreGroup|NextGroup))$")));
    for (QAbstractButton* control : controls) {
        AddListKeys(control);
        m_controls.insert(control);
        control->installEventFilter(this);
    }
}

void Shortcuts::AddToButton(const char* name, const QKeySequence& key)
{
    auto* button = m_form->findChild<QAbstractButton*>(QLatin1String(name));
    if (!button)
        return;
    m_keys.insert(button, key);
    button->installEventFilter(this);
    // A hidden or disabled button does not act.
    connect(new QShortcut(key, m_form), &QShortcut::activated, button, [button] {
        if (button->isVisible())
            button->click();
    });
}

/// @param widget has the focus when the keys are pressed.
void Shortcuts::AddListKeys(QWidget* widget)
{
    const auto Add = [this, widget](const QKeySequence& key, const auto& action) {
        connect(new QShortcut(key, widget, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
            &QShortcut::activated, this, action);
    };
    Add(QKeySequence::Delete, [this] {
        auto* button = m_form->findChild<QAbstractButton*>(QStringLiteral("btnDelete"));
        if (button && button->isVisible())
            button->click();
    });
    Add(QKeySequence::Copy, [] {
        const QTableWidget* table = ShownTable();
        const QString text = table ? TextOfRow(table, table->currentRow()) : QString();
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    });
}

bool Shortcuts::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && m_controls.contains(watched))
        return TurnsPages(*static_cast<QKeyEvent*>(event)) && ShownTable()
            && QCoreApplication::sendEvent(ShownTable(), event);
    if (event->type() != QEvent::ToolTip || !m_keys.contains(watched))
        return false;
    auto* button = static_cast<QWidget*>(watched);
    const QString key = m_keys.value(watched).toString(QKeySequence::NativeText);
    QToolTip::showText(static_cast<const QHelpEvent*>(event)->globalPos(),
        QStringLiteral("%1 (%2)").arg(button->toolTip(), key), button);
    return true;
}
