#pragma once

#include "common/vtr_siblings.h"
#include "tests/standins/every_slot.h"
#include "tests/standins/form_roster.h"
#include "tests/standins/stand_ins.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <QUuid>
#include <QWidget>

/// A widget of a form by its name.
template <class Widget>
Widget* Find(const std::unique_ptr<QWidget>& form, const char* name)
{
    return form->findChild<Widget*>(QLatin1String(name));
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
    LoggerStandIn logger {journal};
    VTSiblings siblings;
};

/// A file of an account that no other test has, removed at the end.
class AccountFixture
{
public:
    explicit AccountFixture(const QString& folder)
        : m_folder(QCoreApplication::applicationDirPath() + "/"_s + folder)
    {
        QDir().mkpath(m_folder);
    }
    ~AccountFixture()
    {
        QFile::remove(Path());
        QDir().rmdir(Path());
    }
    Q_DISABLE_COPY(AccountFixture)

    QString Path() const { return QString(m_folder + "/farm_"_s + user + ".ini"_s); }

    void Write(const QByteArray& text) const
    {
        QFile file(Path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }

    /// Puts a folder in the file's place, which no write can replace.
    void Block() const { QDir().mkpath(Path()); }

    const QString server = "farm"_s;
    const QString user = QUuid::createUuid().toString(QUuid::WithoutBraces);

private:
    QString m_folder;
};
