#include "host/mainform/scene_intake.h"

#include "vtr_messagboxinterface.h"
#include "vtr_rendercoreinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include <utility>

namespace {

constexpr int kNotice = 2;

/// The scenes among what is being dragged.
QStringList ScenesOf(const QMimeData* data)
{
    static const QStringList suffixes {QStringLiteral("pov"), QStringLiteral("ma"), QStringLiteral("mb")};
    QStringList scenes;
    const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
    for (const QUrl& url : urls) {
        const QFileInfo file(url.toLocalFile());
        if (url.isLocalFile() && suffixes.contains(file.suffix().toLower()) && file.isFile())
            scenes.append(file.absoluteFilePath());
    }
    return scenes;
}

} // namespace

SceneIntake::SceneIntake(VTRenderCoreInterface* renderCore, VTMessagboxInterface* messageBox,
    VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_renderCore(renderCore)
    , m_messageBox(messageBox)
    , m_loader(loader)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(0);
    connect(&m_soon, &QTimer::timeout, this, &SceneIntake::TakeWaiting);
}

void SceneIntake::Take(const QStringList& scenes)
{
    m_waiting.append(scenes);
    // Whoever brings them may be in the middle of a drop; a notice would hold it up.
    m_soon.start();
}

void SceneIntake::Open()
{
    m_open = true;
    m_soon.start();
}

void SceneIntake::Close()
{
    m_open = false;
}

void SceneIntake::TakeWaiting()
{
    if (!m_open)
        return;
    QStringList refused;
    const QStringList scenes = std::exchange(m_waiting, QStringList());
    for (const QString& scene : scenes) {
        if (m_renderCore->SubmitScene(scene) != 0)
            refused.append(scene);
    }
    if (refused.isEmpty())
        return;
    const QIcon icon(QStringLiteral(":/%1/main.png").arg(m_loader->GetSkin()));
    m_messageBox->ShowMessage(kNotice, tr("QuillStar Client"), tr("These scenes cannot be submitted:"), icon,
        refused.join(QLatin1Char('\n')), {{QStringLiteral("btnMessageBox_1"), tr("Ok")}}, true);
}

bool SceneIntake::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_form && watched->isWidgetType())
        Attach(static_cast<QWidget*>(watched));
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
        auto* drag = static_cast<QDropEvent*>(event);
        const QStringList scenes = ScenesOf(drag->mimeData());
        drag->setDropAction(Qt::CopyAction);
        drag->setAccepted(!scenes.isEmpty());
        if (event->type() == QEvent::Drop && !scenes.isEmpty())
            Take(scenes);
        return true;
    }
    default:
        return false;
    }
}

void SceneIntake::Attach(QWidget* form)
{
    m_form = form;
    if (auto* button = form->findChild<QPushButton*>(QStringLiteral("btnSubmit")))
        connect(button, &QPushButton::clicked, this, &SceneIntake::AskForScenes, Qt::UniqueConnection);
}

void SceneIntake::AskForScenes()
{
    if (m_dialog)
        return;
    m_dialog = new QFileDialog(m_form, tr("Submit a scene"), {}, tr("Scenes (*.pov *.ma *.mb)"));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setFileMode(QFileDialog::ExistingFiles);
    // Chosen for a session that has ended meanwhile, they are nobody's.
    connect(m_dialog, &QFileDialog::filesSelected, this, [this](const QStringList& scenes) {
        if (m_open)
            Take(scenes);
    });
    m_dialog->open();
}
