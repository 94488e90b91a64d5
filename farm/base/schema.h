#pragma once

#include "storage/database.h"

namespace farm {

using storage::Bind;
using storage::Database;
using storage::Execute;
using storage::Text;

/// The tables of the farm's database. All stores share it, because frames, for instance, are charged to accounts.
storage::Migrations Schema();

} // namespace farm
