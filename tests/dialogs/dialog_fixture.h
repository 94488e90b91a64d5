#pragma once

#include "stand_ins.h"
#include "vtr_siblings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <QUuid>
#include <QWidget>

/// Puts a widget into a form, under the name by which a controller finds it.
template <typename Widget>
Widget* AddTo(QWidget* form, const QString& name)
{
    auto* widget = new Widget(form);
    widget->setObjectName(name);
    return widget;
}

/// Does something when the event loop runs next, for example that of a modal dialog.
template <typename Function>
void Soon(QObject* context, Function function)
{
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, context, function);
    timer->start(0);
}

/// The services that the dialogs use.
struct ServicesFixture
{
    ServicesFixture()
    {
        siblings.pMessageBox = &messageBox;
        siblings.pSettings = &settings;
        siblings.pLoggerObject = &logger;
    }

    Journal journal;
    MessageBoxStandIn messageBox {journal};
    SettingsStandIn settings {journal};
    LoggerStandIn logger;
    VTSiblings siblings;
};

/// A file of an account that no other test has, removed at the end.
class AccountFixture
{
public:
    explicit AccountFixture(const QString& folder)
        : m_folder(QDir(QCoreApplication::applicationDirPath()).filePath(folder))
    {
    }

    ~AccountFixture()
    {
        QFile::remove(Path());
        QDir().rmdir(Path());
        QFile::remove(Path() + QLatin1String(".damaged"));
    }
    Q_DISABLE_COPY(AccountFixture)

    QString Path() const
    {
        return QDir(m_folder).filePath(Server + QLatin1Char('_') + user + QLatin1String(".ini"));
    }

    void Write(const QByteArray& text) const
    {
        QDir().mkpath(m_folder);
        QFile file(Path());
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("Cannot write %s", qUtf8Printable(Path()));
    }

    /// Puts a folder in the file's place, which no write can replace.
    void Block() const { QDir().mkpath(Path()); }

    static inline const QString Server = "farm"_s;
    const QString user = QUuid::createUuid().toString(QUuid::WithoutBraces);

private:
    QString m_folder;
};
