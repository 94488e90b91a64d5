#include "form_roster.h"
#include "skins.h"
#include "ui_loader_service.h"

#include <QDialog>
#include <QDirIterator>
#include <QHeaderView>
#include <QImageReader>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

#include <memory>

class TestForms : public QObject
{
    Q_OBJECT

private slots:
    void RosterIsComplete_data();
    void RosterIsComplete();
    void MainFormIsSetUp();
    void DefaultFormShowsAPageOfRows();
    void CaptionsFit();
    void SkinFilesAreWhole();

private:
    std::unique_ptr<QWidget> Load(const char* key)
    {
        std::unique_ptr<QWidget> form(m_loader.LoadUi(QLatin1String(key), nullptr));
        if (form)
            form->setStyleSheet(Skins::StyleSheet(m_loader.GetSkin(), QLatin1String(key)));
        return form;
    }

    UiLoaderService m_loader {nullptr};
};

void TestForms::RosterIsComplete_data()
{
    QTest::addColumn<QString>("key");
    for (const char* key : {"com.vtr.qsclient", "com.vtr.search", "com.vtr.setargument", "com.vtr.setparent",
             "com.vtr.inputdialog"})
        QTest::newRow(key) << QString::fromLatin1(key);
}

/// The client's own tests run on stand-in forms; the real ones must not lack anything of theirs.
void TestForms::RosterIsComplete()
{
    QFETCH(QString, key);
    const auto form = Load(qPrintable(key));
    QVERIFY(form);
    const std::unique_ptr<QWidget> standIn(NewForm(key, {}));
    QCOMPARE(bool(qobject_cast<QDialog*>(form.get())), bool(qobject_cast<QDialog*>(standIn.get())));
    const auto wanted = standIn->findChildren<QWidget*>(QRegularExpression(QStringLiteral("^(?!qt_).")));
    QVERIFY(!wanted.isEmpty());
    for (const QWidget* widget : wanted) {
        const QByteArray name = widget->objectName().toUtf8();
        const auto found = form->findChildren<QWidget*>(widget->objectName());
        QVERIFY2(found.size() == 1 && found[0]->inherits(widget->metaObject()->className()), name);
    }
}

void TestForms::MainFormIsSetUp()
{
    const auto form = Load("com.vtr.qsclient");
    // What the client moves is placed by the form itself.
    for (const char* name :
        {"btnPrePage", "btnPreGroup", "btnPageOne", "btnPageTwo", "btnPageThree", "btnPageFour",
            "btnPageFive", "btnNextGroup", "btnNextPage", "chkAll", "btnDelete", "btnFullRender", "btnPause",
            "btnSearch", "btnRecover", "btnRestart", "btnStop", "tbwContainer", "wgtGroup"})
        QVERIFY2(form->findChild<QWidget*>(QLatin1String(name), Qt::FindDirectChildrenOnly), name);
    QVERIFY(!form->layout() && !form->findChild<QWidget*>(QStringLiteral("wgtGroup"))->layout());
    QVERIFY(!Load("com.vtr.setargument")->layout());
    for (const char* hidden : {"btnStop", "btnSystemMaxmax", "myRender"})
        QVERIFY2(form->findChild<QWidget*>(QLatin1String(hidden))->isHidden(), hidden);
    const auto tables = form->findChildren<QTableWidget*>();
    for (const QTableWidget* table : tables) {
        QCOMPARE(table->columnCount(), 6);
        QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
        QCOMPARE(table->contextMenuPolicy(), Qt::CustomContextMenu);
        QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    }
}

void TestForms::DefaultFormShowsAPageOfRows()
{
    const auto form = Load("com.vtr.qsclient");
    auto* table = form->findChild<QTableWidget*>(QStringLiteral("twtMyRender"));
    table->setRowCount(18);
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    QVERIFY(table->rowHeight(0) >= 32); // the margins of a progress bar take 18 of it
    QVERIFY(table->viewport()->height() >= table->verticalHeader()->length());
}

void TestForms::CaptionsFit()
{
    const auto form = Load("com.vtr.qsclient");
    form->show();
    const auto buttons = form->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
    for (QAbstractButton* button : buttons) {
        button->ensurePolished();
        if (!button->text().isEmpty())
            QVERIFY2(button->sizeHint().width() <= button->width(), qPrintable(button->objectName()));
    }
}

void TestForms::SkinFilesAreWhole()
{
    const QRegularExpression picture(QStringLiteral("url\\(([^)]+)\\)"));
    int pictures = 0;
    QDirIterator files(QStringLiteral(":/default"),
        {QStringLiteral("*.qss"), QStringLiteral("*.ini"), QStringLiteral("*.svg"), QStringLiteral("*.png")},
        QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (path.endsWith(QLatin1String(".svg")) || path.endsWith(QLatin1String(".png"))) {
            QVERIFY2(!QImageReader(path).read().isNull(), qPrintable(path));
            continue;
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY2(!text.contains(QLatin1Char('@')), qPrintable(path)); // a colour that the palette lacks
        auto found = picture.globalMatch(text);
        while (found.hasNext()) {
            const QString name = found.next().captured(1);
            QVERIFY2(QFile::exists(name), qPrintable(path + QLatin1Char(' ') + name));
            ++pictures;
        }
    }
    QVERIFY(pictures > 0);
    for (const char* name : {"main.png", "warning.png", "siblings_normal.png", "siblings_closed_normal.png",
             "en_normal.png", "en_hover.png", "en_pressed.png"})
        QVERIFY2(QFile::exists(QLatin1String(":/default/") + QLatin1String(name)), name);
}

QTEST_MAIN(TestForms)
#include "tst_hostui_forms.moc"
