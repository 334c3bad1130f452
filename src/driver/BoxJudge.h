#pragma once

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

class Request;

/// Whether a window is a box that asks or tells: `MsgBox`, `InputBox` or `FileDialog`.
bool IsBox(const QWidget& window);

/// Holds each box that comes against the next one that the client expects, and answers it. One that was not
/// expected, or cannot be answered, is a failure and stays.
class BoxJudge final : public QObject {
public:
    struct Hearers {
        std::function<void(const QJsonObject& event)> Answered; ///< a box is being answered
        std::function<void(const QString& words)> Failed;
        std::function<void()> Changed; ///< a box may have come to its end
    };
    explicit BoxJudge(Hearers hearers) : hearers_(std::move(hearers)) {}

    /// The next box of those to come. Refused for a request that does not say which, or how it is answered.
    void Expect(const Request& request);
    /// Those that have not come yet, in words.
    QStringList Expected() const;

    /// Boxes that stand before the client's first deed wait until then. Whether there were any: a deed comes
    /// behind them.
    bool Begin();

    void BoxShown(QWidget& box);

    /// Whether a box that was answered may still be there.
    bool HasAnswered() const { return !answered_.isEmpty(); }
    /// Whether a box is still to be judged, or that.
    bool IsUnderWay() const { return HasAnswered() || (judging_ && !unjudged_.isEmpty()); }

    /// Looks which of the boxes that were answered have gone, and whether one is stuck.
    void CheckAnswered();

private:
    struct Expectation {
        QString Box;  ///< its name
        QString Text; ///< the whole text, or a piece of it
        bool Contains = false;
        QString Button;               ///< object name of the button that answers
        std::optional<QString> Input; ///< typed into the box first
    };
    struct AnsweredBox {
        QPointer<QWidget> Box;
        QDeadlineTimer Until;                      ///< when it counts as stuck
        std::optional<QDeadlineTimer> HiddenUntil; ///< when a hidden one counts as gone
    };

    void Judge();
    void Answer(QWidget& box, const Expectation& expected);
    void Fill(const QPointer<QWidget>& guard, const Expectation& expected, QDeadlineTimer until);
    static QString Describe(const Expectation& expected);

    Hearers hearers_;
    bool judging_ = false;
    QList<Expectation> expected_;
    QList<QPointer<QWidget>> unjudged_;
    QList<AnsweredBox> answered_;
};
