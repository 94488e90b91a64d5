#include "host/mainform/filter_bar.h"

#include "host/mainform/filter_text.h"
#include "host/mainform/main_form.h"
#include "host/ui/message_text.h"

#include <QEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

constexpr int Success = 200;
constexpr int AllJobs = 2; // the entry of the list of statuses
constexpr int Unknown = -1;

} // namespace

void FilterBar::BeginSession()
{
    QWidget* form = FindMainForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    m_total = Unknown;
    m_bar = form->findChild<QWidget*>(QStringLiteral("wgtFilter"));
    m_label = form->findChild<QLabel*>(QStringLiteral("lblFilter"));
    m_found = form->findChild<QLabel*>(QStringLiteral("lblFound"));
    if (m_bar)
        m_bar->installEventFilter(this);
    if (m_label)
        m_label->installEventFilter(this);
    if (const auto* button = form->findChild<QPushButton*>(QStringLiteral("btnShowAll")))
        connect(button, &QPushButton::clicked, this, &FilterBar::ShowAll);
}

void FilterBar::HandleJobList(int code, const QVariantMap& answer)
{
    // A list with an identifier is for a dialog.
    if (code != Success || answer.value(QStringLiteral("identifier")).toBool())
        return;
    const QString conditions = answer.value(QStringLiteral("conditions")).toString();
    if (conditions != m_conditions) {
        const auto* group = m_form ? m_form->findChild<QLabel*>(QStringLiteral("lblProjectV")) : nullptr;
        m_group = group ? group->text() : QString();
    }
    const int total = answer.value(QStringLiteral("data")).toMap().value(QStringLiteral("total")).toInt();
    // Most lists are refreshes, which change nothing here.
    const bool isOther = conditions != m_conditions || total != m_total;
    m_conditions = conditions;
    m_total = total;
    if (isOther)
        Update();
    emit JobsListed(!m_conditions.isEmpty());
}

void FilterBar::Update()
{
    if (!m_bar || !m_label || !m_found)
        return;
    m_text = FilterText(FindSearchForm(), m_conditions, m_group);
    m_label->setToolTip(PlainToolTip(m_text));
    m_found->setText(tr("Found: %1").arg(m_total));
    m_bar->setVisible(!m_conditions.isEmpty());
    Elide();
}

void FilterBar::Elide()
{
    m_label->setText(m_label->fontMetrics().elidedText(m_text, Qt::ElideRight, m_label->width()));
}

void FilterBar::ShowAll()
{
    QWidget* window = FindMainWindow();
    if (!window)
        return;
    MarkAll();
    QVariantMap none;
    QMetaObject::invokeMethod(window, "SearchJob", Q_ARG(QVariantMap&, none));
}

/// Marks the panel's entry for all jobs instead of the one that was chosen.
void FilterBar::MarkAll()
{
    const auto* panel = m_form ? m_form->findChild<QWidget*>(QStringLiteral("wgtGroup")) : nullptr;
    const auto lists = panel ? panel->findChildren<QListWidget*>() : QList<QListWidget*>();
    for (QListWidget* list : lists) {
        const QListWidgetItem* all = list->item(AllJobs);
        list->clearSelection();
        if (all && all->data(Qt::UserRole).toString() == QLatin1String("All"))
            list->setCurrentRow(AllJobs);
    }
}

bool FilterBar::eventFilter(QObject* watched, QEvent* event)
{
    // The type comes first, because the last events of a widget find it half destroyed.
    if (event->type() == QEvent::Resize && watched == m_label)
        Elide();
    else if (event->type() == QEvent::LanguageChange && watched == m_bar)
        Update();
    return false;
}
