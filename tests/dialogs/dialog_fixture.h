#pragma once

#include "vtr_siblings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStringList>
#include <QUuid>
#include <QWidget>

/// The operations of a service that the dialogs never use.
#define UNUSED_BASE_OPERATIONS                                                                               \
    int Initialize(const QVariantMap&) override                                                              \
    {                                                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    int Uninitialize() override                                                                              \
    {                                                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    int Show(QVariant&, const QVariantMap&) override                                                         \
    {                                                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    int Hide(const QVariant&) override                                                                       \
    {                                                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    int Activate(const QVariant&, const QVariantMap&) override                                               \
    {                                                                                                        \
        return 0;                                                                                            \
    }                                                                                                        \
    int Close(const QVariant&) override                                                                      \
    {                                                                                                        \
        return 0;                                                                                            \
    }

class MessageBoxStandIn : public VTMessagboxInterface
{
public:
    UNUSED_BASE_OPERATIONS

    QString ShowMessage(int, const QString&, const QString&, const QIcon&, const QString& detail,
        const QVariantHash&, bool) override
    {
        shown << detail;
        return QString();
    }

    QStringList shown;
};

class SettingsStandIn : public VTSettingsInterface
{
public:
    UNUSED_BASE_OPERATIONS

    QVariant Value(const QString& key, const QVariant& fallback) override
    {
        return values.value(key, fallback);
    }
    void SetValue(const QString& key, const QVariant& value) override { values[key] = value; }

    QMap<QString, QVariant> values;
};

class LoggerStandIn final : public VTLoggerInterface
{
public:
    UNUSED_BASE_OPERATIONS

    void Write(const QString& message, int level, const QString&, const QString&, int) override
    {
        lines << QStringLiteral("%1 %2").arg(level).arg(message);
    }

    QStringList lines;
};

/// Puts a widget into a form, under the name by which a controller finds it.
template <typename Widget>
Widget* AddTo(QWidget* form, const QString& name)
{
    auto* widget = new Widget(form);
    widget->setObjectName(name);
    return widget;
}

/// The services that the dialogs use.
struct ServicesFixture
{
    ServicesFixture()
    {
        siblings.pMessageBox = &messageBox;
        siblings.pSettings = &settings;
        siblings.pLogger = &logger;
    }

    MessageBoxStandIn messageBox;
    SettingsStandIn settings;
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

    static inline const QString Server = QStringLiteral("farm");
    const QString user = QUuid::createUuid().toString(QUuid::WithoutBraces);

private:
    QString m_folder;
};
