#pragma once

#include "host/ui/skinned_form.h"

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for user name and password, on the form "com.vtr.authclient", and shows when the farm is not ready yet.
class SignInWindow : public QObject
{
    Q_OBJECT

public:
    /// The state of the server to sign in to.
    enum class Farm {
        Ready,
        Starting, ///< nobody can sign in yet
        Failed    ///< it is started again only when the user asks for it
    };

    /// Returns a sentence in the current language, as plain text.
    using Words = std::function<QString()>;

    explicit SignInWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// @return whether the user can sign in now.
    bool IsReady() const { return m_farm == Farm::Ready && !m_busy; }

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    /// @param server shown to the user as plain text; empty for the farm on this computer.
    void SetServer(const QString& server);

    /// @param reason why the farm does not start; empty for none. Plain text.
    void SetFarm(SignInWindow::Farm farm, const QString& reason = {});

    /// Fills in the user's name, if it is known, and moves the cursor to the next empty field.
    void SetName(const QString& name);

    /// While busy, nothing can be entered or sent.
    void SetBusy(bool busy);

    /// Shows why signing in failed and lets the user try again. @param text is called again for each new language.
    void ShowFailure(const SignInWindow::Words& text);

    /// Clears the password after a successful sign-in.
    void Reset();

signals:
    void SignInRequested(const QString& name, const QString& password);
    /// The user has asked to start the farm once more.
    void StartRequested();

private:
    void Press();
    void FocusEmptyField();
    void Request();
    void Say(const Words& words);
    void ShowWords();
    void ShowServer();
    void FitScreen();
    void Retranslate();
    void UpdateButton();

    SkinnedForm m_form;
    QLineEdit* m_name;
    QLineEdit* m_password;
    QLabel* m_failure;
    QLabel* m_serverLabel;
    QPushButton* m_signIn;
    QPushButton* m_language;
    VTUiLoaderInterface* m_loader;
    QString m_server;
    Words m_words; // shown above the button; null for none
    Farm m_farm = Farm::Ready;
    bool m_busy = false;
};
