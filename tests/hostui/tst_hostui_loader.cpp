#include "host/services/ui_loader_service.h"
#include "host/ui/sign_in_window.h"
#include "tests/hostui/memory_settings.h"

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

const QString Tray = QStringLiteral("menuTray");

QStringList FileNames(const QStringList& paths)
{
    QStringList names;
    for (const QString& path : paths)
        names.append(QFileInfo(path).fileName());
    return names;
}

QString CheckedText(const QMenu* menu)
{
    QStringList texts;
    const auto actions = menu->actions();
    for (const QAction* action : actions) {
        if (action->isChecked())
            texts.append(action->text());
    }
    return texts.join(QLatin1Char(','));
}

} // namespace

class TestLoader : public QObject
{
    Q_OBJECT

private slots:
    void BadKeysGiveNoForm();
    void SkinsAreListedAndSwitched();
    void LanguagesAreListedAndSwitched();
    void ChoicesAreRememberedAndRubbishIsNot();
    void MenusChoose();
    void OpenWindowShowsAndTells();
    void MainFormIsFramelessAndFollowsItsLayout();
};

void TestLoader::BadKeysGiveNoForm()
{
    UiLoaderService loader(nullptr);
    for (const char* key :
        {"com.vtr.nothing", "", "../forms/com.vtr.search", "/forms/com.vtr.search", "*", "COM.VTR.SEARCH"}) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^there is no form ")));
        QVERIFY2(!loader.LoadUi(QLatin1String(key), nullptr), key);
    }
}

void TestLoader::SkinsAreListedAndSwitched()
{
    UiLoaderService loader(nullptr);
    QCOMPARE(loader.GetSkins(),
        QStringList({QStringLiteral("dark"), QStringLiteral("default"), QStringLiteral("night")}));
    QCOMPARE(loader.GetSkin(), QStringLiteral("default"));

    QSignalSpy changed(&loader, &UiLoaderService::SkinChanged);
    for (const char* name : {"default", "forms", "", "../default", "Night"})
        loader.SetSkin(QLatin1String(name));
    QCOMPARE(changed.size(), 0);
    loader.SetSkin(QStringLiteral("night"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toString(), QStringLiteral("night"));
    QCOMPARE(loader.GetSkin(), QStringLiteral("night"));
}

void TestLoader::LanguagesAreListedAndSwitched()
{
    UiLoaderService loader(nullptr);
    const QStringList languages = loader.GetLanguages();
    QCOMPARE(FileNames(languages),
        QStringList({QStringLiteral("vtr_de.qm"), QStringLiteral("vtr_en.qm"), QStringLiteral("vtr_zh.qm")}));
    QCOMPARE(loader.GetLanguage(), QStringLiteral("vtr_en.qm"));

    const SignInWindow window(&loader);
    const auto* fixed = window.Form()->findChild<QLabel*>(QStringLiteral("lblName"));
    const auto* button = window.Form()->findChild<QPushButton*>(QStringLiteral("btnSignIn"));
    QSignalSpy changed(&loader, &UiLoaderService::LanguageChanged);
    loader.SetLanguage(QStringLiteral("vtr_de.qm")); // not as listed
    loader.SetLanguage(languages[1]);                // the present one
    QCOMPARE(changed.size(), 0);
    loader.SetLanguage(languages[0]);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toString(), languages[0]);
    QCOMPARE(loader.GetLanguage(), QStringLiteral("vtr_de.qm"));
    QTRY_COMPARE(fixed->text(), QStringLiteral("Benutzername"));
    QTRY_COMPARE(button->text(), QStringLiteral("Anmelden"));
    loader.SetLanguage(languages[1]);
    QTRY_COMPARE(fixed->text(), QStringLiteral("User name"));
}

