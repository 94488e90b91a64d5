#pragma once

#include "tests/standins/stand_in.h"
#include "vtr_baseappinterface.h"
#include "vtr_communicationinterface.h"
#include "vtr_configurationinterface.h"
#include "vtr_loggerinterface.h"
#include "vtr_messagboxinterface.h"
#include "vtr_previewerinterface.h"
#include "vtr_rendercoreinterface.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QIcon>
#include <QVector>

#include <algorithm>
#include <functional>

class SettingsStandIn : public StandIn<VTSettingsInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTSettingsInterface)

public:
    QVariant Value(const QString& key, const QVariant& defaultValue) override
    {
        return values.value(key, defaultValue);
    }
    void SetValue(const QString& key, const QVariant& value) override { values.insert(key, value); }

    QVariantMap values;
};

/// The logger's interface is not a QObject, so this joins the two.
class LoggerObject : public QObject, public VTLoggerInterface
{
    Q_OBJECT
    Q_INTERFACES(VTLoggerInterface)
};

class LoggerStandIn : public StandIn<LoggerObject>
{
public:
    void Write(const QString& message, int /*level*/, const QString& /*category*/, const QString& /*source*/,
        int /*line*/) override
    {
        lines.append(message);
    }

    QStringList lines;
};

class MessageBoxStandIn : public StandIn<VTMessagboxInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTMessagboxInterface)

public:
    QString ShowMessage(int kind, const QString& title, const QString& text, const QIcon& /*icon*/,
        const QString& detail, const QVariantHash& buttons, bool flag) override
    {
        const QStringList captions {buttons.value(Refusal()).toString(), buttons.value(Consent()).toString()};
        messages.append(
            "%1|%2|%3|%4|%5|%6"_s.arg(kind).arg(title, text, detail, captions.join(","_s)).arg(flag));
        journal.append("ShowMessage"_s);
        if (const auto action = std::exchange(whileOpen, nullptr))
            action();
        return answer;
    }

    static QString Refusal() { return "btnMessageBox_1"_s; }
    static QString Consent() { return "btnMessageBox_2"_s; }

    QStringList messages;            ///< each "kind|title|text|detail|captions|flag"
    QString answer;                  ///< name of the button that closes every box
    std::function<void()> whileOpen; ///< runs once, inside the next box
};

class CommunicationStandIn : public StandIn<VTCommunicationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTCommunicationInterface)

