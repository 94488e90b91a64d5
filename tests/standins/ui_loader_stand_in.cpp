#include "tests/standins/ui_loader_stand_in.h"

#include <QFileInfo>
#include <QPushButton>
#include <QTableWidget>
#include <QUiLoader>

namespace {

QWidget* Load(const QString& key)
{
    QFile file(QStringLiteral(FORMS_FOLDER "/%1.ui").arg(key));
    QWidget* form = file.open(QIODevice::ReadOnly) ? QUiLoader().load(&file) : nullptr;
    if (!form)
        qFatal("No form can be loaded from %s", qUtf8Printable(file.fileName()));
    return form;
}

/// Changes form properties that the client must not rely on: buttons of one size in one row, and tables that have
/// columns and keep the order of their rows.
void Disturb(QWidget* form)
{
    int step = 0;
    for (QPushButton* button : form->findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly)) {
        ++step;
        button->setGeometry(button->geometry().adjusted(0, step, step, step));
    }
    for (QTableWidget* table : form->findChildren<QTableWidget*>()) {
        table->setColumnCount(0);
        table->setSortingEnabled(true);
    }
}

} // namespace

QWidget* UiLoaderStandIn::LoadUi(const QString& key, QWidget* parent)
{
    loadedKeys.append(parent ? QString(key + " with parent"_s) : key);
    QWidget* form = missingForms.contains(key) ? nullptr : Load(key);
    m_forms.insert(key, form);
    if (!form)
        return nullptr;
    Disturb(form);
    for (const QString& name : leftOut)
        delete form->findChild<QWidget*>(name);
    if (leftOut.contains("*"_s))
        qDeleteAll(form->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    return form;
}

void UiLoaderStandIn::SetLanguage(const QString& path)
{
    journal.append(QString("SetLanguage "_s + path));
    language = QFileInfo(path).fileName();
    emit LanguageChanged(language);
}

void UiLoaderStandIn::LayoutForm(QWidget* form, const QString& file)
{
    if (form == Form("com.vtr.qsclient"_s))
        layouts.append(file);
}
