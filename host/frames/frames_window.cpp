#include "host/frames/frames_window.h"

#include "common/vtr_codetables.h"
#include "host/frames/chart_view.h"
#include "host/frames/frame_charts.h"
#include "host/frames/job_pictures.h"
#include "vtr_uiloaderinterface.h"

#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QSizeGrip>
#include <QSpinBox>
#include <QTableView>

namespace {

constexpr int RefreshInterval = 3000; // ms
constexpr int ChoosingTime = 150;     // ms
constexpr int ScrollingTime = 60;     // ms
constexpr int SpendingDays = 30;
constexpr int RowHeight = 44;            // pixels
constexpr int NarrowTable = 440;         // pixels
constexpr int NumberWidths[] {150, 104}; // pixels; in a narrow table only a thumbnail and few digits
constexpr QSize ThumbnailSize(64, 36);   // pixels

void MakeSingleShot(QTimer& timer, int interval)
{
    timer.setSingleShot(true);
    timer.setInterval(interval);
}

} // namespace

FramesWindow::FramesWindow(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.frames"))
    , m_summary(m_form.Find<QLabel>("lblSummary"))
    , m_trouble(m_form.Find<QLabel>("lblTrouble"))
    , m_frame(m_form.Find<QLabel>("lblFrame"))
    , m_table(m_form.Find<QTableView>("tbvFrames"))
    , m_log(m_form.Find<QPlainTextEdit>("pteLog"))
    , m_openPicture(m_form.Find<QPushButton>("btnOpenPicture"))
    , m_times(m_form.Find<QPushButton>("btnTimes"))
    , m_chart(new ChartView)
    , m_priority(m_form.Find<QSpinBox>("spnPriority"))
{
    m_chart->setObjectName(QStringLiteral("chtFrames"));
    m_form.Find<QWidget>("wgtChart")->layout()->addWidget(m_chart);
    auto* footer = m_form.Find<QWidget>("wgtFooter");
    footer->layout()->addWidget(new QSizeGrip(footer));
    footer->layout()->setAlignment(footer->findChild<QSizeGrip*>(), Qt::AlignRight | Qt::AlignBottom);
    m_refresh.setInterval(RefreshInterval);
    MakeSingleShot(m_chosen, ChoosingTime);
    MakeSingleShot(m_scrolled, ScrollingTime);
    connect(&m_refresh, &QTimer::timeout, this, &FramesWindow::Refresh);
    connect(&m_scrolled, &QTimer::timeout, this, &FramesWindow::WantThumbnails);
    connect(&m_chosen, &QTimer::timeout, this,
        [this] { m_requests.RequestLog(m_job, m_model.At(CurrentRow()).number); });
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, [this] {
        m_model.Retranslate();
        Display();
    });
    SetUpTable();
    ConnectButtons();
    ConnectAnswers();
    Form()->installEventFilter(this);
}

FramesWindow::~FramesWindow()
{
    // The form is destroyed last and must be hidden by then.
    m_table->viewport()->removeEventFilter(this);
    Form()->removeEventFilter(this);
}

void FramesWindow::SetUpTable()
{
    m_table->setModel(&m_model);
    m_table->setIconSize(ThumbnailSize);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(RowHeight);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(FrameModel::NumberColumn, QHeaderView::Fixed);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->setWordWrap(false);
    m_table->viewport()->installEventFilter(this);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &FramesWindow::HandleCurrentFrame);
    connect(m_table, &QTableView::doubleClicked, this, &FramesWindow::OpenPicture);
    connect(
        m_table->verticalScrollBar(), &QScrollBar::valueChanged, &m_scrolled, qOverload<>(&QTimer::start));
}

void FramesWindow::ConnectButtons()
{
    connect(m_form.Find<QPushButton>("btnClose"), &QPushButton::clicked, Form(), &QWidget::close);
    connect(m_openPicture, &QPushButton::clicked, this, &FramesWindow::OpenPicture);
    connect(m_times, &QPushButton::toggled, this, [this] {
        DisplayChart();
        Refresh();
    });
    connect(m_chart, &ChartView::Clicked, this, [this](int index) {
        if (m_times->isChecked())
            Select(index);
    });
    const auto addKey = [](int key, QWidget* widget, const auto& receiver, const auto& slot) {
        const auto* shortcut = new QShortcut(key, widget, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, receiver, slot);
    };
    addKey(Qt::Key_Escape, Form(), Form(), &QWidget::close);
    addKey(Qt::Key_F5, Form(), this, &FramesWindow::Refresh);
    addKey(Qt::Key_Return, m_table, this, &FramesWindow::OpenPicture);
    addKey(Qt::Key_Enter, m_table, this, &FramesWindow::OpenPicture);
}

