#pragma once

// The columns of the client's tables, and the data (`Qt::UserRole`) of their items that others read.

/// In every table: the item that has the row's check box and keeps the identifier of its job or task.
inline constexpr int VTIdColumn = 0;

/// Every table has six columns.
inline constexpr int VTColumnCount = 6;

/// Tables of farm jobs: the main one and the candidates of the set-parent dialog.
namespace VTJobColumn {
enum {
    Sequence, ///< job id
    Name,     ///< job type
    StartTime,
    Progress, ///< a bar, no item
    Status,   ///< status code
    Cost
};
}

/// The table of local tasks.
namespace VTTaskColumn {
enum {
    Name,      ///< task id
    StartTime, ///< whether the arguments were fetched (bool)
    Status,    ///< stage code
    Progress,  ///< a bar, no item
    SceneFile, ///< the task's argument list
    Warn       ///< resource path of the icon shown
};
}

/// The table of downloads.
namespace VTDownloadColumn {
enum {
    Name,   ///< download task id
    Source, ///< job id
    Dest,
    Progress, ///< a bar, no item
    Status,   ///< state code
    StartTime ///< contract: always empty
};
}
