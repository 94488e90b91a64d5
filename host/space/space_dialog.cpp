#include "host/space/space_dialog.h"

#include "host/farmclient/farm_numbers.h"
#include "vtr_uiloaderinterface.h"

#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QTableView>

#include <algorithm>

namespace {

constexpr int RefreshInterval = 5000; // ms
constexpr int RowHeight = 34;         // pixels
constexpr int NumberWidth = 110;      // pixels
constexpr int StatusWidth = 120;      // pixels
constexpr int SizeWidth = 100;        // pixels
constexpr int NearlyFull = 90;        // percent
constexpr int JobsAtFirst = 100;

int PercentOf(const FarmSpace& space)
{
    if (space.quota <= 0)
        return space.used > 0 ? 100 : 0;
    return int(std::min(100.0, 100.0 * double(space.used) / double(space.quota)));
}

} // namespace

SpaceDialog::SpaceDialog(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.space"))
    , m_used(m_form.Find<QLabel>("lblUsed"))
    , m_details(m_form.Find<QLabel>("lblDetails"))
    , m_trouble(m_form.Find<QLabel>("lblTrouble"))
    , m_checked(m_form.Find<QLabel>("lblChecked"))
    , m_bar(m_form.Find<QProgressBar>("barUsed"))
    , m_table(m_form.Find<QTableView>("tbvJobs"))
    , m_more(m_form.Find<QPushButton>("btnMore"))
    , m_free(m_form.Find<QPushButton>("btnFree"))
    , m_delete(m_form.Find<QPushButton>("btnDelete"))
    , m_wantedJobs(JobsAtFirst)
{
    m_refresh.setInterval(RefreshInterval);
    connect(&m_refresh, &QTimer::timeout, this, &SpaceDialog::RefreshRequested);
    connect(&m_model, &SpaceModel::CheckedChanged, this, &SpaceDialog::DisplayChecked);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, [this] {
        m_model.Retranslate();
        Display();
    });
    SetUpTable();
    ConnectButtons();
    Display();
    Form()->installEventFilter(this);
}

SpaceDialog::~SpaceDialog()
{
    // The form is destroyed last and must be hidden by then.
    Form()->removeEventFilter(this);
}

void SpaceDialog::SetUpTable()
{
    m_table->setModel(&m_model);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(RowHeight);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setSectionResizeMode(SpaceModel::NameColumn, QHeaderView::Stretch);
    header->resizeSection(SpaceModel::NumberColumn, NumberWidth);
    header->resizeSection(SpaceModel::StatusColumn, StatusWidth);
    header->resizeSection(SpaceModel::FilesColumn, SizeWidth);
    header->resizeSection(SpaceModel::PicturesColumn, SizeWidth);
    // The first column has a check box, which acts by itself.
    connect(m_table, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() != SpaceModel::NumberColumn)
            ToggleRow(index.row());
    });
}

