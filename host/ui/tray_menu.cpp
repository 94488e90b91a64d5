#include "host/ui/tray_menu.h"

#include "host/ui/languages.h"

#include <QActionGroup>

namespace {

/// Skins are listed by the names of their folders. The names of the built-in ones are translated.
[[maybe_unused]] constexpr const char* BuiltInSkins[]
    = {QT_TRANSLATE_NOOP("TrayMenu", "Default"), QT_TRANSLATE_NOOP("TrayMenu", "Dark")};

/// @param choice becomes the entry's data.
void AddChoice(QActionGroup* group, const QString& text, const QString& choice, bool current)
{
    QAction* action = group->addAction(text);
    action->setCheckable(true);
    action->setChecked(current);
    action->setData(choice);
}

QActionGroup* NewChoice(QMenu* menu)
{
    menu->clear();
    // The user may have just chosen one of the entries, and Qt is still using it.
    const auto groups = menu->findChildren<QActionGroup*>();
    for (QActionGroup* group : groups)
        group->deleteLater();
    return new QActionGroup(menu);
}

/// Escapes '&', which menus take for the mark of a shortcut key.
QString MenuText(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

TrayMenu::TrayMenu(QObject* parent)
    : QObject(parent)
    , m_skins(m_menu.addMenu(QString()))
    , m_languages(m_menu.addMenu(QString()))
{
    m_menu.setObjectName(QStringLiteral("menuTray"));
    m_skins->setObjectName(QStringLiteral("meuSkin"));
    m_languages->setObjectName(QStringLiteral("meuLanguage"));
    connect(m_skins, &QMenu::triggered, this,
        [this](const QAction* action) { emit SkinChosen(action->data().toString()); });
    connect(m_languages, &QMenu::triggered, this,
        [this](const QAction* action) { emit LanguageChosen(action->data().toString()); });
    Retranslate();
}

QMenu* TrayMenu::Find(const QString& menu, const QString& subMenu)
{
    if (menu != m_menu.objectName())
        return nullptr;
    return subMenu.isEmpty() ? &m_menu : m_menu.findChild<QMenu*>(subMenu);
}

void TrayMenu::ListSkins(const QStringList& names, const QString& current)
{
    QActionGroup* choice = NewChoice(m_skins);
    for (const QString& name : names) {
        const QString shown = name.left(1).toUpper() + name.mid(1);
        AddChoice(choice, MenuText(tr(qUtf8Printable(shown))), name, name == current);
    }
    m_skins->addActions(choice->actions());
}

void TrayMenu::ListLanguages(const QStringList& files, const QString& current)
{
    QActionGroup* choice = NewChoice(m_languages);
    for (const QString& file : files)
        AddChoice(choice, MenuText(Languages::DisplayName(file)), file, file == current);
    m_languages->addActions(choice->actions());
}

void TrayMenu::Retranslate()
{
    m_skins->setTitle(tr("Skin"));
    m_languages->setTitle(tr("Language"));
}
