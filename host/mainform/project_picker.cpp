#include "host/mainform/project_picker.h"

#include "host/mainform/main_form.h"

#include <QEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>

void ProjectPicker::BeginSession()
{
    QWidget* form = FindGroupForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    m_part = form->findChild<QWidget*>(QStringLiteral("wgtProjects"));
    m_list = form->findChild<QListWidget*>(QStringLiteral("lstProjects"));
    m_name = form->findChild<QLineEdit*>(QStringLiteral("lneInput"));
    m_ok = form->findChild<QPushButton*>(QStringLiteral("btnOk"));
    if (!m_part || !m_list || !m_name || !m_ok)
        return;
    form->installEventFilter(this);
    // The selection is followed, because focus alone makes a row current.
    connect(m_list, &QListWidget::itemSelectionChanged, this, &ProjectPicker::TakeSelected);
    connect(m_list, &QListWidget::itemActivated, m_ok, &QPushButton::click);
    connect(m_name, &QLineEdit::textEdited, this, &ProjectPicker::MarkTyped);
    // The window adds the group in its own slot.
    connect(
        m_ok, &QPushButton::clicked, this, [this] { emit Named(m_name->text().trimmed()); },
        Qt::QueuedConnection);
}

/// Lists the projects that are not groups yet.
void ProjectPicker::Offer()
{
    const QSignalBlocker blocker(m_list);
    const QListWidget* groups = FindGroupList();
    m_list->clear();
    for (const QString& name : qAsConst(m_projects)) {
        if (!groups || groups->findItems(name, Qt::MatchFixedString | Qt::MatchCaseSensitive).isEmpty())
            m_list->addItem(name);
    }
    m_part->setVisible(m_list->count() > 0);
    m_name->selectAll();
    m_name->setFocus();
}

void ProjectPicker::TakeSelected()
{
    const QListWidgetItem* project = m_list->selectedItems().value(0);
    if (project)
        m_name->setText(project->text());
}

/// Marks the project of the typed name, or none.
void ProjectPicker::MarkTyped()
{
    const QSignalBlocker blocker(m_list);
    const auto found
        = m_list->findItems(m_name->text().trimmed(), Qt::MatchFixedString | Qt::MatchCaseSensitive);
    m_list->setCurrentItem(found.value(0));
    if (found.isEmpty())
        m_list->clearSelection();
}

bool ProjectPicker::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_form && event->type() == QEvent::Show)
        Offer();
    return false;
}
