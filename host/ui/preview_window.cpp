#include "host/ui/preview_window.h"

#include "host/ui/picture_reader.h"
#include "host/ui/picture_series.h"
#include "host/ui/picture_view.h"
#include "vtr_uiloaderinterface.h"

#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QShortcut>
#include <QSizeGrip>

#include <algorithm>
#include <cmath>

namespace {

constexpr int PlayInterval = 83; // ms, about 12 pictures a second
constexpr int Percent = 100;

} // namespace

PreviewWindow::PreviewWindow(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.previewer"))
    , m_title(m_form.Find<QLabel>("lblTitle"))
    , m_size(m_form.Find<QLabel>("lblSize"))
    , m_position(m_form.Find<QLabel>("lblPosition"))
    , m_zoom(m_form.Find<QLabel>("lblZoom"))
    , m_previous(m_form.Find<QPushButton>("btnPrevious"))
    , m_play(m_form.Find<QPushButton>("btnPlay"))
    , m_next(m_form.Find<QPushButton>("btnNext"))
    , m_fit(m_form.Find<QPushButton>("btnFit"))
    , m_actualSize(m_form.Find<QPushButton>("btnActualSize"))
    , m_view(new PictureView)
{
    qRegisterMetaType<PictureFile>();
    m_reader.setMaxThreadCount(1);
    m_nextPicture.setSingleShot(true);
    connect(&m_nextPicture, &QTimer::timeout, this, &PreviewWindow::PlayNext);
    connect(this, &PreviewWindow::Read, this, &PreviewWindow::HandlePicture, Qt::QueuedConnection);
    m_view->setObjectName(QStringLiteral("scaPicture"));
    m_form.Find<QWidget>("wgtPicture")->layout()->addWidget(m_view);
    m_view->setFocus();
    QWidget::setTabOrder(m_view, m_previous);
    auto* footer = m_form.Find<QWidget>("wgtFooter");
    footer->layout()->addWidget(new QSizeGrip(footer));
    footer->layout()->setAlignment(footer->findChild<QSizeGrip*>(), Qt::AlignRight | Qt::AlignBottom);
    connect(m_view, &PictureView::ZoomChanged, this, &PreviewWindow::DisplayZoom);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, &PreviewWindow::Display);
    Form()->installEventFilter(this);
    ConnectButtons();
}

PreviewWindow::~PreviewWindow()
{
    // The form is destroyed last and must be hidden by then.
    Form()->removeEventFilter(this);
}

void PreviewWindow::ConnectButtons()
{
    const auto connectButton
        = [this](QPushButton* button, const QList<QKeySequence>& keys, const auto& action) {
              connect(button, &QPushButton::clicked, this, action);
              AddKeys(keys, action);
          };
    connectButton(m_form.Find<QPushButton>("btnClose"), {Qt::Key_Escape}, [this] { Form()->close(); });
    connectButton(m_previous, {Qt::Key_Left, Qt::Key_PageUp}, [this] { Turn(-1); });
    connectButton(m_next, {Qt::Key_Right, Qt::Key_PageDown}, [this] { Turn(1); });
    connectButton(m_play, {Qt::Key_Space, Qt::Key_P}, [this] { SetPlaying(!m_isPlaying); });
    connectButton(
        m_form.Find<QPushButton>("btnZoomIn"), {Qt::Key_Plus, Qt::Key_Equal}, [this] { m_view->ZoomBy(1); });
    connectButton(m_form.Find<QPushButton>("btnZoomOut"), {Qt::Key_Minus}, [this] { m_view->ZoomBy(-1); });
    connectButton(m_fit, {Qt::Key_0}, [this] { m_view->Fit(); });
    connectButton(m_actualSize, {Qt::Key_1}, [this] { m_view->SetZoom(1); });
    AddKeys({Qt::Key_Home}, [this] { TurnTo(0); });
    AddKeys({Qt::Key_End}, [this] { TurnTo(m_names.size() - 1); });
}

/// Ignores the repeats of a held space bar, which would start and stop playing all the time.
void PreviewWindow::AddKeys(const QList<QKeySequence>& keys, const std::function<void()>& action)
{
    for (const QKeySequence& key : keys) {
        auto* shortcut = new QShortcut(key, Form());
        connect(shortcut, &QShortcut::activated, this, action);
        shortcut->setAutoRepeat(key != Qt::Key_Space);
    }
}

void PreviewWindow::Open(const QString& file)
{
    Open(std::make_shared<FolderPictures>(file), QFileInfo(file).fileName());
}

