#include "host/services/message_box_service.h"
#include "host/services/ui_loader_service.h"
#include "host/ui/configuration_dialog.h"
#include "host/ui/exr_picture.h"
#include "host/ui/message_text.h"
#include "host/ui/picture_series.h"
#include "host/ui/picture_view.h"
#include "host/ui/preview_window.h"
#include "tests/hostui/memory_settings.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

#include <QtWidgets>

namespace {

QString Lines(int count)
{
    return "textures/wood.png\n"_s.repeated(count).trimmed();
}

const QString question = "Sure?"_s;
const QString two = Lines(2);
const QString many = Lines(10000);

QString LongWord()
{
    return QString(60, QLatin1Char('x'));
}

/// Text, detail, whether the detail is a list, and the contents of the label and of the area.
const std::tuple<const char*, QString, QString, bool, QString, QString> messages[] = {
    {"detail alone", {}, question, true, question, {}},
    {"text and list", question, two, true, question, two},
    {"notice of two lines", {}, two, true, {}, two},
    {"huge text and list", many, two, true, {}, QString(many + "\n\n"_s + two)},
    {"word that cannot be wrapped", {}, LongWord(), false, {}, LongWord()},
};

QStringList YesAndNo()
{
    return QStringList {"btnMessageBox_1"_s, "btnMessageBox_2"_s};
}

/// Buttons, the button or key that is pressed, and the answer.
const std::tuple<const char*, QStringList, const char*, const char*> presses[] = {
    {"first of two", YesAndNo(), "btnMessageBox_1", "btnMessageBox_1"},
    {"none given", {}, "btnMessageBox_1", "btnMessageBox_1"},
    {"enter", YesAndNo(), "Return", "btnMessageBox_1"},
    {"enter on the last", YesAndNo(), "Tab, Return", "btnMessageBox_2"},
    {"escape", YesAndNo(), "Esc", ""},
};

QByteArray Png()
{
    QByteArray png;
    QBuffer buffer(&png);
    QImage(300, 200, QImage::Format_RGB32).save(&buffer, "PNG");
    return png;
}

/// An OpenEXR file in grey, whose header says that it has this size. It holds one line of white and half as bright.
QByteArray Exr(int width, int height, int tile = 0)
{
    const auto number
        = [](qint32 value) { return QByteArray(reinterpret_cast<const char*>(&value), sizeof(value)); };
    const auto attribute = [&](const char* name, const char* type, const QByteArray& value) -> QByteArray {
        return name + QByteArray(1, '\0') + type + '\0' + number(value.size()) + value;
    };
    const QByteArray window = number(0) + number(0) + number(width - 1) + number(height - 1);
    const QByteArray one = number(0x3f800000);
    const QByteArray header = QByteArray("\x76\x2f\x31\x01\2\0\0\0", 8)
        + attribute(
            "channels", "chlist", QByteArray("Y\0", 2) + number(1) + number(0) + number(1) + number(1) + '\0')
        + attribute("compression", "compression", QByteArray(1, '\0'))
        + attribute("dataWindow", "box2i", window) + attribute("displayWindow", "box2i", window)
        + attribute("lineOrder", "lineOrder", QByteArray(1, '\0'))
        + attribute("pixelAspectRatio", "float", one)
        + attribute("screenWindowCenter", "v2f", QByteArray(8, '\0'))
        + attribute("screenWindowWidth", "float", one)
        + (tile ? attribute("tiles", "tiledesc", number(tile) + number(tile) + '\0') : QByteArray()) + '\0';
    return header + number(header.size() + 8) + number(0) + number(0) + number(4)
        + QByteArray("\0\x3c\0\x38", 4);
}

const QString damaged = "The picture is damaged."_s;
const QString tooLarge = "The picture is too large to be shown here."_s;

/// The content of a file, and the message shown instead of a picture.
const std::tuple<const char*, QByteArray, QString> pictures[] = {
    {"picture", Png(), {}},
    {"picture cut off", Png().left(60), damaged},
    {"drawing", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>",
        "The file is not a picture that can be shown here."_s},
    {"too many pixels", "P6\n16384 16384\n255\n", tooLarge},
    {"EXR", Exr(2, 1), {}},
    {"EXR cut off", Exr(2, 1).left(295), damaged},
    {"EXR without most lines", Exr(2, 16000), damaged},
    {"EXR too wide", Exr(16385, 1), tooLarge},
    {"EXR of all the memory", Exr(std::numeric_limits<int>::max(), 16384), tooLarge},
    {"EXR with a huge tile", Exr(2, 1, std::numeric_limits<int>::max()), tooLarge},
};

QVariantHash Captions(const QStringList& buttons)
{
    QVariantHash captions;
    for (const QString& button : buttons)
        captions.insert(button, "Caption & %1"_s.arg(button));
    return captions;
}

/// Acts on the modal dialog that is about to be shown, and closes it if the action did not.
class Then : public Soon
{
public:
    explicit Then(const std::function<void(QDialog*)>& act)
        : Soon([act] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return false;
            act(dialog);
            if (dialog->isVisible()) {
                dialog->reject();
                QTest::qFail("the dialog stays open", __FILE__, __LINE__);
            }
            return true;
        })
    {
    }
};

} // namespace

