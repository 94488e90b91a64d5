#include "configuration_dialog.h"
#include "memory_settings.h"
#include "preview_window.h"
#include "sign_in_window.h"
#include "ui_loader_service.h"

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

class TestWindows : public QObject
{
    Q_OBJECT

private slots:
    void SignInAsksOnlyWithNameAndPassword();
    void SignInWaitsFailsAndSucceeds();
    void TitleBarMovesTheWindow();
    void ConfigurationStoresWhatIsConfirmed_data();
    void ConfigurationStoresWhatIsConfirmed();
    void ConfigurationNeedsAUser();
    void ConfigurationTakesAWholePathForDownloads();
    void PreviewRefusesWhatIsNoPicture_data();
    void PreviewRefusesWhatIsNoPicture();

private:
    UiLoaderService m_loader {nullptr};
};

void TestWindows::SignInAsksOnlyWithNameAndPassword()
{
    SignInWindow window(&m_loader);
    QSignalSpy asked(&window, &SignInWindow::SignInRequested);
    auto* name = window.Form()->findChild<QLineEdit*>(QStringLiteral("lneName"));
    auto* password = window.Form()->findChild<QLineEdit*>(QStringLiteral("lnePassword"));
    auto* button = window.Form()->findChild<QPushButton*>(QStringLiteral("btnSignIn"));
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    QVERIFY(!button->isEnabled());
    name->setText(QStringLiteral("   "));
    password->setText(QStringLiteral(" secret "));
    QTest::keyClick(password, Qt::Key_Return);
    QCOMPARE(asked.size(), 0);

    name->setText(QStringLiteral(" demo "));
    QTest::keyClick(name, Qt::Key_Return);
    button->click();
    QCOMPARE(asked.size(), 2);
    QCOMPARE(asked[0], QVariantList({QStringLiteral("demo"), QStringLiteral(" secret ")}));
}

void TestWindows::SignInWaitsFailsAndSucceeds()
{
    SignInWindow window(&m_loader);
    QSignalSpy asked(&window, &SignInWindow::SignInRequested);
    auto* password = window.Form()->findChild<QLineEdit*>(QStringLiteral("lnePassword"));
    auto* button = window.Form()->findChild<QPushButton*>(QStringLiteral("btnSignIn"));
    const auto* failure = window.Form()->findChild<QLabel*>(QStringLiteral("lblFailure"));
    window.SetName(QStringLiteral("demo"));
    password->setText(QStringLiteral("secret"));

    window.SetBusy(true);
    button->click();
    QVERIFY(!password->isEnabled());
    QCOMPARE(asked.size(), 0);

    window.ShowFailure(QStringLiteral("<b>no</b>"));
    QCOMPARE(failure->text(), QStringLiteral("<b>no</b>"));
    QCOMPARE(failure->textFormat(), Qt::PlainText);
    QCOMPARE(password->text(), QStringLiteral("secret"));
    button->click();
    QCOMPARE(asked.size(), 1);
    window.ShowFailure(QString(100000, QLatin1Char('x')));
    QVERIFY(failure->text().size() < 1000);

    window.Succeeded();
    QVERIFY(password->text().isEmpty());
    QVERIFY(failure->text().isEmpty());
}

void TestWindows::TitleBarMovesTheWindow()
{
    const SignInWindow window(&m_loader);
    QWidget* form = window.Form();
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form));
    const QPoint start = form->pos();
    const auto drag = [form](const QPoint& from, const QPoint& by) {
        const QPoint global = form->mapToGlobal(from);
        QMouseEvent press(QEvent::MouseButtonPress, from, global, Qt::LeftButton, Qt::LeftButton, {});
        QMouseEvent move(QEvent::MouseMove, from + by, global + by, Qt::NoButton, Qt::LeftButton, {});
        QMouseEvent release(QEvent::MouseButtonRelease, from + by, global + by, Qt::LeftButton, {}, {});
        for (QMouseEvent* event : {&press, &move, &release})
            QCoreApplication::sendEvent(form, event);
    };
    drag({200, 300}, {40, 30}); // not the title bar
    QCOMPARE(form->pos(), start);
    drag({200, 20}, {40, 30});
    QCOMPARE(form->pos(), start + QPoint(40, 30));
}

void TestWindows::ConfigurationStoresWhatIsConfirmed_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("stored");
    QTest::newRow("ok") << QStringLiteral("btnOk") << true;
    QTest::newRow("cancel") << QStringLiteral("btnCancel") << false;
    QTest::newRow("close") << QStringLiteral("btnClose") << false;
}

