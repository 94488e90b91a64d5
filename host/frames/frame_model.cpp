#include "host/frames/frame_model.h"

namespace {

constexpr int MostThumbnails = 300;
constexpr qint64 Second = 1000; // ms
constexpr qint64 TenthOfSecond = Second / 10;
constexpr qint64 Minute = 60 * Second;
constexpr qint64 Hour = 60 * Minute;
constexpr double Millionths = 1e6;
constexpr int Decimals = 4; // decimals of an amount; a frame can cost less than a hundredth

} // namespace

FrameModel::FrameModel(QObject* parent)
    : QAbstractTableModel(parent)
    , m_thumbnails(MostThumbnails)
{
}

void FrameModel::Apply(const FramesAnswer& answer)
{
    // Rows are added only by the first answer and by a full render.
    FrameList list = m_list;
    const FrameList::Change change = list.Apply(answer);
    if (change.hasNewRows) {
        beginResetModel();
        m_list = std::move(list);
        endResetModel();
        return;
    }
    m_list = std::move(list);
    for (const int row : change.rows)
        m_thumbnails.remove(At(row).number);
    Announce(change.rows);
}

void FrameModel::Announce(const std::vector<int>& rows)
{
    for (std::size_t from = 0; from < rows.size();) {
        std::size_t to = from;
        while (to + 1 < rows.size() && rows[to + 1] == rows[to] + 1)
            ++to;
        emit dataChanged(index(rows[from], 0), index(rows[to], ColumnCount - 1));
        from = to + 1;
    }
}

void FrameModel::Clear()
{
    beginResetModel();
    m_list.Clear();
    m_thumbnails.clear();
    endResetModel();
}

Frame FrameModel::At(int row) const
{
    return row >= 0 && row < rowCount() ? m_list.Frames()[std::size_t(row)] : Frame();
}

void FrameModel::SetThumbnail(int number, const QPixmap& thumbnail)
{
    const int row = m_list.RowOf(number);
    if (row < 0)
        return;
    m_thumbnails.insert(number, new QPixmap(thumbnail));
    emit dataChanged(index(row, NumberColumn), index(row, NumberColumn), {Qt::DecorationRole});
}

void FrameModel::Retranslate()
{
    emit headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int FrameModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_list.Frames().size());
}

int FrameModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FrameModel::data(const QModelIndex& index, int role) const
{
    const Frame frame = At(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return Text(frame, index.column());
    case Qt::DecorationRole:
        if (const QPixmap* thumbnail
            = index.column() == NumberColumn ? m_thumbnails.object(frame.number) : nullptr)
            return *thumbnail;
        return {};
    case Qt::TextAlignmentRole:
        return int(index.column() < TimeColumn ? Qt::AlignLeft | Qt::AlignVCenter
                                               : Qt::AlignRight | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant FrameModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(
            section < TimeColumn ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NumberColumn:
        return tr("Frame");
    case StateColumn:
        return tr("State");
    case TimeColumn:
        return tr("Time");
    case CostColumn:
        return tr("Cost");
    default:
        return tr("Attempts");
    }
}

QString FrameModel::Text(const Frame& frame, int column) const
{
    switch (column) {
    case NumberColumn:
        return QString::number(frame.number);
    case StateColumn:
        return frame.percent < 0 ? StateText(frame.state)
                                 : QStringLiteral("%1 · %2 %").arg(StateText(frame.state)).arg(frame.percent);
    case TimeColumn:
        return frame.state == Frame::Finished || frame.state == Frame::Rendering
            ? TimeText(frame.milliseconds)
            : QString();
    case CostColumn:
        return frame.cost > 0 ? CostText(frame.cost) : QString();
    default:
        return frame.attempts > 0 ? QString::number(frame.attempts) : QString();
    }
}

QString FrameModel::StateText(Frame::State state)
{
    switch (state) {
    case Frame::Rendering:
        return tr("Rendering");
    case Frame::Finished:
        return tr("Finished");
    case Frame::Failed:
        return tr("Failed");
    case Frame::Waiting:
        break;
    }
    return tr("Waiting");
}

QString FrameModel::TimeText(qint64 milliseconds)
{
    if (milliseconds > 0 && milliseconds < TenthOfSecond)
        return tr("%1 ms").arg(milliseconds);
    if (milliseconds < Minute)
        return tr("%1 s").arg(double(milliseconds) / Second, 0, 'f', 1);
    if (milliseconds < Hour)
        return tr("%1 min %2 s").arg(milliseconds / Minute).arg(milliseconds % Minute / Second);
    return tr("%1 h %2 min").arg(milliseconds / Hour).arg(milliseconds % Hour / Minute);
}

QString FrameModel::CostText(qint64 cost)
{
    return QString::number(double(cost) / Millionths, 'f', Decimals);
}
