#pragma once

#include <QObject>
#include <QStringList>

/// Pictures that the preview steps through, each with a name of its own.
class PictureSeries : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// @return the names of the pictures that there are now, in their order.
    virtual QStringList Names() = 0;

    /// Makes sure that the picture is a file on this machine. Answered by one of the signals, maybe from inside the call;
    /// not answered if another picture is wanted meanwhile.
    virtual void Provide(const QString& name) = 0;

signals:
    void Ready(const QString& name, const QString& file);
    /// @param reason a sentence for the user.
    void Failed(const QString& name, const QString& reason);
};

/// The pictures in the folder of a file, including the file itself.
class FolderPictures : public PictureSeries
{
    Q_OBJECT

public:
    explicit FolderPictures(const QString& file);

    QStringList Names() override;
    void Provide(const QString& name) override;

private:
    QString m_file;
};
