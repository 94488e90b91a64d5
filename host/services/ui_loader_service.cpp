#include "host/services/ui_loader_service.h"

#include "host/settings/setting_keys.h"
#include "host/ui/column_fit.h"
#include "host/ui/elided_label.h"
#include "host/ui/frameless_window.h"
#include "host/ui/languages.h"
#include "host/ui/level_widget.h"
#include "host/ui/progress_cells.h"
#include "host/ui/side_column.h"
#include "host/ui/skins.h"
#include "host/ui/window_place.h"
#include "host/ui/window_role.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTimeEdit>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTableWidget>
#include <QTabWidget>
#include <QTextCharFormat>
#include <QUiLoader>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace {

const QLatin1String MainFormKey("com.vtr.qsclient");
const QLatin1String MenuKey("com.vtr.menu");
const QLatin1String DefaultSkin("default");
const QLatin1String DefaultLanguage("vtr_en.qm");

constexpr QSize CalendarSize(288, 248); // pixels; room for six weeks below the skin's navigation bar

/// Adjusts pop-up lists and calendars where style sheets cannot.
void PreparePopups(const QWidget* form)
{
    // A combo box's own delegate ignores style sheets.
    const auto boxes = form->findChildren<QComboBox*>();
    for (QComboBox* box : boxes)
        box->setItemDelegate(new QStyledItemDelegate(box));

    // Qt shows weekends in red, which means failure here and is hard to read on some backgrounds.
    const auto edits = form->findChildren<QDateTimeEdit*>();
    for (const QDateTimeEdit* edit : edits) {
        QCalendarWidget* calendar = edit->calendarWidget();
        if (!calendar)
            continue;
        calendar->setWeekdayTextFormat(Qt::Saturday, {});
        calendar->setWeekdayTextFormat(Qt::Sunday, {});
        calendar->setMinimumSize(CalendarSize);
    }
}

/// Applies the style sheet again whenever the field becomes empty or is no longer so. A sheet colours the placeholder
/// and the text of a field alike, so it selects by whether the field is empty.
void FollowEmptiness(QLineEdit* field)
{
    const auto Restyle = [field, wasEmpty = field->text().isEmpty()](const QString& text) mutable {
        if (text.isEmpty() == wasEmpty)
            return;
        wasEmpty = text.isEmpty();
        field->style()->unpolish(field);
        field->style()->polish(field);
    };
    QObject::connect(field, &QLineEdit::textChanged, field, Restyle);
}

/// Divides the table's width among its columns if the form says how.
void FitColumns(QTableWidget* table)
{
    const QStringList texts = table->property("columnShares").toStringList();
    if (texts.isEmpty())
        return;
    std::vector<int> shares;
    std::transform(texts.cbegin(), texts.cend(), std::back_inserter(shares),
        [](const QString& share) { return share.toInt(); });
    new ColumnFit(table, std::move(shares), table);
}

/// Sets up what a form file cannot express.
void PrepareForm(QWidget* form)
{
    PreparePopups(form);
    const auto tables = form->findChildren<QTableWidget*>();
    for (QTableWidget* table : tables) {
        new ProgressCells(table);
        FitColumns(table);
    }
    const auto buttons = form->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        const QString leader = button->property("levelWith").toString();
        if (!leader.isEmpty())
            new LevelWidget(button, form->findChild<QWidget*>(leader));
    }
    const auto fields = form->findChildren<QLineEdit*>();
    for (QLineEdit* field : fields) {
        if (!field->placeholderText().isEmpty())
            FollowEmptiness(field);
        if (field->property("isNumber").toBool())
            field->setValidator(
                new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\s*[0-9]*\\s*")), field));
    }
}

QString NextToExecutable(const char* folder)
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(QLatin1String(folder));
}

} // namespace

UiLoaderService::UiLoaderService(VTSettingsInterface* settings, QObject* parent)
    : ServiceBase(parent)
    , m_settings(settings)
{
    AnnounceWindows();
    Skins::Install(NextToExecutable("skins"));
    m_skin = Remembered(SettingKeys::Skin, DefaultSkin);
    if (!GetSkins().contains(m_skin))
        m_skin = DefaultSkin;
    RestoreLanguage();

    connect(&m_trayMenu, &TrayMenu::SkinChosen, this, &UiLoaderService::SetSkin);
    connect(&m_trayMenu, &TrayMenu::LanguageChosen, this, &UiLoaderService::SetLanguage);
    m_trayMenu.SetStyleSheet(Skins::StyleSheet(m_skin, MenuKey));
    m_trayMenu.Retranslate();
    ListChoices();
    LoadSkinSettings(Skins::SettingsFile(m_skin));
}

UiLoaderService::~UiLoaderService() = default;