public:
    struct Request
    {
        QString operation;
        QVariant status;
        QVariantHash map;
    };

    int SignOut(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int GetUserInfo(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int StopJobs(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int DeleteJobs(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int RecoverJobs(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int RestartJobs(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int FullRender(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int GetJobList(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int GetJobInfo(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }
    int GetProjectList(const QVariant& s, const QVariantHash& m) override { return Record(__func__, s, m); }

    void DeliverSignIn(const QString& userName, int result = 200)
    {
        emit SignInResponse(result,
            {{"loginname"_s, QString("login-"_s + userName)}, {"username"_s, userName},
                {"data"_s, QVariantMap {{"token"_s, QString("token-"_s + userName)}}}});
    }
    void DeliverJobs(const QVariantList& jobs, const QVariant& total, const QVariant& identifier = 0)
    {
        emit JobListResponse(200,
            {{"identifier"_s, identifier}, {"data"_s, QVariantMap {{"list"_s, jobs}, {"total"_s, total}}}});
    }
    void DeliverUserInfo(const QVariantMap& userInfo, bool bound)
    {
        emit UserInfoResponse(
            200, {{"data"_s, QVariantMap {{"userInfo"_s, userInfo}, {"isBindToVso"_s, bound}}}});
    }

    /// The last request, of an operation if given.
    Request Last(const QString& operation = {}) const
    {
        Request last;
        for (const Request& request : requests) {
            if (operation.isEmpty() || request.operation == operation)
                last = request;
        }
        return last;
    }

    QVector<Request> requests;
    std::function<void()> onRequest; ///< runs once, inside the next request

private:
    int Record(const char* name, const QVariant& status, const QVariantHash& map)
    {
        const QString operation = QLatin1String(name);
        requests.append({operation, status, map});
        journal.append(operation);
        if (const auto action = std::exchange(onRequest, nullptr))
            action();
        return 0;
    }
};

class RenderCoreStandIn : public StandIn<VTRenderCoreInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTRenderCoreInterface)

public:
    struct Task
    {
        QString id {};
        QString sceneFile {};
        QString startTime {};
        QString message {};
        QString uploadText {};
        int stage = 0;
        int progress = 0;
        int error = 0;
        QVariantList arguments {};
    };

    void RemoveSubmitTasks(const QStringList& ids, bool byUser) override
    {
        Write(byUser ? "RemoveSubmitTasks by user"_s : "RemoveSubmitTasks"_s, ids);
        const auto isListed = [&ids](const Task& task) { return ids.contains(task.id); };
        tasks.erase(std::remove_if(tasks.begin(), tasks.end(), isListed), tasks.end());
        emit SubmitListChanged();
    }
    void RemoveDownloadTasks(const QStringList& ids) override
    {
        Write("RemoveDownloadTasks"_s, ids);
        for (const QString& id : ids)
            downloads.remove(id);
        emit DownloadListChanged();
    }
    void StopDownloadTasks(const QStringList& ids) override { Write("StopDownloadTasks"_s, ids); }
    void ResumeDownloadTasks(const QStringList& ids) override { Write("ResumeDownloadTasks"_s, ids); }
    void StopSubmitTasks() override { journal.append("StopSubmitTasks"_s); }
    void ResumeSubmitTasks() override { journal.append("ResumeSubmitTasks"_s); }
    QVariantMap* GetDownloadTasks() override { return &downloads; }
    QString GetTaskSceneFile(const QString& id) override { return Find(id).sceneFile; }
    QString GetTaskStartTime(const QString& id) override { return Find(id).startTime; }
    QString GetTaskMessage(const QString& id) override { return Find(id).message; }
    int GetTaskStage(const QString& id) override { return Find(id).stage; }
    int GetTaskProgress(const QString& id) override { return Find(id).progress; }
    QString GetTaskUploadText(const QString& id) override { return Find(id).uploadText; }
    int GetTaskErrorCode(const QString& id) override { return Find(id).error; }
    QStringList GetSubmitTaskIds() override
    {
        QStringList ids;
        for (const Task& task : qAsConst(tasks))
            ids.append(task.id);
        return ids;
    }
    int GetSubmitTaskCount() override { return tasks.size(); }
    QVariantList GetTaskArguments(const QString& id) override
    {
        const QVariantList arguments = Find(id).arguments;
        if (const auto action = std::exchange(onArguments, nullptr))
            action();
        return arguments;
    }
    void UploadRetryAnswer(const QString& id, bool retry) override
    {
        Write(retry ? "UploadRetryAnswer yes"_s : "UploadRetryAnswer no"_s, {id});
    }
    void LackTextureAnswer(const QString& id, bool goOn) override
    {
        Write(goOn ? "LackTextureAnswer yes"_s : "LackTextureAnswer no"_s, {id});
    }
    void ContinueSubmit(const QString& id) override { Write("ContinueSubmit"_s, {id}); }
    int SubmitScene(const QString& /*file*/) override { return 0; }
    void RedownloadTasks(const QStringList& ids) override { Write("RedownloadTasks"_s, ids); }

    void SetArgument(QString id, QVariantList arguments) override
    {
        Write("SetArgument"_s, {id});
        setArguments = arguments;
    }
    void TriggerJobIdType(QVariantMap jobs) override { orders.append(jobs); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        seenEvents.append(event->type());
        if (event->type() == awaitedEvent) {
            awaitedEvent = QEvent::None;
            onEvent();
        }
        return QObject::eventFilter(object, event);
    }

    QVector<Task> tasks; ///< in list order, which need not be that of the ids
    QVariantMap downloads;
    QVector<QVariantMap> orders;
    QVariantList setArguments; ///< as last set
    QVector<QEvent::Type> seenEvents;
    QEvent::Type awaitedEvent = QEvent::None;
    std::function<void()> onEvent;     ///< runs once, inside the awaited event of the form
    std::function<void()> onArguments; ///< runs once, inside the next read of arguments

private:
    Task Find(const QString& id) const
    {
        for (const Task& task : tasks) {
            if (task.id == id)
                return task;
        }
        return {};
    }
    void Write(const QString& what, const QStringList& ids)
    {
        journal.append(QString(what + " "_s + ids.join(","_s)));
    }
};

class ConfigurationStandIn : public StandIn<VTConfigurationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTConfigurationInterface)

public:
    QString GetVersion() override { return "4.5.6"_s; }
    void ShowConf() override { journal.append("ShowConf"_s); }
    void Finish(QString file) override { journal.append(QString("Finish "_s + file)); }
};

class PreviewerStandIn : public StandIn<VTPreviewerInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTPreviewerInterface)
};

/// Another application of the host.
class ApplicationStandIn : public StandIn<VTBaseAppInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTBaseAppInterface)
};
