#pragma once

#include <QString>

#include <memory>

class QLocalServer;

/// The name of a local socket that belongs to a folder: `prefix` and 16 hexadecimal digits of the SHA-1 of
/// the folder's canonical path and what stands behind it, in UTF-8. A folder that is not there goes by its
/// full path.
QString LocalName(const QString& prefix, const QString& folder, const QString& behind = {});

/// Whether a process listens under the name.
bool LocalNameAnswers(const QString& name);

/// A server under the name that only this user can connect to, in the place of what a dead process has left
/// there. Nothing when the system would have none.
std::unique_ptr<QLocalServer> ListenUnder(const QString& name);