void TestLoader::ChoicesAreRememberedAndRubbishIsNot()
{
    MemorySettings settings;
    {
        UiLoaderService loader(&settings);
        loader.SetSkin(QStringLiteral("night"));
        loader.SetLanguage(loader.GetLanguages().constFirst());
    }
    {
        UiLoaderService next(&settings);
        QCOMPARE(next.GetSkin(), QStringLiteral("night"));
        QCOMPARE(next.GetLanguage(), QStringLiteral("vtr_de.qm"));
        QCOMPARE(QCoreApplication::translate("TrayMenu", "Language"), QStringLiteral("Sprache"));
    }
    settings.values = {{QStringLiteral("vtr.ui/skin"), QStringLiteral("../../etc")},
        {QStringLiteral("vtr.ui/language"), QVariantList {1, 2}}};
    UiLoaderService loader(&settings);
    QCOMPARE(loader.GetSkin(), QStringLiteral("default"));
    QCOMPARE(loader.GetLanguage(), QStringLiteral("vtr_en.qm"));
}

void TestLoader::MenusChoose()
{
    UiLoaderService loader(nullptr);
    const QMenu* tray = loader.GetMenu(Tray, QString());
    QMenu* skins = loader.GetMenu(Tray, QStringLiteral("meuSkin"));
    QMenu* languages = loader.GetMenu(Tray, QStringLiteral("meuLanguage"));
    QVERIFY(tray && skins && languages);
    QCOMPARE(loader.GetMenu(QStringLiteral("meuSkin"), QString()), nullptr);
    QCOMPARE(loader.GetMenu(Tray, QStringLiteral("meuNothing")), nullptr);

    QCOMPARE(CheckedText(skins), QStringLiteral("Default"));
    skins->actions().constLast()->trigger();
    QCOMPARE(loader.GetSkin(), QStringLiteral("night"));
    QCOMPARE(CheckedText(skins), QStringLiteral("Night"));
    QCOMPARE(skins->actions().size(), 3);

    languages->actions().constFirst()->trigger();
    QCOMPARE(loader.GetLanguage(), QStringLiteral("vtr_de.qm"));
    QCOMPARE(CheckedText(languages), QStringLiteral("Deutsch"));
    QCOMPARE(languages->title(), QStringLiteral("Sprache"));
}

void TestLoader::OpenWindowShowsAndTells()
{
    UiLoaderService loader(nullptr);
    QSignalSpy told(&loader, &UiLoaderService::ShowWindow);
    const QString key = QStringLiteral("com.vtr.authclient");
    auto window = std::make_unique<QWidget>();
    loader.RegisterWindow(key, window.get());
    loader.OpenWindow(key);
    QVERIFY(window->isVisible());
    window.reset();
    loader.OpenWindow(key);                                // gone meanwhile
    loader.OpenWindow(QStringLiteral("com.vtr.qsclient")); // never registered
    QCOMPARE(told.size(), 3);
    QCOMPARE(told[2][0].toString(), QStringLiteral("com.vtr.qsclient"));
}

void TestLoader::MainFormIsFramelessAndFollowsItsLayout()
{
    UiLoaderService loader(nullptr);
    const std::unique_ptr<QWidget> form(loader.LoadUi(QStringLiteral("com.vtr.qsclient"), nullptr));
    QVERIFY(form->windowFlags() & Qt::FramelessWindowHint);
    const QString layout = QStringLiteral(":/default/com.vtr.qsclient.ini");
    const auto places = [&form] {
        QList<QRect> found;
        for (const char* name : {"tbwContainer", "btnNextPage", "btnPageOne", "btnDelete"})
            found.append(form->findChild<QWidget*>(QLatin1String(name))->geometry());
        return found;
    };

    // The form's own geometry is what the layout gives at that size, so nothing jumps at the first resize.
    const QList<QRect> before = places();
    loader.LayoutForm(form.get(), layout);
    QCOMPARE(places(), before);

    form->resize(form->width() + 100, form->height() + 50);
    loader.LayoutForm(form.get(), layout);
    QCOMPARE(places(),
        QList<QRect>({before[0].adjusted(0, 0, 100, 50), before[1].translated(100, 50),
            before[2].translated(100, 50), before[3]}));
    loader.LayoutForm(nullptr, layout);
    loader.LayoutForm(form.get(), QStringLiteral(":/nothing.ini"));
}

QTEST_MAIN(TestLoader)
#include "tst_hostui_loader.moc"
