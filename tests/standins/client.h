#pragma once

#include "tests/standins/controllers.h"
#include "tests/standins/stand_ins.h"
#include "tests/standins/ui_loader_stand_in.h"

#include <ctkPluginContext.h>
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>

#include <QAction>
#include <QPushButton>
#include <QSharedPointer>
#include <QTableWidget>
#include <QTabWidget>
#include <QTimer>

#include <memory>

/// The built plugin file, started in a framework of its own among stand-in services.
class Client
{
public:
    Client();
    ~Client();

    /// Starts the framework, registers the services except those in `leftOut`, and starts the plugin.
    void Start();
    void Register(const QString& name) { Context()->registerService({name}, Services().value(name)); }

    /// Initialises the plugin's service with the framework's context. @return its status.
    int Initialize() { return Service()->Initialize({{"plugin_context"_s, QVariant::fromValue(Context())}}); }

    /// Starts, initialises and shows. @return whether the main form is on the screen.
    bool Open();

    void SignIn(const QString& userName = "ann"_s) { communication.DeliverSignIn(userName); }

    /// Stops the plugin, which `Start` can start again.
    void Stop() { m_plugin->stop(); }

    VTBaseInterface* Service() const;
    ctkPluginContext* Context() const { return m_framework->getPluginContext(); }

    /// The client's window object; null when there is none.
    QWidget* Window() const { return qobject_cast<QWidget*>(controllers.Find("VTQsClientPrivate")); }
    QWidget* Form() const { return uiLoader.Form("com.vtr.qsclient"_s); }

    template <class Widget>
    Widget* Find(const QString& name) const
    {
        return Form()->findChild<Widget*>(name);
    }
    QPushButton* Button(const QString& name) const { return Find<QPushButton>(name); }
    QTableWidget* Table(const QString& name) const { return Find<QTableWidget>(name); }
    bool Shows(const QString& widget) const { return Find<QWidget>(widget)->isVisibleTo(Form()); }
    QTabWidget* Tabs() const { return Find<QTabWidget>("tbwContainer"_s); }

    /// A menu entry of the window by its text.
    QAction* Entry(const char* text) const;

    /// Runs a slot of the window by name. @return whether it has one for these arguments.
    template <class... Arguments>
    bool Call(const char* slot, const Arguments&... arguments) const
    {
        return QMetaObject::invokeMethod(Window(), slot, Qt::DirectConnection,
            QGenericArgument(QMetaType::typeName(qMetaTypeId<Arguments>()), &arguments)...);
    }

    /// The path of ann's file in a folder beside the program.
    QString AccountFile(const QString& folder) const;

    /// The window's running timers of an interval in milliseconds.
    QList<QTimer*> RunningTimers(int interval) const;

    /// Lets the only running timer of an interval time out now. @return whether there is exactly one.
    bool Tick(int interval) const;

    Controllers controllers;
    SettingsStandIn settings;
    LoggerStandIn logger;
    UiLoaderStandIn uiLoader;
    MessageBoxStandIn messageBox;
    CommunicationStandIn communication;
    RenderCoreStandIn renderCore;
    ConfigurationStandIn configuration;
    PreviewerStandIn previewer;

    /// Names of interfaces that `Start` does not register.
    QStringList leftOut;

private:
    QMap<QString, QObject*> Services();

    /// Names the account files, so no other process uses it.
    QString m_server;
    /// With an installed CTK the factory owns the framework, so it is declared first and destroyed last.
    std::unique_ptr<ctkPluginFrameworkFactory> m_factory;
    QSharedPointer<ctkPluginFramework> m_framework;
    QSharedPointer<ctkPlugin> m_plugin;
};

/// A name with a number of two digits, so that names sort by number.
QString Numbered(const QString& prefix, int number);

/// A job record whose values contain its number.
QVariantMap MakeJob(int number, int status = 1, int progress = 10);
QVariantList MakeJobs(int count);
