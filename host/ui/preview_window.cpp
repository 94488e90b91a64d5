#include "host/ui/preview_window.h"

#include "vtr_uiloaderinterface.h"

#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QSizeGrip>

namespace {

constexpr int SettleTime = 150; // ms

} // namespace

PreviewWindow::PreviewWindow(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.previewer"))
    , m_title(m_form.Find<QLabel>("lblTitle"))
    , m_area(m_form.Find<QScrollArea>("scaPicture"))
    , m_picture(m_form.Find<QLabel>("lblPicture"))
    , m_size(m_form.Find<QLabel>("lblSize"))
    , m_position(m_form.Find<QLabel>("lblPosition"))
    , m_previous(m_form.Find<QPushButton>("btnPrevious"))
    , m_next(m_form.Find<QPushButton>("btnNext"))
    , m_actualSize(m_form.Find<QPushButton>("btnActualSize"))
{
    qRegisterMetaType<PictureFile>();
    m_reader.setMaxThreadCount(1);
    m_settled.setSingleShot(true);
    m_settled.setInterval(SettleTime);
    connect(&m_settled, &QTimer::timeout, this, [this] { DisplayPicture(Qt::SmoothTransformation); });
    connect(this, &PreviewWindow::Read, this, &PreviewWindow::HandlePicture, Qt::QueuedConnection);
    m_area->viewport()->installEventFilter(this);
    auto* footer = m_form.Find<QWidget>("wgtFooter");
    footer->layout()->addWidget(new QSizeGrip(footer));
    footer->layout()->setAlignment(footer->findChild<QSizeGrip*>(), Qt::AlignRight | Qt::AlignBottom);

    connect(m_form.Find<QPushButton>("btnClose"), &QPushButton::clicked, this, &PreviewWindow::Close);
    connect(m_previous, &QPushButton::clicked, this, &PreviewWindow::Previous);
    connect(m_next, &QPushButton::clicked, this, &PreviewWindow::Next);
    connect(m_actualSize, &QPushButton::toggled, this, &PreviewWindow::Display);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, &PreviewWindow::Display);
    AddShortcut(Qt::Key_Escape, &PreviewWindow::Close);
    AddShortcut(Qt::Key_Left, &PreviewWindow::Previous);
    AddShortcut(Qt::Key_Right, &PreviewWindow::Next);
}

void PreviewWindow::AddShortcut(int key, void (PreviewWindow::*slot)())
{
    connect(new QShortcut(key, Form()), &QShortcut::activated, this, slot);
}

void PreviewWindow::Open(const QString& file)
{
    Load(file);
    Form()->show();
    Form()->raise();
    Form()->activateWindow();
}

void PreviewWindow::Turn(int step)
{
    const int index = m_files.indexOf(m_file) + step;
    if (index >= 0 && index < m_files.size())
        Load(m_files.at(index));
}

/// Reads the file in another thread, because decoding a large picture takes a while.
void PreviewWindow::Load(const QString& file)
{
    m_file = QFileInfo(file).absoluteFilePath();
    m_files = PictureFile::InSameFolder(m_file); // listed again, since downloads may have added some
    m_shown = {};
    m_pixmap = {};
    m_loading = true;
    Display();
    m_reader.clear();
    m_reader.start([this, path = m_file, generation = ++m_generation] {
        emit Read(generation, PictureFile::Read(path));
    });
}

void PreviewWindow::HandlePicture(int generation, const PictureFile& picture)
{
    if (generation != m_generation)
        return;
    m_loading = false;
    m_shown = picture;
    m_pixmap = QPixmap::fromImage(picture.image);
    Display();
}

void PreviewWindow::Display()
{
    const int index = m_files.indexOf(m_file);
    m_title->setText(QFileInfo(m_file).fileName());
    m_position->setText(tr("%1 of %2").arg(index + 1).arg(m_files.size()));
    m_previous->setEnabled(index > 0);
    m_next->setEnabled(index + 1 < m_files.size());
    m_actualSize->setEnabled(!m_pixmap.isNull());
    m_size->setText(m_pixmap.isNull()
            ? QString()
            : tr("%1 × %2 pixels").arg(m_shown.image.width()).arg(m_shown.image.height()));
    DisplayPicture(Qt::SmoothTransformation);
}

void PreviewWindow::DisplayPicture(Qt::TransformationMode mode)
{
    m_settled.stop();
    const QSize room = m_area->viewport()->size();
    if (m_pixmap.isNull()) {
        m_picture->setText(m_loading ? QString() : ErrorText());
        m_picture->resize(room);
        return;
    }
    const qreal ratio = m_picture->devicePixelRatioF();
    QPixmap pixmap = m_pixmap;
    if (!m_actualSize->isChecked()) {
        const QSize fitted = m_pixmap.size().scaled(room * ratio, Qt::KeepAspectRatio);
        pixmap = m_pixmap.scaled(fitted, Qt::IgnoreAspectRatio, mode);
    }
    pixmap.setDevicePixelRatio(ratio);
    m_picture->setPixmap(pixmap);
    m_picture->resize(pixmap.size() / ratio);
}

QString PreviewWindow::ErrorText() const
{
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
    if (event->type() == QEvent::Resize && watched == m_area->viewport()) {
        // Smooth scaling of a large picture is too slow while the window is being resized.
        DisplayPicture(Qt::FastTransformation);
        m_settled.start();
    }
    return false;
}
