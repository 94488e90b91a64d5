#include "host/farmclient/http_result.h"
#include "host/mainform/project_picker.h"
#include "host/services/ui_loader_service.h"
#include "host/ui/screen_fit.h"
#include "host/ui/sign_in_window.h"
#include "host/ui/skins.h"
#include "tests/hostui/memory_settings.h"
#include "tests/hostui/small_form.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

#include <QtNetwork>
#include <QtWidgets>

namespace {

const FarmFault faults[] = {
    {FarmFault::Unreachable, FarmFault::NoServer},
    {FarmFault::Unreachable, QNetworkReply::ConnectionRefusedError, "qt"_s},
    {FarmFault::Unreachable, QNetworkReply::HostNotFoundError, "qt"_s},
    {FarmFault::Unreachable, QNetworkReply::ProxyTimeoutError, "qt"_s},
    {FarmFault::Unreachable, QNetworkReply::ProtocolFailure, "qt"_s},
    {FarmFault::Untrusted, QSslError::SelfSignedCertificate, "qt"_s},
    {FarmFault::Untrusted, QSslError::HostNameMismatch, "qt"_s},
    {FarmFault::TimedOut},
    {FarmFault::TooLarge},
    {FarmFault::NotJson},
    {407},
    {418},
    {400, 0, "type is not one of the farm's job types"_s},
    {507, 0, "this would exceed the account's quota"_s},
};

QStringList CheckedTexts(const QMenu* menu)
{
    QStringList texts;
    const auto actions = menu->actions();
    for (const QAction* action : actions) {
        if (action->isChecked())
            texts.append(action->text());
    }
    return texts;
}

/// A screen reader's texts for the controls of a form, which need a name, and for other parts that have one.
void ReadAloud(QAccessibleInterface* part, QMap<QString, QString>* names)
{
    constexpr QAccessible::Role controls[] = {QAccessible::PushButton, QAccessible::ButtonMenu,
        QAccessible::CheckBox, QAccessible::EditableText, QAccessible::ComboBox, QAccessible::SpinBox,
        QAccessible::Table, QAccessible::Tree, QAccessible::List, QAccessible::PageTab};
    const auto* widget = qobject_cast<QWidget*>(part->object());
    if (std::count(std::begin(controls), std::end(controls), part->role()) > 0
        || (widget && !widget->accessibleName().isEmpty()))
        names->insert(part->object() ? part->object()->objectName() : part->text(QAccessible::Name),
            part->text(QAccessible::Name));
    if (part->role() == QAccessible::ComboBox || part->tableInterface())
        return;
    for (int i = 0; i < part->childCount(); ++i)
        ReadAloud(part->child(i), names);
}

QMap<QString, QString> ReadAloud(QWidget* form)
{
    QMap<QString, QString> names;
    ReadAloud(QAccessible::queryAccessibleInterface(form), &names);
    return names;
}

} // namespace

