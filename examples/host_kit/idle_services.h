#pragma once

#include <vtr_communicationinterface.h>
#include <vtr_configurationinterface.h>
#include <vtr_loggerinterface.h>
#include <vtr_messagboxinterface.h>
#include <vtr_previewerinterface.h>
#include <vtr_rendercoreinterface.h>
#include <vtr_settingsinterface.h>
#include <vtr_uiloaderinterface.h>

/// Services that do nothing, as a start for a host: derive from one, add Q_OBJECT and Q_INTERFACES(<its interface>),
/// without which the plugin does not find it, and override one operation after another.
namespace idle {

/// The life cycle of a service: everything succeeds, and its state is 1.
template <class Interface>
class Service : public Interface
{
public:
    int Initialize(const QVariantMap& /*parameters*/) override { return 0; }
    int Uninitialize() override { return 0; }
    int Show(QVariant& state, const QVariantMap& /*parameters*/) override
    {
        state = 1;
        return 0;
    }
    int Hide(const QVariant& /*state*/) override { return 0; }
    int Activate(const QVariant& /*state*/, const QVariantMap& /*parameters*/) override { return 0; }
    int Close(const QVariant& /*state*/) override { return 0; }
};

/// Forgets everything.
class Settings : public Service<VTSettingsInterface>
{
public:
    QVariant Value(const QString& /*key*/, const QVariant& preset) override { return preset; }
    void SetValue(const QString& /*key*/, const QVariant& /*value*/) override { }
};

/// Logs nothing. The interface is not a QObject, so the host declares the object: a class derived from QObject and, by
/// name, from VTLoggerInterface.
template <class LoggerObject>
class Logger : public Service<LoggerObject>
{
public:
    void Write(const QString& /*text*/, int /*level*/, const QString& /*category*/, const QString& /*source*/,
        int /*line*/) override
    {
    }
};

/// Has no forms, no menus and one language.
class UiLoader : public Service<VTUiLoaderInterface>
{
public:
    QWidget* LoadUi(const QString& /*key*/, QWidget* /*parent*/) override { return nullptr; }
    QString GetSkin() override { return QStringLiteral("default"); }
    QString GetLanguage() override { return QStringLiteral("vtr_en.qm"); }
    QStringList GetLanguages() override { return {GetLanguage()}; }
    void SetLanguage(const QString& /*path*/) override { }
    void OpenWindow(const QString& key) override { emit ShowWindow(key); }
    QMenu* GetMenu(const QString& /*menu*/, const QString& /*subMenu*/) override { return nullptr; }
    void LoadSkinSettings(const QString& /*iniFile*/) override { }
    void LayoutForm(QWidget* /*form*/, const QString& /*iniFile*/) override { }
};

/// Answers every question as if its box had been closed.
class MessageBox : public Service<VTMessagboxInterface>
{
public:
    QString ShowMessage(int /*kind*/, const QString& /*title*/, const QString& /*text*/,
        const QIcon& /*icon*/, const QString& /*detail*/, const QVariantHash& /*buttons*/,
        bool /*flag*/) override
    {
        return {};
    }
};

/// Accepts every request and never answers.
class Communication : public Service<VTCommunicationInterface>
{
public:
    int SignOut(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int GetUserInfo(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int StopJobs(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int DeleteJobs(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int RecoverJobs(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int RestartJobs(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int FullRender(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int GetJobList(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int GetJobInfo(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
    int GetProjectList(const QVariant& /*state*/, const QVariantHash& /*request*/) override { return 0; }
};

/// Has no tasks and takes none.
class RenderCore : public Service<VTRenderCoreInterface>
{
public:
    void RemoveSubmitTasks(const QStringList& /*ids*/, bool /*byUser*/) override { }
    void RemoveDownloadTasks(const QStringList& /*ids*/) override { }
    void StopDownloadTasks(const QStringList& /*ids*/) override { }
    void ResumeDownloadTasks(const QStringList& /*ids*/) override { }
    void StopSubmitTasks() override { }
    void ResumeSubmitTasks() override { }
    QVariantMap* GetDownloadTasks() override { return &m_downloads; }
    QString GetTaskSceneFile(const QString& /*id*/) override { return {}; }
    QString GetTaskStartTime(const QString& /*id*/) override { return {}; }
    QString GetTaskMessage(const QString& /*id*/) override { return {}; }
    int GetTaskStage(const QString& /*id*/) override { return 0; }
    int GetTaskProgress(const QString& /*id*/) override { return 0; }
    QString GetTaskUploadText(const QString& /*id*/) override { return {}; }
    int GetTaskErrorCode(const QString& /*id*/) override { return 0; }
    QStringList GetSubmitTaskIds() override { return {}; }
    int GetSubmitTaskCount() override { return 0; }
    QVariantList GetTaskArguments(const QString& /*id*/) override { return {}; }
    void UploadRetryAnswer(const QString& /*id*/, bool /*retries*/) override { }
    void LackTextureAnswer(const QString& /*id*/, bool /*goesOn*/) override { }
    void ContinueSubmit(const QString& /*id*/) override { }
    int SubmitScene(const QString& /*file*/) override { return -1; }
    void RedownloadTasks(const QStringList& /*ids*/) override { }
    void SetArgument(QString /*id*/, QVariantList /*arguments*/) override { }
    void TriggerJobIdType(QVariantMap /*orders*/) override { }

private:
    QVariantMap m_downloads;
};

class Configuration : public Service<VTConfigurationInterface>
{
public:
    QString GetVersion() override { return {}; }
    void ShowConf() override { }
    void Finish(QString /*file*/) override { }
};

class Previewer : public Service<VTPreviewerInterface>
{
};

} // namespace idle
