#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QThreadPool>

/// Pictures that the preview steps through, each with a name of its own.
class PictureSeries : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// @return the names of the pictures known so far, in order.
    virtual QStringList Names() = 0;

    /// Makes sure that the picture is a file on this machine. One of the signals answers, maybe from inside the call;
    /// none does if another picture is wanted meanwhile.
    virtual void Provide(const QString& name) = 0;

signals:
    void Ready(const QString& name, const QString& file);
    /// @param reason a sentence for the user.
    void Failed(const QString& name, const QString& reason);
    /// The result of Names() has changed.
    void NamesChanged();
};

/// The pictures in the folder of a file, including the file itself. The folder is listed in another thread, first at
/// once and then, when the names are asked for, at most every two seconds, since downloads may add some.
class FolderPictures : public PictureSeries
{
    Q_OBJECT

public:
    explicit FolderPictures(const QString& file);
    ~FolderPictures() override;

    QStringList Names() override;
    void Provide(const QString& name) override;

signals:
    /// Emitted in the listing thread.
    void Listed(const QStringList& names);

private:
    void HandleListed(const QStringList& names);

    QString m_file;
    QStringList m_names;
    bool m_isListing = false;
    QElapsedTimer m_sinceListing;
    QThreadPool m_listings; // last member, because its destructor waits for the listing thread
};
