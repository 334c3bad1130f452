#pragma once

#include <QString>
#include <QStringList>

#include <stdexcept>

/// What makes an office for a demonstration could not be done; says which command, and its words.
class OfficeFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A fresh application directory with a copy of the program in it, laid out by the program's own
/// tools out of the folder of a build.
class OfficeForDay {
public:
    /// `office` is made; it must not exist, or be empty. `samples` holds text files for `DataIn` and
    /// <TABLE>.tsv files for the tables.
    OfficeForDay(QString build, QString office, const QString& samples);

    /// Puts copies of the HotSync Manager's program and of the registration where an office has them. Nothing
    /// is registered: whoever starts them gives them a registry of their own.
    void WithManager() const;

    QString Program() const { return office_ + QStringLiteral("/ZUKTramble"); }
    QString Manager() const { return Path(QStringLiteral("HotSync/hotsync")); }
    QString Registration() const { return Path(QStringLiteral("Install/rdkinst")); }
    QString Path(const QString& below) const { return office_ + QLatin1Char('/') + below; }

    /// Runs one of the build's tools to its end. OfficeFailure, with its words, when it fails.
    void Run(const QString& tool, const QStringList& arguments) const;

private:
    QString build_;
    QString office_;
};
