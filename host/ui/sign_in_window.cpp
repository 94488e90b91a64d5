#include "host/ui/sign_in_window.h"

#include "vtr_uiloaderinterface.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int FailureLength = 160; // characters

} // namespace

SignInWindow::SignInWindow(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.authclient"))
    , m_name(m_form.Find<QLineEdit>("lneName"))
    , m_password(m_form.Find<QLineEdit>("lnePassword"))
    , m_failure(m_form.Find<QLabel>("lblFailure"))
    , m_signIn(m_form.Find<QPushButton>("btnSignIn"))
{
    for (QLineEdit* edit : {m_name, m_password}) {
        connect(edit, &QLineEdit::textChanged, this, &SignInWindow::UpdateButton);
        connect(edit, &QLineEdit::returnPressed, this, &SignInWindow::Request);
    }
    connect(m_signIn, &QPushButton::clicked, this, &SignInWindow::Request);
    connect(m_form.Find<QPushButton>("btnSystemMin"), &QPushButton::clicked, Form(), &QWidget::showMinimized);
    connect(m_form.Find<QPushButton>("btnClose"), &QPushButton::clicked, Form(), &QWidget::close);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, &SignInWindow::UpdateButton);
    UpdateButton();
}

void SignInWindow::SetName(const QString& name)
{
    m_name->setText(name);
    m_password->setFocus();
}

void SignInWindow::SetBusy(bool busy)
{
    m_busy = busy;
    m_name->setEnabled(!busy);
    m_password->setEnabled(!busy);
    if (busy)
        m_failure->clear();
    UpdateButton();
}

void SignInWindow::ShowFailure(const QString& message)
{
    SetBusy(false);
    QString shown = message.simplified();
    if (shown.size() > FailureLength)
        shown = shown.left(FailureLength) + QChar(0x2026);
    m_failure->setText(shown);
    m_password->setFocus();
    m_password->selectAll();
}

void SignInWindow::Reset()
{
    SetBusy(false);
    m_failure->clear();
    m_password->clear();
}

void SignInWindow::Request()
{
    if (m_signIn->isEnabled())
        emit SignInRequested(m_name->text().trimmed(), m_password->text());
}

void SignInWindow::UpdateButton()
{
    m_signIn->setText(m_busy ? tr("Signing in…") : tr("Sign in"));
    m_signIn->setEnabled(!m_busy && !m_name->text().trimmed().isEmpty() && !m_password->text().isEmpty());
}