/// The windows that the host shows by itself: message boxes, the configuration, the preview.
class TestDialogs : public QObject
{
    Q_OBJECT

private slots:
    void ArrangesTexts_data() { AddRows(messages); }
    void ArrangesTexts()
    {
        const auto& [name, text, detail, isList, label, area] = Row(messages);
        const MessageText arranged = ArrangeMessage(text, detail, isList);
        QCOMPARE(QStringList({arranged.label, arranged.area}), QStringList({label, area}));
    }

    void AnswersByButtonAndKey_data() { AddRows(presses); }
    void AnswersByButtonAndKey()
    {
        const auto& [name, buttons, pressed, answer] = Row(presses);
        const Then then([press = QLatin1String(pressed)](QDialog* box) {
            const QKeySequence keys(press);
            QVERIFY(QTest::qWaitForWindowActive(box));
            if (auto* button = box->findChild<QPushButton*>(press))
                button->click();
            for (int i = 0; box->isVisible() && i < keys.count(); ++i)
                QTest::keyClick(box, Qt::Key(keys[i]));
        });
        QCOMPARE(
            m_service.ShowMessage(4, {}, {}, {}, question, Captions(buttons), false), QLatin1String(answer));
    }

    void ShowsTextsAsPlainText()
    {
        const QString text = "<b>bold</b> & <img src='x'>"_s;
        const QString list = "<i>"_s + many;
        const QIcon icon(":/default/main.png"_s);
        for (const auto& [kind, picture] : {std::pair(2, "notice"), std::pair(4, "question")}) {
            const Then then([&, shown = QLatin1String(picture)](QDialog* box) {
                QCOMPARE(box->windowTitle(), text);
                QCOMPARE(box->windowIcon().cacheKey(), icon.cacheKey());
                for (const char* name : {"lblTitle", "lblText"}) {
                    const auto* label = box->findChild<QLabel*>(QLatin1String(name));
                    QCOMPARE(label->text(), text);
                    QCOMPARE(label->textFormat(), Qt::PlainText);
                }
                QCOMPARE(box->findChild<QLabel*>("lblIcon"_s)->property("kind").toString(), shown);
                QCOMPARE(box->findChild<QPushButton*>("b1"_s)->text(), "Caption & b1"_s);
                const auto* area = box->findChild<QPlainTextEdit*>();
                QCOMPARE(area->toPlainText(), list);
                QVERIFY(area->isReadOnly());
                const QSize screen = box->screen()->availableSize();
                QVERIFY(box->width() <= screen.width() && box->height() <= screen.height());
                box->reject();
            });
            m_service.ShowMessage(kind, text, text, icon, list, Captions({"b1"_s}), true);
        }
    }

    void StoresTheConfigurationWhenConfirmed()
    {
        const QVariantMap before {{"vtr.account.demo/autodownload"_s, true}};
        QVariantMap after {{"vtr.account.demo/setargument"_s, true}};
        for (const char* key : {"autodownload", "popupfinish", "soundfinish"})
            after.insert("vtr.account.demo/"_s + QLatin1String(key), false);
        for (const char* button : {"btnCancel", "btnClose", "btnOk"}) {
            MemorySettings settings;
            settings.values = before;
            ConfigurationDialog dialog(&m_loader, &settings);
            dialog.Run(QString()); // returns at once, since nobody is signed in
            const Then then([&](QDialog* shown) {
                for (const char* name : {"chkAutoDownload", "chkSetArgument"}) {
                    auto* box = shown->findChild<QCheckBox*>(QLatin1String(name));
                    QCOMPARE(box->isChecked(), qstrcmp(name, "chkAutoDownload") == 0);
                    box->toggle();
                }
                shown->findChild<QPushButton*>(QLatin1String(button))->click();
            });
            dialog.Run("demo"_s);
            QCOMPARE(settings.values, qstrcmp(button, "btnOk") == 0 ? after : before);
        }
    }

