#pragma once

#include "tests/standins/stand_in.h"
#include "vtr_uiloaderinterface.h"

#include <QFileInfo>
#include <QHash>
#include <QMenu>
#include <QPointer>
#include <QTableWidget>
#include <QUiLoader>

#include <functional>
#include <utility>

/// Loads the host's forms with some of their properties changed, and records the client's calls.
class UiLoaderStandIn : public StandIn<VTUiLoaderInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTUiLoaderInterface)

public:
    QWidget* LoadUi(const QString& key, QWidget* /*parent*/) override
    {
        loadedKeys.append(key);
        QFile file(QStringLiteral(FORMS_FOLDER "/%1.ui").arg(key));
        const bool isThere = !missingForms.contains(key) && file.open(QIODevice::ReadOnly);
        QWidget* form = isThere ? QUiLoader().load(&file) : nullptr;
        m_forms.insert(key, form);
        if (form)
            Disturb(form);
        return form;
    }
    QString GetSkin() override
    {
        if (const std::function<void()> action = std::exchange(onSkin, {}))
            action();
        return skin;
    }
    QString GetLanguage() override { return language; }
    QStringList GetLanguages() override { return {"/lang/vtr_de.qm"_s, "/lang/vtr_en.qm"_s}; }
    void SetLanguage(const QString& path) override
    {
        journal.append(QString("SetLanguage "_s + path));
        language = QFileInfo(path).fileName();
        emit LanguageChanged(language);
    }
    void OpenWindow(const QString& key) override { journal.append(QString("OpenWindow "_s + key)); }
    QMenu* GetMenu(const QString& menu, const QString& subMenu) override
    {
        return m_menus.value(menu + subMenu);
    }
    void LoadSkinSettings(const QString& file) override { layouts.append(file); }
    void LayoutForm(QWidget* form, const QString& file) override
    {
        layouts.append(QString(form->objectName() + " by "_s + file));
    }

    /// The form last built for a key; owned by the client, null once it is gone.
    QWidget* Form(const QString& key) const { return m_forms.value(key); }

    std::function<void()> onSkin; ///< runs once, inside the next question for the skin
    QString skin = "teal"_s;
    QString language = "vtr_en.qm"_s;
    QStringList leftOut;      ///< names of widgets that the forms lack; "*" stands for all
    QStringList missingForms; ///< keys that have no form
    QStringList loadedKeys;
    QStringList layouts; ///< files of positions loaded, and "<form> by <file>" for each form laid out
    QMenu trayMenu;
    QMenu skinMenu;
    QMenu languageMenu;

private:
    /// Removes the widgets in `leftOut`, and changes properties that the client must not rely on: tables have columns and
    /// keep the order of their rows.
    void Disturb(QWidget* form) const
    {
        const auto tables = form->findChildren<QTableWidget*>();
        for (QTableWidget* table : tables) {
            table->setColumnCount(0);
            table->setSortingEnabled(true);
            table->setEditTriggers(QAbstractItemView::AllEditTriggers);
            table->setContextMenuPolicy(Qt::DefaultContextMenu);
        }
        for (const QString& name : leftOut)
            delete form->findChild<QWidget*>(name);
        if (leftOut.contains("*"_s))
            qDeleteAll(form->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    }

    QHash<QString, QPointer<QWidget>> m_forms;
    const QHash<QString, QMenu*> m_menus {{"menuTray"_s, &trayMenu}, {"menuTraymeuSkin"_s, &skinMenu},
        {"menuTraymeuLanguage"_s, &languageMenu}};
};
