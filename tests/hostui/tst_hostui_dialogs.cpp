#include "host/services/message_box_service.h"
#include "host/services/ui_loader_service.h"
#include "host/ui/configuration_dialog.h"
#include "host/ui/message_text.h"
#include "host/ui/preview_window.h"
#include "tests/hostui/memory_settings.h"

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace {

QString Lines(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(QStringLiteral("textures/wood_%1.png").arg(i));
    return lines.join(QLatin1Char('\n'));
}

QString ButtonName(int number)
{
    return QStringLiteral("btnMessageBox_%1").arg(number);
}

QVariantHash Buttons(const QList<int>& numbers)
{
    QVariantHash buttons;
    for (const int number : numbers)
        buttons.insert(ButtonName(number), QStringLiteral("Caption & %1").arg(number));
    return buttons;
}

QStringList NamesFromLeftToRight(const QWidget* row)
{
    QMap<int, QString> names;
    const auto buttons = row->findChildren<QPushButton*>();
    for (const QPushButton* button : buttons)
        names.insert(button->x(), button->objectName());
    return names.values();
}

/// Does something once events are handled, also those of a modal dialog.
class Soon : public QTimer
{
public:
    explicit Soon(const std::function<void()>& act)
    {
        setSingleShot(true);
        connect(this, &QTimer::timeout, act);
        start(0);
    }
};

/// Does something to the modal dialog that is about to be shown, which must close it.
class Then : public Soon
{
public:
    explicit Then(const std::function<void(QDialog*)>& act)
        : Soon([act] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            act(dialog);
            if (!dialog->isVisible())
                return;
            dialog->reject();
            QFAIL("the dialog stays open");
        })
    {
    }
};

} // namespace

