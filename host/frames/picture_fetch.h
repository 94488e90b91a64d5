#pragma once

#include "host/farmclient/http_transport.h"

#include <QFile>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QNetworkReply;

/// Fetches a file of known size. It reports once and then deletes itself.
class PictureFetch : public QObject
{
    Q_OBJECT

public:
    /// @param reply is the reply to the request for the file; null while there is no server.
    PictureFetch(QNetworkReply* reply, const QString& file, qint64 size, QObject* parent);
    ~PictureFetch() override;

signals:
    /// @param fault says why the file is not there; empty when it is.
    void Done(const QString& fault);

private slots:
    void HandleFinished();

private:
    void Collect();
    void End(const QString& fault);

    QPointer<QNetworkReply> m_reply;
    QFile m_part;
    QString m_file;
    qint64 m_size;
    QTimer m_deadline;
    QByteArray m_refusal; // the farm's words instead of the picture
    QString m_fault;
};