    void TakesFoldersForDownloadsThatCanBeWrittenTo()
    {
        MemorySettings settings;
        ConfigurationDialog dialog(&m_loader, &settings);
        const QSignalSpy cleared(&dialog, &ConfigurationDialog::ClearFinishedRequested);
        const QTemporaryDir place;
        const Then then([&place](QDialog* shown) {
            auto* folder = shown->findChild<QLineEdit*>("lneDownloadFolder"_s);
            auto* ok = shown->findChild<QPushButton*>("btnOk"_s);
            QVERIFY(folder->text().endsWith("/QuillStar"_s));
            shown->findChild<QSpinBox*>("spnKeepDays"_s)->setValue(7);
            shown->findChild<QPushButton*>("btnClearFinished"_s)->click();
            for (const QString& text : {""_s, "frames"_s, "~/frames"_s, "/dev/null/frames"_s,
                     QString(" "_s + place.path() + "//frames/ "_s)}) {
                QVERIFY(shown->isVisible());
                folder->setText(text);
                ok->click();
                auto* trouble = shown->findChild<QLabel*>("lblFolderTrouble"_s);
                QCOMPARE(trouble->isVisible() && trouble->text().contains("Not a directory"_s),
                    text.startsWith("/dev"_s));
            }
        });
        dialog.Run("demo"_s);
        QCOMPARE(settings.values.value("vtr.account.demo/downloadfolder"_s).toString(),
            QString(place.path() + "/frames"_s));
        QCOMPARE(settings.values.value("vtr.account.demo/keepfinisheddays"_s).toInt(), 7);
        QCOMPARE(cleared.count(), 1);
    }

    void PreviewsPicturesOnly_data() { AddRows(pictures); }
    void PreviewsPicturesOnly()
    {
        const auto& [name, content, text] = Row(pictures);
        const QTemporaryDir folder;
        const QString file = folder.filePath("frame_0001.png"_s);
        QVERIFY(WriteFile(file, content));
        PreviewWindow window(&m_loader);
        const auto* shown = window.Form()->findChild<PictureView*>();
        window.Open(file);
        EVENTUALLY(!shown->Text().isEmpty() || !shown->Picture().isNull());
        if (QByteArray(name).startsWith("EXR") && !ExrPicture::IsSupported())
            QSKIP("built without OpenEXR");
        QCOMPARE(shown->Text(), text);
        if (qstrcmp(name, "EXR") == 0)
            QCOMPARE(
                qRed(shown->Picture().pixel(0, 0)) * 1000 + qBlue(shown->Picture().pixel(1, 0)), 255'188);
        QTest::keyClick(window.Form(), Qt::Key_Escape);
        QVERIFY(!window.Form()->isVisible());
    }

    void StepsThroughThePicturesOfAFolder()
    {
        const QTemporaryDir folder;
        for (const char* name : {"b.png", "a.png", "c.png", "notes.txt"})
            QVERIFY(WriteFile(folder.filePath(QLatin1String(name)), Png()));
        PreviewWindow window(&m_loader);
        const auto* title = window.Form()->findChild<QLabel*>("lblTitle"_s);
        window.Open(folder.filePath("b.png"_s));
        QVERIFY(QTest::qWaitForWindowActive(window.Form(), Patience)); // or its keys do nothing
        const auto* position = window.Form()->findChild<QLabel*>("lblPosition"_s);
        EVENTUALLY_COMPARE(position->text(), "2 of 3"_s);
        QStringList shown;
        for (const int key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left}) {
            QTest::keyClick(window.Form(), Qt::Key(key));
            shown.append(title->text());
        }
        QCOMPARE(shown, QStringList({"c.png"_s, "c.png"_s, "b.png"_s, "a.png"_s, "a.png"_s}));
        QCOMPARE(position->text(), "1 of 3"_s);
        EVENTUALLY_COMPARE(window.Form()->findChild<QLabel*>("lblSize"_s)->text(), "300 × 200 pixels"_s);
        QTest::keyClick(window.Form(), Qt::Key_End);
        QCOMPARE(title->text(), "c.png"_s);
        const auto* view = window.Form()->findChild<PictureView*>();
        QTest::keyClick(window.Form(), Qt::Key_1);
        QCOMPARE(view->Zoom(), 1.0);
        QTest::keyClick(window.Form(), Qt::Key_Plus);
        QCOMPARE(view->Zoom(), 1.25);
        QTest::keyClick(window.Form(), Qt::Key_0);
        QVERIFY(view->IsFitted());
        // Playing begins again after the last one.
        QTest::keyClick(window.Form(), Qt::Key_Space);
        EVENTUALLY_COMPARE(title->text(), "b.png"_s);
        QTest::keyClick(window.Form(), Qt::Key_Space);
        QVERIFY(!window.Form()->findChild<QPushButton*>("btnPlay"_s)->isChecked());
    }

private:
    UiLoaderService m_loader {nullptr};
    MessageBoxService m_service {&m_loader};
};

QTEST_MAIN(TestDialogs)
#include "tst_hostui_dialogs.moc"
