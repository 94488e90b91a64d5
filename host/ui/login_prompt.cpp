#include "host/ui/login_prompt.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

namespace {

QString Translated(const char* text)
{
    return QCoreApplication::translate("LoginPrompt", text);
}

QLineEdit* AddField(QFormLayout* form, const char* name, const char* caption)
{
    auto* field = new QLineEdit;
    field->setObjectName(QLatin1String(name));
    form->addRow(Translated(caption), field);
    return field;
}

} // namespace

TypedLogin AskForLogin(QWidget* parent, const QString& title, const QString& text)
{
    // The parent may be deleted while the dialog is open, and the dialog with it.
    const QPointer<QDialog> dialog = new QDialog(parent);
    dialog->setWindowTitle(title);
    auto* form = new QFormLayout(dialog);
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    form->addRow(label);
    const QLineEdit* name = AddField(form, "lneProxyName", QT_TRANSLATE_NOOP("LoginPrompt", "Name"));
    QLineEdit* password = AddField(form, "lneProxyPassword", QT_TRANSLATE_NOOP("LoginPrompt", "Password"));
    password->setEchoMode(QLineEdit::Password);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(Translated(QT_TRANSLATE_NOOP("LoginPrompt", "Ok")));
    buttons->button(QDialogButtonBox::Cancel)
        ->setText(Translated(QT_TRANSLATE_NOOP("LoginPrompt", "Cancel")));
    form->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    const bool isGiven = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return {};
    const TypedLogin login {isGiven, name->text(), password->text()};
    delete dialog.data();
    return login;
}