void TestWindows::ConfigurationStoresWhatIsConfirmed()
{
    QFETCH(QString, button);
    QFETCH(bool, stored);
    const QString autoDownload = QStringLiteral("vtr.account.demo/autodownload");
    const QString setArgument = QStringLiteral("vtr.account.demo/setargument");
    MemorySettings settings;
    settings.values.insert(autoDownload, true);
    const QVariantMap before = settings.values;
    ConfigurationDialog dialog(&m_loader, &settings);
    QTimer opened;
    opened.setSingleShot(true);
    connect(&opened, &QTimer::timeout, this, [&] {
        auto* download = dialog.Form()->findChild<QCheckBox*>(QStringLiteral("chkAutoDownload"));
        auto* argument = dialog.Form()->findChild<QCheckBox*>(QStringLiteral("chkSetArgument"));
        QVERIFY(download->isChecked());
        QVERIFY(!argument->isChecked());
        download->setChecked(false);
        argument->setChecked(true);
        dialog.Form()->findChild<QPushButton*>(button)->click();
    });
    opened.start(0);
    dialog.Run(QStringLiteral("demo"));
    if (!stored) {
        QCOMPARE(settings.values, before);
        return;
    }
    QCOMPARE(settings.values.size(), 4);
    QCOMPARE(settings.values.value(autoDownload).toBool(), false);
    QCOMPARE(settings.values.value(setArgument).toBool(), true);
    QVERIFY(settings.values.contains(QStringLiteral("vtr.account.demo/popupfinish")));
    QVERIFY(settings.values.contains(QStringLiteral("vtr.account.demo/soundfinish")));
}

void TestWindows::ConfigurationNeedsAUser()
{
    MemorySettings settings;
    ConfigurationDialog dialog(&m_loader, &settings);
    dialog.Run(QString()); // returns at once
    QVERIFY(!dialog.Form()->isVisible());
    QVERIFY(settings.values.isEmpty());
}

void TestWindows::ConfigurationTakesAWholePathForDownloads()
{
    MemorySettings settings;
    ConfigurationDialog dialog(&m_loader, &settings);
    auto* folder = dialog.Form()->findChild<QLineEdit*>(QStringLiteral("lneDownloadFolder"));
    auto* ok = dialog.Form()->findChild<QPushButton*>(QStringLiteral("btnOk"));
    QTimer opened;
    opened.setSingleShot(true);
    connect(&opened, &QTimer::timeout, this, [&] {
        QVERIFY(folder->text().endsWith(QLatin1String("/QuillStar")));
        for (const char* text : {"", "frames", "~/frames"}) {
            folder->setText(QLatin1String(text));
            ok->click(); // does nothing
        }
        folder->setText(QStringLiteral(" /srv//frames/ "));
        ok->click();
    });
    opened.start(0);
    dialog.Run(QStringLiteral("demo"));
    QCOMPARE(settings.values.value(QStringLiteral("vtr.account.demo/downloadfolder")).toString(),
        QStringLiteral("/srv/frames"));
}

void TestWindows::PreviewRefusesWhatIsNoPicture_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("answer");
    QByteArray png;
    QBuffer buffer(&png);
    QImage(300, 200, QImage::Format_RGB32).save(&buffer, "PNG");
    const QByteArray header = "P6\n";
    QTest::newRow("picture") << png << QString();
    QTest::newRow("picture cut off") << png.left(60) << QStringLiteral("The picture is broken.");
    QTest::newRow("empty") << QByteArray()
                           << QStringLiteral("The file is no picture that can be shown here.");
    QTest::newRow("drawing") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>")
                             << QStringLiteral("The file is no picture that can be shown here.");
    QTest::newRow("too wide") << QByteArray(header + "16385 1\n255\n")
                              << QStringLiteral("The picture is too large to be shown here.");
    QTest::newRow("too many pixels") << QByteArray(header + "16384 16384\n255\n")
                                     << QStringLiteral("The picture is too large to be shown here.");
}

void TestWindows::PreviewRefusesWhatIsNoPicture()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("frame_0001.png")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    PreviewWindow window(&m_loader);
    const auto* shown = window.Form()->findChild<QLabel*>(QStringLiteral("lblPicture"));
    window.Open(file.fileName());
    QTRY_VERIFY(!shown->text().isEmpty() || !shown->pixmap(Qt::ReturnByValue).isNull());
    QTEST(shown->text(), "answer");
    QTest::keyClick(window.Form(), Qt::Key_Escape);
    QVERIFY(!window.Form()->isVisible());
}

QTEST_MAIN(TestWindows)
#include "tst_hostui_windows.moc"
