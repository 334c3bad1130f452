#pragma once

#include "driver/BoxJudge.h"
#include "driver/Desk.h"

#include <QAbstractButton>
#include <QDeadlineTimer>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QTimer>

#include <functional>

class Request;

/// Drives the program that it is loaded into for one client on a local socket: one JSON object a
/// line, both ways (docs/driver.md). Lives in the thread of the screen and works inside modal loops.
///
/// It is as strict as a scripted operator. A window named `MsgBox`, `InputBox` or `FileDialog` must be the
/// next expected one and is answered; any other is a failure, with which every request is answered until the
/// client has read the failures.
class Driver final : public QObject {
public:
    /// Listens at `socketPath` as soon as the event loop runs.
    explicit Driver(QString socketPath);
    ~Driver() override;

private:
    struct Wait {
        QJsonValue Id;
        std::function<bool()> Holds;
        std::function<QString()> Lack; ///< what is missing, in words, for the failure
        std::function<QJsonObject()> Result;
        QDeadlineTimer Until;
    };

    void Start();
    void Connected();
    void Read();
    void Send(const QJsonObject& line);
    void Answer(const QJsonValue& id, QJsonObject results = {});
    void Refuse(const QJsonValue& id, const QString& error);

    void ScheduleNext();
    void HandleNext();
    void Dispatch(const Request& request);
    bool DispatchWait(const Request& request);
    Wait WaitForBoxes() const;
    Wait WaitForForm(const Request& request, bool gone) const;
    Wait WaitForEnabled(const Request& request) const;
    Wait WaitForText(const Request& request) const;
    bool DispatchDeed(const Request& request);
    QJsonObject Look(const Request& request);
    void Perform(const QJsonValue& id, const std::function<void()>& deed);
    /// As Perform, once a window has the keyboard's focus.
    void PerformByKeys(const QJsonValue& id, const std::function<void()>& deed, QDeadlineTimer until);

    void AddWait(Wait wait);
    void CheckWaits();

    bool IsUnderWay() const;
    void NotePressedButton();
    void Fail(const QString& words);
    QString Failures() const;

    QObject& Control(const Request& request, bool mustBeFree) const;
    QWidget& Widget(const Request& request, bool mustBeFree) const;

    QString path_;
    QLocalServer server_;
    QPointer<QLocalSocket> client_;
    QByteArray unread_;
    QQueue<QByteArray> requests_;
    bool nextScheduled_ = false;
    bool checkScheduled_ = false;
    QList<Wait> waits_;
    QStringList failures_;
    QPointer<QAbstractButton> pressed_; ///< by a key, shown down for a moment before it clicks
    QDeadlineTimer pressedUntil_;
    QTimer poll_;
    BoxJudge boxes_;
    Desk desk_;
};
