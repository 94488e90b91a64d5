#include "message_box_service.h"
#include "message_text.h"
#include "ui_loader_service.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace {

const QVariantHash CancelAndOk {
    {QStringLiteral("btnMessageBox_1"), QStringLiteral("Cancel")},
    {QStringLiteral("btnMessageBox_2"), QStringLiteral("Ok")},
};

QString Lines(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(QStringLiteral("textures/wood_%1.png").arg(i));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void TextsFindTheirPlace_data();
    void TextsFindTheirPlace();
    void AnswersByButton_data();
    void AnswersByButton();
    void AnswersByKeyAndClose_data();
    void AnswersByKeyAndClose();
    void ShowsWhatItIsGiven();
    void MarkupStaysText();
    void HugeTextFitsTheScreen();
    void EndsWithTheApplication();

private:
    /// Shows a box, lets `act` do something to it once it is visible, and returns the answer.
    QString Ask(const std::function<void(QDialog*)>& act, const QString& text, const QString& detail,
        const QVariantHash& buttons = CancelAndOk, int kind = 4, bool list = false)
    {
        QTimer waiting;
        connect(&waiting, &QTimer::timeout, this, [&] {
            auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            waiting.stop();
            act(box);
        });
        waiting.start(0);
        return m_service.ShowMessage(kind, m_title, text, m_icon, detail, buttons, list);
    }

    UiLoaderService m_loader {nullptr};
    MessageBoxService m_service {&m_loader};
    QString m_title = QStringLiteral("QuillStar Client");
    QIcon m_icon {QStringLiteral(":/default/main.png")};
};

void TestMessageBox::TextsFindTheirPlace_data()
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
    const QString path = QString(60, QLatin1Char('x'));
    QTest::newRow("nothing") << none << none << false << none << none;
    QTest::newRow("detail alone") << none << question << false << question << none;
    QTest::newRow("notice") << none << question << true << question << none;
    QTest::newRow("text and list") << question << two << true << question << two;
    QTest::newRow("text and one line") << question << question << false << question << question;
    QTest::newRow("question of two lines") << none << two << false << two << none;
    QTest::newRow("notice of two lines") << none << two << true << none << two;
    QTest::newRow("huge question") << none << many << false << none << many;
    QTest::newRow("huge text") << many << none << true << none << many;
    QTest::newRow("huge text with detail")
        << many << two << true << none << QString(many + QStringLiteral("\n\n") + two);
    QTest::newRow("word that cannot be wrapped") << none << path << false << none << path;
}

void TestMessageBox::TextsFindTheirPlace()
{
    QFETCH(QString, text);
    QFETCH(QString, detail);
    QFETCH(bool, list);
    const MessageText message = ArrangeMessage(text, detail, list);
    QTEST(message.label, "label");
    QTEST(message.area, "area");
}

void TestMessageBox::AnswersByButton_data()
{
    QTest::addColumn<QVariantHash>("buttons");
    QTest::addColumn<QStringList>("order");
    const QVariant caption = QStringLiteral("Go");
    const auto name = [](int number) { return QStringLiteral("btnMessageBox_%1").arg(number); };
    QTest::newRow("one") << QVariantHash {{name(1), caption}} << QStringList {name(1)};
    QTest::newRow("two") << CancelAndOk << QStringList {name(1), name(2)};
    QTest::newRow("ten after two") << QVariantHash {{name(10), caption}, {name(2), caption},
        {name(1), caption}} << QStringList {name(1), name(2), name(10)};
    QTest::newRow("none") << QVariantHash() << QStringList {name(1)};
}

