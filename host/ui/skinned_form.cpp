#include "host/ui/skinned_form.h"

#include "host/ui/skins.h"
#include "vtr_uiloaderinterface.h"

#include <QApplication>
#include <QDialog>
#include <QWindow>

SkinnedForm::SkinnedForm(VTUiLoaderInterface* loader, const QString& key, QObject* parent)
    : QObject(parent)
    , m_loader(loader)
    , m_key(key)
    , m_form(loader->LoadUi(key, nullptr))
{
    Require(m_form.get(), "form");
    const Qt::WindowType type = qobject_cast<QDialog*>(m_form.get()) ? Qt::Dialog : Qt::Window;
    m_form->setWindowFlags(type | Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint);
    m_form->setAutoFillBackground(true);
    connect(loader, &VTUiLoaderInterface::SkinChanged, this, &SkinnedForm::Restyle);
    Restyle();
}

SkinnedForm::~SkinnedForm() = default;

bool SkinnedForm::Exec() const
{
    auto* dialog = qobject_cast<QDialog*>(m_form.get());
    Require(dialog, "dialog");
    StayOver(QApplication::activeWindow());
    return dialog->exec() == QDialog::Accepted;
}

void SkinnedForm::Open() const
{
    if (!m_form->isVisible())
        StayOver(QApplication::activeWindow());
    m_form->show();
    m_form->raise();
    m_form->activateWindow();
}

void SkinnedForm::StayOver(const QWidget* window) const
{
    if (!window)
        return;
    m_form->winId(); // creates the native window that windowHandle() returns
    m_form->windowHandle()->setTransientParent(window->windowHandle());
}

void SkinnedForm::Require(const void* found, const char* what) const
{
    if (!found)
        qFatal("Form %s lacks %s", qUtf8Printable(m_key), what);
}

void SkinnedForm::Restyle()
{
    if (!m_loader)
        return;
    m_form->setStyleSheet(Skins::StyleSheet(m_loader->GetSkin(), m_key));
    m_form->setWindowIcon(Skins::MainIcon(m_loader->GetSkin()));
}
