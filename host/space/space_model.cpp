#include "host/space/space_model.h"

#include <algorithm>
#include <iterator>

SpaceModel::SpaceModel(QObject* parent)
    : QAbstractTableModel(parent)
{
    m_codes.Load();
}

void SpaceModel::SetJobs(const std::vector<FarmSpace::Job>& jobs)
{
    if (jobs == m_jobs)
        return;
    beginResetModel();
    m_jobs = jobs;
    QSet<QString> listed;
    for (const FarmSpace::Job& job : m_jobs)
        listed.insert(job.id);
    m_checked.intersect(listed);
    endResetModel();
    emit CheckedChanged();
}

std::vector<FarmSpace::Job> SpaceModel::Checked() const
{
    std::vector<FarmSpace::Job> checked;
    std::copy_if(m_jobs.begin(), m_jobs.end(), std::back_inserter(checked),
        [this](const FarmSpace::Job& job) { return m_checked.contains(job.id); });
    return checked;
}

int SpaceModel::RowOf(const QString& id) const
{
    const auto found = std::find_if(
        m_jobs.begin(), m_jobs.end(), [&id](const FarmSpace::Job& job) { return job.id == id; });
    return found == m_jobs.end() ? -1 : int(found - m_jobs.begin());
}

QString SpaceModel::IdOf(int row) const
{
    return row >= 0 && row < int(m_jobs.size()) ? m_jobs[std::size_t(row)].id : QString();
}

void SpaceModel::Retranslate()
{
    emit headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (!m_jobs.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int SpaceModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_jobs.size());
}

int SpaceModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SpaceModel::data(const QModelIndex& index, int role) const
{
    const FarmSpace::Job& job = m_jobs[std::size_t(index.row())];
    const bool isSize = index.column() >= FilesColumn;
    switch (role) {
    case Qt::DisplayRole:
        return Text(job, index.column());
    case Qt::CheckStateRole:
        if (index.column() == NumberColumn)
            return m_checked.contains(job.id) ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::TextAlignmentRole:
        return int((isSize ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
        return {};
    }
}

bool SpaceModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != NumberColumn)
        return false;
    const QString& id = m_jobs[std::size_t(index.row())].id;
    if (value.toInt() == Qt::Checked)
        m_checked.insert(id);
    else
        m_checked.remove(id);
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit CheckedChanged();
    return true;
}

QVariant SpaceModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int((section >= FilesColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NumberColumn:
        return tr("Sequence");
    case NameColumn:
        return tr("Name");
    case StatusColumn:
        return tr("Status");
    case FilesColumn:
        return tr("Files");
    default:
        return tr("Pictures");
    }
}

Qt::ItemFlags SpaceModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == NumberColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

QString SpaceModel::Text(const FarmSpace::Job& job, int column) const
{
    switch (column) {
    case NumberColumn:
        return job.number;
    case NameColumn:
        return job.name;
    case StatusColumn:
        return m_codes.JobStatusText(job.status);
    case FilesColumn:
        return SpaceText(job.files);
    default:
        return SpaceText(job.pictures);
    }
}
