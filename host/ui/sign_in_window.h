#pragma once

#include "host/ui/skinned_form.h"

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for user name and password, on the form "com.vtr.authclient", and tells of a farm that is not ready yet.
class SignInWindow : public QObject
{
    Q_OBJECT

public:
    /// The server with which to sign in.
    enum class Farm {
        Ready,
        Starting, ///< signing in has to wait
        Failed    ///< it starts only when the user asks for it
    };

    /// A sentence in the language of the moment; plain text.
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
    void SetFarm(Farm farm, const QString& reason = {});

    /// Fills in the user's name, if it is known, and moves the cursor to what is to be typed next.
    void SetName(const QString& name);

    /// While busy, nothing can be entered or sent.
    void SetBusy(bool busy);

    /// Says why signing in failed and lets the user try again. @param text is asked again in each new language.
    void ShowFailure(const Words& text);

    /// Clears the password after a successful sign-in.
    void Reset();

signals:
    void SignInRequested(const QString& name, const QString& password);
    /// The farm is to be started once more.
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
