#include "host/mainform/scene_intake.h"

#include "vtr_messagboxinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QMimeData>
#include <QPushButton>
#include <QSet>
#include <QUrl>

#include <utility>

namespace {

constexpr int TellingPause = 300; // ms in which further refusals join the same notice

/// @return the scene files among the dragged ones, by their names: a drag must not wait for a disk.
QStringList ScenesOf(const QMimeData* data, const QStringList& suffixes)
{
    QStringList scenes;
    const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
    for (const QUrl& url : urls) {
        const QFileInfo file(url.toLocalFile());
        if (url.isLocalFile() && suffixes.contains(file.suffix().toLower()))
            scenes.append(file.absoluteFilePath());
    }
    return scenes;
}

} // namespace

SceneIntake::SceneIntake(const QStringList& suffixes, Submitter submitter, VTMessagboxInterface* messageBox,
    VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_suffixes(suffixes)
    , m_submitter(std::move(submitter))
    , m_messageBox(messageBox)
    , m_loader(loader)
{
    m_submitting.setSingleShot(true);
    m_submitting.setInterval(0);
    connect(&m_submitting, &QTimer::timeout, this, &SceneIntake::SubmitWaiting);
    m_telling.setSingleShot(true);
    m_telling.setInterval(TellingPause);
    connect(&m_telling, &QTimer::timeout, this, &SceneIntake::ShowRefusals);
}

void SceneIntake::Submit(const QStringList& scenes, int priority)
{
    for (const QString& scene : scenes)
        m_waiting.append({scene, priority});
    // The caller may be handling a drop, which a notice must not hold up.
    m_submitting.start();
}

void SceneIntake::BeginSession()
{
    m_signedIn = true;
    m_submitting.start();
}

void SceneIntake::EndSession()
{
    m_signedIn = false;
}

void SceneIntake::SubmitWaiting()
{
    if (!m_signedIn)
        return;
    QStringList refused;
    QStringList known;
    QSet<QString> submitted;
    const auto waiting = std::exchange(m_waiting, {});
    for (const auto& [scene, priority] : waiting) {
        if (submitted.contains(scene))
            continue;
        submitted.insert(scene);
        const int answer = m_submitter(scene, priority);
        if (answer > 0)
            known.append(scene);
        else if (answer < 0)
            refused.append(scene);
    }
    const QPointer<SceneIntake> self(this);
    Tell(tr("These scenes cannot be submitted:"), refused);
    if (self)
        Tell(tr("These scenes are in the list of local tasks already. Continue or delete their tasks there:"),
            known);
}

void SceneIntake::ShowRefusal(const QString& scene, const QString& reason)
{
    m_refusals.append(scene + QLatin1Char('\n') + reason);
    m_telling.start();
}

void SceneIntake::ShowRefusals()
{
    Tell(tr("These scenes cannot be submitted:"), std::exchange(m_refusals, QStringList()));
}

/// Shows a modal notice, during which anything may happen.
void SceneIntake::Tell(const QString& text, const QStringList& scenes)
{
    if (scenes.isEmpty())
        return;
    const QIcon icon(QStringLiteral(":/%1/main.png").arg(m_loader->GetSkin()));
    m_messageBox->ShowMessage(VTMessagboxInterface::Notice, tr("QuillStar Client"), text, icon,
        scenes.join(QLatin1Char('\n')), {{QStringLiteral("btnMessageBox_1"), tr("Ok")}}, true);
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
        const QStringList scenes = ScenesOf(drag->mimeData(), m_suffixes);
        drag->setDropAction(Qt::CopyAction);
        drag->setAccepted(!scenes.isEmpty());
        if (event->type() == QEvent::Drop && !scenes.isEmpty())
            Submit(scenes);
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
    const QString patterns = QLatin1String("*.") + m_suffixes.join(QLatin1String(" *."));
    m_dialog = new QFileDialog(m_form, tr("Submit a scene"), {}, tr("Scenes (%1)").arg(patterns));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setFileMode(QFileDialog::ExistingFiles);
    // Scenes chosen for a session that has ended must not be submitted in the next one.
    connect(m_dialog, &QFileDialog::filesSelected, this, [this](const QStringList& scenes) {
        if (m_signedIn)
            Submit(scenes);
    });
    m_dialog->open();
}
