#pragma once

#include "host/frames/frame_list.h"

#include <QAbstractTableModel>
#include <QCache>
#include <QPixmap>

/// The frames of a job as rows of a table.
class FrameModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NumberColumn, StateColumn, TimeColumn, CostColumn, AttemptsColumn, ColumnCount };

    explicit FrameModel(QObject* parent = nullptr);

    void Apply(const FramesAnswer& answer);
    void Clear();
    const FrameList& List() const { return m_list; }

    /// @return the frame of a row; a frame without a number if there is no such row.
    Frame At(int row) const;

    void SetThumbnail(int number, const QPixmap& thumbnail);
    bool HasThumbnail(int number) const { return m_thumbnails.contains(number); }

    /// Shows all texts in the current language.
    void Retranslate();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static QString StateText(Frame::State state);
    /// @return "2.4 s", "1 min 5 s" or "1 h 2 min".
    static QString TimeText(qint64 milliseconds);
    /// @param cost is in millionths of the unit.
    static QString CostText(qint64 cost);

private:
    QString Text(const Frame& frame, int column) const;
    void Announce(const std::vector<int>& rows);

    FrameList m_list;
    QCache<int, QPixmap> m_thumbnails; // by the frame's number
};
