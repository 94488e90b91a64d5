#include "host/mainform/scene_intake.h"
#include "host/services/render_core_service.h"
#include "host/services/ui_loader_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/hostui/memory_settings.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"
#include "vtr_messagboxinterface.h"

#include <QtWidgets>

namespace {

class Notices : public ServiceBase<VTMessagboxInterface>
{
public:
    QString ShowMessage(int, const QString&, const QString&, const QIcon&, const QString& detail,
        const QVariantHash&, bool) override
    {
        details.append(detail);
        return {};
    }

    QStringList details;
};

bool Drop(RenderCoreService& renderCore, QWidget& form, const QStringList& files)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& file : files)
        urls.append(QUrl::fromLocalFile(file));
    data.setUrls(urls);
    QDropEvent drop({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    drop.ignore();
    // The application would deliver the event only while a real drag is running.
    renderCore.eventFilter(&form, &drop);
    return drop.isAccepted();
}

} // namespace

/// The render core as the window and the user reach it.
class TestHostRenderCore : public QObject
{
    Q_OBJECT

private slots:
    void KeepsScenesUntilTheSignIn()
    {
        MemorySettings settings;
        UiLoaderService loader(&settings);
        RenderCoreService renderCore(m_folder.filePath("transfer"_s), &settings);
        Notices notices;
        SceneIntake intake(
            RenderCoreService::SceneSuffixes(),
            [&](const QString& scene, int priority) { return renderCore.SubmitScene(scene, priority); },
            &notices, &loader);
        renderCore.SetFormFilter(&intake);
        connect(&renderCore, &RenderCoreService::SceneRefused, &intake, &SceneIntake::ShowRefusal);
        QWidget form;
        form.installEventFilter(&renderCore);

        const QString folder = m_folder.filePath("folder.pov"_s);
        QVERIFY(QDir().mkdir(folder));
        QVERIFY(!Drop(renderCore, form, {File("note.txt"_s)}));
        QVERIFY(Drop(renderCore, form, {File("a.pov"_s), folder, File("b.MB"_s)}));
        QCOMPARE(renderCore.GetSubmitTaskCount(), 0);

        // Scenes wait for the sign-in; one notice names the files that are none.
        const QString gone = m_folder.filePath("gone.pov"_s);
        intake.Submit({gone, folder});
        renderCore.BeginSession("ann"_s, "token"_s);
        intake.BeginSession();
        EVENTUALLY_COMPARE(renderCore.GetSubmitTaskIds(), QStringList({"a.1"_s, "b.2"_s}));
        const QString why = "\nThe scene file cannot be read."_s;
        EVENTUALLY_COMPARE(notices.details, QStringList(folder + why + QLatin1Char('\n') + gone + why));
        QCOMPARE(renderCore.GetTaskSceneFile("a.1"_s), m_folder.filePath("a.pov"_s));
        QVERIFY(Drop(renderCore, form, {m_folder.filePath("a.pov"_s)})); // a second time
        EVENTUALLY_COMPARE(notices.details.value(1), m_folder.filePath("a.pov"_s));
    }

    void PassesCommandsOn()
    {
        enum Status { Downloading = 1, StoppedDownload = 4 };
        enum Error { None, Stopped = 7 };
        MemorySettings settings;
        settings.SetValue("vtr.downloads/folder"_s, m_folder.filePath("frames"_s));
        StandInServer farm;
        const QByteArray sum(64, 'a');
        farm.SetReplies(
            {StandInServer::Data("{'list': [{'name': 'f.png', 'size': 4, 'checksum': '" + sum + "'}]}"),
                StandInServer::Held({})});
        RenderCoreService renderCore(m_folder.filePath("commands"_s), &settings);
        renderCore.SetServerUrl(farm.Url());
        renderCore.BeginSession("ann"_s, "token"_s);
        const QVariantMap& tasks = *renderCore.GetDownloadTasks();
        const auto value = [&](const char* key) {
            return tasks.isEmpty() ? QVariant() : tasks.first().toMap().value(QLatin1String(key));
        };
        renderCore.TriggerJobIdType({{"7"_s, QVariantMap {{"subDir"_s, "7_shot"_s}, {"manual"_s, 1}}}});
        EVENTUALLY_COMPARE(value("status"), QVariant(Downloading));
        QCOMPARE(value("destFile").toString(), m_folder.filePath("frames/7_shot/f.png"_s));
        for (const auto resume :
            {&RenderCoreService::ResumeDownloadTasks, &RenderCoreService::RedownloadTasks}) {
            renderCore.StopDownloadTasks(tasks.keys());
            EVENTUALLY_COMPARE(value("status"), QVariant(StoppedDownload));
            (renderCore.*resume)(tasks.keys());
            EVENTUALLY_COMPARE(value("status"), QVariant(Downloading));
        }
        QSignalSpy notices(&renderCore, &RenderCoreService::Notice);
        renderCore.RetryFailedDownloads();
        EVENTUALLY_COMPARE(notices.count(), 1);
        renderCore.RemoveDownloadTasks(tasks.keys());
        EVENTUALLY(tasks.isEmpty());

        const QString id = "a.1"_s;
        QCOMPARE(renderCore.SubmitScene(File("a.pov"_s)), 0);
        EVENTUALLY(!renderCore.GetTaskArguments(id).isEmpty());
        QVariantMap range = renderCore.GetTaskArguments(id).value(0).toMap();
        range.insert("endFrame_0"_s, 7);
        renderCore.SetArgument(id, {range});
        QCOMPARE(renderCore.GetTaskArguments(id), QVariantList {range});
        const auto error = [&] { return renderCore.GetTaskErrorCode(id); };
        renderCore.StopSubmitTasks();
        QCOMPARE(error(), int(Stopped));
        renderCore.ResumeSubmitTasks();
        QCOMPARE(error(), int(None));
        renderCore.RemoveSubmitTasks({id}, true);
        QCOMPARE(renderCore.GetSubmitTaskCount(), 0);
    }

private:
    QString File(const QString& name) const
    {
        const QString path = m_folder.filePath(name);
        WriteFile(path, {});
        return path;
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(TestHostRenderCore)
#include "tst_host_rendercore.moc"
