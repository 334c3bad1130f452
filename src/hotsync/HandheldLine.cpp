#include "hotsync/HandheldLine.h"

#include <algorithm>

HandheldLine::HandheldLine(ByteStream& stream, const Limits& limits)
    : stream_(stream),
      limits_(limits),
      end_(ByteStream::Clock::now() + limits.Session),
      greeting_(ByteStream::Clock::now() + limits.Handshake) {}

void HandheldLine::Send(const NetPacket& packet) {
    stream_.Send(PackPacket(packet));
}

NetPacket HandheldLine::Receive(ByteStream::Clock::time_point until) {
    try {
        for (;;) {
            // Also before what waits already: a handheld may answer faster than it is asked, for ever.
            if (ByteStream::Clock::now() >= end_) {
                throw LineFailure(LineFailure::Why::TooLong, "the session has lasted too long");
            }
            while (auto packet = reader_.Next()) {
                if (packet->Type == NetPacket::Data) return std::move(*packet);
            }
            if (ByteStream::Clock::now() >= until) {
                throw LineFailure(LineFailure::Why::Silent, "the handheld did not answer in time");
            }
            reader_.Feed(stream_.Receive(std::min(until, end_)));
        }
    } catch (const PalmFailure& failure) {
        throw LineFailure(LineFailure::Why::Nonsense, failure.what());
    }
}

void HandheldLine::Handshake(std::uint32_t address) {
    DesktopHandshake handshake(address);
    while (!handshake.IsDone()) {
        const NetPacket packet = Receive(greeting_);
        try {
            if (const auto answer = handshake.Take(packet)) Send(*answer);
        } catch (const PalmFailure& failure) {
            throw LineFailure(LineFailure::Why::Nonsense, failure.what());
        }
    }
}

DlpResponse HandheldLine::Ask(const DlpRequest& request) {
    transaction_ = NextTransaction(transaction_);
    Send({NetPacket::Data, transaction_, PackRequest(request)});
    const NetPacket packet = Receive(std::min(ByteStream::Clock::now() + limits_.Answer, greeting_));
    try {
        DlpResponse response = ReadResponse(packet.Payload);
        if (packet.Transaction != transaction_ || response.Function != request.Function) TellOdd();
        return response;
    } catch (const PalmFailure& failure) {
        throw LineFailure(LineFailure::Why::Nonsense, failure.what());
    }
}

/// Once: a handheld that does it does it with every answer.
void HandheldLine::TellOdd() {
    if (Odd && !toldOdd_) Odd("an answer bears the number of another request");
    toldOdd_ = true;
}

DlpResponse HandheldLine::Need(const DlpRequest& request, const std::string& deed) {
    DlpResponse response = Ask(request);
    if (response.Error == DlpError::Cancelled) throw SessionCancelled(SessionCancelled::By::Handheld);
    if (response.Error != DlpError::None) throw HandheldRefusal(deed, response.Error);
    return response;
}

void HandheldLine::KeepAlive() {
    if (Ask(DlpRequest(DlpFunction::OpenConduit)).Error == DlpError::Cancelled) {
        throw SessionCancelled(SessionCancelled::By::Handheld);
    }
}
