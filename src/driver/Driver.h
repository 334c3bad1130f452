#pragma once

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
#include <optional>

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
    struct Expectation {
        QString Box;  ///< `MsgBox` or `InputBox`
        QString Text; ///< the whole text, or a piece of it
        bool Contains = false;
        QString Button;               ///< object name of the button that answers
        std::optional<QString> Input; ///< typed into the box first
    };
    struct Wait {
        QJsonValue Id;
        std::function<bool()> Holds;
        std::function<QString()> Lack; ///< what is missing, in words, for the failure
        std::function<QJsonObject()> Result;
        QDeadlineTimer Until;
    };
    struct AnsweredBox {
        QPointer<QWidget> Box;
        QDeadlineTimer Until;                      ///< when it counts as stuck
        std::optional<QDeadlineTimer> HiddenUntil; ///< when a hidden one counts as gone
    };

    void Start();
    void Connected();
    void Read();
    void Send(const QJsonObject& line);
    void Answer(const QJsonValue& id, QJsonObject results = {});
    void Refuse(const QJsonValue& id, const QString& error);

    void ScheduleNext();
    void HandleNext();
    void Dispatch(const QJsonValue& id, const QString& deed, const QJsonObject& request);
    bool DispatchWait(const QJsonValue& id, const QString& deed, const QJsonObject& request);
    bool DispatchDeed(const QJsonValue& id, const QString& deed, const QJsonObject& request);
    QJsonObject Look(const QString& deed, const QJsonObject& request);
    void Perform(const QJsonValue& id, const std::function<void()>& deed);
    /// As Perform, once a window has the keyboard's focus.
    void PerformByKeys(const QJsonValue& id, const std::function<void()>& deed, QDeadlineTimer until);

    void AddWait(Wait wait);
    void CheckWaits();

    void Expect(const QJsonObject& request);
    void BoxShown(QWidget& box);
    void Judge();
    void AnswerBox(QWidget& box, const Expectation& expected);
    void FillBox(const QPointer<QWidget>& guard, const Expectation& expected, QDeadlineTimer until);
    bool IsUnderWay() const;
    void NotePressedButton();
    void CheckAnsweredBoxes();
    void Fail(const QString& words);
    QString Failures() const;
    QString Expectations() const;
    static QString Describe(const Expectation& expected);

    QObject& Control(const QJsonObject& request, bool mustBeFree) const;
    QWidget& Widget(const QJsonObject& request, bool mustBeFree) const;

    QString path_;
    QLocalServer server_;
    QPointer<QLocalSocket> client_;
    QByteArray unread_;
    QQueue<QByteArray> requests_;
    bool nextScheduled_ = false;
    bool checkScheduled_ = false;
    bool judging_ = false; ///< boxes that stand before the client's first deed wait until then
    QList<Wait> waits_;
    QList<Expectation> expected_;
    QList<QPointer<QWidget>> unjudged_;
    QList<AnsweredBox> answered_;
    QStringList failures_;
    QPointer<QAbstractButton> pressed_; ///< by a key, shown down for a moment before it clicks
    QDeadlineTimer pressedUntil_;
    QTimer poll_;
    Desk desk_;
};
