#pragma once

#include "host/ui/skinned_form.h"

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for user name and password, on the form "com.vtr.authclient".
class SignInWindow : public QObject
{
    Q_OBJECT

public:
    explicit SignInWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

public slots:
    /// Fills in the user's name and moves the cursor to the password.
    void SetName(const QString& name);

    /// While busy, nothing can be entered or sent.
    void SetBusy(bool busy);

    /// Says why signing in failed and lets the user try again.
    void ShowFailure(const QString& message);

    /// Clears the password after a successful sign-in.
    void Reset();

signals:
    void SignInRequested(const QString& name, const QString& password);

private:
    void Request();
    void UpdateButton();

    SkinnedForm m_form;
    QLineEdit* m_name;
    QLineEdit* m_password;
    QLabel* m_failure;
    QPushButton* m_signIn;
    bool m_busy = false;
};
