#include "driver/Request.h"

#include "driver/Refused.h"

#include <QJsonDocument>

#include <cmath>

Request::Request(const QByteArray& line)
    : object_(QJsonDocument::fromJson(line).object()),
      deed_(TextOrNone("do")) {}

QString Request::Text(const char* key) const {
    const QJsonValue value = object_.value(QLatin1String(key));
    if (!value.isString())
        throw Refused(QStringLiteral("the request lacks the text \"%1\"").arg(QLatin1String(key)));
    return value.toString();
}

int Request::Number(const char* key, int otherwise, int maximum) const {
    if (!Has(key)) return otherwise;
    const QJsonValue value = object_.value(QLatin1String(key));
    const double number = value.toDouble(-1);
    if (!value.isDouble() || number < 0 || number > maximum || std::floor(number) != number) {
        throw Refused(QStringLiteral("\"%1\" must be a whole number from 0 to %2")
                          .arg(QLatin1String(key))
                          .arg(maximum));
    }
    return static_cast<int>(number);
}

bool Request::Flag(const char* key, bool otherwise) const {
    if (!Has(key)) return otherwise;
    const QJsonValue value = object_.value(QLatin1String(key));
    if (!value.isBool())
        throw Refused(QStringLiteral("\"%1\" must be true or false").arg(QLatin1String(key)));
    return value.toBool();
}

Wanted Request::TextWanted() const {
    if (Has("contains")) return {Text("contains"), true};
    return {Text("text"), false};
}

Choice Request::ItemChosen() const {
    constexpr int most = 1 << 30;
    Choice choice;
    if (Has("text"))
        choice.Text = Text("text");
    else if (!Has("row"))
        throw Refused(QStringLiteral("the request lacks \"text\" or \"row\""));
    choice.Row = Number("row", -1, most);
    choice.Column = Number("column", 0, most);
    choice.Twice = Flag("twice");
    choice.Add = Flag("add");
    return choice;
}

QString Request::Value() const {
    const QJsonValue value = object_.value(QLatin1String("value"));
    if (value.isString()) return value.toString();
    if (value.isBool()) return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble()) return QString::number(value.toDouble(), 'g', 15);
    throw Refused(QStringLiteral("the request lacks \"value\": a text, a number, true or false"));
}