QWidget* UiLoaderService::LoadUi(const QString& key, QWidget* parent)
{
    // Looking the name up in the listing keeps a key from being used as a path.
    const QDir forms(QStringLiteral(":/forms"));
    const QString name = key + QLatin1String(".ui");
    if (!forms.entryList(QDir::Files).contains(name)) {
        qWarning("there is no form %s", qUtf8Printable(key));
        return nullptr;
    }
    QFile file(forms.filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    QUiLoader loader;
    loader.setLanguageChangeEnabled(true);
    QWidget* form = loader.load(&file, parent);
    if (form)
        PrepareForm(form);
    if (form && !parent) {
        new FramelessWindow(form, key == MainFormKey ? FramelessWindow::Main : FramelessWindow::Dialog);
        GiveMenu(form, "btnSkin", "meuSkin");
        if (key == MainFormKey)
            PrepareMainForm(form);
        else
            GiveMenu(form, "btnLang", "meuLanguage");
    }
    return form;
}

void UiLoaderService::PrepareMainForm(QWidget* form)
{
    form->setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint
        | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    new WindowPlace(form, m_settings);
    new SideColumn(form);
    if (auto* project = form->findChild<QLabel*>(QStringLiteral("lblProjectV")))
        new ElidedLabel(project);
    // A form's tab stops cannot name its tab bar, which would come after the tables in the tabs.
    const auto* tabs = form->findChild<QTabWidget*>(QStringLiteral("tbwContainer"));
    auto* submit = form->findChild<QPushButton*>(QStringLiteral("btnSubmit"));
    if (tabs && submit)
        QWidget::setTabOrder(tabs->tabBar(), submit);
}

/// Has a button of the form open a part of the tray menu.
void UiLoaderService::GiveMenu(const QWidget* form, const char* buttonName, const char* menuName)
{
    auto* button = form->findChild<QPushButton*>(QLatin1String(buttonName));
    if (!button)
        return;
    QMenu* menu = GetMenu(QStringLiteral("menuTray"), QLatin1String(menuName));
    button->setMenu(menu);
    // The button gets no leave event while its menu is open.
    connect(menu, &QMenu::aboutToHide, button, [button] {
        const bool isOver = button->rect().contains(button->mapFromGlobal(QCursor::pos()));
        button->setAttribute(Qt::WA_UnderMouse, isOver);
        button->update();
    });
}

QString UiLoaderService::GetLanguage()
{
    return m_languageFile.isEmpty() ? QString(DefaultLanguage) : QFileInfo(m_languageFile).fileName();
}

QStringList UiLoaderService::GetLanguages()
{
    return Languages::Files(NextToExecutable("languages"));
}

void UiLoaderService::SetLanguage(const QString& file)
{
    if (file == m_languageFile || !GetLanguages().contains(file) || !InstallLanguage(file))
        return;
    Remember(SettingKeys::Language, GetLanguage());
    m_trayMenu.Retranslate();
    ListChoices();
    emit LanguageChanged(file);
}

bool UiLoaderService::InstallLanguage(const QString& file)
{
    if (!m_translations.Install(file)) {
        qWarning("%s is not a language file", qUtf8Printable(file));
        return false;
    }
    m_languageFile = file;
    return true;
}

void UiLoaderService::RestoreLanguage()
{
    const QStringList files = GetLanguages();
    for (const QString& wanted :
        {Remembered(SettingKeys::Language, DefaultLanguage), QString(DefaultLanguage)}) {
        for (const QString& file : files) {
            if (QFileInfo(file).fileName() == wanted && InstallLanguage(file))
                return;
        }
    }
}

void UiLoaderService::OpenWindow(const QString& key)
{
    if (QWidget* window = m_windows.value(key)) {
        window->show();
        window->raise();
        window->activateWindow();
    }
    emit ShowWindow(key);
}

QMenu* UiLoaderService::GetMenu(const QString& menu, const QString& subMenu)
{
    return m_trayMenu.Find(menu, subMenu);
}

void UiLoaderService::LoadSkinSettings(const QString& iniFile)
{
    m_layouts.remove(iniFile);
    Skins::ApplySettings(iniFile);
}

void UiLoaderService::LayoutForm(QWidget* form, const QString& iniFile)
{
    if (!form)
        return;
    auto layout = m_layouts.find(iniFile);
    if (layout == m_layouts.end())
        layout = m_layouts.insert(iniFile, FormLayout::Read(iniFile));
    layout->Apply(form);
}

QStringList UiLoaderService::GetSkins() const
{
    return Skins::Names();
}

void UiLoaderService::SetSkin(const QString& name)
{
    if (name == m_skin || !GetSkins().contains(name))
        return;
    m_skin = name;
    Remember(SettingKeys::Skin, name);
    LoadSkinSettings(Skins::SettingsFile(name));
    m_trayMenu.SetStyleSheet(Skins::StyleSheet(name, MenuKey));
    ListChoices();
    emit SkinChanged(name);
}

void UiLoaderService::RegisterWindow(const QString& key, QWidget* window)
{
    m_windows.insert(key, window);
}

void UiLoaderService::Remember(const QString& key, const QString& value)
{
    if (m_settings)
        m_settings->SetValue(key, value);
}

QString UiLoaderService::Remembered(const QString& key, const QString& fallback) const
{
    return m_settings ? m_settings->Value(key, fallback).toString() : fallback;
}

void UiLoaderService::ListChoices()
{
    m_trayMenu.ListSkins(GetSkins(), m_skin);
    m_trayMenu.ListLanguages(GetLanguages(), m_languageFile);
}
