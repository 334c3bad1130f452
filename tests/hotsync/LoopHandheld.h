#pragma once

#include "handheld/DlpServer.h"
#include "handheld/Handheld.h"
#include "hotsync/HandheldLine.h"
#include "palm/NetSync.h"

#include <deque>
#include <limits>
#include <memory>
#include <string>

/// A stand-in handheld at the other end of a line that lies in memory: no socket, no waiting. The line can
/// be cut behind any packet, and the handheld can say something else than it would.
class LoopHandheld final : public ByteStream {
public:
    /// `folder` holds a handheld. Presses HotSync at once.
    explicit LoopHandheld(const std::string& folder) : handheld_(folder), server_(handheld_) {
        Put(PackPacket(HandheldHello()));
    }
    ~LoopHandheld() override {
        if (!server_.Ended()) server_.EndWithout("the line was cut");
    }

    /// The line is dead once so many packets have passed it, in either direction.
    int CutAfter = std::numeric_limits<int>::max();
    int Packets = 0;
    /// How it is dead then.
    LineFailure::Why Fault = LineFailure::Why::Lost;
    /// In place of the answer to the request of this number, from 0, when not empty.
    int LieAt = -1;
    std::string Lie;
    /// Called with the number of packets that have passed, behind each.
    std::function<void(int packets)> Passed = [](int) {};
    /// Called with each request that arrives.
    std::function<void(const DlpRequest&)> Heard;

    DlpServer& Server() { return server_; }

    void Send(std::string_view bytes) override {
        if (Packets >= CutAfter) Cut();
        reader_.Feed(bytes);
        while (const auto packet = reader_.Next()) {
            Pass();
            if (const auto answer = HandheldAnswer(*packet, 0x7F000001, 1)) {
                Put(PackPacket(*answer));
                continue;
            }
            const int request = requests_++;
            if (Heard) Heard(ReadRequest(packet->Payload));
            std::string answer = server_.Answer(packet->Payload);
            if (request == LieAt) answer = Lie;
            Put(PackPacket({NetPacket::Data, packet->Transaction, answer}));
        }
    }

    std::string Receive(Clock::time_point) override {
        if (waiting_.empty()) Cut();
        std::string bytes = std::move(waiting_.front());
        waiting_.pop_front();
        Pass();
        return bytes;
    }

private:
    void Pass() {
        if (++Packets > CutAfter) Cut();
        Passed(Packets);
    }
    void Put(std::string bytes) { waiting_.push_back(std::move(bytes)); }
    [[noreturn]] void Cut() const {
        throw LineFailure(Fault, Fault == LineFailure::Why::Lost ? "the handheld went away"
                                                                 : "the handheld did not answer in time");
    }

    Handheld handheld_;
    DlpServer server_;
    PacketReader reader_;
    std::deque<std::string> waiting_;
    int requests_ = 0;
};