void SpaceDialog::ConnectButtons()
{
    for (const char* name : {"btnClose", "btnOk"})
        connect(m_form.Find<QPushButton>(name), &QPushButton::clicked, Form(), &QWidget::close);
    connect(m_more, &QPushButton::clicked, this, &SpaceDialog::RequestMore);
    connect(m_delete, &QPushButton::clicked, this, &SpaceDialog::RequestDeletion);
    connect(m_free, &QPushButton::clicked, this, [this] {
        if (m_space)
            emit FreeRequested(m_space->unneeded);
    });
    const auto addKey = [this](const QKeySequence& key, QWidget* widget, const auto& slot) {
        const auto* shortcut = new QShortcut(key, widget, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    addKey(QKeySequence::Refresh, Form(), &SpaceDialog::RefreshRequested);
    addKey(QKeySequence::Delete, m_table, &SpaceDialog::RequestDeletion);
    addKey(Qt::Key_Space, m_table, [this] { ToggleRow(m_table->currentIndex().row()); });
}

void SpaceDialog::Open()
{
    m_form.Open();
    if (m_refresh.isActive())
        return;
    m_table->setFocus();
    m_refresh.start();
    emit RefreshRequested();
}

void SpaceDialog::Close()
{
    Form()->hide();
    m_space.reset();
    m_failure.clear();
    m_isBusy = false;
    m_wantedJobs = JobsAtFirst;
    m_model.SetJobs({});
    Display();
}

void SpaceDialog::SetSpace(const FarmSpace& space)
{
    m_space = space;
    m_failure.clear();
    const int scrolled = m_table->verticalScrollBar()->value();
    const QString current = m_model.IdOf(m_table->currentIndex().row());
    m_model.SetJobs(space.jobs);
    const int row = std::max(m_model.RowOf(current), 0);
    if (m_table->currentIndex().row() != row && row < m_model.rowCount())
        m_table->setCurrentIndex(m_model.index(row, SpaceModel::NameColumn));
    // The current row may be far from the rows that the user looks at.
    m_table->verticalScrollBar()->setValue(scrolled);
    Display();
}

void SpaceDialog::SetFailure(const QString& reason)
{
    m_failure = reason;
    Display();
}

void SpaceDialog::SetBusy(bool isBusy)
{
    m_isBusy = isBusy;
    Display();
}

void SpaceDialog::RequestDeletion()
{
    const std::vector<FarmSpace::Job> jobs = m_model.Checked();
    if (!jobs.empty() && !m_isBusy)
        emit DeleteRequested(jobs);
}

void SpaceDialog::RequestMore()
{
    m_wantedJobs = std::min(2 * m_wantedJobs, FarmNumbers::MostListedJobs);
    emit MoreRequested();
}

void SpaceDialog::ToggleRow(int row)
{
    const QModelIndex index = m_model.index(row, SpaceModel::NumberColumn);
    if (!index.isValid())
        return;
    const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    m_model.setData(index, isChecked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

void SpaceDialog::Display()
{
    const int percent = m_space ? PercentOf(*m_space) : 0;
    m_used->setText(m_space ? tr("%1 of %2 used").arg(SpaceText(m_space->used), SpaceText(m_space->quota))
                            : tr("Asking the farm…"));
    m_details->setText(Details());
    m_bar->setValue(percent);
    m_bar->setAccessibleDescription(m_used->text());
    if (m_bar->property("full").toBool() != (percent >= NearlyFull)) {
        m_bar->setProperty("full", percent >= NearlyFull);
        // A style sheet does not follow a property by itself.
        m_bar->style()->unpolish(m_bar);
        m_bar->style()->polish(m_bar);
    }
    m_trouble->setText(m_failure);
    m_trouble->setVisible(!m_failure.isEmpty());
    DisplayChecked();
}

void SpaceDialog::DisplayChecked()
{
    const std::vector<FarmSpace::Job> jobs = m_model.Checked();
    qint64 files = 0;
    qint64 pictures = 0;
    for (const FarmSpace::Job& job : jobs) {
        files += job.files;
        pictures += job.pictures;
    }
    QString text = tr("Check the jobs that you no longer need.");
    if (m_space && m_space->jobs.empty())
        text = tr("No job has files on the farm.");
    else if (!jobs.empty())
        text = tr("Checked: %1 (files %2, pictures %3)")
                   .arg(jobs.size())
                   .arg(SpaceText(files), SpaceText(pictures));
    m_checked->setText(text);
    const QWidget* focused = Form()->focusWidget();
    const bool hasMore = m_space && m_space->hasMoreJobs;
    m_more->setVisible(hasMore && m_wantedJobs < FarmNumbers::MostListedJobs);
    m_delete->setEnabled(!jobs.empty() && !m_isBusy);
    m_free->setEnabled(m_space && m_space->unneeded > 0 && !m_isBusy);
    // A button that is disabled or hidden would leave the focus to the next one, which deletes jobs or closes the dialog.
    if (Form()->focusWidget() != focused)
        m_table->setFocus();
}

QString SpaceDialog::Details() const
{
    QStringList sentences;
    if (m_space && m_space->uploads > 0)
        sentences.append(tr("Unfinished uploads take %1 of it.").arg(SpaceText(m_space->uploads)));
    if (m_space && m_space->unneeded > 0)
        sentences.append(tr("No job needs %1 of it.").arg(SpaceText(m_space->unneeded)));
    if (m_space && m_space->pictures > 0)
        sentences.append(
            tr("Finished pictures take another %1, which does not count.").arg(SpaceText(m_space->pictures)));
    if (m_space && m_space->hasMoreJobs && m_wantedJobs == FarmNumbers::MostListedJobs)
        sentences.append(tr("Only the %1 largest jobs are listed.").arg(m_wantedJobs));
    return sentences.join(QLatin1Char(' '));
}

bool SpaceDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Hide && watched == Form())
        m_refresh.stop();
    return false;
}
