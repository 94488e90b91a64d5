#include "host/services/ui_loader_service.h"
#include "host/ui/skins.h"

#include <QDirIterator>
#include <QHeaderView>
#include <QImageReader>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

/// A colour of the palette, the grounds that it lies on and the least contrast there.
struct Pairing
{
    const char* text;
    const char* grounds;
    double contrast;
};

constexpr Pairing Pairings[] = {
    {"text", "window surface surface_alt field hover pressed selection", 4.5},
    {"text_muted", "window surface surface_alt field", 4.5},
    {"text_disabled", "window surface surface_alt", 3},
    {"icon", "window surface hover pressed danger_soft", 3},
    {"accent_text", "window surface surface_alt field", 4.5},
    {"accent_strong", "selection", 4.5},
    {"on_accent", "accent accent_hover accent_pressed danger danger_pressed", 4.5},
    {"on_accent_off", "accent_off", 3},
    {"danger_text", "surface danger_soft", 4.5},
    {"on_brand", "brand_top brand_bottom", 4.5},
    {"on_brand_muted", "brand_top brand_bottom", 4.5},
    {"on_tip", "tip", 4.5},
};

/// Relative luminance as the web's accessibility guidelines define it.
double Luminance(const QColor& color)
{
    const auto linear
        = [](double part) { return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other)
{
    const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QMap<QString, QColor> Palette(const QString& skin)
{
    QFile file(QStringLiteral(SKINS_FOLDER "/%1/palette.cmake").arg(skin));
    QMap<QString, QColor> colors;
    if (!file.open(QIODevice::ReadOnly))
        return colors;
    auto found = QRegularExpression(QStringLiteral("set\\((\\w+) \"(#[0-9a-f]{6})\"\\)"))
                     .globalMatch(QString::fromUtf8(file.readAll()));
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        colors.insert(match.captured(1), QColor(match.captured(2)));
    }
    return colors;
}

} // namespace

class TestForms : public QObject
{
    Q_OBJECT

private slots:
    void MainFormIsSetUp();
    void DefaultFormShowsAPageOfRows();
    void CaptionsFit_data();
    void CaptionsFit();
    void SkinFilesAreWhole_data();
    void SkinFilesAreWhole();
    void ColorsAreLegible_data() { SkinFilesAreWhole_data(); }
    void ColorsAreLegible();

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

void TestForms::CaptionsFit_data()
{
    QTest::addColumn<QString>("language");
    const QStringList languages = m_loader.GetLanguages();
    for (const QString& language : languages)
        QTest::newRow(qPrintable(QFileInfo(language).fileName())) << language;
}

void TestForms::CaptionsFit()
{
    QFETCH(QString, language);
    m_loader.SetLanguage(language);
    const auto form = Load("com.vtr.qsclient");
    form->show();
    const auto buttons = form->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
    for (QAbstractButton* button : buttons) {
        button->ensurePolished();
        button->setText(QCoreApplication::translate("VTQsClientPrivate", qPrintable(button->text())));
        if (!button->text().isEmpty())
            QTRY_VERIFY2(button->sizeHint().width() <= button->width(), qPrintable(button->objectName()));
    }
}

void TestForms::SkinFilesAreWhole_data()
{
    QTest::addColumn<QString>("skin");
    QTest::newRow("default") << QStringLiteral("default");
    QTest::newRow("dark") << QStringLiteral("dark");
}

void TestForms::SkinFilesAreWhole()
{
    QFETCH(QString, skin);
    const QRegularExpression picture(QStringLiteral("url\\(([^)]+)\\)"));
    int pictures = 0;
    QDirIterator files(QLatin1String(":/") + skin,
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
    for (const char* name : {"main.png", "warning.png", "siblings_normal.png", "siblings_closed_normal.png"})
        QVERIFY2(QFile::exists(QLatin1String(":/") + skin + QLatin1Char('/') + QLatin1String(name)), name);
    for (const char* name : {"en_normal.png", "en_hover.png", "en_pressed.png", "zh_normal.png",
             "zh_hover.png", "zh_pressed.png"})
        QVERIFY2(QFile::exists(QLatin1String(":/default/") + QLatin1String(name)), name);
}

void TestForms::ColorsAreLegible()
{
    QFETCH(QString, skin);
    const QMap<QString, QColor> colors = Palette(skin);
    for (const Pairing& pairing : Pairings) {
        const QStringList grounds = QString::fromLatin1(pairing.grounds).split(QLatin1Char(' '));
        for (const QString& ground : grounds) {
            const double contrast = Contrast(colors.value(QLatin1String(pairing.text)), colors.value(ground));
            QVERIFY2(contrast >= pairing.contrast,
                qPrintable(
                    QStringLiteral("%1 on %2: %3").arg(QLatin1String(pairing.text), ground).arg(contrast)));
        }
    }
}

QTEST_MAIN(TestForms)
#include "tst_hostui_forms.moc"
