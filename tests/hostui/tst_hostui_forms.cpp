#include "host/services/ui_loader_service.h"
#include "host/ui/skins.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

#include <QDirIterator>
#include <QHeaderView>
#include <QImageReader>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>

#include <memory>

/// The forms and skins that the host ships.
class TestForms : public QObject
{
    Q_OBJECT

private slots:
    void ShowsAPageOfRowsInTheMainForm()
    {
        const auto form = MainForm();
        auto* table = form->findChild<QTableWidget*>("twtMyRender"_s);
        table->setRowCount(18);
        form->show();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
        QVERIFY(table->rowHeight(0) >= 32); // the margins of a progress bar take 18 of it
        QVERIFY(table->viewport()->height() >= table->verticalHeader()->length());
    }

    void FitsCaptionsOfEachLanguageIntoTheirButtons()
    {
        const QStringList languages = m_loader.GetLanguages();
        for (const QString& language : languages) {
            m_loader.SetLanguage(language);
            const auto form = MainForm();
            form->show();
            const auto buttons = form->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
            for (QAbstractButton* button : buttons) {
                button->ensurePolished();
                button->setText(QCoreApplication::translate("VTQsClientPrivate", qPrintable(button->text())));
                const QString failure = language + QLatin1Char(' ') + button->objectName();
                if (!button->text().isEmpty())
                    QVERIFY2(QTest::qWaitFor([&] { return button->sizeHint().width() <= button->width(); }),
                        qPrintable(failure));
            }
        }
    }

    void ShipsWholeSkins_data()
    {
        QTest::addColumn<QString>("skin");
        QTest::newRow("default") << "default"_s;
        QTest::newRow("dark") << "dark"_s;
    }

    void ShipsWholeSkins()
    {
        QFETCH(QString, skin);
        const QString folder = QLatin1String(":/") + skin + QLatin1Char('/');
        QStringList pictures;
        for (const char* name : {"main", "warning", "siblings_normal", "siblings_closed_normal",
                 "../default/en_normal", "../default/en_hover", "../default/en_pressed",
                 "../default/zh_normal", "../default/zh_hover", "../default/zh_pressed"})
            pictures.append(QDir::cleanPath(folder + QLatin1String(name) + QLatin1String(".png")));
        QDirIterator sheets(
            folder, {"*.qss"_s, "*.ini"_s, "*.svg"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (sheets.hasNext()) {
            const QString path = sheets.next();
            const QString text = QString::fromUtf8(ReadFile(path));
            QVERIFY2(!text.contains(QLatin1Char('@')), qPrintable(path)); // a colour that the palette lacks
            auto found = QRegularExpression("url\\(([^)]+)\\)"_s).globalMatch(text);
            while (found.hasNext())
                pictures.append(found.next().captured(1));
        }
        QVERIFY(pictures.size() > 20);
        for (const QString& picture : qAsConst(pictures))
            QVERIFY2(!QImageReader(picture).read().isNull(), qPrintable(picture));
    }

private:
    std::unique_ptr<QWidget> MainForm()
    {
        std::unique_ptr<QWidget> form(m_loader.LoadUi("com.vtr.qsclient"_s, nullptr));
        form->setStyleSheet(Skins::StyleSheet(m_loader.GetSkin(), "com.vtr.qsclient"_s));
        return form;
    }

    UiLoaderService m_loader {nullptr};
};

QTEST_MAIN(TestForms)
#include "tst_hostui_forms.moc"