void FramesWindow::ConnectAnswers()
{
    connect(&m_requests, &FrameRequests::FramesArrived, this, &FramesWindow::HandleFrames);
    connect(&m_requests, &FrameRequests::LogArrived, this, &FramesWindow::HandleLog);
    connect(&m_requests, &FrameRequests::Failed, this, &FramesWindow::HandleFailure);
    connect(&m_requests, &FrameRequests::SpendingArrived, this, [this](const SpendingAnswer& answer) {
        m_spending = answer;
        DisplayChart();
    });
    connect(&m_priority, &PriorityField::Chosen, this, [this](int priority) {
        m_refusal.clear();
        m_requests.SetPriority(m_job, priority);
    });
    connect(&m_requests, &FrameRequests::PriorityAnswered, this, &FramesWindow::HandlePriority);
    connect(&m_thumbnails, &Thumbnails::Made, this, [this](int number, const QImage& image) {
        QPixmap thumbnail = QPixmap::fromImage(image);
        thumbnail.setDevicePixelRatio(m_table->devicePixelRatioF());
        m_model.SetThumbnail(number, thumbnail);
    });
}

void FramesWindow::SetAccess(const FarmAccess& access)
{
    const bool isOther = access.owner != m_access.owner;
    m_access = access;
    m_requests.SetAccess(access);
    m_priority.Clear();
    if (m_pictures)
        m_pictures->SetAccess(access);
    if (isOther)
        Form()->close();
}

void FramesWindow::Open(const QString& job, const QString& name, const QString& folder)
{
    m_requests.Cancel();
    m_priority.Flush();
    m_priority.Clear();
    m_chosen.stop();
    m_hasLog = false;
    m_model.Clear();
    m_job = job;
    m_name = name;
    m_answer = {};
    m_shown = {};
    m_failure.clear();
    m_refusal.clear();
    m_log->clear();
    m_pictures = std::make_shared<JobPictures>(m_access, job, folder);
    m_thumbnails.SetPictures(m_pictures);
    Display();
    Refresh();
    Form()->show();
    Form()->raise();
    Form()->activateWindow();
    m_table->setFocus();
    m_refresh.start();
}

void FramesWindow::Refresh()
{
    if (!m_access.IsOpen() || Form()->isMinimized())
        return;
    m_requests.RequestFrames(m_job, m_model.List().Since());
    if (!m_times->isChecked())
        m_requests.RequestSpending(SpendingDays);
}

void FramesWindow::HandleFrames(const FramesAnswer& answer)
{
    const int number = m_model.At(CurrentRow()).number;
    m_failure.clear();
    m_answer = answer;
    m_answer.frames.clear();
    m_model.Apply(answer);
    m_pictures->SetFrames(m_model.List().Frames());
    if (answer.priority)
        m_priority.Show(*answer.priority);
    if (CurrentRow() < 0) {
        const auto& frames = m_model.List().Frames();
        const auto failed = std::find_if(
            frames.begin(), frames.end(), [](const Frame& frame) { return frame.state == Frame::Failed; });
        const int known = m_model.List().RowOf(number);
        Select(known >= 0 || failed == frames.end() ? std::max(known, 0) : int(failed - frames.begin()));
    }
    if (m_model.At(CurrentRow()).attempts != m_shown.attempts)
        m_chosen.start();
    m_scrolled.start();
    Display();
}

void FramesWindow::HandleLog(int number, const QString& log)
{
    const Frame frame = m_model.At(CurrentRow());
    if (frame.number != number)
        return;
    m_shown = frame;
    m_hasLog = true;
    DisplayFrame();
    // The same log is not set again, so that the scroll position stays. Qt shows the placeholder only after a text was
    // set.
    if (log.isEmpty() || m_log->toPlainText() != log)
        m_log->setPlainText(log);
}

void FramesWindow::HandlePriority(const QString& job, const QString& refusal)
{
    if (job != m_job)
        return;
    m_refusal = refusal;
    m_priority.HandleAnswer(refusal.isEmpty());
    DisplaySummary();
    if (Form()->isVisible())
        Refresh();
}

void FramesWindow::HandleFailure(const QString& reason)
{
    m_failure = reason;
    DisplaySummary();
}

