#pragma once

#include <string>
#include <string_view>

// The orders that a customer has signed: those with a bitmap in the images directory, which bears the name
// of the order's code.

/// "SIGN.DBF" in the tables directory: the headers of the signed orders. It stands while their viewer is
/// open; a stray of a killed run goes at the next start.
std::string SignTablePath();

/// Makes it from the order headers, whole or not at all. RunTimeFailure as TableScan and TableRewrite.
void MakeSignTable();
/// Nothing happens when it is not there or cannot go.
void RemoveSignTable() noexcept;

/// Where the bitmap of an order lies, its name in whatever case. Empty when there is none, and for a code
/// that is no plain file name.
std::string SignatureOf(std::string_view orderCode);
