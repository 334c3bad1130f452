#pragma once

/// What the merge behind an upload has to do: the tables that were asked for and have arrived whole. A table
/// that did not arrive still holds its old records, whatever was asked for.
struct UploadRun {
    bool OrderHeaders = false, OrderLines = false;
    bool AuditHeaders = false, AuditLines = false;
    bool HHTotals = false;
    bool BarcodeIndex = false;
};
