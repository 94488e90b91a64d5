#pragma once

// The columns of the client's tables, and the data (`Qt::UserRole`) of their items that others read.

/// In every table: the item that has the row's check box and keeps the identifier of its job or task.
inline constexpr int VTIdColumn = 0;

/// In every table: the progress bar, a cell widget. The window keeps no data in an item there.
inline constexpr int VTProgressColumn = 3;

/// Every table has six columns.
inline constexpr int VTColumnCount = 6;

/// Tables of farm jobs: the main one and the candidates of the set-parent dialog.
namespace VTJobColumn {
enum {
    Sequence, ///< job id
    Name,     ///< job type
    StartTime,
    Progress = VTProgressColumn,
    Status, ///< status code
    Cost
};
}

/// The table of local tasks.
namespace VTTaskColumn {
enum {
    Name,      ///< task id
    StartTime, ///< whether the arguments were fetched (bool)
    Status,    ///< stage code
    Progress = VTProgressColumn,
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
    Progress = VTProgressColumn,
    Status,   ///< state code
    StartTime ///< contract: always empty
};
}