void FramesWindow::HandleCurrentFrame()
{
    m_hasLog = false;
    m_log->clear();
    m_chosen.start();
    DisplayFrame();
    if (m_times->isChecked())
        m_chart->Mark(CurrentRow());
}

void FramesWindow::Select(int row)
{
    const QModelIndex index = m_model.index(row, 0);
    m_table->setCurrentIndex(index);
    m_table->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

int FramesWindow::CurrentRow() const
{
    return m_table->currentIndex().row();
}

void FramesWindow::OpenPicture()
{
    const Frame frame = m_model.At(CurrentRow());
    if (!frame.file.isEmpty())
        emit PreviewRequested(m_pictures, frame.file);
}

/// A narrow table shows only the columns that matter most.
void FramesWindow::FitColumns()
{
    const bool isNarrow = m_table->viewport()->width() < NarrowTable;
    m_table->setColumnWidth(FrameModel::NumberColumn, NumberWidths[int(isNarrow)]);
    m_table->setColumnHidden(FrameModel::AttemptsColumn, isNarrow);
}

/// Only the rows in view get their thumbnails, and only they are fetched.
void FramesWindow::WantThumbnails()
{
    const int first = m_table->rowAt(0);
    int last = m_table->rowAt(m_table->viewport()->height() - 1);
    if (last < 0)
        last = m_model.rowCount() - 1;
    std::vector<Frame> wanted;
    for (int row = std::max(first, 0); row <= last; ++row) {
        const Frame frame = m_model.At(row);
        if (!m_model.HasThumbnail(frame.number))
            wanted.push_back(frame);
    }
    m_thumbnails.Want(wanted, ThumbnailSize * m_table->devicePixelRatioF());
}

void FramesWindow::Display()
{
    const QString title = tr("Frames of %1").arg(m_name);
    m_form.Find<QLabel>("lblTitle")->setText(title);
    Form()->setWindowTitle(title);
    DisplaySummary();
    DisplayFrame();
    DisplayChart();
}

void FramesWindow::DisplaySummary()
{
    const FrameList& list = m_model.List();
    VTCodeTables codes;
    codes.Load();
    QStringList parts;
    if (!list.Frames().empty()) {
        parts = QStringList {codes.JobStatusText(m_answer.jobStatus),
            tr("%1 of %2 frames finished").arg(list.Count(Frame::Finished)).arg(list.Frames().size())};
        if (const int count = list.Count(Frame::Rendering))
            parts.append(tr("%1 being rendered").arg(count));
        if (const int count = list.Count(Frame::Failed))
            parts.append(tr("%1 failed").arg(count));
        if (const qint64 mean = list.MeanMilliseconds())
            parts.append(tr("%1 a frame").arg(FrameModel::TimeText(mean)));
        parts.append(m_answer.jobCost);
    }
    m_summary->setText(parts.join(QStringLiteral(" · ")));
    m_form.Find<QWidget>("wgtPriority")->setVisible(m_answer.priority || list.Frames().empty());
    QString trouble = m_failure.isEmpty() ? m_refusal : m_failure;
    if (trouble.isEmpty() && !m_answer.message.isEmpty()) {
        trouble = m_answer.message.section(QLatin1Char('\n'), 0, 0);
        if (m_answer.jobStatus == VTCodeTables::JobFailed)
            trouble = tr("The job has failed: %1").arg(trouble);
    }
    m_trouble->setText(trouble);
    m_trouble->setVisible(!trouble.isEmpty());
}

void FramesWindow::DisplayFrame()
{
    const Frame frame = m_model.At(CurrentRow());
    m_openPicture->setEnabled(!frame.file.isEmpty());
    m_frame->setText(frame.number > 0
            ? tr("Frame %1: %2").arg(frame.number).arg(FrameModel::StateText(frame.state))
            : QString());
    m_log->setPlaceholderText(m_hasLog
            ? tr("There is no log of this frame: no attempt has ended yet, or the renderer wrote nothing.")
            : QString());
}

void FramesWindow::DisplayChart()
{
    const bool showsTimes = m_times->isChecked();
    m_chart->SetData(showsTimes ? FrameCharts::Times(m_model) : FrameCharts::Spending(m_spending));
    m_chart->Mark(showsTimes ? CurrentRow() : -1);
}

bool FramesWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && watched == m_table->viewport()) {
        FitColumns();
        m_scrolled.start();
    }
    if (watched == Form() && event->type() == QEvent::Hide) {
        m_refresh.stop();
        m_requests.Cancel();
        m_priority.Flush();
        m_thumbnails.SetPictures(nullptr);
    }
    return false;
}
