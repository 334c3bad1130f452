#pragma once

#include "exchange/OrderCheck.h"
#include "platform/Form.h"

#include <optional>

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

/// Asks whether the exported tables are to go. After a Yes the tables are backed up and the event is
/// recorded: true when that was done, and they may go.
bool AgreedToDelete(FormBehaviour& form);

/// Shows the new state of the orders on the main screen, if there is one.
void RefreshMainScreen();
