#pragma once

#include <QString>

#include <stdexcept>

/// A deed that a person at the screen could not have done, or a request that means nothing. Its
/// words name the form and the control.
class Refused : public std::runtime_error {
public:
    explicit Refused(const QString& words) : std::runtime_error(words.toStdString()) {}

    QString Words() const { return QString::fromUtf8(what()); }
};
