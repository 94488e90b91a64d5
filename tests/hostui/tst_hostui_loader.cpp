#include "memory_settings.h"
#include "sign_in_window.h"
#include "ui_loader_service.h"

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
    void BadKeysGiveNoForm_data();
    void BadKeysGiveNoForm();
    void ParentTakesTheForm();
    void SkinsAreListedAndSwitched();
    void LanguagesAreListedAndSwitched();
    void FormsFollowTheLanguage();
    void ChoicesAreRemembered();
    void RubbishInTheSettingsIsIgnored();
    void MenusChoose();
    void OpenWindowShowsAndTells();
    void MainFormIsFramelessAndFollowsItsLayout();
};

void TestLoader::BadKeysGiveNoForm_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("unknown") << QStringLiteral("com.vtr.nothing");
    QTest::newRow("empty") << QString();
    QTest::newRow("upwards") << QStringLiteral("../forms/com.vtr.search");
    QTest::newRow("path") << QStringLiteral("/forms/com.vtr.search");
    QTest::newRow("pattern") << QStringLiteral("*");
    QTest::newRow("other case") << QStringLiteral("COM.VTR.SEARCH");
}

void TestLoader::BadKeysGiveNoForm()
{
    QFETCH(QString, key);
    UiLoaderService loader(nullptr);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^There is no form ")));
    QCOMPARE(loader.LoadUi(key, nullptr), nullptr);
}

void TestLoader::ParentTakesTheForm()
{
    UiLoaderService loader(nullptr);
    QWidget parent;
    const QWidget* form = loader.LoadUi(QStringLiteral("com.vtr.search"), &parent);
    QVERIFY(form);
    QCOMPARE(form->parentWidget(), &parent);
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

    QSignalSpy changed(&loader, &UiLoaderService::LanguageChanged);
    loader.SetLanguage(QStringLiteral("vtr_de.qm")); // not as listed
    loader.SetLanguage(languages[1]);                // the present one
    QCOMPARE(changed.size(), 0);
    loader.SetLanguage(languages[0]);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toString(), languages[0]);
    QCOMPARE(loader.GetLanguage(), QStringLiteral("vtr_de.qm"));
    QCOMPARE(QCoreApplication::translate("TrayMenu", "Language"), QStringLiteral("Sprache"));
    loader.SetLanguage(languages[1]);
    QCOMPARE(QCoreApplication::translate("TrayMenu", "Language"), QStringLiteral("Language"));
}

void TestLoader::FormsFollowTheLanguage()
{
    UiLoaderService loader(nullptr);
    const SignInWindow window(&loader);
    const auto* fixed = window.Form()->findChild<QLabel*>(QStringLiteral("lblName"));
    const auto* button = window.Form()->findChild<QPushButton*>(QStringLiteral("btnSignIn"));
    QCOMPARE(fixed->text(), QStringLiteral("User name"));
    loader.SetLanguage(loader.GetLanguages().constFirst());
    QTRY_COMPARE(fixed->text(), QStringLiteral("Benutzername"));
    QTRY_COMPARE(button->text(), QStringLiteral("Anmelden"));
}

void TestLoader::ChoicesAreRemembered()
{
    MemorySettings settings;
    {
        UiLoaderService loader(&settings);
        loader.SetSkin(QStringLiteral("night"));
        loader.SetLanguage(loader.GetLanguages().constFirst());
    }
    QCOMPARE(settings.values.value(QStringLiteral("vtr.ui/skin")).toString(), QStringLiteral("night"));
    UiLoaderService next(&settings);
    QCOMPARE(next.GetSkin(), QStringLiteral("night"));
    QCOMPARE(next.GetLanguage(), QStringLiteral("vtr_de.qm"));
    QCOMPARE(QCoreApplication::translate("TrayMenu", "Language"), QStringLiteral("Sprache"));
}

void TestLoader::RubbishInTheSettingsIsIgnored()
{
    MemorySettings settings;
    settings.values.insert(QStringLiteral("vtr.ui/skin"), QStringLiteral("../../etc"));
    settings.values.insert(QStringLiteral("vtr.ui/language"), QVariantList {1, 2});
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
    const auto* list = form->findChild<QWidget*>(QStringLiteral("tbwContainer"));
    const auto* next = form->findChild<QWidget*>(QStringLiteral("btnNextPage"));
    const auto* page = form->findChild<QWidget*>(QStringLiteral("btnPageOne"));
    const auto* remove = form->findChild<QWidget*>(QStringLiteral("btnDelete"));
    const QString layout = QStringLiteral(":/default/com.vtr.qsclient.ini");

    // The form's own geometry is what the layout gives at that size, so nothing jumps at the first resize.
    const QRect listBefore = list->geometry();
    const QRect nextBefore = next->geometry();
    const QRect pageBefore = page->geometry();
    const QRect removeBefore = remove->geometry();
    loader.LayoutForm(form.get(), layout);
    QCOMPARE(list->geometry(), listBefore);
    QCOMPARE(next->geometry(), nextBefore);

    form->resize(form->width() + 100, form->height() + 50);
    loader.LayoutForm(form.get(), layout);
    QCOMPARE(list->geometry(), listBefore.adjusted(0, 0, 100, 50));
    QCOMPARE(next->geometry(), nextBefore.translated(100, 50));
    QCOMPARE(page->geometry(), pageBefore.translated(100, 50));
    QCOMPARE(remove->geometry(), removeBefore);
    loader.LayoutForm(nullptr, layout);
    loader.LayoutForm(form.get(), QStringLiteral(":/nothing.ini"));
}

QTEST_MAIN(TestLoader)
#include "tst_hostui_loader.moc"
