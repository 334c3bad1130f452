#pragma once

#include "driver/Hands.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/// A text that is looked for: the whole one, or a piece of it.
struct Wanted {
    QString Text;
    bool Contains = false;

    bool Matches(const QString& found) const { return Contains ? found.contains(Text) : found == Text; }
};

/// One line of the client, and its arguments by their keys (docs/driver.md). An argument that is missing or
/// of another kind is Refused, but for what says otherwise.
class Request {
public:
    /// Anything but a JSON object has no deed.
    explicit Request(const QByteArray& line);

    QJsonValue Id() const { return object_.value(QLatin1String("id")); }
    /// What is asked; empty for a line that asks nothing.
    const QString& Deed() const { return deed_; }
    bool Is(const char* deed) const { return deed_ == QLatin1String(deed); }

    bool Has(const char* key) const { return object_.contains(QLatin1String(key)); }
    QString Text(const char* key) const;
    /// The text, or an empty one where there is none.
    QString TextOrNone(const char* key) const { return object_.value(QLatin1String(key)).toString(); }
    /// A whole number from 0; `otherwise` when it is missing.
    int Number(const char* key, int otherwise, int maximum) const;
    bool Flag(const char* key, bool otherwise = false) const;

    /// What is looked for: the whole text under "text", a piece under "contains".
    Wanted TextWanted() const;
    /// The item that "row" or "text" names, and how it is chosen.
    Choice ItemChosen() const;
    /// What a control is set to: a text, a number, true or false.
    QString Value() const;

private:
    QJsonObject object_;
    QString deed_;
};
