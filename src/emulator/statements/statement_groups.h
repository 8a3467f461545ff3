// The statement tables of the groups, one a file. Run thread.
#pragma once

#include <span>

#include "emulator/statements/statement_rows.h"

namespace numalink {

std::span<const StatementRow> flowStatements();
std::span<const StatementRow> modeStatements();
std::span<const StatementRow> memoryStatements();
std::span<const StatementRow> lineStatements();
std::span<const StatementRow> graphStatements();
std::span<const StatementRow> arrayStatements();
std::span<const StatementRow> statisticsStatements();
std::span<const StatementRow> statisticsGraphStatements();
std::span<const StatementRow> recursionStatements();
std::span<const StatementRow> tableStatements();

}  // namespace numalink
