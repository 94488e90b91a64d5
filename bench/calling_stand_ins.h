#pragma once

#include "tests/standins/stand_ins.h"

/// Runs from inside every call of the stand-ins below.
inline std::function<void()> interrupt;

/// A render core that calls back from inside everything that the window reads and orders.
class CallingRenderCore : public RenderCoreStandIn
{
public:
    void RemoveSubmitTasks(const QStringList& ids, bool byUser) override
    {
        RenderCoreStandIn::RemoveSubmitTasks(ids, byUser);
        interrupt();
    }
    void RemoveDownloadTasks(const QStringList& ids) override
    {
        RenderCoreStandIn::RemoveDownloadTasks(ids);
        interrupt();
    }
    QString GetTaskSceneFile(const QString& id) override
    {
        return Interrupted(RenderCoreStandIn::GetTaskSceneFile(id));
    }
    QString GetTaskStartTime(const QString& id) override
    {
        return Interrupted(RenderCoreStandIn::GetTaskStartTime(id));
    }
    QString GetTaskMessage(const QString& id) override
    {
        return Interrupted(RenderCoreStandIn::GetTaskMessage(id));
    }
    int GetTaskStage(const QString& id) override { return Interrupted(RenderCoreStandIn::GetTaskStage(id)); }
    int GetTaskErrorCode(const QString& id) override
    {
        return Interrupted(RenderCoreStandIn::GetTaskErrorCode(id));
    }
    QStringList GetSubmitTaskIds() override { return Interrupted(RenderCoreStandIn::GetSubmitTaskIds()); }
    int GetSubmitTaskCount() override { return Interrupted(RenderCoreStandIn::GetSubmitTaskCount()); }
    QVariantList GetTaskArguments(const QString& id) override
    {
        return Interrupted(RenderCoreStandIn::GetTaskArguments(id));
    }

private:
    template <class Result>
    static Result Interrupted(const Result& result)
    {
        interrupt();
        return result;
    }
};

/// A settings service that calls back from inside reads and writes.
class CallingSettings : public SettingsStandIn
{
public:
    QVariant Value(const QString& key, const QVariant& defaultValue) override
    {
        interrupt();
        return SettingsStandIn::Value(key, defaultValue);
    }
    void SetValue(const QString& key, const QVariant& value) override
    {
        SettingsStandIn::SetValue(key, value);
        interrupt();
    }
};