void TestMessageBox::AnswersByButton()
{
    QFETCH(QVariantHash, buttons);
    QFETCH(QStringList, order);
    for (const QString& name : qAsConst(order)) {
        QStringList shown;
        const QString answer = Ask(
            [&](QDialog* box) {
                const auto* row = box->findChild<QWidget*>(QStringLiteral("wgtButtons"));
                QMap<int, QString> byPlace;
                const auto found = row->findChildren<QPushButton*>();
                for (const QPushButton* button : found)
                    byPlace.insert(button->x(), button->objectName());
                shown = byPlace.values();
                row->findChild<QPushButton*>(name)->click();
            },
            QString(), QStringLiteral("Sure?"), buttons);
        QCOMPARE(shown, order);
        QCOMPARE(answer, name);
    }
}

void TestMessageBox::AnswersByKeyAndClose_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("answer");
    QTest::newRow("enter") << int(Qt::Key_Return) << QStringLiteral("btnMessageBox_2");
    QTest::newRow("escape") << int(Qt::Key_Escape) << QString();
    QTest::newRow("close button") << 0 << QString();
}

void TestMessageBox::AnswersByKeyAndClose()
{
    QFETCH(int, key);
    const QString answer = Ask(
        [&](QDialog* box) {
            if (key != 0)
                QTest::keyClick(box, Qt::Key(key));
            else
                box->findChild<QPushButton*>(QStringLiteral("btnClose"))->click();
        },
        QString(), QStringLiteral("Sure?"));
    QTEST(answer, "answer");
}

void TestMessageBox::ShowsWhatItIsGiven()
{
    for (const int kind : {2, 4}) {
        Ask(
            [&](QDialog* box) {
                QCOMPARE(box->windowTitle(), m_title);
                QCOMPARE(box->findChild<QLabel*>(QStringLiteral("lblTitle"))->text(), m_title);
                QCOMPARE(box->windowIcon().cacheKey(), m_icon.cacheKey());
                QCOMPARE(box->findChild<QLabel*>(QStringLiteral("lblIcon"))->property("kind").toString(),
                    kind == 2 ? QStringLiteral("notice") : QStringLiteral("question"));
                QCOMPARE(box->findChild<QPushButton*>(QStringLiteral("btnMessageBox_1"))->text(),
                    QStringLiteral("Cancel"));
                QVERIFY(box->findChild<QPlainTextEdit*>()->isReadOnly());
                box->reject();
            },
            QStringLiteral("Retry?"), Lines(3), CancelAndOk, kind, true);
    }
}

void TestMessageBox::MarkupStaysText()
{
    const QString markup = QStringLiteral("<b>bold</b> & <img src='x'>");
    Ask(
        [&](QDialog* box) {
            const auto* label = box->findChild<QLabel*>(QStringLiteral("lblText"));
            QCOMPARE(label->text(), markup);
            QCOMPARE(label->textFormat(), Qt::PlainText);
            QCOMPARE(box->findChild<QLabel*>(QStringLiteral("lblTitle"))->textFormat(), Qt::PlainText);
            QCOMPARE(box->findChild<QPlainTextEdit*>()->toPlainText(), markup);
            box->reject();
        },
        markup, markup);
}

void TestMessageBox::HugeTextFitsTheScreen()
{
    const QString lines = Lines(10000);
    for (const QString& text : {QString(), QStringLiteral("Retry?"), lines}) {
        Ask(
            [&](QDialog* box) {
                const QSize screen = box->screen()->availableSize();
                QVERIFY(box->width() <= screen.width() && box->height() <= screen.height());
                QVERIFY(box->findChild<QPlainTextEdit*>()->toPlainText().contains(lines));
                box->reject();
            },
            text, lines, CancelAndOk, 4, true);
    }
}

void TestMessageBox::EndsWithTheApplication()
{
    QString answer = QStringLiteral("none");
    QTimer started;
    started.setSingleShot(true);
    connect(&started, &QTimer::timeout, this, [&] {
        answer = Ask([](QDialog*) { QCoreApplication::quit(); }, QString(), QStringLiteral("Sure?"));
    });
    started.start(0);
    QCoreApplication::exec();
    QCOMPARE(answer, QString());
}

QTEST_MAIN(TestMessageBox)
#include "tst_hostui_messagebox.moc"