/// The dialogs that the host shows by itself: message boxes and the configuration.
class TestDialogs : public QObject
{
    Q_OBJECT

private slots:
    void TextsFindTheirPlace_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("detail");
        QTest::addColumn<bool>("list");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("area");
        const QString none;
        const QString question = QStringLiteral("Sure?");
        const QString two = Lines(2);
        const QString many = Lines(10000);
        const QString path(60, QLatin1Char('x'));
        QTest::newRow("nothing") << none << none << false << none << none;
        QTest::newRow("detail alone") << none << question << false << question << none;
        QTest::newRow("notice") << none << question << true << question << none;
        QTest::newRow("text and list") << question << two << true << question << two;
        QTest::newRow("question of two lines") << none << two << false << two << none;
        QTest::newRow("notice of two lines") << none << two << true << none << two;
        QTest::newRow("huge question") << none << many << false << none << many;
        QTest::newRow("huge text") << many << none << true << none << many;
        QTest::newRow("both") << many << two << true << none << QString(many + QStringLiteral("\n\n") + two);
        QTest::newRow("word that cannot be wrapped") << none << path << false << none << path;
    }

    void TextsFindTheirPlace()
    {
        QFETCH(QString, text);
        QFETCH(QString, detail);
        QFETCH(bool, list);
        const MessageText message = ArrangeMessage(text, detail, list);
        QTEST(message.label, "label");
        QTEST(message.area, "area");
    }

    void AnswersByButtonKeyAndClose_data()
    {
        QTest::addColumn<QList<int>>("numbers");
        QTest::addColumn<QString>("pressed");
        QTest::addColumn<QString>("answer");
        const QList<int> two {1, 2};
        QTest::newRow("only one") << QList<int> {1} << ButtonName(1) << ButtonName(1);
        QTest::newRow("first of two") << two << ButtonName(1) << ButtonName(1);
        QTest::newRow("second of two") << two << ButtonName(2) << ButtonName(2);
        QTest::newRow("ten after two") << QList<int> {1, 2, 10} << ButtonName(10) << ButtonName(10);
        QTest::newRow("none given") << QList<int>() << ButtonName(1) << ButtonName(1);
        QTest::newRow("enter") << two << "Return" << ButtonName(2);
        QTest::newRow("escape") << two << "Esc" << QString();
        QTest::newRow("close button") << two << "btnClose" << QString();
    }

    void AnswersByButtonKeyAndClose()
    {
        QFETCH(QList<int>, numbers);
        QFETCH(QString, pressed);
        QStringList shown;
        const Then then([&](QDialog* box) {
            shown = NamesFromLeftToRight(box->findChild<QWidget*>(QStringLiteral("wgtButtons")));
            if (auto* button = box->findChild<QPushButton*>(pressed))
                button->click();
            else
                QTest::keyClick(box, Qt::Key(QKeySequence(pressed)[0]));
        });
        QTEST(
            m_service.ShowMessage(4, {}, {}, {}, QStringLiteral("Sure?"), Buttons(numbers), false), "answer");
        QStringList order;
        for (const int number : numbers.isEmpty() ? QList<int> {1} : numbers)
            order.append(ButtonName(number));
        QCOMPARE(shown, order);
    }

    void ShowsWhatItIsGivenAsPlainText()
    {
        const QString text = QStringLiteral("<b>bold</b> & <img src='x'>");
        const QString list = QStringLiteral("<i>") + Lines(10000);
        const QIcon icon(QStringLiteral(":/default/main.png"));
        for (const auto& [kind, picture] : {std::pair(2, "notice"), std::pair(4, "question")}) {
            const Then then([&, shown = QLatin1String(picture)](QDialog* box) {
                QCOMPARE(box->windowTitle(), text);
                QCOMPARE(box->windowIcon().cacheKey(), icon.cacheKey());
                for (const char* name : {"lblTitle", "lblText"}) {
                    const auto* label = box->findChild<QLabel*>(QLatin1String(name));
                    QCOMPARE(label->text(), text);
                    QCOMPARE(label->textFormat(), Qt::PlainText);
                }
                QCOMPARE(
                    box->findChild<QLabel*>(QStringLiteral("lblIcon"))->property("kind").toString(), shown);
                QCOMPARE(box->findChild<QPushButton*>(ButtonName(1))->text(), QStringLiteral("Caption & 1"));
                const auto* area = box->findChild<QPlainTextEdit*>();
                QCOMPARE(area->toPlainText(), list);
                QVERIFY(area->isReadOnly());
                const QSize screen = box->screen()->availableSize();
                QVERIFY(box->width() <= screen.width() && box->height() <= screen.height());
                box->reject();
            });
            m_service.ShowMessage(kind, text, text, icon, list, Buttons({1, 2}), true);
        }
    }

    void EndsWithTheApplication()
    {
        QString answer = QStringLiteral("none");
        const Soon ask([&] {
            const Soon quit(&QCoreApplication::quit);
            answer = m_service.ShowMessage(4, {}, {}, {}, QStringLiteral("Sure?"), Buttons({1, 2}), false);
        });
        QCoreApplication::exec();
        QCOMPARE(answer, QString());
    }

    void ConfigurationStoresWhatIsConfirmed_data()
    {
        QTest::addColumn<QString>("button");
        for (const char* button : {"btnOk", "btnCancel", "btnClose"})
            QTest::newRow(button) << QString::fromLatin1(button);
    }

    void ConfigurationStoresWhatIsConfirmed()
    {
        QFETCH(QString, button);
        const QString prefix = QStringLiteral("vtr.account.demo/");
        const QVariantMap before {{prefix + QStringLiteral("autodownload"), true}};
        const QVariantMap after {{prefix + QStringLiteral("autodownload"), false},
            {prefix + QStringLiteral("popupfinish"), false}, {prefix + QStringLiteral("soundfinish"), false},
            {prefix + QStringLiteral("setargument"), true}};
        MemorySettings settings;
        settings.values = before;
        ConfigurationDialog dialog(&m_loader, &settings);
        dialog.Run(QString()); // nobody's: returns at once
        QCOMPARE(settings.values, before);
        const Then then([&](QDialog* shown) {
            auto* download = shown->findChild<QCheckBox*>(QStringLiteral("chkAutoDownload"));
            auto* argument = shown->findChild<QCheckBox*>(QStringLiteral("chkSetArgument"));
            QVERIFY(download->isChecked() && !argument->isChecked());
            download->setChecked(false);
            argument->setChecked(true);
            shown->findChild<QPushButton*>(button)->click();
        });
        dialog.Run(QStringLiteral("demo"));
        QCOMPARE(settings.values, button == QLatin1String("btnOk") ? after : before);
    }

    void ConfigurationTakesAWholePathForDownloads()
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

    void PreviewRefusesWhatIsNoPicture_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("answer");
        QByteArray png;
        QBuffer buffer(&png);
        QImage(300, 200, QImage::Format_RGB32).save(&buffer, "PNG");
        const QByteArray header = "P6\n";
        QTest::newRow("picture") << png << QString();
        QTest::newRow("picture cut off") << png.left(60) << QStringLiteral("The picture is damaged.");
        QTest::newRow("empty") << QByteArray()
                               << QStringLiteral("The file is not a picture that can be shown here.");
        QTest::newRow("drawing") << QByteArray(
            "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>")
                                 << QStringLiteral("The file is not a picture that can be shown here.");
        QTest::newRow("too wide") << QByteArray(header + "16385 1\n255\n")
                                  << QStringLiteral("The picture is too large to be shown here.");
        QTest::newRow("too many pixels") << QByteArray(header + "16384 16384\n255\n")
                                         << QStringLiteral("The picture is too large to be shown here.");
    }

    void PreviewRefusesWhatIsNoPicture()
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

private:
    UiLoaderService m_loader {nullptr};
    MessageBoxService m_service {&m_loader};
};

QTEST_MAIN(TestDialogs)
#include "tst_hostui_dialogs.moc"