void PreviewWindow::Open(const std::shared_ptr<PictureSeries>& series, const QString& name)
{
    SetPlaying(false);
    if (m_series)
        m_series->disconnect(this);
    m_series = series;
    m_view->SetText({});
    connect(series.get(), &PictureSeries::Ready, this, &PreviewWindow::HandleFile);
    connect(series.get(), &PictureSeries::Failed, this, &PreviewWindow::HandleFailure);
    connect(series.get(), &PictureSeries::NamesChanged, this, &PreviewWindow::HandleNames);
    m_names = series->Names();
    m_view->Fit();
    Load(name);
    Form()->show();
    Form()->raise();
    Form()->activateWindow();
}

void PreviewWindow::Turn(int step)
{
    SetPlaying(false);
    if (!m_series)
        return;
    m_names = m_series->Names();
    TurnTo(m_names.indexOf(m_name) + step);
}

void PreviewWindow::HandleNames()
{
    m_names = m_series->Names();
    Display();
}

void PreviewWindow::TurnTo(int index)
{
    if (m_series && index >= 0 && index < m_names.size() && m_names.at(index) != m_name)
        Load(m_names.at(index));
}

void PreviewWindow::PlayNext()
{
    const int next = m_names.indexOf(m_name) + 1;
    if (next >= m_names.size())
        m_names = m_series->Names();
    TurnTo(next < m_names.size() ? next : 0);
}

void PreviewWindow::SetPlaying(bool isPlaying)
{
    m_isPlaying = isPlaying && m_names.size() > 1;
    m_play->setChecked(m_isPlaying);
    if (m_isPlaying && !m_loading)
        PlayNext();
    else if (!m_isPlaying)
        m_nextPicture.stop();
}

/// The earlier picture stays until this one has been read, so that a sequence does not flicker.
void PreviewWindow::Load(const QString& name)
{
    m_name = name;
    m_failure.clear();
    m_loading = true;
    m_sinceTurn.start();
    ++m_generation;
    Display();
    m_series->Provide(name);
}

/// Reads the file in another thread, because decoding a large picture takes a while.
void PreviewWindow::HandleFile(const QString& name, const QString& file)
{
    if (name != m_name || !m_loading)
        return;
    m_reader.clear();
    m_reader.start(
        [this, file, generation = m_generation] { emit Read(generation, PictureReader::Read(file)); });
}

void PreviewWindow::HandleFailure(const QString& name, const QString& reason)
{
    if (name != m_name || !m_loading)
        return;
    SetPlaying(false);
    m_failure = reason;
    HandlePicture(m_generation, {{}, PictureFile::Missing});
}

void PreviewWindow::HandlePicture(int generation, const PictureFile& picture)
{
    if (generation != m_generation)
        return;
    m_loading = false;
    m_shown = picture;
    if (picture.image.isNull())
        m_view->SetText(ErrorText());
    else
        m_view->SetPicture(picture.image);
    Display();
    if (m_isPlaying)
        m_nextPicture.start(std::max(0, PlayInterval - int(m_sinceTurn.elapsed())));
}

void PreviewWindow::Display()
{
    const int index = m_names.indexOf(m_name);
    const bool isShown = !m_view->Picture().isNull();
    m_title->setText(m_name);
    m_position->setText(tr("%1 of %2").arg(index + 1).arg(m_names.size()));
    m_previous->setEnabled(index > 0);
    m_next->setEnabled(index + 1 < m_names.size());
    m_play->setEnabled(m_names.size() > 1);
    m_size->setText(isShown
            ? tr("%1 × %2 pixels").arg(m_view->Picture().width()).arg(m_view->Picture().height())
            : QString());
    m_view->setAccessibleName(m_name);
    m_view->setAccessibleDescription(isShown ? m_size->text() : m_view->Text());
    if (!isShown && !m_loading)
        m_view->SetText(ErrorText());
    DisplayZoom();
}

void PreviewWindow::DisplayZoom()
{
    const bool isShown = !m_view->Picture().isNull();
    const QString percent = QString::number(std::lround(m_view->Zoom() * Percent));
    m_zoom->setText(isShown ? tr("%1%").arg(percent) : QString());
    m_fit->setChecked(m_view->IsFitted());
    m_actualSize->setChecked(!m_view->IsFitted() && m_view->Zoom() == 1);
}

QString PreviewWindow::ErrorText() const
{
    if (!m_failure.isEmpty())
        return m_failure;
    switch (m_shown.error) {
    case PictureFile::Missing:
        return tr("The file does not exist or cannot be read.");
    case PictureFile::NotAPicture:
        return tr("The file is not a picture that can be shown here.");
    case PictureFile::TooLarge:
        return tr("The picture is too large to be shown here.");
    case PictureFile::None:
    case PictureFile::Broken:
        break;
    }
    return tr("The picture is damaged.");
}

bool PreviewWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Hide && watched == Form())
        SetPlaying(false);
    return false;
}