/// Forms, skins, languages and menus of the host; the test has installed one more skin and language.
class TestLoader : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_settings.values.clear();
        m_loader = std::make_unique<UiLoaderService>(&m_settings);
    }

    void LoadsNothingForABadKey()
    {
        for (const char* key : {"com.vtr.nothing", "", "../forms/com.vtr.search", "COM.VTR.SEARCH"}) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^there is no form "_s));
            QVERIFY2(!m_loader->LoadUi(QLatin1String(key), nullptr), key);
        }
    }

    void ListsAndSwitchesSkins()
    {
        QCOMPARE(m_loader->GetSkins(), QStringList({"dark"_s, "default"_s, "night"_s}));
        QCOMPARE(m_loader->GetSkin(), "default"_s);
        QSignalSpy changed(m_loader.get(), &UiLoaderService::SkinChanged);
        for (const char* name : {"default", "forms", "", "../default", "Night"})
            m_loader->SetSkin(QLatin1String(name));
        m_loader->SetSkin("night"_s);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toString(), "night"_s);
        QCOMPARE(m_loader->GetSkin(), "night"_s);
    }

    void ListsAndSwitchesLanguages()
    {
        const QStringList languages = m_loader->GetLanguages();
        QStringList names;
        for (const QString& language : languages)
            names.append(QFileInfo(language).fileName());
        QCOMPARE(names, QStringList({"vtr_de.qm"_s, "vtr_en.qm"_s, "vtr_zh.qm"_s}));
        QCOMPARE(m_loader->GetLanguage(), "vtr_en.qm"_s);

        SignInWindow window(m_loader.get());
        window.ShowFailure([this] { return m_loader->GetLanguage(); });
        const auto* fixed = window.Form()->findChild<QLabel*>("lblName"_s);
        const auto* button = window.Form()->findChild<QPushButton*>("btnSignIn"_s);
        QSignalSpy changed(m_loader.get(), &UiLoaderService::LanguageChanged);
        m_loader->SetLanguage("vtr_de.qm"_s); // not an entry of the list
        m_loader->SetLanguage(languages[1]);  // the current one
        m_loader->SetLanguage(languages[0]);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toString(), languages[0]);
        QCOMPARE(m_loader->GetLanguage(), "vtr_de.qm"_s);
        EVENTUALLY_COMPARE(fixed->text(), "Benutzername"_s);
        EVENTUALLY_COMPARE(button->text(), "Anmelden"_s);
        QCOMPARE(window.Form()->findChild<QLabel*>("lblFailure"_s)->text(), "vtr_de.qm"_s);
        m_loader->SetLanguage(languages[1]);
        EVENTUALLY_COMPARE(fixed->text(), "User name"_s);
    }

    void SaysInChineseWhyARequestFailed()
    {
        m_loader->SetLanguage(m_loader->GetLanguages().constLast());
        for (const FarmFault& fault : faults) {
            const QString text = fault.Text();
            QVERIFY2(text.endsWith(QChar(0x3002)) && !text.contains(QRegularExpression("[a-z]"_s)),
                qPrintable(text));
        }
        QCOMPARE(FarmFault({409, 0, "a stranger's <words>"_s}).Text(), "a stranger's <words>."_s);
    }

    void SwitchesByTheTrayMenuAndRemembersTheChoices()
    {
        QMenu* skins = m_loader->GetMenu("menuTray"_s, "meuSkin"_s);
        QMenu* languages = m_loader->GetMenu("menuTray"_s, "meuLanguage"_s);
        QVERIFY(m_loader->GetMenu("menuTray"_s, QString()) && skins && languages);
        QCOMPARE(m_loader->GetMenu("meuSkin"_s, QString()), nullptr);
        QCOMPARE(m_loader->GetMenu("menuTray"_s, "meuNothing"_s), nullptr);

        QCOMPARE(CheckedTexts(skins), QStringList("Default"_s));
        const QPointer<QAction> chosen = skins->actions().constLast();
        connect(skins, &QMenu::triggered, this, [this, chosen] { m_isKept = !chosen.isNull(); });
        chosen->trigger();
        QVERIFY(m_isKept);
        QCOMPARE(m_loader->GetSkin(), "night"_s);
        QCOMPARE(CheckedTexts(skins), QStringList("Night"_s));
        QCOMPARE(skins->actions().size(), 3);

        languages->actions().constFirst()->trigger();
        QCOMPARE(m_loader->GetLanguage(), "vtr_de.qm"_s);
        QCOMPARE(CheckedTexts(languages), QStringList("Deutsch"_s));
        QCOMPARE(languages->title(), "Sprache"_s);

        m_loader = std::make_unique<UiLoaderService>(&m_settings);
        QCOMPARE(m_loader->GetSkin() + m_loader->GetLanguage(), "nightvtr_de.qm"_s);
        QCOMPARE(QCoreApplication::translate("TrayMenu", "Language"), "Sprache"_s);
        m_settings.values = {{"vtr.ui/skin"_s, "../../etc"_s}, {"vtr.ui/language"_s, QVariantList {1, 2}}};
        m_loader = std::make_unique<UiLoaderService>(&m_settings); // ignores damaged settings
        QCOMPARE(m_loader->GetSkin() + m_loader->GetLanguage(), "defaultvtr_en.qm"_s);
    }

    void OpensRegisteredWindowsAndAnnouncesEachKey()
    {
        QSignalSpy announced(m_loader.get(), &UiLoaderService::ShowWindow);
        auto window = std::make_unique<QWidget>();
        m_loader->RegisterWindow("com.vtr.authclient"_s, window.get());
        m_loader->OpenWindow("com.vtr.authclient"_s);
        QVERIFY(window->isVisible());
        window.reset();
        m_loader->OpenWindow("com.vtr.authclient"_s); // deleted by now
        m_loader->OpenWindow("com.vtr.qsclient"_s);   // never registered
        QCOMPARE(announced.size(), 3);
        QCOMPARE(announced[2][0].toString(), "com.vtr.qsclient"_s);
    }

    void NamesEveryControlInTheCurrentLanguage()
    {
        const QStringList forms = QDir(":/forms"_s).entryList(QDir::Files);
        QVERIFY(forms.size() > 8);
        for (const QString& file : forms) {
            m_loader->SetLanguage(m_loader->GetLanguages().at(1));
            const std::unique_ptr<QWidget> form(m_loader->LoadUi(file.chopped(3), nullptr));
            form->setWindowTitle("task"_s);
            const QMap<QString, QString> names = ReadAloud(form.get());
            QVERIFY2(!names.isEmpty(), qPrintable(file));
            const QAccessible::Role role = QAccessible::queryAccessibleInterface(form.get())->role();
            QVERIFY2(role == QAccessible::Window || role == QAccessible::Dialog, qPrintable(file));
            for (auto it = names.cbegin(); it != names.cend(); ++it)
                QVERIFY2(!it->isEmpty(), qPrintable(file + ": "_s + it.key()));

            m_loader->SetLanguage(m_loader->GetLanguages().constLast());
            QCoreApplication::sendPostedEvents();
            // The plugin keeps a task's id there.
            QVERIFY(form->windowTitle() == "task"_s || !file.contains("setargument"_s));
            const QMap<QString, QString> translated = ReadAloud(form.get());
            const auto children = form->findChildren<QWidget*>();
            for (const QWidget* child : children) {
                const QString name = child->objectName();
                if (!child->accessibleName().isEmpty()
                    && !qobject_cast<const QToolButton*>(child)) // Qt's own
                    QVERIFY2(translated.value(name) != names.value(name), qPrintable(file + ": "_s + name));
            }
        }
    }

    void WalksThroughDialogsInReadingOrder()
    {
        for (const char* key :
            {"configuration", "connection", "inputdialog", "search", "setargument", "setparent", "space"}) {
            const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr."_s + QLatin1String(key), nullptr));
            form->show();
            QVector<std::pair<int, int>> places;
            for (QWidget* next = form->nextInFocusChain(); next != form.get();
                 next = next->nextInFocusChain()) {
                const QPoint place = next->mapTo(form.get(), next->rect().center());
                if ((next->focusPolicy() & Qt::TabFocus) && next->isVisible() && !next->focusProxy())
                    places.append({place.y(), place.x()});
            }
            QVERIFY2(places.size() > 1 && std::is_sorted(places.cbegin(), places.cend()), key);
        }
    }

    /// Buttons of dialogs stay in view while the rest scrolls, and columns fill their tables.
    void FitsDialogsOnSmallScreens()
    {
        for (const auto& [key, name] :
            {std::pair("configuration", "btnOk"), {"connection", "btnOk"}, {"inputdialog", "btnOk"},
                {"search", "btnSearchJob"}, {"setparent", "btnOkSetParent"}, {"space", "btnOk"}}) {
            const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr."_s + QLatin1String(key), nullptr));
            FitScreen(form.get(), {640, 360});
            form->show();
            const auto* button = form->findChild<QWidget*>(QLatin1String(name));
            QVERIFY2(button, key);
            EVENTUALLY_COMPARE(button->visibleRegion().boundingRect(), button->rect());
            if (auto* table = form->findChild<QTableWidget*>()) {
                table->setRowCount(100);
                EVENTUALLY_COMPARE(table->horizontalHeader()->length(), table->viewport()->width());
                QVERIFY(table->columnWidth(1) > table->columnWidth(0)); // names need more room than numbers
            }
        }
    }

    void TakesOnlyDigitsForTheNumberOfAJob()
    {
        const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr.search"_s, nullptr));
        auto* number = form->findChild<QLineEdit*>("lneJobId"_s);
        auto* name = form->findChild<QLineEdit*>("lneJobName"_s);
        form->setStyleSheet(Skins::StyleSheet("default"_s, "com.vtr.search"_s));
        const auto Color = [](QLineEdit* field) {
            field->ensurePolished();
            return field->palette().color(QPalette::Text);
        };
        const QColor hint = Color(number);
        QVERIFY(Color(name) != hint); // there is no hint
        QTest::keyClicks(number, "sh 12"_s);
        QCOMPARE(number->text(), " 12"_s);
        QCOMPARE(Color(number), Color(name));
        number->clear();
        QCOMPARE(Color(number), hint);
    }

    void BeginsADialogAtItsFirstField()
    {
        const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr.search"_s, nullptr));
        auto* last = form->findChild<QWidget*>("btnReset"_s);
        form->show();
        last->setFocus();
        QCOMPARE(form->focusWidget(), last);
        form->close();
        QCOMPARE(form->focusWidget(), nullptr); // Qt then chooses the first one
    }

    void NamesTheListsOfGroups()
    {
        const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr.qsclient"_s, nullptr));
        auto* panel = new QToolBox(form->findChild<QWidget*>("wgtGroup"_s));
        auto* list = new QListWidget;
        panel->addItem(list, "Group"_s);
        form->show();
        QCOMPARE(list->accessibleName(), "Group"_s);
        QCOMPARE(panel->findChild<QScrollArea*>()->focusPolicy(), Qt::NoFocus);
        QCOMPARE(form->findChild<QTabBar*>()->nextInFocusChain()->objectName(), "btnSubmit"_s);
        panel->setItemText(0, "Gruppe"_s);
        m_loader->SetLanguage(m_loader->GetLanguages().constFirst());
        EVENTUALLY_COMPARE(list->accessibleName(), "Gruppe"_s);
    }

    void OffersProjectsForANewGroup()
    {
        MainForm form;
        QToolBox panel(&form);
        auto* groups = new QListWidget;
        panel.addItem(new QWidget, {});
        panel.addItem(groups, {});
        groups->addItem("Bay & Co"_s);
        const std::unique_ptr<QWidget> dialog(m_loader->LoadUi("com.vtr.inputdialog"_s, nullptr));
        ProjectPicker picker;
        picker.BeginSession();
        picker.BeginSession();
        picker.SetProjects({"Alps"_s, "Bay & Co"_s, "Cliff"_s});
        QSignalSpy named(&picker, &ProjectPicker::Named);
        dialog->show();
        auto* projects = dialog->findChild<QListWidget*>("lstProjects"_s);
        auto* name = dialog->findChild<QLineEdit*>("lneInput"_s);
        QCOMPARE(projects->count(), 2); // one is a group already
        QTest::keyClicks(name, "Cliff"_s);
        QCOMPARE(projects->currentRow(), 1);
        QTest::keyClicks(name, " road"_s);
        QVERIFY(projects->selectedItems().isEmpty());
        projects->setFocus(); // keeps what was typed
        QCOMPARE(name->text(), "Cliff road"_s);
        projects->setCurrentRow(0);
        QCOMPARE(name->text(), "Alps"_s);
        emit projects->itemActivated(projects->item(0));
        EVENTUALLY_COMPARE(named.value(0).value(0).toString(), "Alps"_s);
        dialog->hide();
        picker.SetProjects({});
        dialog->show();
        QVERIFY(!projects->isVisible());
    }

    void ReadsProgressCells()
    {
        const std::unique_ptr<QWidget> form(m_loader->LoadUi("com.vtr.qsclient"_s, nullptr));
        auto* table = form->findChild<QTableWidget*>("twtMyRender"_s);
        table->setRowCount(1);
        QAccessible::setActive(true);
        table->setRowCount(2);
        auto* cells = QAccessible::queryAccessibleInterface(table)->tableInterface();
        for (int row = 0; row < 2; ++row) {
            auto* bar = new QProgressBar;
            table->setCellWidget(row, 3, bar);
            bar->setValue(42 + row);
            QCOMPARE(cells->cellAt(row, 3)->text(QAccessible::Name), "%1%"_s.arg(42 + row));
        }
    }

    void ShipsWholeSkins()
    {
        QStringList pictures;
        for (const QString& folder : {":/default/"_s, ":/dark/"_s}) {
            for (const char* name : {"main", "warning", "siblings_normal", "siblings_closed_normal"})
                pictures.append(folder + QLatin1String(name) + ".png"_s);
            QDirIterator sheets(
                folder, {"*.qss"_s, "*.ini"_s, "*.svg"_s}, QDir::Files, QDirIterator::Subdirectories);
            while (sheets.hasNext()) {
                const QString text = QString::fromUtf8(ReadFile(sheets.next()));
                QVERIFY(!text.contains(QLatin1Char('@'))); // a colour that the palette lacks
                auto found = QRegularExpression("url\\(([^)]+)\\)"_s).globalMatch(text);
                while (found.hasNext())
                    pictures.append(found.next().captured(1));
            }
        }
        QVERIFY(pictures.size() > 40);
        for (const QString& picture : qAsConst(pictures))
            QVERIFY2(!QImageReader(picture).read().isNull(), qPrintable(picture));
    }

private:
    MemorySettings m_settings;
    std::unique_ptr<UiLoaderService> m_loader;
    bool m_isKept = false; ///< whether the chosen entry outlived the choice
};

QTEST_MAIN(TestLoader)
#include "tst_hostui_loader.moc"
