#include "host/mainform/shortcuts.h"

#include "host/mainform/main_form.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QProgressBar>
#include <QShortcut>
#include <QTableWidget>
#include <QToolTip>

namespace {

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
    AddToButton("btnSearch", QKeySequence::Find);
    AddToButton("btnSubmit", QKeySequence::Open);
    AddToButton("btnGroups", Qt::CTRL + Qt::Key_G);
    connect(new QShortcut(QKeySequence::Refresh, form), &QShortcut::activated, this,
        &Shortcuts::RefreshRequested);
    // In a field of the form these two keys edit text.
    for (const char* name : {"twtMyRender", "twtLocalTask", "twtDownload"}) {
        if (QTableWidget* table = FindTable(QLatin1String(name)))
            AddToTable(table);
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

void Shortcuts::AddToTable(QTableWidget* table)
{
    const auto Add = [table](const QKeySequence& key, const auto& action) {
        connect(new QShortcut(key, table, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
            &QShortcut::activated, table, action);
    };
    if (auto* button = m_form->findChild<QAbstractButton*>(QStringLiteral("btnDelete"))) {
        m_keys.insert(button, QKeySequence::Delete);
        button->installEventFilter(this);
        Add(QKeySequence::Delete, [button = QPointer<QAbstractButton>(button)] {
            if (button && button->isVisible())
                button->click();
        });
    }
    Add(QKeySequence::Copy, [table] {
        const QString text = TextOfRow(table, table->currentRow());
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    });
}

bool Shortcuts::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !m_keys.contains(watched))
        return false;
    auto* button = static_cast<QWidget*>(watched);
    const QString key = m_keys.value(watched).toString(QKeySequence::NativeText);
    QToolTip::showText(static_cast<const QHelpEvent*>(event)->globalPos(),
        QStringLiteral("%1 (%2)").arg(button->toolTip(), key), button);
    return true;
}
