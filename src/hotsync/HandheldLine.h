#pragma once

#include "palm/Dlp.h"
#include "palm/NetSync.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Why a line to a handheld is of no more use. `what()` is ASCII and says it in words.
class LineFailure : public std::runtime_error {
public:
    enum class Why {
        Lost,     ///< the handheld went away
        Silent,   ///< it did not answer in time
        Nonsense, ///< it sent what no handheld sends
        TooLong,  ///< the session has lasted longer than it may
        Ending,   ///< the manager itself comes to its end
    };
    LineFailure(Why why, const std::string& words) : std::runtime_error(words), Reason(why) {}

    Why Reason;
};

/// A handheld said no to one request. The line is as good as before.
class HandheldRefusal : public std::runtime_error {
public:
    /// `deed` says what was asked for, as "open TZUK20000_ZUKCUST".
    HandheldRefusal(const std::string& deed, DlpError error)
        : std::runtime_error(deed + ": " + WordsOf(error)),
          Error(error) {}

    DlpError Error;
};

/// The session is to end because somebody pressed Cancel.
class SessionCancelled : public std::runtime_error {
public:
    enum class By { Handheld, Operator };
    explicit SessionCancelled(By by)
        : std::runtime_error(by == By::Handheld ? "cancelled on the handheld" : "cancelled by the operator"),
          Who(by) {}

    By Who;
};

/// A connection that delivers bytes, in whatever pieces.
class ByteStream {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~ByteStream() = default;

    /// LineFailure Lost; Nonsense when the other side reads nothing of what it answers.
    virtual void Send(std::string_view bytes) = 0;

    /// At least one byte. LineFailure Lost when no more can come, Silent when none came before `until`,
    /// Ending.
    virtual std::string Receive(Clock::time_point until) = 0;
};

/// The desktop's end of a line to a handheld, from the handshake on: one request after the other.
class HandheldLine {
public:
    struct Limits {
        std::chrono::seconds Handshake{20}; ///< from the beginning to EndGreeting
        std::chrono::seconds Answer{60}, Session{30 * 60};
    };

    /// `stream` outlives the line. The limits of greeting and session run from here.
    HandheldLine(ByteStream& stream, const Limits& limits);

    /// Takes the handheld's greeting and ends the handshake. `address` is this computer's, IPv4, for what
    /// it is worth to the handheld. LineFailure.
    void Handshake(std::uint32_t address);

    /// It is known whose handheld it is: from here on it has the time of an answer for each. Whoever only
    /// pretends to be one holds the line for no longer than the handshake may take.
    void EndGreeting() { greeting_ = ByteStream::Clock::time_point::max(); }

    /// Sends a request and waits for its answer, whatever error that tells. A whole answer is given so
    /// long, however slowly its bytes come. LineFailure; Nonsense for an answer that cannot be read.
    DlpResponse Ask(const DlpRequest& request);

    /// The same when an error is none of those that the caller can use: HandheldRefusal, and
    /// SessionCancelled for a Cancel on the handheld. `deed` as there.
    DlpResponse Need(const DlpRequest& request, const std::string& deed);

    /// A request that does no more than to keep the handheld waiting, and to ask whether Cancel was
    /// pressed there. SessionCancelled, LineFailure.
    void KeepAlive();

    /// Called with words about what was odd and did no harm, once for each kind of oddness.
    std::function<void(const std::string&)> Odd;

private:
    NetPacket Receive(ByteStream::Clock::time_point until);
    void Send(const NetPacket& packet);
    void TellOdd();

    ByteStream& stream_;
    Limits limits_;
    ByteStream::Clock::time_point end_;
    ByteStream::Clock::time_point greeting_; ///< when the handheld must have told its user
    PacketReader reader_;
    std::uint8_t transaction_ = 2;
    bool toldOdd_ = false;
};
