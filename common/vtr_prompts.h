#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVariantHash>

struct VTServices;

/// A question for the user. The buttons are named "btnMessageBox_1" (the refusal) and "btnMessageBox_2" (the consent).
struct VTQuestion
{
    QString strTitle;
    QString strText;
    QString strDetail;
    QString strRefusal; ///< translated caption
    QString strConsent; ///< translated caption
    bool bFlag = false; ///< passed on to the message-box service
};

enum class VTAnswer {
    Refused,
    Agreed,
    None ///< the box was closed without a button, or there is no message-box service
};

/// Shows notices and questions of the window through the message-box service.
///
/// Both run an event loop: when they return, the caller itself may have been deleted.
class VTPrompts
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param services must outlive this object.
    explicit VTPrompts(const VTServices& services)
        : m_services(services)
    {
    }

    /// Shows a translated text with an "Ok" button.
    void Notify(const QString& strText) const;
    VTAnswer Ask(const VTQuestion& question) const;

    /// Asks a question under the window's title, in the detail field, with the buttons "Cancel" and "Ok".
    VTAnswer AskToConfirm(const QString& strQuestion) const;

private:
    QString Show(int nKind, const QString& strTitle, const QString& strText, const QString& strDetail,
        const QVariantHash& mapButtons, bool bFlag) const;

    const VTServices& m_services;
};
