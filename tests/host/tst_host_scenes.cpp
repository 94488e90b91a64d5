// How scenes come to the render core: dropped on the form that it filters, behind the button, from the command line.
#include "host/mainform/scene_intake.h"
#include "host/services/render_core_service.h"
#include "host/services/ui_loader_service.h"
#include "tests/hostui/memory_settings.h"
#include "vtr_messagboxinterface.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>
#include <QtTest>

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

} // namespace

class TestHostScenes : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString Make(const QString& name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    }

    static bool Drop(RenderCoreService& renderCore, QWidget& form, const QStringList& files)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : files)
            urls.append(QUrl::fromLocalFile(file));
        data.setUrls(urls);
        QDropEvent drop({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        drop.ignore();
        // Sent by way of the application, only a drag that is under way would reach the form.
        renderCore.eventFilter(&form, &drop);
        return drop.isAccepted();
    }

private slots:
    void TakesScenesInEveryWay()
    {
        MemorySettings settings;
        UiLoaderService loader(&settings);
        RenderCoreService renderCore(m_folder.filePath(QStringLiteral("transfer")), &settings);
        Notices notices;
        SceneIntake intake(&renderCore, &notices, &loader);
        renderCore.SetFormFilter(&intake);
        QWidget form;
        QPushButton button(&form);
        button.setObjectName(QStringLiteral("btnSubmit"));
        form.installEventFilter(&renderCore);

        const QString folder = m_folder.filePath(QStringLiteral("folder.pov"));
        QVERIFY(QDir().mkdir(folder));
        QVERIFY(!Drop(renderCore, form, {Make(QStringLiteral("note.txt")), folder}));
        QVERIFY(
            Drop(renderCore, form, {Make(QStringLiteral("a.pov")), folder, Make(QStringLiteral("b.MB"))}));
        QCOMPARE(renderCore.GetSubmitTaskCount(), 0);

        // What comes before sign-in waits for it; what is no scene is named once.
        const QString gone = m_folder.filePath(QStringLiteral("gone.pov"));
        intake.Submit({gone, folder});
        renderCore.BeginSession(QStringLiteral("ann"), QStringLiteral("token"));
        intake.BeginSession();
        QTRY_COMPARE(
            renderCore.GetSubmitTaskIds(), QStringList({QStringLiteral("a.1"), QStringLiteral("b.2")}));
        QTRY_COMPARE(notices.details, QStringList(gone + QLatin1Char('\n') + folder));
        QCOMPARE(
            renderCore.GetTaskSceneFile(QStringLiteral("a.1")), m_folder.filePath(QStringLiteral("a.pov")));

        button.click();
        button.click();
        const auto dialogs = form.findChildren<QFileDialog*>();
        QCOMPARE(dialogs.size(), 1);
        emit dialogs.constFirst()->filesSelected({Make(QStringLiteral("c.ma"))});
        QTRY_COMPARE(renderCore.GetSubmitTaskIds().value(2), QStringLiteral("c.3"));

        renderCore.RemoveSubmitTasks({}, false);
        QCOMPARE(renderCore.GetSubmitTaskCount(), 0);
        QCOMPARE(renderCore.SubmitScene(m_folder.filePath(QStringLiteral("a.pov"))), -1);
    }
};

QTEST_MAIN(TestHostScenes)
#include "tst_host_scenes.moc"
