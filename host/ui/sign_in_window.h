#pragma once

#include "host/ui/skinned_form.h"

class QLabel;
class QLineEdit;
class QPushButton;

/// The sign-in window, the form "com.vtr.authclient".
class SignInWindow : public QObject
{
    Q_OBJECT

public:
    explicit SignInWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

public slots:
    /// Puts the user's name in and the cursor into the password.
    void SetName(const QString& name);

    /// While busy nothing can be entered or sent.
    void SetBusy(bool busy);

    /// Ends being busy and says why signing in failed.
    void ShowFailure(const QString& message);

    /// Ends being busy and forgets the password.
    void Succeeded();

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
