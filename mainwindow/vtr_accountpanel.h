#pragma once

#include <QObject>
#include <QVariantMap>

class QTimer;
class VTRequests;
struct VTMainForm;
struct VTSession;

/// The account panel and the values of the session.
class VTAccountPanel : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this object.
    VTAccountPanel(const VTMainForm& form, const VTRequests& requests, VTSession& session);

    /// Takes the user's names from the sign-in answer and shows who is signed in.
    void TakeNames(const QVariantMap& mapAnswer);
    void TakeToken(const QVariantMap& mapAnswer);

    void RequestUserInfo() const;

    /// Shows the balances of a user-info answer.
    void HandleUserInfoAnswer(int nRet, const QVariantMap& mapAnswer);

private:
    void ShowBalances(const QString& strMain, const QString& strCredits, bool bBound);

    const VTMainForm& m_form;
    const VTRequests& m_requests;
    VTSession& m_session;
};
