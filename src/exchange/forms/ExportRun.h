#pragma once

#include "core/Operator.h"
#include "exchange/OrderCheck.h"
#include "platform/Form.h"

#include <optional>
#include <span>
#include <string>

class QLabel;
class QProgressBar;

/// The steps that every exporting screen takes.

/// The full path of the export file in the folder of outgoing files, which is made when it has gone:
/// the operator is told. RunTimeFailure 52 for a name that is not a plain file name, otherwise as
/// EnsureDataDirectory.
std::string ExportPath(std::string_view fileName, Delimiter delimiter);

/// Sorts and checks as the job says, asking the operator about repeats, and exports with the form's
/// bar running. Tells when the export file cannot be opened. Nothing when the form has gone
/// meanwhile. RunTimeFailure as OrderCheck and ExportOrders.
std::optional<ExportResult> RunExport(const ExportJob& job, PCOrders& book, FormBehaviour& form,
                                      QLabel& label, QProgressBar& bar);

/// Tells of order lines that were left out of an export; nothing when there is none.
void TellOrphanLines(const ExportResult& result);

/// The order tables that are exported, by file name.
std::span<const std::string> ExportedTables();

/// Before orders are read for an export: what an upload has left to be put back is put back, so that it is
/// exported with the others, and the operator is told. False where that fails: an export would lack orders,
/// or have some without their lines. The operator has been told.
bool PutBackOrders();

/// Asks whether the exported tables are to go. After a Yes the tables are backed up and the event is
/// recorded: true when that was done, and they may go. A Warning's default is No, a Question's Yes.
bool AgreedToDelete(FormBehaviour& form, Icon icon);

/// Shows the new state of the orders on the main screen, if there is one.
void RefreshMainScreen();
